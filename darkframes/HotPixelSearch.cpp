// SPDX-License-Identifier: MIT
#include "darkframes/HotPixelSearch.h"

#include <algorithm>
#include <cmath>

namespace {

void searchPlane(const DarkStack& stack, const HotLimit& limit, HotPixels& found)
{
    const ImageInfo& info = stack.info();
    const SensorPlane& plane = limit.plane;
    const std::uint64_t coldSum = limit.greatestColdSum;
    // One frame that is as bright as this shows a pixel that flickers.
    const std::uint64_t coldValue = coldSum / stack.frameCount();
    std::vector<std::uint16_t> greatest(info.width);
    for (std::uint32_t y = plane.y; y < info.height; y += plane.step) {
        const auto sums = stack.sumsOfRow(y);
        stack.greatestOfRow(y, greatest);
        for (std::uint32_t x = plane.x; x < info.width; x += plane.step) {
            // A sum can't be above the limit where no value is.
            if (greatest[x] <= coldValue) {
                continue;
            }
            const PixelPosition position{static_cast<std::uint16_t>(x),
                                         static_cast<std::uint16_t>(y)};
            (sums[x] > coldSum ? found.hot : found.flickering).push_back(position);
        }
    }
}

} // namespace

std::vector<HotLimit> darkframes::limitsByThreshold(std::span<const PlaneStatistics> planes,
                                                    std::uint32_t threshold,
                                                    std::uint32_t frameCount)
{
    std::vector<HotLimit> limits;
    for (const PlaneStatistics& plane : planes) {
        if (plane.pixels > 0) {
            const std::uint64_t level = std::uint64_t{plane.wholeMean} + threshold;
            // The greatest sum whose mean, cut to a whole number, is the level.
            limits.push_back(
                {plane.plane, (level + 1) * frameCount - 1, static_cast<double>(level)});
        }
    }
    return limits;
}

std::vector<HotLimit> darkframes::limitsByDeviation(std::span<const PlaneStatistics> planes,
                                                    double factor, std::uint32_t frameCount)
{
    std::vector<HotLimit> limits;
    for (const PlaneStatistics& plane : planes) {
        if (plane.pixels > 0) {
            const double level = *plane.median + factor * *plane.robustDeviation;
            // Far above all that a pixel can have, where a number might have no room for it.
            constexpr double Beyond = 1e9;
            const double sum = std::floor(std::clamp(level, 0.0, Beyond) * frameCount);
            limits.push_back({plane.plane, static_cast<std::uint64_t>(sum), level});
        }
    }
    return limits;
}

HotPixels darkframes::findHotPixels(const DarkStack& stack, std::span<const HotLimit> limits)
{
    HotPixels found;
    for (const HotLimit& limit : limits) {
        searchPlane(stack, limit, found);
    }
    return found;
}

std::optional<FillingThreshold>
darkframes::fillingThreshold(const DarkStack& stack, std::span<const PlaneStatistics> planes,
                             std::span<const PixelPosition> known, std::uint64_t room,
                             std::uint32_t least, std::uint32_t greatest)
{
    // How many pixels are found with a threshold below the index, and not with one of the index.
    std::vector<std::int64_t> found(std::size_t{greatest} + 2);
    const auto count = [&found, greatest](const PlaneStatistics& plane, std::size_t level,
                                          std::int64_t pixels) {
        if (level > plane.wholeMean) {
            found[std::min<std::size_t>(level - plane.wholeMean, std::size_t{greatest} + 1)] +=
                pixels;
        }
    };
    for (const PlaneStatistics& plane : planes) {
        for (std::size_t level = 0; level < plane.levels.size(); ++level) {
            count(plane, level, static_cast<std::int64_t>(plane.levels[level]));
        }
    }
    for (const PixelPosition& pixel : known) {
        if (pixel.x >= stack.info().width || pixel.y >= stack.info().height) {
            continue;
        }
        for (const PlaneStatistics& statistics : planes) {
            const SensorPlane& plane = statistics.plane;
            if (pixel.x % plane.step == plane.x && pixel.y % plane.step == plane.y) {
                count(statistics, stack.sumsOfRow(pixel.y)[pixel.x] / stack.frameCount(), -1);
            }
        }
    }
    std::optional<FillingThreshold> filling;
    std::int64_t above = 0;
    for (std::uint32_t threshold = greatest + 1; threshold-- > least;) {
        above += found[std::size_t{threshold} + 1];
        if (above > static_cast<std::int64_t>(room)) {
            break;
        }
        filling = {threshold, static_cast<std::uint64_t>(above)};
    }
    return filling;
}
