// SPDX-License-Identifier: MIT
#include "darkframes/Mosaic.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

QStringList names(const Mosaic& mosaic)
{
    QStringList names;
    for (const SensorPlane& plane : mosaic.planes()) {
        names.append(plane.name);
    }
    return names;
}

} // namespace

TEST(Mosaic, GoesThroughThePlanesColumnByColumn)
{
    std::vector<std::pair<unsigned, unsigned>> starts;
    for (const SensorPlane& plane : Mosaic::bayer().planes()) {
        EXPECT_EQ(plane.step, 2U);
        starts.emplace_back(plane.x, plane.y);
    }
    EXPECT_EQ(starts, (std::vector<std::pair<unsigned, unsigned>>{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(Mosaic::mono().planes().size(), 1U);
}

TEST(Mosaic, NamesPlanesByTheirColours)
{
    EXPECT_EQ(names(Mosaic::mono()), QStringList{"all"});
    EXPECT_EQ(names(Mosaic::bayer()), (QStringList{"x0y0", "x0y1", "x1y0", "x1y1"}));
    // Green beside red, and green beside blue.
    EXPECT_EQ(names(*Mosaic::fromColours("RGGB")), (QStringList{"R", "Gb", "Gr", "B"}));
    EXPECT_EQ(names(*Mosaic::fromColours("GRBG")), (QStringList{"Gr", "B", "R", "Gb"}));
    EXPECT_EQ(names(*Mosaic::fromColours("GBRG")), (QStringList{"Gb", "R", "B", "Gr"}));
    EXPECT_EQ(names(*Mosaic::fromColours("BGGR")), (QStringList{"B", "Gr", "Gb", "R"}));
    EXPECT_EQ(names(*Mosaic::fromColours("RGEB")), (QStringList{"R", "E", "G", "B"}));
}

TEST(Mosaic, KnowsNoPatternOfOtherLetters)
{
    for (const char* colours : {"", "RGG", "RGGBX", "RGGX", "rggb", "TRUE"}) {
        EXPECT_FALSE(Mosaic::fromColours(colours)) << colours;
    }
}

TEST(Mosaic, KnowsThePlaneOfEachPixel)
{
    for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
        const auto planes = mosaic.planes();
        for (unsigned x = 0; x < 4; ++x) {
            for (unsigned y = 0; y < 4; ++y) {
                const SensorPlane& plane = planes[mosaic.planeOf(x, y)];
                EXPECT_EQ(x % plane.step, plane.x);
                EXPECT_EQ(y % plane.step, plane.y);
            }
        }
    }
}

TEST(Mosaic, HasAllPixelsOfOddSizesInItsPlanes)
{
    const auto planes = Mosaic::bayer().planes();
    unsigned pixels = 0;
    for (const SensorPlane& plane : planes) {
        pixels += plane.columns(7) * plane.rows(5);
    }
    EXPECT_EQ(pixels, 35U);
    EXPECT_EQ(planes[3].columns(1), 0U);
    EXPECT_EQ(planes[3].rows(1), 0U);
}
