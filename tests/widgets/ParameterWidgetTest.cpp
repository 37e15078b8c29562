// SPDX-License-Identifier: MIT
#include "widgets/ParameterWidget.h"

#include "tests/harness/MethodsOf.h"

#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include <vector>

namespace {

/// The detection threshold: 5 to 255 at 40.
class Threshold : public testing::Test
{
protected:
    Threshold()
    {
        m_widget.setParam(m_param);
        QObject::connect(&m_widget, &ParameterWidget::valueChanged,
                         [this](int value) { m_reports.push_back(value); });
    }

    CameraParameter<int> m_param{.min = 5, .max = 255, .increment = 1, .value = 40};
    ParameterWidget m_widget;
    std::vector<int> m_reports;
};

} // namespace

TEST_F(Threshold, HasItsSignalAndSlotsInTheirOrder)
{
    EXPECT_STREQ(m_widget.metaObject()->className(), "ParameterWidget");
    EXPECT_EQ(methodsOf(*m_widget.metaObject()),
              QStringList({"signal valueChanged(int)", "public changeValue(int)",
                           "public emitValueChanged()", "public setParam(CameraParameter<int>&)"}));
}

TEST_F(Threshold, RunsFrom5To255AndStartsAt40)
{
    EXPECT_EQ(m_widget.spinBox()->minimum(), 5);
    EXPECT_EQ(m_widget.spinBox()->maximum(), 255);
    EXPECT_EQ(m_widget.spinBox()->singleStep(), 1);
    EXPECT_EQ(m_widget.spinBox()->value(), 40);
    EXPECT_EQ(m_widget.slider()->minimum(), 5);
    EXPECT_EQ(m_widget.slider()->maximum(), 255);
    EXPECT_EQ(m_widget.slider()->value(), 40);
    EXPECT_EQ(m_widget.param().value, 40);
}

TEST_F(Threshold, StepsTheSpinBoxByTheIncrement)
{
    m_param.increment = 7;
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.spinBox()->singleStep(), 7);
    m_widget.spinBox()->stepUp();
    EXPECT_EQ(m_widget.slider()->value(), 47);
}

TEST_F(Threshold, ReportsAChangeOfTheSpinBoxOnceAndAtOnce)
{
    m_widget.spinBox()->setValue(100);
    EXPECT_EQ(m_reports, (std::vector<int>{100}));
    EXPECT_EQ(m_widget.slider()->value(), 100);
}

TEST_F(Threshold, ReportsEveryTypedDigit)
{
    m_widget.spinBox()->selectAll();
    QTest::keyClicks(m_widget.spinBox(), "123");
    EXPECT_EQ(m_reports, (std::vector<int>{12, 123})) << "1 is below the range";
    EXPECT_EQ(m_widget.slider()->value(), 123);
}

TEST_F(Threshold, RefusesValuesOutsideItsRange)
{
    m_widget.spinBox()->setValue(1000);
    EXPECT_EQ(m_widget.spinBox()->value(), 255);
    m_widget.spinBox()->setValue(4);
    EXPECT_EQ(m_widget.spinBox()->value(), 5);
    EXPECT_EQ(m_reports, (std::vector<int>{255, 5}));
}

TEST_F(Threshold, DraggingTheSliderReportsOnlyOnRelease)
{
    m_widget.slider()->setSliderDown(true);
    for (const int position : {50, 60, 70}) {
        m_widget.slider()->setSliderPosition(position);
        EXPECT_EQ(m_widget.spinBox()->value(), position);
    }
    EXPECT_EQ(m_reports.size(), 0U);
    m_widget.slider()->setSliderDown(false);
    EXPECT_EQ(m_reports, (std::vector<int>{70}));
}

TEST_F(Threshold, ASliderPageStepMovesTheSpinBoxWithoutAReport)
{
    m_widget.slider()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(m_widget.spinBox()->value(), 44);
    EXPECT_EQ(m_reports.size(), 0U);
}

TEST_F(Threshold, ChangesItsValueWithoutAReport)
{
    m_widget.changeValue(99);
    EXPECT_EQ(m_widget.spinBox()->value(), 99);
    EXPECT_EQ(m_widget.slider()->value(), 99);
    EXPECT_EQ(m_reports.size(), 0U);
}

TEST_F(Threshold, BringsItsControlsInLineWithTheirSignalsBlocked)
{
    const QSignalSpy sliderSpy(m_widget.slider(), &QSlider::valueChanged);
    const QSignalSpy spinBoxSpy(m_widget.spinBox(), &QSpinBox::valueChanged);
    m_widget.changeValue(99);
    EXPECT_EQ(sliderSpy.count(), 0);
    EXPECT_EQ(spinBoxSpy.count(), 0);
}

TEST_F(Threshold, ReportsItsValueWhenAsked)
{
    m_widget.emitValueChanged();
    EXPECT_EQ(m_reports, (std::vector<int>{40}));
}

TEST_F(Threshold, ReportsAValueThatANewParameterChanges)
{
    m_param.value = 41;
    m_widget.setParam(m_param);
    EXPECT_EQ(m_reports, (std::vector<int>{41}));
    m_widget.setParam(m_param);
    EXPECT_EQ(m_reports.size(), 1U) << "the same value again";
}

TEST_F(Threshold, ShowsWhatItWasGivenAlsoWhenTheRecordChangesMeanwhile)
{
    m_param = {.min = 50, .max = 60, .increment = 2, .value = 55};
    QObject::connect(&m_widget, &ParameterWidget::valueChanged,
                     [this] { m_param = {.min = 0, .max = 9, .increment = 1, .value = 1}; });
    m_widget.setParam(m_param);
    EXPECT_EQ(m_widget.spinBox()->value(), 55);
    EXPECT_EQ(m_widget.spinBox()->maximum(), 60);
    EXPECT_EQ(m_widget.spinBox()->singleStep(), 2);
    EXPECT_EQ(m_widget.slider()->minimum(), 50);
    EXPECT_EQ(m_widget.slider()->maximum(), 60);
    EXPECT_EQ(m_widget.slider()->value(), 55);
}

TEST_F(Threshold, ReportsAValueThatANewRangeCutsOff)
{
    m_param = {.min = 50, .max = 60, .increment = 1, .value = 55};
    m_widget.setParam(m_param);
    EXPECT_EQ(m_reports, (std::vector<int>{50, 55}));
}

TEST(ParameterWidget, TakesAParameterWithoutARange)
{
    ParameterWidget widget;
    CameraParameter<int> param{.min = 0, .max = 0, .increment = 0, .value = 0};
    widget.setParam(param);
    EXPECT_EQ(widget.slider()->maximum(), 0);
    EXPECT_EQ(widget.spinBox()->maximum(), 0);
    EXPECT_EQ(widget.spinBox()->value(), 0);
}
