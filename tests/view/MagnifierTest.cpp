// SPDX-License-Identifier: MIT
#include "view/Magnifier.h"

#include "tests/harness/MethodsOf.h"
#include "tests/view/MagnifierFixture.h"
#include "tests/view/ViewTestSupport.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using MagnifierPixelInfo = MagnifierFixture;
using MagnifierKeys = MagnifierFixture;
using MagnifierClick = MagnifierFixture;

} // namespace

TEST_F(MagnifierFixture, IsACentredLabelThatTakesTheFocusAndAnySize)
{
    EXPECT_EQ(magnifier.backgroundRole(), QPalette::Base);
    EXPECT_EQ(magnifier.sizePolicy(), QSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored));
    EXPECT_FALSE(magnifier.hasScaledContents());
    EXPECT_EQ(magnifier.focusPolicy(), Qt::StrongFocus);
    EXPECT_EQ(magnifier.alignment(), Qt::AlignCenter);
    EXPECT_EQ(magnifier.zoom(), 20);
}

TEST_F(MagnifierFixture, HasItsSignalsAndSlotsInTheirOrder)
{
    EXPECT_EQ(
        methodsOf(Magnifier::staticMetaObject),
        QStringList({"signal pixelInfoChanged(QString,int)", "signal changePosition(QPoint)",
                     "public keyPressEvent(QKeyEvent*)", "public mousePressEvent(QMouseEvent*)",
                     "public setPosition(QPoint)", "public setZoom(int)",
                     "public setImage(QImage&)", "public redrawImage()"}));
}

struct FocusColour
{
    QPoint position;
    const char* word;
};

void PrintTo(const FocusColour& c, std::ostream* out)
{
    viewtest::print(out, c.position, c.word);
}

class MagnifierBayerColour : public MagnifierFixture,
                             public ::testing::WithParamInterface<FocusColour>
{};

INSTANTIATE_TEST_SUITE_P(FollowsTheParityOfTheFocus, MagnifierBayerColour,
                         ::testing::Values(FocusColour{{10, 20}, "R"}, FocusColour{{11, 21}, "B"},
                                           FocusColour{{10, 21}, "G"}, FocusColour{{11, 20}, "G"},
                                           FocusColour{{0, 0}, "R"}, FocusColour{{-1, -1}, "B"},
                                           FocusColour{{-1, 0}, "G"}, FocusColour{{0, -1}, "G"},
                                           FocusColour{{-2, -4}, "R"}, FocusColour{{-3, 7}, "B"}));

TEST_P(MagnifierBayerColour, IsReportedAlsoOutsideTheImage)
{
    QImage image = viewtest::patternImage(40, 30);
    magnifier.setImage(image);
    pixelInfo.clear();
    magnifier.setPosition(GetParam().position);
    ASSERT_EQ(pixelInfo.size(), 1);
    EXPECT_EQ(pixelInfo.constFirst().constFirst().toString(), QLatin1String(GetParam().word));
}

TEST_F(MagnifierPixelInfo, ValueIsTheLowestByteOfTheFocusPixel)
{
    QImage image = viewtest::plainImage(40, 30, 0);
    image.setPixel(12, 7, 0xff0a141e);
    image.setPixel(39, 29, 0xff0000ff);
    magnifier.setImage(image);
    magnifier.setPosition({12, 7});
    EXPECT_EQ(pixelInfo.constLast().constLast().toInt(), 0x1e);
    magnifier.setPosition({39, 29});
    EXPECT_EQ(pixelInfo.constLast().constLast().toInt(), 255);
}

// The box must not be what is read: at zoom 1 the ticks' corner lies on the focus pixel's side.
TEST_F(MagnifierPixelInfo, ValueIsReadFromTheImageAndNotFromTheMarkedPicture)
{
    QImage image = viewtest::plainImage(200, 200, 99);
    magnifier.setPosition({100, 100});
    magnifier.setImage(image);
    for (const int zoom : {1, 2, 3, 20, 100}) {
        magnifier.setZoom(zoom);
        EXPECT_EQ(pixelInfo.constLast().constLast().toInt(), 99);
    }
}

namespace {

int warnings = 0;

void countWarning(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++warnings;
}

} // namespace

TEST_F(MagnifierPixelInfo, OutsideTheImageTheValueIsZeroWithoutAWarning)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    magnifier.setImage(image);
    warnings = 0;
    const QtMessageHandler former = qInstallMessageHandler(countWarning);
    for (const QPoint& position : {QPoint(-1, 0), QPoint(0, -1), QPoint(40, 0), QPoint(0, 30)}) {
        magnifier.setPosition(position);
        EXPECT_EQ(pixelInfo.constLast().constLast().toInt(), 0);
    }
    qInstallMessageHandler(former);
    EXPECT_EQ(warnings, 0);
}

struct ArrowKey
{
    Qt::Key key;
    QPoint wanted;
};

void PrintTo(const ArrowKey& c, std::ostream* out)
{
    viewtest::print(out, c.key, c.wanted);
}

class MagnifierArrowKey : public MagnifierFixture, public ::testing::WithParamInterface<ArrowKey>
{};

INSTANTIATE_TEST_SUITE_P(AsksForTheNeighbour, MagnifierArrowKey,
                         ::testing::Values(ArrowKey{Qt::Key_Left, {-1, 5}},
                                           ArrowKey{Qt::Key_Right, {1, 5}},
                                           ArrowKey{Qt::Key_Up, {0, 4}},
                                           ArrowKey{Qt::Key_Down, {0, 6}}));

TEST_P(MagnifierArrowKey, WithoutMovingByItself)
{
    magnifier.setPosition({0, 5});
    for (int press = 0; press < 2; ++press) {
        QKeyEvent event(QEvent::KeyPress, GetParam().key, Qt::NoModifier);
        magnifier.keyPressEvent(&event);
        EXPECT_EQ(onlyWanted(), GetParam().wanted);
        EXPECT_TRUE(event.isAccepted());
    }
}

TEST_F(MagnifierKeys, OthersGoToTheLabelWhichLeavesThemToTheWindow)
{
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Delete, Qt::Key_PageUp, Qt::Key_Tab}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        magnifier.keyPressEvent(&event);
        EXPECT_FALSE(event.isAccepted());
    }
    EXPECT_TRUE(wanted.isEmpty());
}

struct ClickedStep
{
    int zoom;
    int distance; // from the middle of the magnifier
    int steps;
};

void PrintTo(const ClickedStep& c, std::ostream* out)
{
    viewtest::print(out, c.zoom, c.distance, c.steps);
}

class MagnifierClickSteps : public MagnifierFixture,
                            public ::testing::WithParamInterface<ClickedStep>
{};

// To the right a step begins half a block beyond the centre, to the left at one and a half blocks
// less the first: the two sides are deliberately not alike.
INSTANTIATE_TEST_SUITE_P(
    AreCountedUnlikeToBothSides, MagnifierClickSteps,
    ::testing::Values(ClickedStep{20, 35, 2}, ClickedStep{20, -30, -1}, ClickedStep{20, 0, 0},
                      ClickedStep{20, 1, 0}, ClickedStep{20, 10, 0}, ClickedStep{20, 11, 1},
                      ClickedStep{20, 30, 1}, ClickedStep{20, 31, 2}, ClickedStep{20, 59, 3},
                      ClickedStep{20, -10, 0}, ClickedStep{20, -11, -1}, ClickedStep{20, -31, -2},
                      ClickedStep{20, -60, -3}, ClickedStep{5, 2, 0}, ClickedStep{5, 3, 1},
                      ClickedStep{5, 7, 1}, ClickedStep{5, 8, 2}, ClickedStep{5, -3, 0},
                      ClickedStep{5, -4, -1}, ClickedStep{5, -8, -1}, ClickedStep{5, -9, -2},
                      ClickedStep{100, 51, 1}, ClickedStep{100, 50, 0}, ClickedStep{100, -50, 0},
                      ClickedStep{100, -51, -1}));

TEST_P(MagnifierClickSteps, HorizontallyAndVertically)
{
    const auto [zoom, distance, steps] = GetParam();
    magnifier.setZoom(zoom);
    magnifier.setPosition({7, 9});
    QTest::mousePress(&magnifier, Qt::LeftButton, {}, {80 + distance, 60});
    EXPECT_EQ(onlyWanted(), QPoint(7 + steps, 9));
    QTest::mousePress(&magnifier, Qt::LeftButton, {}, {80, 60 + distance});
    EXPECT_EQ(onlyWanted(), QPoint(7, 9 + steps));
}

TEST_F(MagnifierClick, HalvesOddSizesDownwards)
{
    magnifier.resize(161, 121);
    QTest::mousePress(&magnifier, Qt::LeftButton, {}, {91, 71});
    EXPECT_EQ(onlyWanted(), QPoint(1, 1)); // 11 from 80 and from 60
    QTest::mousePress(&magnifier, Qt::LeftButton, {}, {90, 70});
    EXPECT_EQ(onlyWanted(), QPoint(0, 0));
}

// On a screen of twice the density, the right half of the magnifier's pixel 90 is at 90.5.
TEST_F(MagnifierClick, BetweenTwoLogicalPixelsBelongsToTheFirst)
{
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(90.5, 70.9), QPointF(90.5, 70.9),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    magnifier.mousePressEvent(&event);
    EXPECT_EQ(onlyWanted(), QPoint(0, 0));
}

TEST_F(MagnifierClick, CountsOnlyWhenTheLeftButtonCausedIt)
{
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(115, 60), QPointF(115, 60), button,
                          button | Qt::LeftButton, Qt::NoModifier);
        magnifier.mousePressEvent(&event);
        EXPECT_TRUE(wanted.isEmpty());
    }
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(115, 60), QPointF(115, 60), Qt::LeftButton,
                      Qt::LeftButton | Qt::RightButton, Qt::NoModifier);
    magnifier.mousePressEvent(&event);
    EXPECT_EQ(onlyWanted(), QPoint(2, 0));
}
