#include "widgets/DoubleParameterWidget.h"

#include <QDoubleSpinBox>
#include <QSignalBlocker>
#include <QSlider>

#include <cmath>
#include <limits>

namespace {

/// Truncates toward zero. What no int holds becomes the nearest one that does, and a quotient of
/// zeros becomes 0: an empty range and an increment of 0 give such.
int truncated(double position)
{
    if (std::isnan(position)) {
        return 0;
    }
    constexpr double Lowest = std::numeric_limits<int>::min();
    constexpr double Highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::fmin(std::fmax(position, Lowest), Highest));
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
    // The slider's signals are not blocked on purpose: where it moves, changeValueRelative() snaps
    // the spin box to the slider's grid.
    slider()->setValue(truncated(slider()->maximum() * ((value - minimum) / (maximum - minimum))));
}

void DoubleParameterWidget::changeValueRelative(int value)
{
    static bool enabled = true;
    if (!enabled) {
        return;
    }
    const Synchronising synchronising(enabled, m_emitEnabled);
    // A slider without a range has one position only, and that has no value to tell.
    if (slider()->maximum() == 0) {
        return;
    }
    const double minimum = m_spinBox->minimum();
    const double maximum = m_spinBox->maximum();
    const QSignalBlocker blocker(m_spinBox);
    m_spinBox->setValue(minimum + (double{1} * value / slider()->maximum()) * (maximum - minimum));
}

void DoubleParameterWidget::emitValueChanged()
{
    if (m_emitEnabled) {
        emit valueChanged(m_spinBox->value());
    }
}

void DoubleParameterWidget::setParam(CameraParameter<double>& param)
{
    m_spinBox->setMinimum(param.min);
    m_spinBox->setMaximum(param.max);
    // Negative on purpose: stepping down raises the value, as users of this editor know it.
    m_spinBox->setSingleStep((param.min - param.max) / 100);
    m_spinBox->setValue(param.value);
    slider()->setMinimum(0);
    slider()->setMaximum(truncated((param.max - param.min) / param.increment));
    slider()->setValue(truncated((param.value - param.min) / param.increment));
}
