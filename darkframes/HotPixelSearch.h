// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/DarkStack.h"
#include "darkframes/PlaneStatistics.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct PixelPosition
{
    std::uint16_t x = 0;
    std::uint16_t y = 0;

    /// Row by row.
    friend constexpr auto operator<=>(const PixelPosition& a, const PixelPosition& b)
    {
        return a.y != b.y ? a.y <=> b.y : a.x <=> b.x;
    }
    friend constexpr bool operator==(const PixelPosition&, const PixelPosition&) = default;
};

/// Above which value a pixel of a plane is hot.
struct HotLimit
{
    SensorPlane plane;
    /// A pixel is hot when the sum of its values is greater.
    std::uint64_t greatestColdSum = 0;
    /// In grey levels of the mean image, where the figure is drawn or printed.
    double level = 0;
};

struct HotPixels
{
    /// Plane by plane as the limits come, and row by row in each; every pixel once.
    std::vector<PixelPosition> hot;
    /// Above the limit in at least one frame, but not in their mean; in the same order.
    std::vector<PixelPosition> flickering;
};

/// Which threshold lets a list take as much as it can.
struct FillingThreshold
{
    std::uint32_t threshold = 0;
    std::uint64_t found = 0; ///< pixels above it that are not known
};

namespace darkframes {

/// How many grey levels a frame of this depth has for each of 8 bits: 1 or 256.
constexpr std::uint32_t levelScale(std::uint32_t bitsPerPixel)
{
    return bitsPerPixel == 16 ? 256 : 1;
}

/// A pixel is hot whose mean, cut to a whole number, is greater than the mean of its plane, which
/// is the mean of those whole numbers and cut to one itself, plus @p threshold. This is how the
/// editor decides it.
/// @param planes one or more
/// @return a limit for each plane that has pixels
std::vector<HotLimit> limitsByThreshold(std::span<const PlaneStatistics> planes,
                                        std::uint32_t threshold, std::uint32_t frameCount);

/// A pixel is hot whose mean lies more than @p factor robust deviations above the median of its
/// plane. Nothing is cut to whole numbers.
std::vector<HotLimit> limitsByDeviation(std::span<const PlaneStatistics> planes, double factor,
                                        std::uint32_t frameCount);

/// Goes through all pixels once. @param stack of one frame at least
HotPixels findHotPixels(const DarkStack& stack, std::span<const HotLimit> limits);

/// The least threshold that finds no more new pixels than a list has room for.
/// @param planes those that a search goes through
/// @param known pixels that do not count, each once; what does not lie on the sensor is left out
/// @param least, greatest the thresholds that may be chosen
/// @return nothing when even @p greatest finds too many
std::optional<FillingThreshold> fillingThreshold(const DarkStack& stack,
                                                 std::span<const PlaneStatistics> planes,
                                                 std::span<const PixelPosition> known,
                                                 std::uint64_t room, std::uint32_t least,
                                                 std::uint32_t greatest);

} // namespace darkframes
