// SPDX-License-Identifier: MIT
#include "view/MagnifierControl.h"

#include "view/Magnifier.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace {

constexpr int MinimumSliderZoom = 5;
constexpr int MaximumSliderZoom = 100;
constexpr double DegreesPerWheelUnit = 0.125;
constexpr double DegreesPerNotch = 15.0;

} // namespace

MagnifierControl::MagnifierControl(QWidget* parent)
    : QWidget(parent)
    , m_magnifier(new Magnifier(this))
    , m_zoomSlider(new QSlider(Qt::Horizontal, this))
    , m_bayerColorLabel(new QLabel(this))
    , m_valueLabel(new QLabel(this))
{
    m_magnifier->setMinimumSize(160, 120);
    m_zoomSlider->setRange(MinimumSliderZoom, MaximumSliderZoom);
    m_zoomSlider->setValue(m_magnifier->zoom());
    setToolTip(tr("Click to center"));

    auto* const layout = new QVBoxLayout(this);
    auto* const view = new QVBoxLayout;
    view->addWidget(m_magnifier, 1);
    view->addWidget(m_zoomSlider);
    layout->addLayout(view);
    auto* const pixelInfo = new QHBoxLayout;
    pixelInfo->addWidget(new QLabel(tr("Bayer Color:"), this));
    pixelInfo->addWidget(m_bayerColorLabel);
    pixelInfo->addWidget(new QLabel(tr("Value: "), this));
    pixelInfo->addWidget(m_valueLabel);
    layout->addLayout(pixelInfo);

    connect(m_zoomSlider, &QSlider::valueChanged, m_magnifier, &Magnifier::setZoom);
    connect(m_magnifier, &Magnifier::pixelInfoChanged, this, &MagnifierControl::setPixelInfo);
}

void MagnifierControl::setPixelInfo(QString bayerColor, int value)
{
    m_bayerColorLabel->setText(bayerColor);
    m_valueLabel->setText(QString::number(value));
}

void MagnifierControl::wheelEvent(QWheelEvent* event)
{
    const int delta = event->angleDelta().y();
    if (delta == 0) {
        QWidget::wheelEvent(event);
        return;
    }
    const double notches = delta * DegreesPerWheelUnit / DegreesPerNotch;
    m_zoomSlider->setValue(
        static_cast<int>(m_zoomSlider->value() + m_zoomSlider->singleStep() * notches));
    event->accept();
}
