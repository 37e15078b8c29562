// SPDX-License-Identifier: MIT
#include "widgets/BaseParameterWidget.h"

#include "tests/harness/MethodsOf.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterWidget.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QSlider>
#include <QSpinBox>
#include <gtest/gtest.h>

#include <memory>

template <typename Widget>
class AnyParameterWidget : public testing::Test
{};

using Kinds = testing::Types<ParameterWidget, DoubleParameterWidget>;
TYPED_TEST_SUITE(AnyParameterWidget, Kinds);

TEST(BaseParameterWidget, HasOneSlot)
{
    EXPECT_STREQ(BaseParameterWidget::staticMetaObject.className(), "BaseParameterWidget");
    EXPECT_EQ(methodsOf(BaseParameterWidget::staticMetaObject),
              QStringList{"public setText(QString)"});
}

TYPED_TEST(AnyParameterWidget, MakesItsControlsWithoutAParent)
{
    const TypeParam widget;
    EXPECT_EQ(widget.label()->parent(), nullptr);
    EXPECT_EQ(widget.slider()->parent(), nullptr);
    EXPECT_EQ(widget.spinBox()->parent(), nullptr);
}

TYPED_TEST(AnyParameterWidget, HasAHorizontalSliderWithSteps1And4)
{
    const TypeParam widget;
    EXPECT_EQ(widget.slider()->orientation(), Qt::Horizontal);
    EXPECT_EQ(widget.slider()->singleStep(), 1);
    EXPECT_EQ(widget.slider()->pageStep(), 4);
}

TYPED_TEST(AnyParameterWidget, ShowsItsTextInTheLabel)
{
    TypeParam widget;
    widget.setText("Threshold");
    EXPECT_EQ(widget.label()->text(), "Threshold");
}

TYPED_TEST(AnyParameterWidget, EnablesAndDisablesAllThreeTogether)
{
    TypeParam widget;
    for (const bool enabled : {false, true}) {
        widget.setEnabled(enabled);
        EXPECT_EQ(widget.label()->isEnabled(), enabled);
        EXPECT_EQ(widget.slider()->isEnabled(), enabled);
        EXPECT_EQ(widget.spinBox()->isEnabled(), enabled);
    }
}

TYPED_TEST(AnyParameterWidget, StartsWithTheParameterOfNoRange)
{
    const TypeParam widget;
    EXPECT_EQ(widget.param().min, 0);
    EXPECT_EQ(widget.param().max, 0);
    EXPECT_EQ(widget.param().increment, 1);
    EXPECT_EQ(widget.param().value, 0);
}

TYPED_TEST(AnyParameterWidget, TakesControlsThatWereNeverPlacedWithIt)
{
    auto widget = std::make_unique<TypeParam>();
    const QPointer<QWidget> label = widget->label();
    const QPointer<QWidget> slider = widget->slider();
    const QPointer<QWidget> spinBox = widget->spinBox();
    widget.reset();
    EXPECT_TRUE(label.isNull());
    EXPECT_TRUE(slider.isNull());
    EXPECT_TRUE(spinBox.isNull());
}

TYPED_TEST(AnyParameterWidget, OutlivesTheWindowThatOwnsItsControls)
{
    const TypeParam widget;
    auto window = std::make_unique<QWidget>();
    auto* layout = new QHBoxLayout(window.get());
    layout->addWidget(widget.label());
    layout->addWidget(widget.slider());
    layout->addWidget(widget.spinBox());
    const QPointer<QWidget> slider = widget.slider();
    window.reset();
    EXPECT_TRUE(slider.isNull());
}

TYPED_TEST(AnyParameterWidget, MayBeAChildOfTheWindowThatOwnsItsControls)
{
    auto window = std::make_unique<QWidget>();
    auto* first = new TypeParam(window.get());
    auto* layout = new QHBoxLayout(window.get());
    auto* second = new TypeParam(window.get());
    for (const TypeParam* widget : {first, second}) {
        layout->addWidget(widget->label());
        layout->addWidget(widget->slider());
        layout->addWidget(widget->spinBox());
    }
    const QPointer<QWidget> slider = second->slider();
    window.reset();
    EXPECT_TRUE(slider.isNull());
}
