// SPDX-License-Identifier: MIT
#include "view/Rgb32Picture.h"

#include <QList>
#include <gtest/gtest.h>

namespace {

/// An indexed image of 37 x 11 whose bytes run through all values.
QImage indexed(const QList<QRgb>& colors)
{
    QImage image(37, 11, QImage::Format_Indexed8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.scanLine(y)[x] = static_cast<uchar>(7 * (x + 37 * y));
        }
    }
    image.setColorTable(colors);
    return image;
}

TEST(Rgb32Picture, IsWhatTheToolkitMakesOfAnyFormat)
{
    QList<QRgb> greys;
    for (int grey = 0; grey < 256; ++grey) {
        greys.append(qRgb(grey, grey, grey));
    }
    const QList<QRgb> few{qRgb(1, 2, 3), qRgba(9, 8, 7, 100), qRgb(255, 0, 4)};
    for (const QImage& image : {indexed(greys), indexed({}), indexed(few),
                                indexed(greys).convertToFormat(QImage::Format_RGB32),
                                indexed(greys).convertToFormat(QImage::Format_Grayscale8),
                                indexed(few).convertToFormat(QImage::Format_RGB888)}) {
        QImage memory;
        const QImage picture = view::toRgb32(image, memory);
        EXPECT_EQ(picture.format(), QImage::Format_RGB32);
        EXPECT_EQ(picture, image.convertToFormat(QImage::Format_RGB32)) << image.format();
        EXPECT_NE(picture.constBits(), image.constBits());
    }
}

// The toolkit compares such images without their fourth bytes, and draws with them.
TEST(Rgb32Picture, IsOpaqueWhateverTheTableSays)
{
    const QList<QRgb> few{qRgb(1, 2, 3), qRgba(9, 8, 7, 100)};
    QImage memory;
    const QImage picture = view::toRgb32(indexed(few), memory);
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            ASSERT_EQ(qAlpha(line[x]), 255) << x << ", " << y;
        }
    }
}

TEST(Rgb32Picture, TakesTheMemoryThatFitsAndNoOther)
{
    QImage memory(37, 11, QImage::Format_RGB32);
    const uchar* const bytes = memory.constBits();
    QImage picture = view::toRgb32(indexed({}), memory);
    EXPECT_EQ(picture.constBits(), bytes);
    EXPECT_TRUE(memory.isNull());

    // Somebody else still shows it.
    const QImage shown = picture;
    const QImage next = view::toRgb32(indexed({}), picture);
    EXPECT_NE(next.constBits(), bytes);
    EXPECT_EQ(shown, next);

    QImage tooSmall(36, 11, QImage::Format_RGB32);
    EXPECT_EQ(view::toRgb32(indexed({}), tooSmall), next);
}

TEST(Rgb32Picture, OfANullImageIsNull)
{
    QImage memory(37, 11, QImage::Format_RGB32);
    EXPECT_TRUE(view::toRgb32(QImage(), memory).isNull());
}

} // namespace
