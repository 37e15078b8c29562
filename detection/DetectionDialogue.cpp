// SPDX-License-Identifier: MIT
#include "detection/DetectionDialogue.h"

#include "camera/CameraParameter.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

constexpr Qt::WindowFlags IdleFlags = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
constexpr int MinimumWidth = 400;

} // namespace

DetectionDialogue::DetectionDialogue(QWidget* parent)
    : QDialog(parent, IdleFlags)
    , m_thresholdWidget(std::make_unique<ParameterWidget>())
    , m_clearBox(new QCheckBox(tr("Clear old hotpixel list")))
    , m_buttonBox(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Close))
    , m_statusLabel(new QLabel)
    , m_countLabel(new QLabel)
    , m_messageLabel(new QLabel)
    , m_progressBar(new QProgressBar)
{
    setWindowTitle(tr("Hotpixel detection"));
    setMinimumWidth(MinimumWidth);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Cover the sensor completely during capturing!\n")));
    addPreferences(layout);
    addProgress(layout);
    m_buttonBox->setObjectName("buttonBox");
    m_buttonBox->button(QDialogButtonBox::Ok)->setText(tr("Start"));
    layout->addWidget(m_buttonBox);

    connect(m_buttonBox, &QDialogButtonBox::accepted, this, &DetectionDialogue::detect);
    connect(m_buttonBox, &QDialogButtonBox::rejected, this, &DetectionDialogue::close);
}

DetectionDialogue::~DetectionDialogue() = default;

void DetectionDialogue::addPreferences(QVBoxLayout* layout)
{
    CameraParameter<int> threshold{.min = 5, .max = 255, .increment = 1, .value = 40};
    m_thresholdWidget->setParam(threshold);
    m_thresholdWidget->setText(tr("Threshold"));
    m_thresholdWidget->slider()->setObjectName("thresholdSlider");
    m_thresholdWidget->spinBox()->setObjectName("thresholdSpinBox");
    m_clearBox->setObjectName("clearBox");

    auto* row = new QHBoxLayout;
    row->addWidget(m_thresholdWidget->label());
    row->addWidget(m_thresholdWidget->slider());
    row->addWidget(m_thresholdWidget->spinBox());

    auto* box = new QGroupBox(tr("Preferences"));
    auto* boxLayout = new QVBoxLayout(box);
    boxLayout->addLayout(row);
    boxLayout->addWidget(m_clearBox);
    layout->addWidget(box);
}

void DetectionDialogue::addProgress(QVBoxLayout* layout)
{
    m_statusLabel->setObjectName("statusLabel");
    m_progressBar->setObjectName("progressBar");
    m_countLabel->setObjectName("countLabel");
    m_messageLabel->setObjectName("messageLabel");
    m_messageLabel->setWordWrap(true);
    showCount();

    auto* box = new QGroupBox(tr("Detection"));
    auto* boxLayout = new QVBoxLayout(box);
    boxLayout->addWidget(m_statusLabel);
    boxLayout->addWidget(m_progressBar);
    boxLayout->addWidget(m_countLabel);
    boxLayout->addWidget(m_messageLabel);
    layout->addWidget(box);
}

void DetectionDialogue::setMessage(const QString& text)
{
    m_messageLabel->setText(text);
}

void DetectionDialogue::growToMessage()
{
    // A window's least height is that of a label of one line, whatever the text needs.
    if (const int needed = layout()->totalHeightForWidth(width()); height() < needed) {
        resize(width(), needed);
    }
}

bool DetectionDialogue::event(QEvent* event)
{
    const bool handled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize) {
        growToMessage();
    }
    return handled;
}

void DetectionDialogue::updateProgress(int percent)
{
    m_progressBar->setValue(percent);
}

void DetectionDialogue::finishDetect()
{
    setRunning(false);
    m_statusLabel->clear();
}

void DetectionDialogue::abortDetect()
{
    finishDetect();
    m_progressBar->setValue(0);
}

void DetectionDialogue::addDetectedPixel(int count)
{
    m_detectedCount += count;
    showCount();
}

void DetectionDialogue::reject()
{
    // Hidden, the dialogue would leave a run behind that nobody sees.
    if (m_running) {
        emit stopDetect();
    } else {
        QDialog::reject();
    }
}

void DetectionDialogue::detect()
{
    setRunning(true);
    m_statusLabel->setText(tr("Please Wait..."));
    m_messageLabel->clear();
    m_detectedCount = 0;
    showCount();
    emit startDetect(m_clearBox->isChecked(), m_thresholdWidget->spinBox()->value());
}

void DetectionDialogue::setRunning(bool running)
{
    m_running = running;
    // Customised, the title bar has only what the other flags name: no close button. New flags hide
    // a window.
    setWindowFlags(running ? IdleFlags | Qt::CustomizeWindowHint : IdleFlags);
    show();
    m_buttonBox->setEnabled(!running);
    m_clearBox->setEnabled(!running);
    m_thresholdWidget->setEnabled(!running);
}

void DetectionDialogue::showCount()
{
    m_countLabel->setText(tr("Hotpixel detected: ") + QString::number(m_detectedCount));
}
