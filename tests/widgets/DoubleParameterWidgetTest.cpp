// SPDX-License-Identifier: MIT
#include "widgets/DoubleParameterWidget.h"

#include "tests/harness/MethodsOf.h"

#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

/// 0 to 10 in steps of 0.5, at 2.5.
class DoubleParameter : public testing::Test
{
protected:
    DoubleParameter()
    {
        m_widget.setParam(m_param);
        QObject::connect(&m_widget, &DoubleParameterWidget::valueChanged,
                         [this](double value) { m_reports.push_back(value); });
    }

    [[nodiscard]] double value() const { return m_widget.spinBox()->value(); }
    [[nodiscard]] int position() const { return m_widget.slider()->value(); }

    CameraParameter<double> m_param{.min = 0, .max = 10, .increment = 0.5, .value = 2.5};
    DoubleParameterWidget m_widget;
    std::vector<double> m_reports;
};

} // namespace

TEST_F(DoubleParameter, HasItsSignalAndSlotsInTheirOrder)
{
    EXPECT_STREQ(m_widget.metaObject()->className(), "DoubleParameterWidget");
    EXPECT_EQ(methodsOf(*m_widget.metaObject()),
              QStringList({"signal valueChanged(double)", "public changeValue(double)",
                           "public changeValueRelative(int)", "public emitValueChanged()",
                           "public setParam(CameraParameter<double>&)"}));
}

TEST_F(DoubleParameter, CountsTheIncrementsOnTheSlider)
{
    EXPECT_EQ(m_widget.slider()->minimum(), 0);
    EXPECT_EQ(m_widget.slider()->maximum(), 20);
    EXPECT_EQ(position(), 5);
    EXPECT_EQ(m_widget.spinBox()->minimum(), 0.0);
    EXPECT_EQ(m_widget.spinBox()->maximum(), 10.0);
    EXPECT_EQ(value(), 2.5);
    EXPECT_EQ(m_widget.param().increment, 0.5);
}

TEST_F(DoubleParameter, TruncatesTheNumberOfStepsAndThePosition)
{
    m_param = {.min = 1, .max = 9.9, .increment = 1, .value = 3.9};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), 8) << "8.9";
    EXPECT_EQ(position(), 2) << "2.9";
}

TEST_F(DoubleParameter, HandsOverANegativeSingleStepThatTheSpinBoxRefuses)
{
    EXPECT_EQ(m_widget.spinBox()->singleStep(), 1.0);
    m_widget.spinBox()->stepUp();
    EXPECT_EQ(value(), 3.5);
}

TEST_F(DoubleParameter, HandsOverASingleStepOfZeroForAnEmptyRange)
{
    m_param = {.min = 3, .max = 3, .increment = 1, .value = 3};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.spinBox()->singleStep(), 0.0);
}

TEST_F(DoubleParameter, SnapsAValueToTheSlidersGridBeforeItReportsIt)
{
    m_widget.spinBox()->setValue(7.8);
    EXPECT_EQ(position(), 15) << "20 × 0.78 is 15.6";
    EXPECT_EQ(value(), 7.5);
    EXPECT_EQ(m_reports, (std::vector<double>{7.5}));
}

TEST_F(DoubleParameter, KeepsAValueThatLeavesTheSliderWhereItIs)
{
    m_widget.spinBox()->setValue(2.7);
    EXPECT_EQ(position(), 5) << "20 × 0.27 is 5.4";
    EXPECT_EQ(value(), 2.7);
    EXPECT_EQ(m_reports, (std::vector<double>{2.7}));
}

TEST_F(DoubleParameter, ReportsAValueOnTheGridOnce)
{
    m_widget.spinBox()->setValue(5.0);
    EXPECT_EQ(position(), 10);
    EXPECT_EQ(m_reports, (std::vector<double>{5.0}));
}

TEST_F(DoubleParameter, DraggingTheSliderReportsOnlyOnRelease)
{
    m_widget.slider()->setSliderDown(true);
    for (const int step : {6, 10, 14}) {
        m_widget.slider()->setSliderPosition(step);
        EXPECT_EQ(value(), step * 0.5);
    }
    EXPECT_EQ(m_reports.size(), 0U);
    m_widget.slider()->setSliderDown(false);
    EXPECT_EQ(m_reports, (std::vector<double>{7.0}));
}

TEST_F(DoubleParameter, AClickOnTheSlidersTrackMovesTheSpinBoxWithoutAReport)
{
    m_widget.slider()->resize(300, 30);
    m_widget.slider()->show();
    QTest::mouseClick(m_widget.slider(), Qt::LeftButton, Qt::NoModifier, QPoint(290, 15));
    EXPECT_EQ(position(), 9) << "a page step of 4";
    EXPECT_EQ(value(), 4.5);
    EXPECT_EQ(m_reports.size(), 0U);
}

TEST_F(DoubleParameter, FollowsTheSliderWithTheSpinBoxsSignalsBlocked)
{
    const QSignalSpy spinBoxSpy(m_widget.spinBox(), &QDoubleSpinBox::valueChanged);
    m_widget.changeValueRelative(8);
    EXPECT_EQ(value(), 4.0);
    EXPECT_EQ(spinBoxSpy.count(), 0);
}

TEST_F(DoubleParameter, ReportsItsValueWhenAsked)
{
    m_widget.emitValueChanged();
    EXPECT_EQ(m_reports, (std::vector<double>{2.5}));
}

// A new range moves the spin box, and the window answers a moved spin box by setting the camera,
// which writes what came of it into the same record.
TEST_F(DoubleParameter, ShowsWhatItWasGivenAlsoWhenTheRecordChangesMeanwhile)
{
    m_param = {.min = 4, .max = 8, .increment = 0.5, .value = 6};
    QObject::connect(&m_widget, &DoubleParameterWidget::valueChanged,
                     [this] { m_param = {.min = 0, .max = 5, .increment = 1, .value = 1}; });
    m_widget.setParam(m_param);
    EXPECT_FALSE(m_reports.empty());
    EXPECT_EQ(value(), 6.0);
    EXPECT_EQ(m_widget.spinBox()->maximum(), 8.0);
    EXPECT_EQ(m_widget.slider()->maximum(), 8);
    EXPECT_EQ(position(), 4);
}

TEST_F(DoubleParameter, ReportsAValueThatANewParameterChanges)
{
    m_param.value = 5;
    m_widget.setParam(m_param);
    EXPECT_EQ(value(), 5.0);
    EXPECT_EQ(position(), 10);
    EXPECT_EQ(m_reports, (std::vector<double>{5.0}));
    m_widget.setParam(m_param);
    EXPECT_EQ(m_reports.size(), 1U) << "the same value again";
}

TEST_F(DoubleParameter, ReportsWhatTheOldGridMakesOfANewParametersValue)
{
    // The slider still has its old 20 steps when the value arrives: 20 × 0.33 is position 6, which
    // is 3.0, and that is what is reported. The new grid of 100 steps then sets the value right,
    // which the slider does not report.
    m_param = {.min = 0, .max = 10, .increment = 0.1, .value = 3.3};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_reports, (std::vector<double>{3.0}));
    EXPECT_EQ(m_widget.slider()->maximum(), 100);
    EXPECT_NEAR(value(), position() * 0.1, 1e-9);
}

TEST_F(DoubleParameter, SharesTheGuardOfItsSlotWithAllInstances)
{
    DoubleParameterWidget other;
    other.setParam(m_param);
    // Runs within changeValue() of the first widget, when its changeValueRelative() is done.
    QObject::connect(m_widget.slider(), &QSlider::valueChanged, &other, [&other] {
        other.changeValue(10);
        EXPECT_EQ(other.slider()->value(), 5) << "the same slot of another widget does nothing";
        other.changeValueRelative(8);
        EXPECT_EQ(other.spinBox()->value(), 4.0) << "another slot works";
    });
    m_widget.spinBox()->setValue(5);
    EXPECT_EQ(position(), 10);

    other.changeValue(10);
    EXPECT_EQ(other.slider()->value(), 20) << "the flag is back";
}

TEST_F(DoubleParameter, KeepsItsValueWhereTheRangeHasNoSteps)
{
    // Less than one increment: the slider has a single position.
    m_param = {.min = 1, .max = 1.4, .increment = 0.5, .value = 1.2};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), 0);
    EXPECT_EQ(value(), 1.2);
    m_widget.spinBox()->setValue(1.3);
    EXPECT_EQ(value(), 1.3);
    m_widget.changeValueRelative(0);
    EXPECT_EQ(value(), 1.3);
}

TEST_F(DoubleParameter, KeepsItsValueWhereTheIncrementIsZero)
{
    m_param.increment = 0;
    m_param.value = 4;
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), 0);
    EXPECT_EQ(position(), 0);
    EXPECT_EQ(value(), 4.0);
    m_widget.spinBox()->setValue(6);
    EXPECT_EQ(value(), 6.0);
}

TEST_F(DoubleParameter, TakesAnEmptyRange)
{
    m_param = {.min = 0, .max = 0, .increment = 1, .value = 0};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), 0);
    EXPECT_EQ(position(), 0);
    EXPECT_EQ(value(), 0.0);
    m_widget.changeValue(0);
    EXPECT_EQ(position(), 0);
}

TEST_F(DoubleParameter, TakesMoreStepsThanASliderCanCount)
{
    m_param = {.min = 0, .max = 1e9, .increment = 1e-9, .value = 5e8};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), std::numeric_limits<int>::max());
}

TEST_F(DoubleParameter, TakesWhatIsNoNumber)
{
    const double nan = std::nan("");
    m_param = {.min = 0, .max = nan, .increment = nan, .value = nan};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.slider()->maximum(), 0);
}
