// SPDX-License-Identifier: MIT
#include "widgets/ParameterWidget.h"

#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

ParameterWidget::ParameterWidget(QObject* parent)
    : BaseParameterWidget(parent)
    , m_spinBox(new QSpinBox)
{
    setSpinBox(m_spinBox);
    connect(slider(), &QSlider::valueChanged, this, &ParameterWidget::changeValue);
    connect(slider(), &QSlider::sliderReleased, this, &ParameterWidget::emitValueChanged);
    connect(m_spinBox, &QSpinBox::valueChanged, this, &ParameterWidget::changeValue);
    connect(m_spinBox, &QSpinBox::valueChanged, this, &ParameterWidget::emitValueChanged);
}

void ParameterWidget::changeValue(int value)
{
    static bool enabled = true;
    if (!enabled) {
        return;
    }
    const Synchronising synchronising(enabled, m_emitEnabled);
    const QSignalBlocker sliderBlocker(slider());
    const QSignalBlocker spinBoxBlocker(m_spinBox);
    slider()->setValue(value);
    m_spinBox->setValue(value);
}

void ParameterWidget::emitValueChanged()
{
    if (m_emitEnabled) {
        emit valueChanged(m_spinBox->value());
    }
}

void ParameterWidget::setParam(CameraParameter<int>& param)
{
    m_param = param;
    // A copy, as in DoubleParameterWidget::setParam().
    const CameraParameter<int> given = param;
    m_spinBox->setMinimum(given.min);
    m_spinBox->setMaximum(given.max);
    m_spinBox->setSingleStep(given.increment);
    m_spinBox->setValue(given.value);
    slider()->setMinimum(given.min);
    slider()->setMaximum(given.max);
    slider()->setValue(given.value);
}
