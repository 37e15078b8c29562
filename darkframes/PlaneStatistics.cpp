// SPDX-License-Identifier: MIT
#include "darkframes/PlaneStatistics.h"

#include "darkframes/SumDistribution.h"

#include <cmath>
#include <numeric>

namespace {

constexpr double RobustFactor = 1.4826; ///< makes it the deviation of a normal distribution

/// Columns, rows and their means, as the standard's formulas take them.
struct Grid
{
    double columns = 0;
    double rows = 0;
    double columnVariance = 0; ///< mean over columns of (column mean − mean)²
    double rowVariance = 0;    ///< mean over rows of (row mean − mean)²
    double noiseVariance = 0;  ///< mean over pixels of the variance over frames
};

std::optional<double> root(double value)
{
    // The 0 makes a negative zero a zero.
    return value >= 0 && std::isfinite(value) ? std::optional(std::sqrt(value) + 0.0)
                                              : std::nullopt;
}

/// The mean of ((sums[i] × sums.size() − total) / divisor)². Sums of lines and the total are exact,
/// so lines that are alike differ by exactly 0.
double meanSquare(const std::vector<std::uint64_t>& sums, std::uint64_t total, double divisor)
{
    double squares = 0;
    for (const std::uint64_t sum : sums) {
        const auto distance = static_cast<std::int64_t>(sum * sums.size() - total);
        const double value = static_cast<double>(distance) / divisor;
        squares += value * value;
    }
    return squares / static_cast<double>(sums.size());
}

Grid gridOf(const DarkStack& stack, const SensorPlane& plane, std::uint64_t total)
{
    const ImageInfo& info = stack.info();
    std::vector<std::uint64_t> columnSums(plane.columns(info.width));
    std::vector<std::uint64_t> rowSums;
    Grid grid;
    for (std::uint32_t y = plane.y; y < info.height; y += plane.step) {
        const auto row = stack.sumsOfRow(y);
        std::uint64_t rowSum = 0;
        for (std::size_t column = 0; column < columnSums.size(); ++column) {
            const std::uint32_t sum = row[plane.x + column * plane.step];
            columnSums[column] += sum;
            rowSum += sum;
        }
        rowSums.push_back(rowSum);
        grid.noiseVariance += stack.sumOfVariances(y, plane.x, plane.step);
    }
    grid.columns = static_cast<double>(columnSums.size());
    grid.rows = static_cast<double>(rowSums.size());
    const double values = grid.columns * grid.rows * stack.frameCount();
    grid.columnVariance = meanSquare(columnSums, total, values);
    grid.rowVariance = meanSquare(rowSums, total, values);
    grid.noiseVariance /= grid.columns * grid.rows;
    return grid;
}

/// @param variance of the mean image, divisor pixels − 1
void setNonuniformity(PlaneStatistics& statistics, const Grid& grid, double variance, double frames)
{
    const double m = grid.rows;
    const double n = grid.columns;
    const double noise = grid.noiseVariance;
    const double total = variance - noise / frames;
    const double averageColumn = grid.columnVariance - noise / (frames * m);
    const double averageRow = grid.rowVariance - noise / (frames * n);
    // 0 for 2 × 2 pixels: then the parts can't be told apart, and none of them is finite.
    const double q = m * n - m - n;
    statistics.dsnu = root(total);
    statistics.dsnuColumn = root((m * n - m) / q * averageColumn - n / q * (total - averageRow));
    statistics.dsnuRow = root((m * n - n) / q * averageRow - m / q * (total - averageColumn));
    statistics.dsnuPixel = root(m * n / q * (total - averageColumn - averageRow));
}

void setLevels(PlaneStatistics& statistics, const SumDistribution& sums, const DarkStack& stack)
{
    statistics.levels.resize(std::size_t{1} << stack.info().bitsPerPixel);
    std::uint64_t total = 0;
    sums.forEach([&](std::uint32_t sum, std::uint64_t count) {
        const std::uint32_t level = sum / stack.frameCount();
        statistics.levels[level] += count;
        total += level * count;
    });
    statistics.wholeMean = static_cast<std::uint32_t>(total / sums.pixels());
}

} // namespace

PlaneStatistics PlaneStatistics::of(const DarkStack& stack, const SensorPlane& plane)
{
    const SumDistribution sums(stack, plane);
    PlaneStatistics statistics;
    statistics.plane = plane;
    statistics.pixels = sums.pixels();
    if (sums.pixels() == 0) {
        statistics.levels.resize(std::size_t{1} << stack.info().bitsPerPixel);
        return statistics;
    }
    setLevels(statistics, sums, stack);

    const double frames = stack.frameCount();
    const auto pixels = static_cast<double>(sums.pixels());
    statistics.mean = static_cast<double>(sums.total()) / (pixels * frames);
    statistics.median = static_cast<double>(sums.doubleMedian()) / (2 * frames);
    statistics.robustDeviation =
        RobustFactor * (static_cast<double>(sums.fourfoldMedianDistance()) / (4 * frames));
    statistics.minimum = sums.least() / frames;
    statistics.maximum = sums.greatest() / frames;

    const Grid grid = gridOf(stack, plane, sums.total());
    const bool hasNoise = stack.frameCount() > 1;
    if (hasNoise) {
        statistics.temporalNoise = root(grid.noiseVariance);
    }
    if (sums.pixels() > 1) {
        const double variance = sums.squaredDistances() / (frames * frames) / (pixels - 1);
        statistics.deviation = root(variance);
        if (hasNoise) {
            setNonuniformity(statistics, grid, variance, frames);
        }
    }
    return statistics;
}

std::uint64_t PlaneStatistics::countAbove(std::uint32_t threshold) const
{
    const std::size_t first = std::size_t{wholeMean} + threshold + 1;
    if (first >= levels.size()) {
        return 0;
    }
    return std::accumulate(levels.begin() + static_cast<std::ptrdiff_t>(first), levels.end(),
                           std::uint64_t{0});
}
