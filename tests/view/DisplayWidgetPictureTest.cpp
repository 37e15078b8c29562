// SPDX-License-Identifier: MIT
#include "tests/view/ViewTestSupport.h"
#include "view/DisplayWidget.h"

#include <QItemSelectionModel>
#include <QSignalSpy>
#include <gtest/gtest.h>

using viewtest::difference;
using viewtest::pictureOf;

namespace {

constexpr int Background = 100;

/// A highlighting display of a plain image of 60 × 50 pixels, with a list and its selection, and
/// the magnifier's cross beyond the picture.
class DisplayWidgetMarks : public ::testing::Test
{
protected:
    DisplayWidgetMarks()
        : selection(&model)
    {
        display.setModel(&model);
        display.setSelectionModel(&selection);
        display.setHighlight(true);
        display.updateMagnifierPosition({1000, 1000});
        display.setImage(image);
    }

    /// The picture after a redraw.
    QImage redrawn()
    {
        display.redrawImage();
        return pictureOf(display);
    }

    void select(int row,
                QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect |
                                                            QItemSelectionModel::Rows)
    {
        selection.select(model.index(row, 0), flags);
    }

    QImage image = viewtest::plainImage(60, 50, Background);
    BadpixelListModel model;
    QItemSelectionModel selection;
    DisplayWidget display;
};

/// The amounts of red, green and blue by which a pixel differs from the background.
struct Tint
{
    int red;
    int green;
    int blue;

    friend bool operator==(const Tint&, const Tint&) = default;
};

Tint tintAt(const QImage& picture, int x, int y)
{
    const QRgb pixel = picture.pixel(x, y);
    return {qRed(pixel) - Background, qGreen(pixel) - Background, qBlue(pixel) - Background};
}

int sign(int value)
{
    return (value > 0 ? 1 : 0) - (value < 0 ? 1 : 0);
}

} // namespace

TEST_F(DisplayWidgetMarks, AreMissingWithoutHighlightWhateverTheListHolds)
{
    viewtest::fillList(model, "20 20 0\n30 30 1\n40 40 2\n");
    select(1);
    display.updateMagnifierPosition({10, 10});
    display.setHighlight(false);
    EXPECT_EQ(redrawn(), image);
}

struct MarkedClass
{
    int pixelClass;
    Tint signs; // which channels the mark raises and lowers
};

void PrintTo(const MarkedClass& c, std::ostream* out)
{
    viewtest::print(out, c.pixelClass);
}

class DisplayWidgetMarkColour : public DisplayWidgetMarks,
                                public ::testing::WithParamInterface<MarkedClass>
{};

INSTANTIATE_TEST_SUITE_P(FollowsTheClass, DisplayWidgetMarkColour,
                         ::testing::Values(MarkedClass{0, {1, 1, -1}}, MarkedClass{1, {-1, 1, -1}},
                                           MarkedClass{2, {1, -1, -1}}, MarkedClass{3, {1, -1, -1}},
                                           MarkedClass{255, {1, -1, -1}}));

TEST_P(DisplayWidgetMarkColour, IsYellowGreenOrRed)
{
    viewtest::fillList(model, "30 20 " + QByteArray::number(GetParam().pixelClass) + '\n');
    const Tint tint = tintAt(redrawn(), 30, 16);
    EXPECT_EQ((Tint{sign(tint.red), sign(tint.green), sign(tint.blue)}), GetParam().signs);
}

// The outline runs through the corners of a square from 4 pixels before to 4 pixels behind the
// entry's pixel, that is along the coordinates 26 and 35 for a pixel whose middle is at 30.5. One
// pixel wide, it covers half of the pixels on both sides of them.
TEST_F(DisplayWidgetMarks, CircleIsNinePixelsWideAroundTheEntrysPixel)
{
    viewtest::fillList(model, "30 20 1\n");
    const QImage picture = redrawn();
    EXPECT_EQ(difference(picture, image), QRect(QPoint(25, 15), QPoint(35, 25)));
    for (const QPoint& inside : {QPoint(30, 20), QPoint(28, 20), QPoint(30, 22), QPoint(32, 18)}) {
        EXPECT_EQ(picture.pixel(inside), image.pixel(inside)) << "only the outline is drawn";
    }
    for (int reach = 0; reach <= 5; ++reach) {
        const int right = tintAt(picture, 30 + reach, 20).green;
        for (const QPoint& other :
             {QPoint(30 - reach, 20), QPoint(30, 20 + reach), QPoint(30, 20 - reach)}) {
            EXPECT_NEAR(tintAt(picture, other.x(), other.y()).green, right, 2);
        }
    }
}

TEST_F(DisplayWidgetMarks, CircleIsSmoothed)
{
    viewtest::fillList(model, "30 20 1\n");
    const QImage picture = redrawn();
    for (int y = 15; y <= 25; ++y) {
        for (int x = 25; x <= 35; ++x) {
            EXPECT_LT(tintAt(picture, x, y).green, 255 - Background) << "no pixel is fully covered";
        }
    }
    const int above = tintAt(picture, 30, 15).green;
    const int below = tintAt(picture, 30, 16).green;
    EXPECT_NEAR(above, 77, 16) << "half of what is left to 255";
    EXPECT_NEAR(below, 77, 16);
}

TEST_F(DisplayWidgetMarks, EveryRowOfTheListIsMarkedAlsoAtTheEdges)
{
    viewtest::fillList(model, "0 0 0\n30 20 1\n59 49 2\n");
    const QImage picture = redrawn();
    EXPECT_GT(tintAt(picture, 4, 0).red, 0);
    EXPECT_GT(tintAt(picture, 30, 16).green, 0);
    EXPECT_GT(tintAt(picture, 55, 49).red, 0);
    EXPECT_EQ(difference(picture, image), QRect(0, 0, 60, 50));
}

TEST_F(DisplayWidgetMarks, EntriesOutsideTheImageAreNoTrouble)
{
    viewtest::fillList(model, "65535 65535 1\n5000 20 0\n");
    EXPECT_EQ(redrawn(), image);
}

// The outermost pixel of an outline is that of its smoothing, half a pixel beyond the circle.
TEST_F(DisplayWidgetMarks, EntriesBesideTheImageAreDrawnAsFarAsTheyReachIntoIt)
{
    for (int x = 60; x < 70; ++x) {
        viewtest::fillList(model, QByteArray::number(x) + " 25 1\n25 " +
                                      QByteArray::number(x - 10) + " 1\n");
        // The same on a picture that is large enough for all of both circles, cut to the image.
        QImage large = viewtest::plainImage(100, 100, Background);
        display.setImage(large);
        const QImage expected = pictureOf(display).copy(0, 0, 60, 50);
        display.setImage(image);
        EXPECT_EQ(pictureOf(display), expected) << x;
    }
}

// The blue outline, 3 pixels wide, runs along 24 and 37 and covers 22.5 to 25.5 and 35.5 to 38.5.
TEST_F(DisplayWidgetMarks, SelectedEntryGetsAWideBlueRingOfThirteenPixels)
{
    viewtest::fillList(model, "10 10 1\n30 20 1\n");
    const QImage unselected = redrawn();
    select(1);
    const QImage picture = redrawn();
    EXPECT_EQ(difference(picture, unselected), QRect(QPoint(22, 12), QPoint(38, 28)));
    const Tint blue{-Background, -Background, 255 - Background};
    for (const QPoint& covered : {QPoint(30, 13), QPoint(30, 14), QPoint(30, 26), QPoint(30, 27),
                                  QPoint(23, 20), QPoint(24, 20), QPoint(36, 20), QPoint(37, 20)}) {
        EXPECT_EQ(tintAt(picture, covered.x(), covered.y()), blue);
    }
    EXPECT_NE(tintAt(picture, 30, 12), blue) << "the edge is smoothed";
    EXPECT_EQ(picture.pixel(30, 20), unselected.pixel(30, 20));
}

TEST_F(DisplayWidgetMarks, OnlyTheFirstSelectedIndexIsMarked)
{
    viewtest::fillList(model, "10 10 1\n30 20 1\n45 35 1\n");
    select(1);
    const QImage one = redrawn();
    select(0, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    select(2, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    ASSERT_EQ(selection.selectedIndexes().constFirst().row(), 1);
    EXPECT_EQ(redrawn(), one);
}

TEST_F(DisplayWidgetMarks, SelectionIsNotMarkedWithoutAList)
{
    viewtest::fillList(model, "30 20 1\n");
    select(0);
    display.setModel(nullptr);
    EXPECT_EQ(redrawn(), image);
}

TEST_F(DisplayWidgetMarks, ListIsMarkedWithoutASelectionModel)
{
    viewtest::fillList(model, "30 20 1\n");
    const QImage unselected = redrawn();
    select(0);
    display.setSelectionModel(nullptr);
    EXPECT_EQ(redrawn(), unselected);
}

TEST_F(DisplayWidgetMarks, SelectionOfARowThatTheListLacksIsNotMarked)
{
    BadpixelListModel longer;
    viewtest::fillList(longer, "1 1 1\n2 2 1\n3 3 1\n");
    QItemSelectionModel stale(&longer);
    viewtest::fillList(model, "30 20 1\n");
    const QImage unselected = redrawn();
    display.setSelectionModel(&stale);
    for (const int row : {1, 2}) { // also the one right behind the last, which would be at 0, 0
        stale.select(longer.index(row, 0), QItemSelectionModel::ClearAndSelect);
        EXPECT_EQ(redrawn(), unselected) << row;
    }
}

// Red at three tenths over 100: 146.5 and 70, and where the lines meet over that again.
TEST_F(DisplayWidgetMarks, MagnifierCrossIsATranslucentRedLineOfOnePixelEachWay)
{
    display.updateMagnifierPosition({20, 10});
    const QImage picture = redrawn();
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 60; ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const int lines = (x == 20 ? 1 : 0) + (y == 10 ? 1 : 0);
            const int red = lines == 0 ? 100 : lines == 1 ? 146 : 179;
            const int others = lines == 0 ? 100 : lines == 1 ? 70 : 49;
            ASSERT_NEAR(qRed(pixel), red, lines == 0 ? 0 : 2) << x << ", " << y;
            ASSERT_NEAR(qGreen(pixel), others, lines == 0 ? 0 : 2) << x << ", " << y;
            ASSERT_EQ(qBlue(pixel), qGreen(pixel)) << x << ", " << y;
        }
    }
}

TEST_F(DisplayWidgetMarks, CirclesAreOpaqueAfterTheTranslucentCross)
{
    viewtest::fillList(model, "30 20 1\n");
    const QRgb alone = redrawn().pixel(30, 16);
    display.updateMagnifierPosition({0, 0});
    EXPECT_EQ(redrawn().pixel(30, 16), alone);
}

struct CrossScale
{
    double scale;
    bool cross;
};

void PrintTo(const CrossScale& c, std::ostream* out)
{
    viewtest::print(out, c.scale, c.cross);
}

class DisplayWidgetCross : public DisplayWidgetMarks,
                           public ::testing::WithParamInterface<CrossScale>
{};

INSTANTIATE_TEST_SUITE_P(IsDrawnFromScaleOneOn, DisplayWidgetCross,
                         ::testing::Values(CrossScale{0.0, false}, CrossScale{0.25, false},
                                           CrossScale{0.5, false}, CrossScale{0.99, false},
                                           CrossScale{1.0, true}, CrossScale{2.0, true},
                                           CrossScale{4.0, true}));

TEST_P(DisplayWidgetCross, DependsOnTheScaleAndTheCirclesDoNot)
{
    display.resize(302, 252);
    display.setScale(GetParam().scale);
    const QImage unmarked = redrawn();
    viewtest::fillList(model, "30 20 1\n");
    const QImage circled = redrawn();
    EXPECT_NE(circled, unmarked);
    display.updateMagnifierPosition({10, 10});
    EXPECT_EQ(redrawn() != circled, GetParam().cross);
}

TEST_F(DisplayWidgetMarks, AreScaledWithTheImage)
{
    viewtest::fillList(model, "30 20 1\n12 40 0\n");
    select(0);
    display.updateMagnifierPosition({20, 10});
    const QImage original = redrawn();
    display.setScale(4.0);
    const QImage enlarged = redrawn();
    ASSERT_EQ(enlarged.size(), QSize(240, 200));
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 240; ++x) {
            ASSERT_EQ(enlarged.pixel(x, y), original.pixel(x / 4, y / 4)) << x << ", " << y;
        }
    }
}
