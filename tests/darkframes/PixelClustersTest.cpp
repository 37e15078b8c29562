// SPDX-License-Identifier: MIT
#include "darkframes/PixelClusters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <tuple>

namespace {

/// The hot pixels of a drawing, '#' is one, in the order of a search.
std::vector<PixelPosition> hotPixels(const std::vector<std::string>& rows, const Mosaic& mosaic)
{
    std::vector<PixelPosition> hot;
    for (const SensorPlane& plane : mosaic.planes()) {
        for (std::size_t y = plane.y; y < rows.size(); y += plane.step) {
            for (std::size_t x = plane.x; x < rows[y].size(); x += plane.step) {
                if (rows[y][x] == '#') {
                    hot.push_back({std::uint16_t(x), std::uint16_t(y)});
                }
            }
        }
    }
    return hot;
}

using Box = std::tuple<unsigned, int, int, int, int>;

std::vector<Box> boxes(const PixelClusters& clusters)
{
    std::vector<Box> result;
    for (const PixelCluster& cluster : clusters.clusters) {
        result.emplace_back(cluster.pixels, cluster.left, cluster.top, cluster.right,
                            cluster.bottom);
    }
    return result;
}

std::vector<Box> clustersOf(const std::vector<std::string>& rows, const Mosaic& mosaic)
{
    return boxes(darkframes::findClusters(hotPixels(rows, mosaic), mosaic));
}

/// By filling from each pixel that was not reached yet.
std::vector<Box> clustersByFilling(const std::vector<PixelPosition>& hot, int step)
{
    std::set<std::pair<int, int>> left;
    for (const PixelPosition& pixel : hot) {
        left.emplace(pixel.y, pixel.x);
    }
    std::vector<Box> result;
    while (!left.empty()) {
        std::vector<std::pair<int, int>> reached{*left.begin()};
        left.erase(left.begin());
        for (std::size_t i = 0; i < reached.size(); ++i) {
            for (const int dy : {-step, 0, step}) {
                for (const int dx : {-step, 0, step}) {
                    const auto found = left.find({reached[i].first + dy, reached[i].second + dx});
                    if (found != left.end()) {
                        reached.push_back(*found);
                        left.erase(found);
                    }
                }
            }
        }
        if (reached.size() > 1) {
            const auto byX = [](const auto& a, const auto& b) { return a.second < b.second; };
            const auto [minX, maxX] = std::minmax_element(reached.begin(), reached.end(), byX);
            const auto [minY, maxY] = std::minmax_element(reached.begin(), reached.end());
            result.emplace_back(reached.size(), minX->second, minY->first, maxX->second,
                                maxY->first);
        }
    }
    std::ranges::sort(result);
    return result;
}

} // namespace

TEST(PixelClusters, AreNeighboursInRowsColumnsAndDiagonals)
{
    EXPECT_EQ(
        clustersOf(
            {"##......", ".....#..", ".#...#..", "........", "#......#", ".#....#.", "..#....."},
            Mosaic::mono()),
        (std::vector<Box>{{3, 0, 4, 2, 6}, {2, 0, 0, 1, 0}, {2, 5, 1, 5, 2}, {2, 6, 4, 7, 5}}));
}

TEST(PixelClusters, TouchTheNextPixelOfTheSameColourOnBayerSensors)
{
    // Beside each other they are of different colours.
    EXPECT_TRUE(clustersOf({"##..", "##..", "....", "...."}, Mosaic::bayer()).empty());
    EXPECT_EQ(clustersOf({"#.#.", "....", "....", "...."}, Mosaic::bayer()),
              (std::vector<Box>{{2, 0, 0, 2, 0}}));
    EXPECT_EQ(clustersOf({"....", "...#", "....", ".#.."}, Mosaic::bayer()),
              (std::vector<Box>{{2, 1, 1, 3, 3}}));
    EXPECT_TRUE(clustersOf({"#...", "....", "....", ".#.#"}, Mosaic::bayer()) ==
                (std::vector<Box>{{2, 1, 3, 3, 3}}));
    EXPECT_TRUE(clustersOf({"#....", ".....", ".....", ".....", "....#"}, Mosaic::bayer()).empty());
}

// With nothing hot in the plane between, the last row of one and the first of the next follow each
// other.
TEST(PixelClusters, DoNotReachIntoTheSameRowOfAnotherPlane)
{
    EXPECT_EQ(clustersOf({"....#.", "......", "..#..#"}, Mosaic::bayer()),
              (std::vector<Box>{{2, 2, 0, 4, 2}}));
}

TEST(PixelClusters, DoNotReachAroundTheEndOfARow)
{
    EXPECT_TRUE(clustersOf({"...#", "#..."}, Mosaic::mono()).empty());
    EXPECT_TRUE(clustersOf({"..#.", "....", "#..."}, Mosaic::mono()).empty());
}

TEST(PixelClusters, GrowTogetherWhereTwoPartsMeet)
{
    EXPECT_EQ(clustersOf({"#.#", "#.#", "###"}, Mosaic::mono()),
              (std::vector<Box>{{7, 0, 0, 2, 2}}));
}

TEST(PixelClusters, AreNoneAmongSinglePixels)
{
    const PixelClusters none = darkframes::findClusters({}, Mosaic::mono());
    EXPECT_TRUE(none.clusters.empty());
    EXPECT_EQ(none.pixels(), 0U);
    const auto hot = hotPixels({"#.#", "...", "#.#"}, Mosaic::mono());
    const PixelClusters single = darkframes::findClusters(hot, Mosaic::mono());
    EXPECT_TRUE(single.clusters.empty());
    EXPECT_EQ(single.isClustered, std::vector<bool>(4, false));
}

TEST(PixelClusters, KnowWhichPixelsBelongToThem)
{
    const auto hot = hotPixels({"##..#"}, Mosaic::mono());
    const PixelClusters clusters = darkframes::findClusters(hot, Mosaic::mono());
    EXPECT_EQ(clusters.isClustered, (std::vector<bool>{true, true, false}));
    EXPECT_EQ(clusters.pixels(), 2U);
}

TEST(PixelClusters, AreWhatFillingFinds)
{
    std::mt19937 numbers(1);
    for (int round = 0; round < 200; ++round) {
        const std::size_t width = 1 + numbers() % 24;
        const std::size_t height = 1 + numbers() % 24;
        const std::size_t rarity = 2 + numbers() % 6;
        std::vector<std::string> rows(height, std::string(width, '.'));
        for (std::string& row : rows) {
            for (char& pixel : row) {
                pixel = numbers() % rarity == 0 ? '#' : '.';
            }
        }
        for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
            const auto hot = hotPixels(rows, mosaic);
            const PixelClusters clusters = darkframes::findClusters(hot, mosaic);
            std::vector<Box> found = boxes(clusters);
            EXPECT_TRUE(std::ranges::is_sorted(found, std::greater<>(),
                                               [](const Box& box) { return std::get<0>(box); }));
            std::ranges::sort(found);
            EXPECT_EQ(found, clustersByFilling(hot, int(mosaic.step())));
        }
    }
}
