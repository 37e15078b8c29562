// SPDX-License-Identifier: MIT
// What was written comes back as it was, for random lists.

#include "pixellists/Mask.h"
#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace {

class EveryTextFormat : public testing::TestWithParam<std::uint32_t>
{};

bool isBefore(const ListedPixel& one, const ListedPixel& other)
{
    return std::tuple(one.defect, one.y, one.x, one.value) <
           std::tuple(other.defect, other.y, other.x, other.value);
}

} // namespace

TEST_P(EveryTextFormat, GivesBackTheListThatItWasGiven)
{
    const std::uint32_t seed = GetParam();
    const QSize size = seed % 2 == 0 ? QSize(65536, 65536) : QSize(1280, 960);
    for (const PixelListFormat& format : pixellists::allFormats()) {
        if (format.isImage()) {
            continue;
        }
        const QByteArray name = format.name.toLatin1();
        PixelList pixels = randomPixels(seed, 10 + 100 * seed, size, format);
        const PixelListContent content =
            contentOf(name.constData(), pixels, {.size = size, .suffix = {}, .camera = {}});
        EXPECT_EQ(content.written, pixels.size()) << name.constData();
        PixelListReading reading = readText(name.constData(), content.bytes);
        EXPECT_TRUE(reading.notes.isEmpty()) << name.constData();
        // These two have an order of their own.
        if (name == "imperx" || name == "kstars") {
            std::ranges::stable_sort(pixels, isBefore);
            std::ranges::stable_sort(reading.pixels, isBefore);
        }
        if (name == "kstars") {
            // Hot ones that are darker than the greatest cold one are raised to it.
            float least = 0;
            for (const ListedPixel& pixel : pixels) {
                least = pixel.defect == PixelDefect::Cold ? std::max(least, *pixel.value) : least;
            }
            for (ListedPixel& pixel : pixels) {
                pixel.value =
                    pixel.defect == PixelDefect::Hot ? std::max(least, *pixel.value) : *pixel.value;
            }
            std::ranges::stable_sort(pixels, isBefore);
        }
        EXPECT_EQ(reading.pixels, pixels) << name.constData();
    }
}

TEST_P(EveryTextFormat, HasAMaskThatGivesBackTheSamePlaces)
{
    const QSize size(97, 61);
    const PixelListFormat& format = *pixellists::formatNamed(QStringLiteral("csv"));
    const PixelList pixels = randomPixels(GetParam(), 500, size, format);
    std::set<std::pair<int, int>> places;
    for (const ListedPixel& pixel : pixels) {
        places.insert({pixel.y, pixel.x});
    }
    const MaskContent content = pixellists::maskOf(pixels, size);
    EXPECT_EQ(content.written, places.size());
    std::set<std::pair<int, int>> found;
    for (const ListedPixel& pixel : pixellists::pixelsOfMask(content.mask)) {
        found.insert({pixel.y, pixel.x});
    }
    EXPECT_EQ(found, places);
}

INSTANTIATE_TEST_SUITE_P(OfRandomLists, EveryTextFormat, testing::Range(0U, 20U));
