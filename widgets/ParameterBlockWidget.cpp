// SPDX-License-Identifier: MIT
#include "widgets/ParameterBlockWidget.h"

#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterWidget.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>

ParameterBlockWidget::ParameterBlockWidget(QWidget* parent)
    : QWidget(parent)
    , m_framerate(new DoubleParameterWidget(this))
    , m_exposure(new DoubleParameterWidget(this))
    , m_mastergain(new ParameterWidget(this))
    , m_layout(new QGridLayout(this))
{
    const auto addRow = [this](int row, auto* widget, const QString& text) {
        widget->setText(text);
        m_layout->addWidget(widget->label(), row, 0);
        m_layout->addWidget(widget->slider(), row, 1);
        m_layout->addWidget(widget->spinBox(), row, 2);
    };
    addRow(0, m_framerate, tr("Framerate"));
    addRow(1, m_exposure, tr("Exposure"));
    addRow(2, m_mastergain, tr("Mastergain"));
}
