// SPDX-License-Identifier: MIT
#include "view/DisplayWidget.h"

#include "tests/harness/MethodsOf.h"
#include "tests/view/ViewTestSupport.h"

#include <QItemSelectionModel>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

using viewtest::labelOf;
using viewtest::pictureOf;

TEST(DisplayWidgetConstruction, PutsABaseColouredScalingLabelOnADarkScrollArea)
{
    const DisplayWidget display;
    const QLabel* label = labelOf(display);
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->backgroundRole(), QPalette::Base);
    EXPECT_EQ(label->sizePolicy(), QSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored));
    EXPECT_TRUE(label->hasScaledContents());
    EXPECT_EQ(display.backgroundRole(), QPalette::Dark);
    EXPECT_TRUE(label->pixmap().isNull());
}

TEST(DisplayWidgetInterface, HasItsSignalsAndSlotsInTheirOrder)
{
    EXPECT_EQ(methodsOf(DisplayWidget::staticMetaObject),
              QStringList({"signal positionClicked(QPoint)", "signal scaleChanged(int)",
                           "public setBufferSize(ImageInfo)", "public setImage(QImage&)",
                           "public clear()", "public redrawImage()", "public setHighlight(bool)",
                           "public setSelectionModel(QItemSelectionModel*)",
                           "public setScale(double)", "public updateMagnifierPosition(QPoint)"}));
}

TEST(DisplayWidgetImage, RedrawBeforeAnyImageDoesNothing)
{
    DisplayWidget display;
    const QSignalSpy scaleChanged(&display, &DisplayWidget::scaleChanged);
    const QSize size = labelOf(display)->size();
    display.setHighlight(true);
    display.redrawImage();
    EXPECT_TRUE(labelOf(display)->pixmap().isNull());
    EXPECT_EQ(labelOf(display)->size(), size);
    EXPECT_TRUE(scaleChanged.isEmpty());
}

TEST(DisplayWidgetImage, IsShownPixelForPixelAtScaleOne)
{
    DisplayWidget display;
    QImage image = viewtest::patternImage(40, 30);
    display.setImage(image);
    ASSERT_EQ(pictureOf(display).size(), QSize(40, 30));
    EXPECT_EQ(viewtest::difference(pictureOf(display), image), QRect());
    EXPECT_EQ(labelOf(display)->size(), QSize(40, 30));
}

TEST(DisplayWidgetImage, IndexedFrameIsShownThroughItsGreyTable)
{
    DisplayWidget display;
    QImage frame(256, 1, QImage::Format_Indexed8);
    for (int level = 0; level < 256; ++level) {
        frame.setColor(level, qRgb(level, level, level));
    }
    for (int x = 0; x < 256; ++x) {
        frame.setPixel(x, 0, static_cast<uint>(x));
    }
    display.setImage(frame);
    for (int x = 0; x < 256; ++x) {
        ASSERT_EQ(pictureOf(display).pixel(x, 0), qRgb(x, x, x));
    }
}

TEST(DisplayWidgetImage, IndexedFrameWithoutAColourTableIsShownInGreys)
{
    std::vector<uchar> memory(256);
    for (std::size_t x = 0; x < memory.size(); ++x) {
        memory[x] = static_cast<uchar>(x);
    }
    QImage frame(memory.data(), 256, 1, QImage::Format_Indexed8);
    DisplayWidget display;
    display.setImage(frame);
    for (int x = 0; x < 256; ++x) {
        ASSERT_EQ(pictureOf(display).pixel(x, 0), qRgb(x, x, x));
    }
}

TEST(DisplayWidgetImage, ClearEmptiesThePictureAndKeepsTheImage)
{
    DisplayWidget display;
    QImage image = viewtest::patternImage(40, 30);
    display.setImage(image);
    display.clear();
    EXPECT_TRUE(labelOf(display)->pixmap().isNull());
    display.redrawImage();
    EXPECT_EQ(pictureOf(display).size(), QSize(40, 30));
}

TEST(DisplayWidgetImage, NullImageLeavesThePictureAsItIs)
{
    DisplayWidget display;
    QImage image = viewtest::patternImage(40, 30);
    display.setImage(image);
    const qint64 shown = labelOf(display)->pixmap().cacheKey();
    QImage none;
    display.setImage(none);
    EXPECT_EQ(labelOf(display)->pixmap().cacheKey(), shown);
    display.clear();
    display.redrawImage();
    EXPECT_TRUE(labelOf(display)->pixmap().isNull()) << "the former image was kept";
}

TEST(DisplayWidgetImage, LeavesTheCallersImageUnmarked)
{
    DisplayWidget display;
    QImage image = viewtest::plainImage(40, 30, 90);
    const QImage before = image.copy();
    display.setHighlight(true);
    display.setImage(image);
    EXPECT_NE(viewtest::difference(pictureOf(display), before), QRect());
    EXPECT_EQ(image, before);
}

TEST(DisplayWidgetImage, PictureDoesNotChangeWithTheCamerasMemory)
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
        std::vector<QRgb> memory(1200, 0xff808080);
        QImage frame(reinterpret_cast<uchar*>(memory.data()), 40, 30, format);
        DisplayWidget display;
        display.setImage(frame);
        memory.assign(memory.size(), 0xff000000);
        EXPECT_EQ(pictureOf(display).pixel(5, 5), qRgb(0x80, 0x80, 0x80));
    }
}

TEST(DisplayWidgetImage, MemoryMayGoAfterANullImage)
{
    auto memory = std::make_unique<std::vector<QRgb>>(1200, 0xff808080);
    QImage frame(reinterpret_cast<uchar*>(memory->data()), 40, 30, QImage::Format_RGB32);
    DisplayWidget display;
    display.resize(100, 100);
    display.setImage(frame);
    QImage none;
    display.setImage(none);
    memory.reset();
    display.redrawImage();
    EXPECT_EQ(display.grab().toImage().isNull(), false);
    EXPECT_EQ(pictureOf(display).pixel(39, 29), qRgb(0x80, 0x80, 0x80));
}

// What is only stored takes effect with the next redraw.
TEST(DisplayWidgetSettings, AreStoredWithoutARedraw)
{
    BadpixelListModel model;
    viewtest::fillList(model, "12 12 1\n");
    QItemSelectionModel selection(&model);
    selection.select(model.index(0, 0), QItemSelectionModel::ClearAndSelect);

    DisplayWidget display;
    QImage image = viewtest::plainImage(40, 30, 90);
    display.setImage(image);
    QImage before = pictureOf(display);

    const std::vector<std::function<void()>> settings{
        [&] { display.setHighlight(true); },
        [&] { display.setModel(&model); },
        [&] { display.setSelectionModel(&selection); },
        [&] {
            display.updateMagnifierPosition({20, 20});
        },
        [&] { display.setScale(2.0); },
    };
    for (const auto& change : settings) {
        const qint64 shown = labelOf(display)->pixmap().cacheKey();
        change();
        EXPECT_EQ(labelOf(display)->pixmap().cacheKey(), shown);
        display.redrawImage();
        EXPECT_NE(pictureOf(display), before);
        before = pictureOf(display);
    }
}

TEST(DisplayWidgetSettings, BufferSizeChangesNothingOnTheScreen)
{
    DisplayWidget display;
    QImage image = viewtest::plainImage(40, 30, 90);
    display.setImage(image);
    const qint64 shown = labelOf(display)->pixmap().cacheKey();
    display.setBufferSize({.width = 1280, .height = 1024, .bitsPerPixel = 8});
    EXPECT_EQ(labelOf(display)->pixmap().cacheKey(), shown);
    display.redrawImage();
    EXPECT_EQ(pictureOf(display), image);
}

struct ScaledSize
{
    QSize image;
    double scale;
    QSize picture;
};

void PrintTo(const ScaledSize& c, std::ostream* out)
{
    viewtest::print(out, c.image, c.scale, c.picture);
}

class DisplayWidgetScale : public ::testing::TestWithParam<ScaledSize>
{};

// Each side is cut toward zero before the aspect ratio is kept, so the other side may lose a pixel
// more.
INSTANTIATE_TEST_SUITE_P(
    CutsTheSizeTowardZero, DisplayWidgetScale,
    ::testing::Values(ScaledSize{{100, 50}, 1.0, {100, 50}}, ScaledSize{{100, 50}, 2.0, {200, 100}},
                      ScaledSize{{100, 50}, 4.0, {400, 200}}, ScaledSize{{100, 50}, 0.5, {50, 25}},
                      ScaledSize{{100, 52}, 0.25, {25, 13}}, ScaledSize{{10, 10}, 1.59, {15, 15}},
                      ScaledSize{{103, 51}, 0.5, {50, 25}}, ScaledSize{{3, 3}, 0.34, {1, 1}}));

TEST_P(DisplayWidgetScale, GivesThePictureAndItsLabelTheirSize)
{
    DisplayWidget display;
    const QSignalSpy scaleChanged(&display, &DisplayWidget::scaleChanged);
    QImage image = viewtest::plainImage(GetParam().image.width(), GetParam().image.height(), 9);
    display.setScale(GetParam().scale);
    display.setImage(image);
    EXPECT_EQ(labelOf(display)->pixmap().size(), GetParam().picture);
    EXPECT_EQ(labelOf(display)->size(), GetParam().picture);
    EXPECT_TRUE(scaleChanged.isEmpty());
}

TEST(DisplayWidgetScale, RepeatsPixelsWithoutSmoothing)
{
    DisplayWidget display;
    QImage image = viewtest::patternImage(40, 30);
    display.setScale(4.0);
    display.setImage(image);
    const QImage picture = pictureOf(display);
    ASSERT_EQ(picture.size(), QSize(160, 120));
    for (int y = 0; y < 120; ++y) {
        for (int x = 0; x < 160; ++x) {
            ASSERT_EQ(picture.pixel(x, y), viewtest::patternAt(x / 4, y / 4)) << x << ", " << y;
        }
    }
}

// Twice each, because a second picture of one size is drawn into the memory of the first.
TEST(DisplayWidgetScale, GivesTheSamePixelsAsAFastScaledImage)
{
    for (const QSize& size : {QSize(1, 1), QSize(7, 5), QSize(101, 51), QSize(256, 192)}) {
        for (const double scale : {0.25, 0.3, 0.5, 0.75, 0.99, 1.01, 1.5, 2.0, 2.7, 3.0, 4.0}) {
            const QSize bounds(static_cast<int>(size.width() * scale),
                               static_cast<int>(size.height() * scale));
            if (bounds.isEmpty()) {
                continue;
            }
            QImage image = viewtest::patternImage(size.width(), size.height());
            const QImage expected =
                image.scaled(bounds, Qt::KeepAspectRatio, Qt::FastTransformation);
            DisplayWidget display;
            display.setScale(scale);
            display.setImage(image);
            ASSERT_EQ(pictureOf(display), expected) << size.width() << " at " << scale;
            image.invertPixels();
            display.setImage(image);
            ASSERT_EQ(pictureOf(display),
                      image.scaled(bounds, Qt::KeepAspectRatio, Qt::FastTransformation))
                << size.width() << " at " << scale;
        }
    }
}

TEST(DisplayWidgetScale, LeavesAPictureThatSomebodyTookAsItWas)
{
    DisplayWidget display;
    QImage image = viewtest::patternImage(40, 30);
    display.setScale(4.0);
    display.setImage(image);
    const QPixmap taken = labelOf(display)->pixmap();
    const QImage before = taken.toImage().copy();
    QImage other = viewtest::plainImage(40, 30, 9);
    display.setImage(other);
    EXPECT_EQ(taken.toImage(), before);
    EXPECT_EQ(pictureOf(display), viewtest::plainImage(160, 120, 9));
}

// On a dense screen too, and in every part that comes into view.
TEST(DisplayWidgetScale, PaintsEachImagePixelAsASquare)
{
    DisplayWidget display;
    display.setFrameShape(QFrame::NoFrame);
    display.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    display.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    display.resize(100, 80);
    display.show();
    display.setScale(4.0);
    QImage image = viewtest::patternImage(40, 30);
    display.setImage(image);
    for (const QPoint& scrolled : {QPoint(0, 0), QPoint(13, 7), QPoint(60, 40)}) {
        display.horizontalScrollBar()->setValue(scrolled.x());
        display.verticalScrollBar()->setValue(scrolled.y());
        const QImage screen = display.viewport()->grab().toImage();
        const int density = static_cast<int>(screen.devicePixelRatio());
        ASSERT_EQ(screen.size(), QSize(100, 80) * density);
        for (int y = 0; y < screen.height(); ++y) {
            for (int x = 0; x < screen.width(); ++x) {
                ASSERT_EQ(screen.pixel(x, y), viewtest::patternAt((scrolled.x() + x / density) / 4,
                                                                  (scrolled.y() + y / density) / 4))
                    << x << ", " << y;
            }
        }
    }
}

struct FittedSize
{
    QSize widget;
    QSize image;
    QSize picture;
};

void PrintTo(const FittedSize& c, std::ostream* out)
{
    viewtest::print(out, c.widget, c.image, c.picture);
}

class DisplayWidgetFit : public ::testing::TestWithParam<FittedSize>
{};

// The picture fits into the widget less two pixels in each direction.
INSTANTIATE_TEST_SUITE_P(KeepsTheAspectRatio, DisplayWidgetFit,
                         ::testing::Values(FittedSize{{302, 202}, {100, 50}, {300, 150}},
                                           FittedSize{{302, 102}, {100, 50}, {200, 100}},
                                           FittedSize{{52, 302}, {100, 50}, {50, 25}},
                                           FittedSize{{102, 52}, {100, 50}, {100, 50}}));

TEST_P(DisplayWidgetFit, FillsTheWidgetLessItsFrame)
{
    DisplayWidget display;
    display.resize(GetParam().widget);
    display.setScale(0.0);
    QImage image = viewtest::plainImage(GetParam().image.width(), GetParam().image.height(), 9);
    display.setImage(image);
    EXPECT_EQ(labelOf(display)->pixmap().size(), GetParam().picture);
}

// A picture wider than 2^26 pixels can't be made, so no memory is asked for here.
TEST(DisplayWidgetTooBig, HalvesTheScaleOncePerRedraw)
{
    DisplayWidget display;
    QSignalSpy scaleChanged(&display, &DisplayWidget::scaleChanged);
    QImage image = viewtest::plainImage(1000, 1, 9);
    display.setScale(1'000'001.0);
    display.setImage(image);
    ASSERT_EQ(scaleChanged.size(), 1);
    EXPECT_EQ(scaleChanged.takeFirst().constFirst().toInt(), 500'000) << "cut toward zero";
    EXPECT_TRUE(labelOf(display)->pixmap().isNull());

    display.redrawImage();
    ASSERT_EQ(scaleChanged.size(), 1);
    EXPECT_EQ(scaleChanged.takeFirst().constFirst().toInt(), 250'000);
}

TEST(DisplayWidgetTooBig, ShowsThePictureAtTheHalvedScale)
{
    DisplayWidget display;
    QSignalSpy scaleChanged(&display, &DisplayWidget::scaleChanged);
    // 1 bit a pixel here, 32 bits on the way to the screen; twice this width is beyond the limit.
    constexpr int Width = 33'600'000;
    QImage image(Width, 1, QImage::Format_Mono);
    image.fill(1);
    display.setScale(2.0);
    display.setImage(image);
    ASSERT_EQ(scaleChanged.size(), 1);
    EXPECT_EQ(scaleChanged.takeFirst().constFirst().toInt(), 1);
    EXPECT_EQ(labelOf(display)->pixmap().size(), QSize(Width, 1));

    QImage small = viewtest::plainImage(10, 10, 9);
    display.setImage(small);
    EXPECT_TRUE(scaleChanged.isEmpty());
    EXPECT_EQ(labelOf(display)->pixmap().size(), QSize(10, 10)) << "the halved scale stays";
}

TEST(DisplayWidgetTooBig, ScaleBeyondEveryNumberOfPixelsIsHalvedToo)
{
    DisplayWidget display;
    QSignalSpy scaleChanged(&display, &DisplayWidget::scaleChanged);
    QImage image = viewtest::plainImage(100, 50, 9);
    display.setScale(1e300);
    display.setImage(image);
    ASSERT_EQ(scaleChanged.size(), 1);
    EXPECT_EQ(scaleChanged.takeFirst().constFirst().toInt(), std::numeric_limits<int>::max());
}
