// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Survey.h"

#include <QByteArray>
#include <QString>

#include <span>
#include <vector>

/// What a pixel is listed for, from a finding or from a list that a camera holds.
enum class FoundClass {
    New,        ///< hot, and in no list so far
    Factory,    ///< in the camera's factory list
    User,       ///< in the user list already
    Flickering, ///< above the limit in a frame but not in the mean
    NotHot,     ///< in a list, but not above the limit in any frame
};

/// A pixel with what the frames say about it.
struct FoundPixel
{
    PixelPosition position;
    SensorPlane plane;
    double mean = 0;
    double temporalNoise = 0;
    std::uint16_t greatest = 0;
    FoundClass foundClass = FoundClass::New;
    bool isClustered = false;
};

namespace darkframes {

/// All that was found, hot pixels first, and of each whether it is known.
/// @param factory, user what the camera's lists hold; positions that do not lie on the sensor, or
/// were not found, do not occur in the result
std::vector<FoundPixel> foundPixels(const DarkStack& stack, const Survey& survey,
                                    const Findings& findings,
                                    std::span<const PixelPosition> factory,
                                    std::span<const PixelPosition> user);

/// Those of @p listed that lie on the sensor and were not found, each once, in their order.
std::vector<FoundPixel> pixelsNotFound(const DarkStack& stack, const Survey& survey,
                                       const Findings& findings,
                                       std::span<const PixelPosition> listed);

/// "new", "factory", "user", "flickering", "not hot"
QString className(FoundClass foundClass);

/// A line of titles and a line a pixel: x,y,plane,mean,temporalNoise,greatest,class.
QByteArray foundPixelsCsv(std::span<const FoundPixel> pixels);

} // namespace darkframes
