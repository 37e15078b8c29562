// SPDX-License-Identifier: MIT
#include "simulator/TestScene.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

std::vector<std::uint8_t> row(const TestScene& scene, int y, std::uint64_t frame, int width)
{
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width));
    scene.copyRow(y, frame, pixels.data());
    return pixels;
}

TEST(TestScene, HasManyLevelsAndFineDetail)
{
    const TestScene scene(640, 480, false, QStringLiteral("VC-1 0123456789"));
    std::set<std::uint8_t> levels;
    int edges = 0;
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            levels.insert(scene.reflectance(x, y, 0));
            edges +=
                x > 0 && std::abs(scene.reflectance(x, y, 0) - scene.reflectance(x - 1, y, 0)) > 100
                    ? 1
                    : 0;
        }
    }
    EXPECT_GT(levels.size(), 150U);
    EXPECT_GT(edges, 2000);
}

TEST(TestScene, AMosaicSeesItsThreeColours)
{
    const TestScene bayer(640, 480, true, QStringLiteral("X"));
    const TestScene mono(640, 480, false, QStringLiteral("X"));
    // A red patch: the third of the third row.
    const int x = 640 * 260 / 1000 / 2 * 2;
    const int y = 480 * 290 / 1000 / 2 * 2;
    EXPECT_EQ(bayer.reflectance(x, y, 0), 175);
    EXPECT_EQ(bayer.reflectance(x + 1, y, 0), 50);
    EXPECT_EQ(bayer.reflectance(x, y + 1, 0), 50);
    EXPECT_EQ(bayer.reflectance(x + 1, y + 1, 0), 55);
    EXPECT_EQ(mono.reflectance(x, y, 0), mono.reflectance(x + 1, y + 1, 0));
}

TEST(TestScene, ARowIsWhatItsPixelsAre)
{
    const TestScene scene(101, 200, true, QStringLiteral("X"));
    for (const std::uint64_t frame : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{12345}}) {
        for (const int y : {0, 100, 187, 195, 199}) {
            const std::vector<std::uint8_t> pixels = row(scene, y, frame, 101);
            for (int x = 0; x < 101; ++x) {
                ASSERT_EQ(pixels[static_cast<std::size_t>(x)], scene.reflectance(x, y, frame));
            }
        }
    }
}

TEST(TestScene, OnlyTheBandMoves)
{
    const TestScene scene(320, 200, true, QStringLiteral("X"));
    for (int y = 0; y < 200; ++y) {
        const bool inBand = y >= 186 && y < 196;
        EXPECT_EQ(row(scene, y, 0, 320) != row(scene, y, 1, 320), inBand) << "line " << y;
    }
}

TEST(TestScene, FitsOnEverySensor)
{
    for (const int width : {4, 5, 17}) {
        for (const int height : {4, 7, 30}) {
            const TestScene scene(width, height, true, QStringLiteral("ABC-123 xyz \u00e9"));
            EXPECT_EQ(row(scene, height - 1, 3, width).size(), static_cast<std::size_t>(width));
        }
    }
}

} // namespace
