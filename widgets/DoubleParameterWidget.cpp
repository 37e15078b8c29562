// SPDX-License-Identifier: MIT
#include "widgets/DoubleParameterWidget.h"

#include <QDoubleSpinBox>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Truncates toward zero. What no int holds becomes the nearest one that does. A quotient with a
/// divisor of 0 becomes 0: a property without a range or a step leaves the slider nothing to move.
int truncated(double position)
{
    if (!std::isfinite(position)) {
        return 0;
    }
    constexpr double Lowest = std::numeric_limits<int>::min();
    constexpr double Highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(position, Lowest, Highest));
}

} // namespace

DoubleParameterWidget::DoubleParameterWidget(QObject* parent)
    : BaseParameterWidget(parent)
    , m_spinBox(new QDoubleSpinBox)
{
    setSpinBox(m_spinBox);
    connect(slider(), &QSlider::valueChanged, this, &DoubleParameterWidget::changeValueRelative);
    connect(slider(), &QSlider::sliderReleased, this, &DoubleParameterWidget::emitValueChanged);
    // In this order: a value is snapped before it is reported.
    connect(m_spinBox, &QDoubleSpinBox::valueChanged, this, &DoubleParameterWidget::changeValue);
    connect(m_spinBox, &QDoubleSpinBox::valueChanged, this,
            &DoubleParameterWidget::emitValueChanged);
}

void DoubleParameterWidget::changeValue(double value)
{
    static bool enabled = true;
    if (!enabled) {
        return;
    }
    const Synchronising synchronising(enabled, m_emitEnabled);
    const double minimum = m_spinBox->minimum();
    const double maximum = m_spinBox->maximum();
    // The slider's signals are not blocked (behaviour.md: snap).
    slider()->setValue(truncated(slider()->maximum() * ((value - minimum) / (maximum - minimum))));
}

void DoubleParameterWidget::changeValueRelative(int value)
{
    static bool enabled = true;
    if (!enabled) {
        return;
    }
    const Synchronising synchronising(enabled, m_emitEnabled);
    const double range = slider()->maximum();
    if (range == 0) {
        // The only position there is tells nothing about the value.
        return;
    }
    const double minimum = m_spinBox->minimum();
    const double maximum = m_spinBox->maximum();
    const QSignalBlocker blocker(m_spinBox);
    m_spinBox->setValue(minimum + (value / range) * (maximum - minimum));
}

void DoubleParameterWidget::emitValueChanged()
{
    if (m_emitEnabled) {
        emit valueChanged(m_spinBox->value());
    }
}

void DoubleParameterWidget::setParam(CameraParameter<double>& param)
{
    // A copy: a new range alone may move the spin box, and whoever hears of that may change the
    // record behind the reference before its value was shown.
    m_param = param;
    const CameraParameter<double> given = param;
    m_spinBox->setMinimum(given.min);
    m_spinBox->setMaximum(given.max);
    // behaviour.md: negative-step
    m_spinBox->setSingleStep((given.min - given.max) / 100);
    m_spinBox->setValue(given.value);
    slider()->setMinimum(0);
    slider()->setMaximum(truncated((given.max - given.min) / given.increment));
    slider()->setValue(truncated((given.value - given.min) / given.increment));
}
