// SPDX-License-Identifier: MIT
#include "darkframes/FoundPixels.h"

#include "tests/darkframes/TestFrames.h"

#include <gtest/gtest.h>

namespace {

/// Hot at (2, 0), (4, 0) and (7, 3), flickering at (5, 1).
std::vector<FoundPixel> found(std::span<const PixelPosition> factory,
                              std::span<const PixelPosition> user)
{
    const DarkStack stack = TestFrames::of(16, 12, 8, 2, [](int frame, int x, int y) {
                                if (y == 0 && (x == 2 || x == 4)) {
                                    return 100 + frame;
                                }
                                if (x == 7 && y == 3) {
                                    return 200;
                                }
                                return x == 5 && y == 1 ? 10 + frame * 60 : 10;
                            }).stack();
    const Survey survey = Survey::of(stack, *Mosaic::fromColours("RGGB"));
    const Findings findings = Findings::of(stack, survey, {40, std::nullopt});
    return darkframes::foundPixels(stack, survey, findings, factory, user);
}

} // namespace

TEST(FoundPixels, AreMeasured)
{
    const auto pixels = found({}, {});
    ASSERT_EQ(pixels.size(), 4U);
    EXPECT_EQ(pixels[0].position, (PixelPosition{2, 0}));
    EXPECT_EQ(pixels[0].plane.name, "R");
    EXPECT_EQ(pixels[0].mean, 100.5);
    EXPECT_DOUBLE_EQ(pixels[0].temporalNoise, std::sqrt(0.5));
    EXPECT_EQ(pixels[0].greatest, 101);
    EXPECT_EQ(pixels[0].foundClass, FoundClass::New);
    EXPECT_TRUE(pixels[0].isClustered);
    EXPECT_EQ(pixels[2].plane.name, "B");
    EXPECT_FALSE(pixels[2].isClustered);
    EXPECT_EQ(pixels[3].position, (PixelPosition{5, 1}));
    EXPECT_EQ(pixels[3].foundClass, FoundClass::Flickering);
}

TEST(FoundPixels, KnowWhatTheListsHold)
{
    const std::vector<PixelPosition> factory{{7, 3}, {1, 1}, {60000, 60000}};
    const std::vector<PixelPosition> user{{5, 1}, {2, 0}, {7, 3}};
    const auto pixels = found(factory, user);
    ASSERT_EQ(pixels.size(), 4U);
    EXPECT_EQ(pixels[0].foundClass, FoundClass::User);
    EXPECT_EQ(pixels[1].foundClass, FoundClass::New);
    EXPECT_EQ(pixels[2].foundClass, FoundClass::Factory);
    EXPECT_EQ(pixels[3].foundClass, FoundClass::User);
}

TEST(PixelsNotFound, AreThoseOfAListThatAreNotHot)
{
    const DarkStack stack =
        TestFrames::of(16, 12, 8, 2, [](int frame, int x, int y) {
            return x == 5 && y == 1 ? 10 + frame * 60 : (x == 7 && y == 3 ? 200 : 10);
        }).stack();
    const Survey survey = Survey::of(stack, *Mosaic::fromColours("RGGB"));
    const Findings findings = Findings::of(stack, survey, {40, std::nullopt});
    // Hot, flickering, not hot and there twice, beside the sensor and below it.
    const std::vector<PixelPosition> listed{{7, 3}, {5, 1},  {4, 4}, {0, 1},
                                            {4, 4}, {16, 3}, {3, 12}};
    const auto pixels = darkframes::pixelsNotFound(stack, survey, findings, listed);
    ASSERT_EQ(pixels.size(), 2U);
    EXPECT_EQ(pixels[0].position, (PixelPosition{4, 4}));
    EXPECT_EQ(pixels[0].mean, 10);
    EXPECT_EQ(pixels[0].foundClass, FoundClass::NotHot);
    EXPECT_EQ(darkframes::className(pixels[0].foundClass), QStringLiteral("not hot"));
    EXPECT_EQ(pixels[1].position, (PixelPosition{0, 1}));
}

TEST(FoundPixels, AreATableForOtherPrograms)
{
    EXPECT_EQ(darkframes::foundPixelsCsv(found({}, std::vector<PixelPosition>{{4, 0}})),
              "x,y,plane,mean,temporalNoise,greatest,class\n"
              "2,0,R,100.5,0.7071067812,101,new\n"
              "4,0,R,100.5,0.7071067812,101,user\n"
              "7,3,B,200,0,200,new\n"
              "5,1,B,40,42.42640687,70,flickering\n");
    EXPECT_EQ(darkframes::foundPixelsCsv({}), "x,y,plane,mean,temporalNoise,greatest,class\n");
}
