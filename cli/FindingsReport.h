// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QJsonArray>
#include <QString>

#include <array>
#include <cstddef>
#include <span>

/// How found hotpixels spread over the four planes of a Bayer sensor. Which colour a plane has
/// depends on the sensor, so planes are named after their place in the 2 × 2 mosaic.
namespace cli {

/// In the order in which a detection goes through them.
struct BayerPlane
{
    bool oddColumns;
    bool oddRows;
    std::size_t found = 0;

    /// "even columns, odd rows" and the like
    [[nodiscard]] QString name() const;
};

/// How many of @p entries lie in each plane.
std::array<BayerPlane, 4> foundPerPlane(std::span<const BadpixelEntry> entries);

/// One line for each plane, the numbers below each other.
QString planeText(std::span<const BadpixelEntry> entries);

/// [{"oddColumns", "oddRows", "name", "found"}, …]
QJsonArray planeArray(std::span<const BadpixelEntry> entries);

} // namespace cli
