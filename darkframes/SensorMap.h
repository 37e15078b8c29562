// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ImageInfo.h"
#include "darkframes/FoundPixels.h"

#include <QString>

#include <span>

namespace darkframes {

/// A map of the sensor with the pixels that were found, as an SVG element: new ones are circles,
/// known ones squares, flickering ones crosses, and those of clusters triangles. What lies on top
/// of each other stays to be told apart by the shape.
QString sensorMap(const ImageInfo& info, std::span<const FoundPixel> pixels);

/// The shapes with their meanings and how many there are, as an HTML element; of as many as the map
/// draws, if it does not draw all.
QString sensorMapLegend(std::span<const FoundPixel> pixels);

} // namespace darkframes
