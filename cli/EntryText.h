// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QJsonArray>
#include <QSize>
#include <QString>

#include <array>
#include <cstddef>
#include <span>

/// How positions of hotpixels and sizes of sensors are shown.
namespace cli {

/// "(x, y)" for each entry, in columns of a line of 79 characters, each line indented by two
/// blanks; no line end behind the last. Empty for no entries.
QString entryColumns(std::span<const BadpixelEntry> entries);

/// [[x, y], …]
QJsonArray entryArray(std::span<const BadpixelEntry> entries);

/// "1 entry", "2 entries" and the like for user and factory entries.
QString entryCount(std::size_t count);

/// "64 × 48"
QString sizeText(const QSize& size);

// How found hotpixels spread over the four planes of a Bayer sensor. Which colour a plane has
// depends on the sensor, so planes are named after their place in the 2 × 2 mosaic.

/// In the order in which a detection goes through them.
struct BayerPlane
{
    bool oddColumns;
    bool oddRows;
    std::size_t found = 0;

    /// "even columns, odd rows" and the like, for machines
    [[nodiscard]] const char* name() const;
    /// The same for people.
    [[nodiscard]] QString title() const;
};

/// How many of @p entries lie in each plane.
std::array<BayerPlane, 4> foundPerPlane(std::span<const BadpixelEntry> entries);

/// One line for each plane, the numbers below each other.
QString planeText(std::span<const BadpixelEntry> entries);

/// [{"oddColumns", "oddRows", "name", "found"}, …]
QJsonArray planeArray(std::span<const BadpixelEntry> entries);

} // namespace cli
