// SPDX-License-Identifier: MIT
#include "tests/view/MagnifierFixture.h"
#include "tests/view/ViewTestSupport.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <tuple>
#include <vector>

using viewtest::pictureOf;

namespace {

constexpr QRgb Green = 0xff00ff00;
constexpr QRgb Black = 0xff000000;

using MagnifierPicture = MagnifierFixture;

} // namespace

TEST_F(MagnifierPicture, IsEmptyWithoutAnImage)
{
    magnifier.redrawImage();
    magnifier.setPosition({5, 5});
    magnifier.setZoom(30);
    EXPECT_TRUE(magnifier.pixmap().isNull());
    EXPECT_TRUE(pixelInfo.isEmpty());
}

TEST_F(MagnifierPicture, NullImageClearsIt)
{
    QImage image = viewtest::patternImage(40, 30);
    magnifier.setImage(image);
    EXPECT_FALSE(magnifier.pixmap().isNull());
    QImage none;
    magnifier.setImage(none);
    EXPECT_TRUE(magnifier.pixmap().isNull());
    EXPECT_EQ(pixelInfo.size(), 1);
}

TEST_F(MagnifierPicture, MemoryMayGoAfterANullImage)
{
    auto memory = std::make_unique<std::vector<QRgb>>(1200, 0xff808080);
    QImage frame(reinterpret_cast<uchar*>(memory->data()), 40, 30, QImage::Format_RGB32);
    magnifier.setImage(frame);
    QImage none;
    magnifier.setImage(none);
    memory.reset();
    magnifier.setPosition({3, 3});
    EXPECT_TRUE(magnifier.pixmap().isNull());
}

TEST_F(MagnifierPicture, IsRedrawnOnEveryChange)
{
    QImage image = viewtest::patternImage(40, 30);
    magnifier.setImage(image);
    magnifier.setImage(image);
    magnifier.setPosition({0, 0});
    magnifier.setZoom(20);
    magnifier.redrawImage();
    EXPECT_EQ(pixelInfo.size(), 5);
}

struct PictureSize
{
    QSize magnifier;
    int zoom;
    QSize picture;
};

void PrintTo(const PictureSize& c, std::ostream* out)
{
    viewtest::print(out, c.magnifier, c.zoom, c.picture);
}

class MagnifierPictureSize : public MagnifierFixture,
                             public ::testing::WithParamInterface<PictureSize>
{};

// An odd number of blocks in each direction, at least two more than fit entirely.
INSTANTIATE_TEST_SUITE_P(IsAnOddNumberOfBlocks, MagnifierPictureSize,
                         ::testing::Values(PictureSize{{160, 120}, 20, {220, 180}},  // 8 + 3, 6 + 3
                                           PictureSize{{160, 120}, 100, {300, 300}}, // 1 + 2, 1 + 2
                                           PictureSize{{159, 119}, 20, {180, 140}},  // 7 + 2, 5 + 2
                                           PictureSize{{160, 120}, 5, {175, 135}}, // 32 + 3, 24 + 3
                                           PictureSize{{300, 120}, 7, {315, 133}}, // 42 + 3, 17 + 2
                                           PictureSize{{20, 10}, 100, {300, 300}}, // 0 + 3, 0 + 3
                                           PictureSize{{160, 120}, 1, {163, 123}}));

TEST_P(MagnifierPictureSize, CoversTheMagnifier)
{
    magnifier.resize(GetParam().magnifier);
    magnifier.setZoom(GetParam().zoom);
    QImage image = viewtest::patternImage(250, 200);
    magnifier.setImage(image);
    EXPECT_EQ(magnifier.pixmap().size(), GetParam().picture);
}

struct Overlay
{
    QSize magnifier;
    int zoom;
    QPoint centre;
    QRect box; // the pixels of the outline and everything inside
};

void PrintTo(const Overlay& c, std::ostream* out)
{
    viewtest::print(out, c.magnifier, c.zoom, c.centre, c.box);
}

class MagnifierOverlay : public MagnifierFixture, public ::testing::WithParamInterface<Overlay>
{};

// The outline stands just outside the middle block: at zoom 20 that is the block from (100, 80) to
// (119, 99) of a picture of 220 × 180, at zoom 5 from (85, 65) to (89, 69) of 175 × 135, and at
// zoom 100 from (100, 100) to (199, 199) of 300 × 300.
INSTANTIATE_TEST_SUITE_P(
    SurroundsTheFocusBlock, MagnifierOverlay,
    ::testing::Values(Overlay{{160, 120}, 20, {110, 90}, QRect(QPoint(99, 79), QPoint(120, 100))},
                      Overlay{{160, 120}, 5, {87, 67}, QRect(QPoint(84, 64), QPoint(90, 70))},
                      Overlay{
                          {160, 120}, 100, {150, 150}, QRect(QPoint(99, 99), QPoint(200, 200))}));

TEST_P(MagnifierOverlay, IsABoxWithFourTicksOverTheEnlargedPixels)
{
    const int zoom = GetParam().zoom;
    const QPoint centre = GetParam().centre;
    const QRect box = GetParam().box;
    const auto isMarked = [&](int x, int y) {
        const bool inBox = box.contains(x, y);
        const bool onOutline =
            inBox && (x == box.left() || x == box.right() || y == box.top() || y == box.bottom());
        const bool onTick = (x == centre.x() && y >= box.top() - 16 && y <= box.bottom() + 16) ||
                            (y == centre.y() && x >= box.left() - 16 && x <= box.right() + 16);
        return onOutline || (onTick && !inBox);
    };

    const QPoint focus(30, 25);
    magnifier.resize(GetParam().magnifier);
    magnifier.setZoom(zoom);
    magnifier.setPosition(focus);
    QImage image = viewtest::patternImage(60, 50);
    magnifier.setImage(image);

    const QImage picture = pictureOf(magnifier);
    const int left = focus.x() - picture.width() / zoom / 2;
    const int top = focus.y() - picture.height() / zoom / 2;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb expected =
                isMarked(x, y) ? Green : viewtest::patternAt(left + x / zoom, top + y / zoom);
            ASSERT_EQ(picture.pixel(x, y), expected) << x << ", " << y;
        }
    }
}

TEST_F(MagnifierPicture, IsBlackOutsideTheImage)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    magnifier.setImage(image); // the focus is the image's corner, in block (5, 4) of 11 × 9
    const QImage picture = pictureOf(magnifier);
    EXPECT_FALSE(picture.hasAlphaChannel());
    EXPECT_EQ(picture.pixel(0, 0), Black);
    EXPECT_EQ(picture.pixel(98, 81), Black);
    EXPECT_EQ(picture.pixel(101, 81), 0xffffffff);
    EXPECT_EQ(picture.pixel(219, 179), 0xffffffff);
}

TEST_F(MagnifierPicture, FarOutsideTheImageIsAllBlackAroundTheBox)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    magnifier.setImage(image);
    for (const QPoint& position : {QPoint(-100, -100), QPoint(1000, 10), QPoint(10, 1000)}) {
        magnifier.setPosition(position);
        const QImage picture = pictureOf(magnifier);
        ASSERT_EQ(picture.size(), QSize(220, 180));
        EXPECT_EQ(picture.pixel(0, 0), Black);
        EXPECT_EQ(picture.pixel(111, 91), Black);
        EXPECT_EQ(picture.pixel(99, 79), Green);
    }
}

// Up to 20 pixels in one direction there would be more box than picture.
TEST_F(MagnifierPicture, OfTwentyPixelsOrLessGetsNoBoxAndNoPixelInformation)
{
    const std::vector<std::tuple<QSize, int, QSize>> small{
        {{8, 120}, 4, {20, 132}}, {{120, 8}, 4, {132, 20}}, {{16, 16}, 1, {19, 19}}};
    QImage image = viewtest::plainImage(200, 200, 50);
    for (const auto& [size, zoom, picture] : small) {
        magnifier.resize(size);
        magnifier.setZoom(zoom);
        magnifier.setPosition({100, 100});
        pixelInfo.clear();
        magnifier.setImage(image);
        EXPECT_EQ(magnifier.pixmap().size(), picture);
        EXPECT_EQ(pictureOf(magnifier),
                  viewtest::plainImage(picture.width(), picture.height(), 50));
        EXPECT_TRUE(pixelInfo.isEmpty());
    }
    magnifier.resize(18, 18);
    magnifier.redrawImage();
    EXPECT_EQ(magnifier.pixmap().size(), QSize(21, 21));
    EXPECT_EQ(pixelInfo.size(), 1);
}

TEST_F(MagnifierPicture, ZoomIsCutToWhatCanBeDrawn)
{
    QImage image = viewtest::patternImage(40, 30);
    magnifier.setImage(image);
    for (const int zoom : {0, -1, std::numeric_limits<int>::min()}) {
        magnifier.setZoom(zoom);
        EXPECT_EQ(magnifier.zoom(), 1);
        EXPECT_EQ(magnifier.pixmap().size(), QSize(163, 123));
        QTest::mousePress(&magnifier, Qt::LeftButton, {}, {83, 58});
        EXPECT_EQ(onlyWanted(), QPoint(3, -1));
    }
    magnifier.setZoom(std::numeric_limits<int>::max());
    EXPECT_EQ(magnifier.zoom(), 1000);
    EXPECT_EQ(magnifier.pixmap().size(), QSize(3000, 3000));
}

TEST_F(MagnifierPicture, IndexedFramesAreShownInGreys)
{
    QImage frame(40, 30, QImage::Format_Indexed8);
    frame.setColorCount(256);
    for (int level = 0; level < 256; ++level) {
        frame.setColor(level, qRgb(level, level, level));
    }
    frame.fill(77);
    magnifier.setPosition({20, 15});
    magnifier.setImage(frame);
    EXPECT_EQ(pictureOf(magnifier).pixel(0, 0), qRgb(77, 77, 77));
    EXPECT_EQ(pixelInfo.constLast().constLast().toInt(), 77);
}
