// SPDX-License-Identifier: MIT
// What holds for the writers of all formats.

#include "pixellists/PixelListError.h"
#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

namespace {

PixelList ofClass(PixelListClass listClass, int count)
{
    PixelList pixels;
    for (int i = 0; i < count; ++i) {
        pixels.push_back({.x = static_cast<std::uint16_t>(i + 1), .y = 1, .listClass = listClass});
    }
    return pixels;
}

PixelList operator+(PixelList one, const PixelList& other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

PixelListWriteOptions sized(int width, int height)
{
    return {.size = {width, height}, .suffix = {}, .camera = {}};
}

} // namespace

TEST(WritingAList, SaysHowManyEntriesLoseTheirClass)
{
    const PixelList pixels = ofClass(PixelListClass::Factory, 12) +
                             ofClass(PixelListClass::User, 3) + ofClass(PixelListClass::Ignored, 1);
    const PixelListContent content = contentOf("csv", pixels);
    EXPECT_EQ(content.losses,
              (QStringList{QStringLiteral("12 factory entries have no class in this format"),
                           QStringLiteral("1 ignored entry has no class in this format")}));
    EXPECT_EQ(content.written, 16U);
    EXPECT_EQ(content.bytes.count('\n'), 17);
}

TEST(WritingAList, LeavesOutAndCountsWhatIsNoUserEntryInFilesOfThisProgram)
{
    const PixelList pixels = ofClass(PixelListClass::Factory, 2) +
                             ofClass(PixelListClass::Ignored, 1) +
                             ofClass(PixelListClass::User, 1) + ofClass(PixelListClass::None, 2);
    const PixelListContent content = contentOf("editor", pixels);
    EXPECT_EQ(content.losses,
              QStringList(QStringLiteral("3 factory and ignored entries left out, since list "
                                         "files hold user entries only")));
    EXPECT_EQ(content.written, 3U);
    EXPECT_EQ(content.bytes.count('\n'), 3);
}

TEST(WritingAList, LeavesOutAndCountsWhatLiesOutsideOfTheSensor)
{
    const PixelList pixels =
        pixelsAt({{1279, 959}, {1280, 959}, {1279, 960}, {65535, 65535}, {0, 0}});
    for (const char* format :
         {"editor", "csv", "dcraw", "rawtherapee", "siril", "phd2", "mlvapp", "imperx", "fixpix"}) {
        const PixelListContent content = contentOf(format, pixels, sized(1280, 960));
        EXPECT_EQ(content.losses, QStringList(QStringLiteral("3 outside 1280 × 960 left out")))
            << format;
        EXPECT_EQ(content.written, 2U) << format;
        EXPECT_EQ(readText(format, content.bytes).pixels.size(), 2U) << format;
    }
    EXPECT_EQ(contentOf("kstars", pixels, sized(1280, 960)).written, 2U);
}

TEST(WritingAList, ForAReaderThatChecksNoBoundsNeedsTheSize)
{
    for (const char* format : {"rawtherapee", "siril"}) {
        EXPECT_THROW(contentOf(format, pixelsAt({{1, 1}})), PixelListError) << format;
    }
    for (const char* format :
         {"editor", "csv", "dcraw", "phd2", "kstars", "mlvapp", "imperx", "fixpix"}) {
        EXPECT_EQ(contentOf(format, pixelsAt({{1, 1}})).written, 1U) << format;
    }
}

TEST(WritingAList, SaysHowManyColdPixelsAndValuesAreLost)
{
    const PixelList pixels{{.x = 1, .y = 1, .defect = PixelDefect::Cold, .value = 3.0F},
                           {.x = 2, .y = 1, .defect = PixelDefect::Hot, .value = 200.0F}};
    EXPECT_EQ(
        contentOf("dcraw", pixels).losses,
        (QStringList{QStringLiteral("1 cold pixel can't be told from hot ones in this format"),
                     QStringLiteral("2 values have no place in this format")}));
    EXPECT_EQ(contentOf("siril", pixels, sized(9, 9)).losses,
              QStringList(QStringLiteral("2 values have no place in this format")));
    EXPECT_TRUE(contentOf("kstars", pixels).losses.isEmpty());
}

TEST(WritingAList, MovesPixelsAndCountsThoseThatLeave)
{
    PixelList pixels = pixelsAt({{0, 5}, {10, 5}, {65535, 5}, {10, 0}});
    QStringList losses;
    pixellists::movePixels(pixels, {-10, 3}, losses);
    EXPECT_EQ(pixels, pixelsAt({{0, 8}, {65525, 8}, {0, 3}}));
    EXPECT_EQ(losses,
              QStringList(QStringLiteral("1 outside the sensor after the offset left out")));
    losses.clear();
    pixellists::movePixels(pixels, {2147483647, -2147483647}, losses);
    EXPECT_TRUE(pixels.empty());
    EXPECT_EQ(losses,
              QStringList(QStringLiteral("3 outside the sensor after the offset left out")));
    pixels = pixelsAt({{65525, 7}});
    losses.clear();
    pixellists::movePixels(pixels, {10, 0}, losses);
    EXPECT_EQ(pixels, pixelsAt({{65535, 7}}));
    EXPECT_TRUE(losses.isEmpty());
}
