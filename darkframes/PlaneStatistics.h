// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/DarkStack.h"
#include "darkframes/Mosaic.h"

#include <cstdint>
#include <optional>
#include <vector>

/// What one plane of a stack of dark frames looks like, in grey levels. A figure is missing where
/// it is not defined: those of a plane without pixels, deviations of a single pixel, what would be
/// the root of a negative number, temporal noise of a single frame.
struct PlaneStatistics
{
    SensorPlane plane;
    std::uint64_t pixels = 0;

    /// Of the mean image.
    std::optional<double> mean;
    std::optional<double> median;
    std::optional<double> deviation;       ///< divisor pixels − 1
    std::optional<double> robustDeviation; ///< 1.4826 × the median distance from the median
    std::optional<double> minimum;
    std::optional<double> maximum;

    /// EMVA standard 1288, release 4.0: the root of the mean of the pixels' unbiased variances, and
    /// the dark signal nonuniformity without the share of the temporal noise: of the plane, and its
    /// parts by rows, by columns and by pixels.
    std::optional<double> temporalNoise;
    std::optional<double> dsnu;
    std::optional<double> dsnuRow;
    std::optional<double> dsnuColumn;
    std::optional<double> dsnuPixel;

    /// How many pixels have a mean that, cut to a whole number, is the index: 256 or 65536 counts.
    std::vector<std::uint64_t> levels;
    /// The mean of those whole numbers, itself cut to a whole number. A threshold counts from here.
    std::uint32_t wholeMean = 0;

    /// @param stack of one frame at least
    static PlaneStatistics of(const DarkStack& stack, const SensorPlane& plane);

    /// How many pixels lie above the plane's mean by more than @p threshold.
    [[nodiscard]] std::uint64_t countAbove(std::uint32_t threshold) const;
};
