// SPDX-License-Identifier: MIT
#include "simulator/PixelCorrection.h"

#include <gtest/gtest.h>

namespace {

using Pixels = std::vector<std::uint8_t>;

Pixels corrected(Pixels pixels, int width, bool bayer, const std::vector<EepromPosition>& listed)
{
    const auto pitch = static_cast<std::size_t>(width);
    simulator::correctPixels(pixels.data(), pitch, width, static_cast<int>(pixels.size() / pitch),
                             bayer, listed);
    return pixels;
}

TEST(PixelCorrection, AMonoPixelBecomesTheMeanOfItsFourNeighbours)
{
    const Pixels image{0,  10,  0,  //
                       20, 255, 31, //
                       0,  40,  0};
    Pixels expected = image;
    expected[4] = 25; // (10 + 20 + 31 + 40) / 4 = 25.25
    EXPECT_EQ(corrected(image, 3, false, {{1, 1}}), expected);
}

TEST(PixelCorrection, ABayerPixelLooksTwoPixelsAway)
{
    Pixels image(25, 200);
    image[2] = 10;
    image[10] = 20;
    image[14] = 30;
    image[22] = 40;
    Pixels expected = image;
    expected[12] = 25;
    EXPECT_EQ(corrected(image, 5, true, {{2, 2}}), expected);
}

TEST(PixelCorrection, AtTheCornerOnlyNeighboursInsideCount)
{
    const Pixels image{255, 10, //
                       21, 0};
    EXPECT_EQ(corrected(image, 2, false, {{0, 0}}), (Pixels{16, 10, 21, 0}));
}

TEST(PixelCorrection, ListedNeighboursDoNotCount)
{
    const Pixels image{255, 250, 50};
    EXPECT_EQ(corrected(image, 3, false, {{0, 0}, {1, 0}}), (Pixels{255, 50, 50}));
}

TEST(PixelCorrection, PositionsOutsideTheImageArePassedOver)
{
    const Pixels image{1, 2, 3, 4};
    EXPECT_EQ(corrected(image, 2, false, {{2, 0}, {0, 2}, {65535, 65535}}), image);
}

TEST(PixelCorrection, WithAnEmptyListNothingChanges)
{
    const Pixels image{1, 2, 3, 4};
    EXPECT_EQ(corrected(image, 2, false, {}), image);
}

} // namespace
