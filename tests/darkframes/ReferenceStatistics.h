// SPDX-License-Identifier: MIT
#pragma once

#include "tests/darkframes/TestFrames.h"

#include <optional>
#include <utility>
#include <vector>

/// The statistics once more, formula by formula and as slow as they come. They share nothing with
/// the library.
namespace reference {

struct Plane
{
    int x = 0;
    int y = 0;
    int step = 1;
};

struct Statistics
{
    std::size_t pixels = 0;
    std::optional<double> mean;
    std::optional<double> median;
    std::optional<double> deviation;
    std::optional<double> robustDeviation;
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::optional<double> temporalNoise;
    std::optional<double> dsnu;
    std::optional<double> dsnuRow;
    std::optional<double> dsnuColumn;
    std::optional<double> dsnuPixel;
};

Statistics statistics(const TestFrames& frames, const Plane& plane);

/// Pixels above the mean of the plane by more than @p threshold, with both means cut to whole
/// numbers, row by row.
std::vector<std::pair<int, int>> hotPixels(const TestFrames& frames, const Plane& plane,
                                           int threshold);

} // namespace reference
