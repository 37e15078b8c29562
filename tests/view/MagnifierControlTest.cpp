// SPDX-License-Identifier: MIT
#include "view/MagnifierControl.h"

#include "tests/harness/MethodsOf.h"
#include "tests/view/ViewTestSupport.h"
#include "view/Magnifier.h"

#include <QBoxLayout>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace {

/// The label at place `index` of the panel's last row.
QLabel* infoLabel(const MagnifierControl& panel, int index)
{
    return qobject_cast<QLabel*>(panel.layout()->itemAt(1)->layout()->itemAt(index)->widget());
}

/// Turns the wheel over the panel; whether the panel took the event.
bool turnWheel(MagnifierControl& panel, const QPoint& angleDelta)
{
    QWheelEvent event({50, 50}, panel.mapToGlobal(QPointF(50, 50)), {}, angleDelta, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    event.ignore();
    QCoreApplication::sendEvent(&panel, &event);
    return event.isAccepted();
}

} // namespace

TEST(MagnifierControlLayout, HasTheMagnifierAndItsSliderAboveTheInformation)
{
    const MagnifierControl panel;
    const auto* outer = qobject_cast<QVBoxLayout*>(panel.layout());
    ASSERT_NE(outer, nullptr);
    ASSERT_EQ(outer->count(), 2);

    const auto* view = qobject_cast<QVBoxLayout*>(outer->itemAt(0)->layout());
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(view->count(), 2);
    EXPECT_EQ(view->itemAt(0)->widget(), panel.magnifier());
    EXPECT_EQ(view->stretch(0), 1);
    EXPECT_EQ(view->itemAt(1)->widget(), panel.zoomSlider());
    EXPECT_EQ(view->stretch(1), 0);
    EXPECT_EQ(panel.magnifier()->minimumSize(), QSize(160, 120));

    const auto* information = qobject_cast<QHBoxLayout*>(outer->itemAt(1)->layout());
    ASSERT_NE(information, nullptr);
    ASSERT_EQ(information->count(), 4);
    const QStringList texts{"Bayer Color:", "", "Value: ", ""};
    for (int i = 0; i < 4; ++i) {
        ASSERT_NE(infoLabel(panel, i), nullptr);
        EXPECT_EQ(infoLabel(panel, i)->text(), texts[i]);
    }
    EXPECT_EQ(panel.toolTip(), "Click to center");
}

TEST(MagnifierControlSlider, GoesFromFiveToAHundredAndStartsAtTheMagnifiersZoom)
{
    const MagnifierControl panel;
    EXPECT_EQ(panel.zoomSlider()->orientation(), Qt::Horizontal);
    EXPECT_EQ(panel.zoomSlider()->minimum(), 5);
    EXPECT_EQ(panel.zoomSlider()->maximum(), 100);
    EXPECT_EQ(panel.zoomSlider()->value(), 20);
    EXPECT_EQ(panel.magnifier()->zoom(), 20);
}

TEST(MagnifierControlSlider, SetsTheZoom)
{
    const MagnifierControl panel;
    panel.zoomSlider()->setValue(33);
    EXPECT_EQ(panel.magnifier()->zoom(), 33);
}

TEST(MagnifierControlInterface, HasOneSlot)
{
    EXPECT_EQ(methodsOf(MagnifierControl::staticMetaObject),
              QStringList{"public setPixelInfo(QString,int)"});
}

TEST(MagnifierControlInformation, ShowsTheWordAndTheValueInDecimal)
{
    MagnifierControl panel;
    panel.setPixelInfo(QStringLiteral("G"), 7);
    EXPECT_EQ(infoLabel(panel, 1)->text(), "G");
    EXPECT_EQ(infoLabel(panel, 3)->text(), "7");
    panel.setPixelInfo(QStringLiteral("%1"), 12345);
    EXPECT_EQ(infoLabel(panel, 1)->text(), "%1");
    EXPECT_EQ(infoLabel(panel, 3)->text(), "12345");
}

TEST(MagnifierControlInformation, FollowsTheMagnifier)
{
    const MagnifierControl panel;
    QImage image = viewtest::plainImage(40, 30, 203);
    panel.magnifier()->resize(160, 120);
    panel.magnifier()->setImage(image);
    panel.magnifier()->setPosition({3, 5});
    EXPECT_EQ(infoLabel(panel, 1)->text(), "B");
    EXPECT_EQ(infoLabel(panel, 3)->text(), "203");
}

struct WheelTurn
{
    int from;
    int singleStep;
    int delta;
    int value;
};

void PrintTo(const WheelTurn& c, std::ostream* out)
{
    viewtest::print(out, c.from, c.singleStep, c.delta, c.value);
}

class MagnifierControlWheel : public ::testing::TestWithParam<WheelTurn>
{};

// A notch is 120; the sum of value and turn is cut, so half a notch down costs a whole step.
INSTANTIATE_TEST_SUITE_P(TurnsTheZoom, MagnifierControlWheel,
                         ::testing::Values(WheelTurn{20, 1, 120, 21}, WheelTurn{20, 1, -120, 19},
                                           WheelTurn{20, 1, 60, 20}, WheelTurn{20, 1, -60, 19},
                                           WheelTurn{20, 1, 300, 22}, WheelTurn{20, 5, 120, 25},
                                           WheelTurn{20, 5, 60, 22}, WheelTurn{20, 5, -60, 17},
                                           WheelTurn{100, 1, 120, 100}, WheelTurn{5, 1, -120, 5},
                                           WheelTurn{6, 3, -240, 5}));

TEST_P(MagnifierControlWheel, BySingleStepsCutTowardZeroWithinTheSlidersRange)
{
    MagnifierControl panel;
    panel.zoomSlider()->setValue(GetParam().from);
    panel.zoomSlider()->setSingleStep(GetParam().singleStep);
    EXPECT_TRUE(turnWheel(panel, {0, GetParam().delta}));
    EXPECT_EQ(panel.zoomSlider()->value(), GetParam().value);
    EXPECT_EQ(panel.magnifier()->zoom(), GetParam().value);
}

TEST(MagnifierControlWheel, HorizontalWheelIsLeftToTheParents)
{
    MagnifierControl panel;
    EXPECT_FALSE(turnWheel(panel, {120, 0}));
    EXPECT_EQ(panel.zoomSlider()->value(), 20);
    EXPECT_TRUE(turnWheel(panel, {120, 120})) << "a slanted turn has a vertical part";
    EXPECT_EQ(panel.zoomSlider()->value(), 21);
}
