// SPDX-License-Identifier: MIT
#include "darkframes/HotPixelSearch.h"

#include "darkframes/Survey.h"
#include "tests/darkframes/ReferenceStatistics.h"
#include "tests/darkframes/TestFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using Positions = std::vector<std::pair<int, int>>;

Positions positions(std::span<const PixelPosition> pixels)
{
    Positions result;
    for (const PixelPosition& pixel : pixels) {
        result.emplace_back(pixel.x, pixel.y);
    }
    return result;
}

Positions hotByReference(const TestFrames& frames, const Mosaic& mosaic, int threshold)
{
    Positions found;
    for (const SensorPlane& plane : mosaic.planes()) {
        const Positions inPlane =
            reference::hotPixels(frames, {int(plane.x), int(plane.y), int(plane.step)}, threshold);
        found.insert(found.end(), inPlane.begin(), inPlane.end());
    }
    return found;
}

Findings search(const TestFrames& frames, const Mosaic& mosaic, const HotRule& rule)
{
    const DarkStack stack = frames.stack();
    return Findings::of(stack, Survey::of(stack, mosaic), rule);
}

/// Grey levels of one pixel amid others of level 20, over three frames.
Findings searchOnePixel(std::array<int, 3> values, std::uint32_t threshold)
{
    return search(TestFrames::of(8, 8, 8, 3,
                                 [&](int frame, int x, int y) {
                                     return x == 5 && y == 2 ? values[std::size_t(frame)] : 20;
                                 }),
                  Mosaic::mono(), {threshold, std::nullopt});
}

} // namespace

TEST(HotPixelSearch, FindsWhatThePlainRuleFinds)
{
    for (const int bits : {8, 16}) {
        const int scale = bits == 16 ? 256 : 1;
        const std::vector<TestFrames> all{
            TestFrames::dark(64, 48, bits, 10, 1),  TestFrames::dark(63, 47, bits, 7, 2),
            TestFrames::dark(31, 1, bits, 3, 3),    TestFrames::dark(1, 31, bits, 3, 4),
            TestFrames::random(16, 16, bits, 2, 5), TestFrames::random(40, 10, bits, 300, 6)};
        for (const TestFrames& frames : all) {
            for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
                for (const int threshold : {0, 5 * scale, 40 * scale, 255 * scale}) {
                    EXPECT_EQ(
                        positions(search(frames, mosaic, {std::uint32_t(threshold), std::nullopt})
                                      .pixels.hot),
                        hotByReference(frames, mosaic, threshold));
                }
            }
        }
    }
}

TEST(HotPixelSearch, CutsMeansToWholeNumbersBeforeItCompares)
{
    // The mean of the plane is 20, so 60 is the limit. 182 / 3 is 60 when it is cut, 183 / 3 is 61.
    EXPECT_TRUE(searchOnePixel({60, 61, 61}, 40).pixels.hot.empty());
    EXPECT_EQ(positions(searchOnePixel({61, 61, 61}, 40).pixels.hot), (Positions{{5, 2}}));
}

TEST(HotPixelSearch, FindsPixelsOnEdgesAndCornersOnce)
{
    const auto isHot = [](int x, int y) {
        return (x == 0 || x == 8) && (y == 0 || y == 6 || y == 3);
    };
    for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
        Positions found = positions(
            search(TestFrames::of(9, 7, 8, 2,
                                  [&](int, int x, int y) { return isHot(x, y) ? 255 : 9; }),
                   mosaic, {40, std::nullopt})
                .pixels.hot);
        std::ranges::sort(found);
        EXPECT_EQ(found, (Positions{{0, 0}, {0, 3}, {0, 6}, {8, 0}, {8, 3}, {8, 6}}));
    }
}

TEST(HotPixelSearch, GoesThroughPlanesInTheirOrder)
{
    const Positions found = positions(
        search(TestFrames::of(8, 8, 8, 1,
                              [](int, int x, int y) { return x / 2 == 1 && y / 2 == 1 ? 200 : 5; }),
               Mosaic::bayer(), {40, std::nullopt})
            .pixels.hot);
    EXPECT_EQ(found, (Positions{{2, 2}, {2, 3}, {3, 2}, {3, 3}}));
}

TEST(HotPixelSearch, FindsFlickeringPixelsWhoseMeanIsCold)
{
    const Findings flickering = searchOnePixel({20, 61, 20}, 40);
    EXPECT_TRUE(flickering.pixels.hot.empty());
    EXPECT_EQ(positions(flickering.pixels.flickering), (Positions{{5, 2}}));
    // Exactly at the limit.
    EXPECT_TRUE(searchOnePixel({20, 60, 20}, 40).pixels.flickering.empty());
    // Hot in the mean.
    EXPECT_TRUE(searchOnePixel({20, 255, 61}, 40).pixels.flickering.empty());
}

TEST(HotPixelSearch, ComparesWithRobustDeviationsWithoutCutting)
{
    // Levels 10 to 18: median 14, median distance 2; one pixel more does not change them much.
    const TestFrames frames = TestFrames::of(
        9, 9, 8, 2, [](int frame, int x, int y) { return x == 4 && y == 4 ? 22 + frame : 10 + x; });
    const double deviation = 1.4826 * 2;
    const double pixel = 22.5;
    const double factor = (pixel - 14) / deviation;
    EXPECT_EQ(positions(search(frames, Mosaic::mono(), {0, factor - 1e-9}).pixels.hot),
              (Positions{{4, 4}}));
    EXPECT_TRUE(search(frames, Mosaic::mono(), {0, factor + 1e-9}).pixels.hot.empty());
}

TEST(HotPixelSearch, FindsByDeviationsWhatThePlainRuleFinds)
{
    for (const int bits : {8, 16}) {
        const TestFrames frames = TestFrames::dark(60, 40, bits, 5, 7);
        const DarkStack stack = frames.stack();
        for (const double factor : {0.5, 1.0, 3.0, 6.5, 1e6, 1e300}) {
            Positions expected;
            for (const SensorPlane& plane : Mosaic::bayer().planes()) {
                const reference::Statistics statistics =
                    reference::statistics(frames, {int(plane.x), int(plane.y), int(plane.step)});
                for (int y = int(plane.y); y < 40; y += 2) {
                    for (int x = int(plane.x); x < 60; x += 2) {
                        double mean = 0;
                        for (std::size_t frame = 0; frame < 5; ++frame) {
                            mean += frames.at(frame, x, y) / 5.0;
                        }
                        if (mean > *statistics.median + factor * *statistics.robustDeviation) {
                            expected.emplace_back(x, y);
                        }
                    }
                }
            }
            EXPECT_EQ(positions(search(frames, Mosaic::bayer(), {0, factor}).pixels.hot), expected)
                << factor;
        }
    }
}

TEST(HotPixelSearch, FindsNothingWhereAllPixelsAreAlike)
{
    for (const int value : {0, 11, 255}) {
        const TestFrames frames = TestFrames::of(6, 6, 8, 3, [&](int, int, int) { return value; });
        for (const HotRule& rule : {HotRule{0, std::nullopt}, HotRule{0, 3.0}}) {
            const Findings findings = search(frames, Mosaic::bayer(), rule);
            EXPECT_TRUE(findings.pixels.hot.empty());
            EXPECT_TRUE(findings.pixels.flickering.empty());
        }
    }
}

TEST(Survey, CountsForEachThresholdWhatASearchWithItFinds)
{
    for (const int bits : {8, 16}) {
        const TestFrames frames = TestFrames::dark(51, 37, bits, 4, 8);
        const DarkStack stack = frames.stack();
        for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
            const Survey survey = Survey::of(stack, mosaic);
            for (std::uint32_t level = 5; level <= 255; level += 5) {
                const std::uint32_t threshold = level * darkframes::levelScale(std::uint32_t(bits));
                const Findings findings = Findings::of(stack, survey, {threshold, std::nullopt});
                EXPECT_EQ(survey.countAbove(survey.planes.front(), threshold),
                          findings.pixels.hot.size());
                for (const PlaneStatistics& plane : survey.searchPlanes()) {
                    const auto inPlane =
                        std::ranges::count_if(findings.pixels.hot, [&](const PixelPosition& pixel) {
                            return pixel.x % plane.plane.step == plane.plane.x &&
                                   pixel.y % plane.plane.step == plane.plane.y;
                        });
                    EXPECT_EQ(survey.countAbove(plane, threshold), std::uint64_t(inPlane));
                }
            }
        }
    }
}

namespace {

/// A hundred pixels of level 10 and one each of 60, 70, 80 and 90.
TestFrames fourHotPixels()
{
    return TestFrames::of(13, 8, 8, 2,
                          [](int, int x, int y) { return y == 7 && x < 4 ? 60 + 10 * x : 10; });
}

std::optional<FillingThreshold> filling(std::uint64_t room, std::vector<PixelPosition> known = {},
                                        std::uint32_t least = 5, std::uint32_t greatest = 255)
{
    const DarkStack stack = fourHotPixels().stack();
    const Survey survey = Survey::of(stack, Mosaic::mono());
    return darkframes::fillingThreshold(stack, survey.searchPlanes(), known, room, least, greatest);
}

} // namespace

TEST(FillingThreshold, IsTheLeastThatFindsNoMoreThanThereIsRoomFor)
{
    // The mean of all is 12.5, cut to 12: the pixels lie 48, 58, 68 and 78 above it.
    const auto two = filling(2);
    ASSERT_TRUE(two);
    EXPECT_EQ(two->threshold, 58U);
    EXPECT_EQ(two->found, 2U);
    const auto none = filling(0);
    ASSERT_TRUE(none);
    EXPECT_EQ(none->threshold, 78U);
    EXPECT_EQ(none->found, 0U);
}

TEST(FillingThreshold, IsTheLeastThereIsWhereEverythingFits)
{
    const auto all = filling(1000);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->threshold, 5U);
    EXPECT_EQ(all->found, 4U);
}

TEST(FillingThreshold, LeavesOutWhatIsKnown)
{
    const auto two = filling(2, {{3, 7}, {0, 0}, {13, 7}, {60000, 60000}});
    ASSERT_TRUE(two);
    EXPECT_EQ(two->threshold, 48U);
    EXPECT_EQ(two->found, 2U);
}

TEST(FillingThreshold, IsMissingWhereNoneFindsSoFew)
{
    EXPECT_FALSE(filling(1, {}, 5, 60));
    EXPECT_TRUE(filling(2, {}, 5, 60));
}

TEST(FillingThreshold, FindsExactlyWhatItSays)
{
    for (const int bits : {8, 16}) {
        const std::uint32_t scale = darkframes::levelScale(std::uint32_t(bits));
        const TestFrames frames = TestFrames::dark(61, 53, bits, 6, 9);
        const DarkStack stack = frames.stack();
        for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
            const Survey survey = Survey::of(stack, mosaic);
            for (const std::uint64_t room : {1U, 7U, 20U, 33U}) {
                const auto found = darkframes::fillingThreshold(stack, survey.searchPlanes(), {},
                                                                room, 5 * scale, 255 * scale);
                ASSERT_TRUE(found);
                const auto hotAt = [&](std::uint32_t threshold) {
                    return Findings::of(stack, survey, {threshold, std::nullopt}).pixels.hot.size();
                };
                EXPECT_EQ(hotAt(found->threshold), found->found);
                EXPECT_LE(found->found, room);
                if (found->threshold > 5 * scale) {
                    EXPECT_GT(hotAt(found->threshold - 1), room);
                }
            }
        }
    }
}
