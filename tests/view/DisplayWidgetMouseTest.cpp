// SPDX-License-Identifier: MIT
#include "tests/view/ViewTestSupport.h"
#include "view/DisplayWidget.h"

#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using viewtest::labelOf;

namespace {

/// A display of 202 × 152 pixels with an image of 400 × 300 and a list, on the screen.
class DisplayWidgetMouse : public ::testing::Test
{
protected:
    DisplayWidgetMouse()
        : selection(&model)
        , clicked(&display, &DisplayWidget::positionClicked)
    {
        display.setModel(&model);
        display.setSelectionModel(&selection);
        display.resize(202, 152);
        display.setImage(image);
        display.show();
    }

    void setScale(double scale)
    {
        display.setScale(scale);
        display.redrawImage();
    }

    /// The only reported position since the last call.
    QPoint onlyClick()
    {
        EXPECT_EQ(clicked.size(), 1);
        return clicked.isEmpty() ? QPoint(-9999, -9999)
                                 : clicked.takeFirst().constFirst().toPoint();
    }

    void press(Qt::MouseButton button, Qt::MouseButtons buttons, const QPointF& position)
    {
        QMouseEvent event(QEvent::MouseButtonPress, position,
                          display.viewport()->mapToGlobal(position), button, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(display.viewport(), &event);
    }

    void move(Qt::MouseButtons buttons, const QPointF& position)
    {
        QMouseEvent event(QEvent::MouseMove, position, display.viewport()->mapToGlobal(position),
                          Qt::NoButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(display.viewport(), &event);
    }

    QImage image = viewtest::plainImage(400, 300, 100);
    BadpixelListModel model;
    QItemSelectionModel selection;
    DisplayWidget display;
    QSignalSpy clicked;
};

} // namespace

TEST_F(DisplayWidgetMouse, ClickIsDividedByTheScaleAndCut)
{
    setScale(4.0);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {41, 17});
    EXPECT_EQ(onlyClick(), QPoint(10, 4));
    setScale(0.5);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {41, 17});
    EXPECT_EQ(onlyClick(), QPoint(82, 34));
}

TEST_F(DisplayWidgetMouse, ClickOnTheLabelAndOnTheFrameMeanTheSamePlace)
{
    setScale(4.0);
    QTest::mousePress(labelOf(display), Qt::LeftButton, {}, {43, 19});
    EXPECT_EQ(onlyClick(), QPoint(10, 4));
    QTest::mousePress(&display, Qt::LeftButton, {}, display.viewport()->pos() + QPoint(43, 19));
    EXPECT_EQ(onlyClick(), QPoint(10, 4));
}

TEST_F(DisplayWidgetMouse, NothingIsClickedOutsideOfTheViewport)
{
    setScale(4.0);
    display.setFrameStyle(QFrame::Box);
    display.setLineWidth(5);
    QCoreApplication::processEvents();
    const QRect viewport = display.viewport()->geometry();
    ASSERT_GT(viewport.left(), 2);
    for (const QPoint& outside :
         {QPoint(1, 40), QPoint(40, 1), viewport.bottomRight() + QPoint(1, 1),
          display.rect().bottomRight() - QPoint(2, 2)}) { // frame, and between the scroll bars
        QTest::mouseClick(&display, Qt::LeftButton, {}, outside);
        QTest::mousePress(&display, Qt::RightButton, {}, outside);
        QTest::mouseMove(&display, outside - QPoint(1, 1));
        QTest::mouseRelease(&display, Qt::RightButton, {}, outside);
    }
    EXPECT_TRUE(clicked.isEmpty());
    EXPECT_EQ(display.horizontalScrollBar()->value(), 0);
}

TEST_F(DisplayWidgetMouse, ClickCountsFromTheScrolledLabel)
{
    setScale(4.0);
    display.horizontalScrollBar()->setValue(100);
    display.verticalScrollBar()->setValue(60);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {41, 17});
    EXPECT_EQ(onlyClick(), QPoint(35, 19)); // 141 / 4 and 77 / 4
}

TEST_F(DisplayWidgetMouse, ClickBesideThePictureIsCutTowardZero)
{
    setScale(0.25); // 100 × 75 in a viewport of 200 × 150
    display.setAlignment(Qt::AlignCenter);
    const QPoint corner = labelOf(display)->pos();
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, corner - QPoint(1, 2));
    EXPECT_EQ(onlyClick(), QPoint(-4, -8));
    setScale(4.0);
    display.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    press(Qt::LeftButton, Qt::LeftButton, {-3, -5});
    EXPECT_EQ(onlyClick(), QPoint(0, -1)) << "-0.75 and -1.25";
}

// On a screen of twice the density, the right half of the label's pixel 43 is at 43.5.
TEST_F(DisplayWidgetMouse, ClickBetweenTwoLogicalPixelsBelongsToTheFirst)
{
    setScale(4.0);
    press(Qt::LeftButton, Qt::LeftButton, {43.5, 39.9});
    EXPECT_EQ(onlyClick(), QPoint(10, 9));
}

TEST_F(DisplayWidgetMouse, ClickSixPixelsFromAnEntrySelectsItsWholeRow)
{
    viewtest::fillList(model, "90 10 1\n50 40 1\n");
    for (const QPoint& near : {QPoint(44, 34), QPoint(56, 34), QPoint(44, 46), QPoint(56, 46)}) {
        selection.clear();
        QTest::mousePress(display.viewport(), Qt::LeftButton, {}, near);
        EXPECT_EQ(selection.selectedRows(), QModelIndexList{model.index(1, 0)});
        EXPECT_EQ(selection.selectedIndexes().size(), 3);
    }
    EXPECT_TRUE(clicked.isEmpty()) << "no position is reported";
}

TEST_F(DisplayWidgetMouse, ClickSevenPixelsFromAnEntryReportsThePosition)
{
    viewtest::fillList(model, "50 40 1\n");
    for (const QPoint& far : {QPoint(43, 40), QPoint(57, 40), QPoint(50, 33), QPoint(50, 47)}) {
        selection.select(model.index(0, 0), QItemSelectionModel::Select);
        QTest::mousePress(display.viewport(), Qt::LeftButton, {}, far);
        EXPECT_EQ(onlyClick(), far);
        EXPECT_FALSE(selection.hasSelection()) << "the selection is cleared";
    }
}

TEST_F(DisplayWidgetMouse, ToleranceIsInImagePixelsAtEveryScale)
{
    viewtest::fillList(model, "20 20 1\n");
    setScale(4.0);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {26 * 4 + 3, 20 * 4});
    EXPECT_TRUE(selection.hasSelection());
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {27 * 4, 20 * 4});
    EXPECT_FALSE(selection.hasSelection());
    EXPECT_EQ(onlyClick(), QPoint(27, 20));
}

TEST_F(DisplayWidgetMouse, ClickReplacesAFormerSelection)
{
    viewtest::fillList(model, "50 40 1\n90 10 1\n");
    selection.select(model.index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {90, 10});
    EXPECT_EQ(selection.selectedRows(), QModelIndexList{model.index(1, 0)});
}

TEST_F(DisplayWidgetMouse, ClickWithoutAListOrASelectionModelReportsThePosition)
{
    viewtest::fillList(model, "50 40 1\n");
    display.setSelectionModel(nullptr);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {50, 40});
    EXPECT_TRUE(clicked.isEmpty()) << "the entry was hit";
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {70, 40});
    EXPECT_EQ(onlyClick(), QPoint(70, 40));
    display.setModel(nullptr);
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {50, 40});
    EXPECT_EQ(onlyClick(), QPoint(50, 40));
}

TEST_F(DisplayWidgetMouse, ClickInAFittedPictureIsDividedByTheFitFactor)
{
    display.resize(802, 602);
    setScale(0.0); // 400 × 300 shown as 800 × 600
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {399, 201});
    EXPECT_EQ(onlyClick(), QPoint(199, 100));
    display.resize(102, 202);
    setScale(0.0); // shown as 100 × 75
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {99, 74});
    EXPECT_EQ(onlyClick(), QPoint(396, 296));
}

TEST_F(DisplayWidgetMouse, ClickInFitModeWithoutAPictureReportsNothing)
{
    viewtest::fillList(model, "50 40 1\n");
    selection.select(model.index(0, 0), QItemSelectionModel::Select);
    setScale(0.0);
    display.clear();
    QTest::mousePress(display.viewport(), Qt::LeftButton, {}, {50, 40});
    EXPECT_TRUE(clicked.isEmpty());
    EXPECT_TRUE(selection.hasSelection());
}

TEST_F(DisplayWidgetMouse, MiddleButtonIsLeftToTheParents)
{
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(50, 40), QPointF(50, 40), Qt::MiddleButton,
                      Qt::MiddleButton, Qt::NoModifier);
    QCoreApplication::sendEvent(display.viewport(), &event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_TRUE(clicked.isEmpty());
}

TEST_F(DisplayWidgetMouse, RightButtonComesFirstWhenBothAreHeld)
{
    setScale(4.0);
    press(Qt::LeftButton, Qt::LeftButton | Qt::RightButton, {100, 100});
    EXPECT_TRUE(clicked.isEmpty());
    move(Qt::LeftButton | Qt::RightButton, {90, 95});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 10);
    EXPECT_EQ(display.verticalScrollBar()->value(), 5);
}

TEST_F(DisplayWidgetMouse, RightDragOfThirtyPixelsToTheLeftScrollsThirtyToTheRight)
{
    setScale(4.0);
    press(Qt::RightButton, Qt::RightButton, {100, 100});
    move(Qt::RightButton, {70, 100});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 30);
    EXPECT_EQ(display.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(clicked.isEmpty());
}

TEST_F(DisplayWidgetMouse, RightDragScrollsByTheTravelSinceTheLastMove)
{
    setScale(4.0);
    press(Qt::RightButton, Qt::RightButton, {100, 100});
    move(Qt::RightButton, {80, 60});
    move(Qt::RightButton, {85, 50});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 15);
    EXPECT_EQ(display.verticalScrollBar()->value(), 50);
}

TEST_F(DisplayWidgetMouse, RightDragStartsAtEachPress)
{
    setScale(4.0);
    press(Qt::RightButton, Qt::RightButton, {100, 100});
    move(Qt::RightButton, {70, 100});
    press(Qt::RightButton, Qt::RightButton, {20, 20});
    move(Qt::RightButton, {10, 20});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 40);
}

TEST_F(DisplayWidgetMouse, RightDragCountsWholeLogicalPixels)
{
    setScale(4.0);
    press(Qt::RightButton, Qt::RightButton, {100, 100});
    move(Qt::RightButton, {70.5, 90.5});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 30);
    EXPECT_EQ(display.verticalScrollBar()->value(), 10);
}

TEST_F(DisplayWidgetMouse, MovesWithOtherButtonsDoNothing)
{
    setScale(4.0);
    press(Qt::RightButton, Qt::RightButton, {100, 100});
    for (const Qt::MouseButtons buttons :
         {Qt::MouseButtons(Qt::NoButton), Qt::MouseButtons(Qt::LeftButton),
          Qt::MouseButtons(Qt::MiddleButton)}) {
        move(buttons, {50, 50});
        EXPECT_EQ(display.horizontalScrollBar()->value(), 0);
    }
    move(Qt::RightButton, {90, 100});
    EXPECT_EQ(display.horizontalScrollBar()->value(), 10) << "they are not remembered either";
}

TEST_F(DisplayWidgetMouse, KeysAreIgnoredAndDoNotScroll)
{
    setScale(4.0);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down,
                              Qt::Key_PageDown, Qt::Key_A, Qt::Key_Delete}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&display, &event);
        EXPECT_FALSE(event.isAccepted());
    }
    EXPECT_EQ(display.horizontalScrollBar()->value(), 0);
    EXPECT_EQ(display.verticalScrollBar()->value(), 0);
}
