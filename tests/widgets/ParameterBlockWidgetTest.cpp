// SPDX-License-Identifier: MIT
#include "widgets/ParameterBlockWidget.h"

#include "tests/harness/MethodsOf.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterWidget.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>
#include <gtest/gtest.h>

TEST(ParameterBlockWidget, HasNoMethodsOfItsOwn)
{
    EXPECT_STREQ(ParameterBlockWidget::staticMetaObject.className(), "ParameterBlockWidget");
    EXPECT_EQ(methodsOf(ParameterBlockWidget::staticMetaObject), QStringList());
}

TEST(ParameterBlockWidget, HasARowOfLabelSliderAndSpinBoxForEachParameter)
{
    const ParameterBlockWidget block;
    const auto* layout = qobject_cast<QGridLayout*>(block.layout());
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->rowCount(), 3);
    EXPECT_EQ(layout->columnCount(), 3);
    const auto expectRow = [&](int row, const auto* parameter, const QString& text) {
        EXPECT_EQ(parameter->label()->text(), text);
        EXPECT_EQ(layout->itemAtPosition(row, 0)->widget(), parameter->label());
        EXPECT_EQ(layout->itemAtPosition(row, 1)->widget(), parameter->slider());
        EXPECT_EQ(layout->itemAtPosition(row, 2)->widget(), parameter->spinBox());
    };
    expectRow(0, block.framerate(), "Framerate");
    expectRow(1, block.exposure(), "Exposure");
    expectRow(2, block.mastergain(), "Mastergain");
}

TEST(ParameterBlockWidget, IsEnabledAndDisabledAsAWhole)
{
    ParameterBlockWidget block;
    block.setEnabled(false);
    EXPECT_FALSE(block.framerate()->slider()->isEnabled());
    EXPECT_FALSE(block.mastergain()->spinBox()->isEnabled());
    block.setEnabled(true);
    EXPECT_TRUE(block.exposure()->spinBox()->isEnabled());
}
