// SPDX-License-Identifier: MIT
#include "darkframes/SumDistribution.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr std::uint64_t MostCounts = std::uint64_t{1} << 22U;

template <typename Visit>
void forEachSum(const DarkStack& stack, const SensorPlane& plane, Visit visit)
{
    for (std::uint32_t y = plane.y; y < stack.info().height; y += plane.step) {
        const auto row = stack.sumsOfRow(y);
        for (std::size_t x = plane.x; x < row.size(); x += plane.step) {
            visit(row[x]);
        }
    }
}

} // namespace

SumDistribution::SumDistribution(const DarkStack& stack, const SensorPlane& plane)
{
    const ImageInfo& info = stack.info();
    m_pixels = std::uint64_t{plane.columns(info.width)} * plane.rows(info.height);
    const std::uint64_t greatest =
        std::uint64_t{stack.frameCount()} * ((std::uint64_t{1} << info.bitsPerPixel) - 1);
    if (greatest < MostCounts) {
        m_upTo.resize(greatest + 1);
        forEachSum(stack, plane, [this](std::uint32_t sum) { ++m_upTo[sum]; });
        std::partial_sum(m_upTo.begin(), m_upTo.end(), m_upTo.begin());
    } else {
        m_sorted.reserve(m_pixels);
        forEachSum(stack, plane, [this](std::uint32_t sum) { m_sorted.push_back(sum); });
        std::ranges::sort(m_sorted);
    }
    forEach([this](std::uint32_t sum, std::uint64_t count) { m_total += sum * count; });
}

std::uint32_t SumDistribution::sumAt(std::uint64_t rank) const
{
    if (m_upTo.empty()) {
        return m_sorted[rank];
    }
    return static_cast<std::uint32_t>(std::ranges::upper_bound(m_upTo, rank) - m_upTo.begin());
}

std::uint64_t SumDistribution::countUpTo(std::int64_t sum) const
{
    if (sum < 0) {
        return 0;
    }
    if (m_upTo.empty()) {
        return static_cast<std::uint64_t>(std::ranges::upper_bound(m_sorted, sum) -
                                          m_sorted.begin());
    }
    return m_upTo[std::min(static_cast<std::size_t>(sum), m_upTo.size() - 1)];
}

std::uint32_t SumDistribution::least() const
{
    return sumAt(0);
}

std::uint32_t SumDistribution::greatest() const
{
    return sumAt(m_pixels - 1);
}

std::uint64_t SumDistribution::doubleMedian() const
{
    return std::uint64_t{sumAt((m_pixels - 1) / 2)} + sumAt(m_pixels / 2);
}

std::uint64_t SumDistribution::distanceAt(std::uint64_t rank) const
{
    const auto median = static_cast<std::int64_t>(doubleMedian());
    std::int64_t low = 0;
    std::int64_t high = std::int64_t{1} << 33U;
    while (low < high) {
        const std::int64_t distance = (low + high) / 2;
        const std::int64_t beyond = median - distance - 1;
        const std::uint64_t within =
            countUpTo((median + distance) / 2) - countUpTo(beyond < 0 ? -1 : beyond / 2);
        if (within > rank) {
            high = distance;
        } else {
            low = distance + 1;
        }
    }
    return static_cast<std::uint64_t>(low);
}

std::uint64_t SumDistribution::fourfoldMedianDistance() const
{
    return distanceAt((m_pixels - 1) / 2) + distanceAt(m_pixels / 2);
}

double SumDistribution::squaredDistances() const
{
    // Times the number of pixels, distances from the mean are whole numbers.
    const auto pixels = static_cast<std::int64_t>(m_pixels);
    const auto total = static_cast<std::int64_t>(m_total);
    double squares = 0;
    forEach([&](std::uint32_t sum, std::uint64_t count) {
        const double distance =
            static_cast<double>(std::int64_t{sum} * pixels - total) / static_cast<double>(m_pixels);
        squares += distance * distance * static_cast<double>(count);
    });
    return squares;
}
