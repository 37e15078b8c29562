// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/DarkStack.h"
#include "darkframes/Mosaic.h"

#include <cstdint>
#include <vector>

/// How often each sum of a pixel's values over the frames occurs in a plane. Statistics of the mean
/// image that ask for an order, like the median, are exact on it and take no sorting of pixels.
class SumDistribution
{
public:
    /// Takes up to 16 MiB, and 4 bytes a pixel of the plane for so many frames that this is not
    /// enough.
    SumDistribution(const DarkStack& stack, const SensorPlane& plane);

    [[nodiscard]] std::uint64_t pixels() const { return m_pixels; }
    /// The sum of all sums.
    [[nodiscard]] std::uint64_t total() const { return m_total; }

    /// Calls @p visit(sum, count) for each sum that occurs, in ascending order.
    template <typename Visit>
    void forEach(Visit visit) const;

    /// All of the following need a pixel at least.
    [[nodiscard]] std::uint32_t least() const;
    [[nodiscard]] std::uint32_t greatest() const;
    /// Twice the median: the two in the middle added up.
    [[nodiscard]] std::uint64_t doubleMedian() const;
    /// Four times the median of the distances from the median.
    [[nodiscard]] std::uint64_t fourfoldMedianDistance() const;
    /// The sum of the squares of (sum − mean of the sums).
    [[nodiscard]] double squaredDistances() const;

private:
    [[nodiscard]] std::uint32_t sumAt(std::uint64_t rank) const;
    [[nodiscard]] std::uint64_t countUpTo(std::int64_t sum) const;
    /// The distance of this rank, 0 the least, in |2 × sum − doubleMedian|.
    [[nodiscard]] std::uint64_t distanceAt(std::uint64_t rank) const;

    std::uint64_t m_pixels = 0;
    std::uint64_t m_total = 0;
    std::vector<std::uint32_t> m_upTo;   ///< pixels up to each sum; empty when there are too many
    std::vector<std::uint32_t> m_sorted; ///< the sums themselves then
};

template <typename Visit>
void SumDistribution::forEach(Visit visit) const
{
    std::uint32_t before = 0;
    for (std::size_t sum = 0; sum < m_upTo.size(); ++sum) {
        if (m_upTo[sum] != before) {
            visit(static_cast<std::uint32_t>(sum), std::uint64_t{m_upTo[sum] - before});
            before = m_upTo[sum];
        }
    }
    for (std::size_t i = 0; i < m_sorted.size();) {
        std::size_t end = i + 1;
        while (end < m_sorted.size() && m_sorted[end] == m_sorted[i]) {
            ++end;
        }
        visit(m_sorted[i], std::uint64_t{end - i});
        i = end;
    }
}
