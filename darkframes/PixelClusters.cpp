// SPDX-License-Identifier: MIT
#include "darkframes/PixelClusters.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace {

/// Sets of hot pixels, each known by one of them.
class DisjointSets
{
public:
    explicit DisjointSets(std::size_t count)
        : m_parents(count)
    {
        std::iota(m_parents.begin(), m_parents.end(), std::uint32_t{0});
    }

    std::uint32_t find(std::size_t element)
    {
        auto root = static_cast<std::uint32_t>(element);
        while (m_parents[root] != root) {
            m_parents[root] = m_parents[m_parents[root]];
            root = m_parents[root];
        }
        return root;
    }

    void join(std::size_t a, std::size_t b)
    {
        const std::uint32_t rootA = find(a);
        const std::uint32_t rootB = find(b);
        m_parents[std::max(rootA, rootB)] = std::min(rootA, rootB);
    }

private:
    std::vector<std::uint32_t> m_parents;
};

/// The end of the row in which element @p begin lies. A row of the next plane has another parity,
/// or begins further left.
std::size_t endOfRow(std::span<const PixelPosition> hot, std::size_t begin, std::uint32_t step)
{
    std::size_t end = begin + 1;
    while (end < hot.size() && hot[end].y == hot[begin].y && hot[end].x > hot[end - 1].x &&
           hot[end].x % step == hot[begin].x % step) {
        ++end;
    }
    return end;
}

void joinNeighbours(std::span<const PixelPosition> hot, std::uint32_t step, DisjointSets& sets)
{
    std::size_t aboveBegin = 0;
    std::size_t aboveEnd = 0;
    for (std::size_t begin = 0; begin < hot.size();) {
        const std::size_t end = endOfRow(hot, begin, step);
        const bool touchesAbove = aboveEnd > aboveBegin &&
                                  hot[aboveBegin].y + step == hot[begin].y &&
                                  hot[aboveBegin].x % step == hot[begin].x % step;
        std::size_t above = touchesAbove ? aboveBegin : aboveEnd;
        for (std::size_t i = begin; i < end; ++i) {
            if (i > begin && hot[i - 1].x + step == hot[i].x) {
                sets.join(i - 1, i);
            }
            while (above < aboveEnd && hot[above].x + step < hot[i].x) {
                ++above;
            }
            for (std::size_t j = above; j < aboveEnd && hot[j].x <= hot[i].x + step; ++j) {
                sets.join(j, i);
            }
        }
        aboveBegin = begin;
        aboveEnd = end;
        begin = end;
    }
}

void add(PixelCluster& cluster, const PixelPosition& pixel)
{
    if (cluster.pixels == 0) {
        cluster = {0, pixel.x, pixel.y, pixel.x, pixel.y};
    }
    ++cluster.pixels;
    cluster.left = std::min(cluster.left, pixel.x);
    cluster.top = std::min(cluster.top, pixel.y);
    cluster.right = std::max(cluster.right, pixel.x);
    cluster.bottom = std::max(cluster.bottom, pixel.y);
}

} // namespace

std::uint64_t PixelClusters::pixels() const
{
    return static_cast<std::uint64_t>(std::ranges::count(isClustered, true));
}

PixelClusters darkframes::findClusters(std::span<const PixelPosition> hot, const Mosaic& mosaic)
{
    DisjointSets sets(hot.size());
    joinNeighbours(hot, mosaic.step(), sets);

    constexpr std::uint32_t Alone = 0xFFFFFFFF;
    std::vector<std::uint32_t> sizes(hot.size());
    for (std::size_t i = 0; i < hot.size(); ++i) {
        ++sizes[sets.find(i)];
    }
    PixelClusters found;
    found.isClustered.resize(hot.size());
    std::vector<std::uint32_t> numbers(hot.size(), Alone);
    for (std::size_t i = 0; i < hot.size(); ++i) {
        const std::uint32_t root = sets.find(i);
        if (sizes[root] < 2) {
            continue;
        }
        if (numbers[root] == Alone) {
            numbers[root] = static_cast<std::uint32_t>(found.clusters.size());
            found.clusters.emplace_back();
        }
        found.isClustered[i] = true;
        add(found.clusters[numbers[root]], hot[i]);
    }
    std::ranges::sort(found.clusters, [](const PixelCluster& a, const PixelCluster& b) {
        return std::tie(b.pixels, a.top, a.left, a.bottom, a.right) <
               std::tie(a.pixels, b.top, b.left, b.bottom, b.right);
    });
    return found;
}
