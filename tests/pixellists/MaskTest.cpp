// SPDX-License-Identifier: MIT
#include "pixellists/Mask.h"

#include "pixellists/PixelListError.h"
#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

namespace {

Mask small()
{
    return {{3, 2}, QByteArray("\0\x01\0\xff\0\x01", 6)};
}

} // namespace

TEST(Masks, AreBadWhereTheyAreNotZero)
{
    EXPECT_EQ(pixellists::pixelsOfMask(small()), pixelsAt({{1, 0}, {0, 1}, {2, 1}}));
}

TEST(Masks, AreBadWhereTheyHaveTheValueThatWasTold)
{
    EXPECT_EQ(pixellists::pixelsOfMask(small(), 1), pixelsAt({{1, 0}, {2, 1}}));
    EXPECT_EQ(pixellists::pixelsOfMask(small(), 255), pixelsAt({{0, 1}}));
    EXPECT_EQ(pixellists::pixelsOfMask(small(), 0), pixelsAt({{0, 0}, {2, 0}, {1, 1}}));
}

TEST(Masks, AreWrittenWith255OrTheValueThatWasTold)
{
    const PixelList pixels = pixelsAt({{1, 0}, {2, 1}});
    EXPECT_EQ(pixellists::maskOf(pixels, {3, 2}).mask.pixels, QByteArray("\0\xff\0\0\0\xff", 6));
    EXPECT_EQ(pixellists::maskOf(pixels, {3, 2}, 7).mask.pixels, QByteArray("\0\7\0\0\0\7", 6));
}

TEST(Masks, SayWhatIsNotInThem)
{
    PixelList pixels = pixelsAt({{1, 0}, {1, 0}, {3, 0}, {0, 2}, {1, 0}});
    pixels[0].listClass = PixelListClass::Factory;
    const MaskContent content = pixellists::maskOf(pixels, {3, 2});
    EXPECT_EQ(content.written, 1U);
    EXPECT_EQ(content.losses,
              (QStringList{QStringLiteral("2 outside 3 × 2 left out"),
                           QStringLiteral("1 factory entry has no class in this format"),
                           QStringLiteral("2 listed more than once")}));
}

TEST(Masks, NeedASize)
{
    EXPECT_THROW(pixellists::maskOf(pixelsAt({{1, 0}}), {}), PixelListError);
}

TEST(Masks, TakeNoMemoryForASizeThatNoSensorHas)
{
    EXPECT_THROW(pixellists::maskOf(pixelsAt({{1, 0}}), {65536, 65536}), PixelListError);
}

TEST(Masks, HaveASaneNumberOfBadPixels)
{
    const Mask mask{{4000, 4001}, QByteArray(4000 * 4001, '\1')};
    EXPECT_THROW(pixellists::pixelsOfMask(mask), PixelListError);
    EXPECT_TRUE(pixellists::pixelsOfMask(mask, 2).empty());
}
