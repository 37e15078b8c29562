// SPDX-License-Identifier: MIT
#include "widgets/BaseParameterWidget.h"

#include <QLabel>
#include <QSlider>

BaseParameterWidget::Synchronising::Synchronising(bool& guard, bool& emitEnabled)
    : m_guard(guard)
    , m_emitEnabled(emitEnabled)
{
    m_guard = false;
    m_emitEnabled = false;
}

BaseParameterWidget::Synchronising::~Synchronising()
{
    m_guard = true;
    m_emitEnabled = true;
}

BaseParameterWidget::BaseParameterWidget(QObject* parent)
    : QObject(parent)
    , m_label(new QLabel)
    , m_slider(new QSlider(Qt::Horizontal))
{
    m_slider->setSingleStep(1);
    m_slider->setPageStep(4);
}

BaseParameterWidget::~BaseParameterWidget()
{
    // The layout's window may have deleted them already; the pointers know.
    delete m_spinBox;
    delete m_slider;
    delete m_label;
}

QLabel* BaseParameterWidget::label() const
{
    return m_label;
}

QSlider* BaseParameterWidget::slider() const
{
    return m_slider;
}

void BaseParameterWidget::setEnabled(bool enabled)
{
    m_spinBox->setEnabled(enabled);
    m_label->setEnabled(enabled);
    m_slider->setEnabled(enabled);
}

void BaseParameterWidget::setText(QString text)
{
    m_label->setText(text);
}

void BaseParameterWidget::setSpinBox(QWidget* spinBox)
{
    m_spinBox = spinBox;
}
