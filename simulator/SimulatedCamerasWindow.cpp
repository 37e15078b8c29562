// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamerasWindow.h"

#include "simulator/SimulatedCameraSdk.h"

#include <QCheckBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>

#include <array>

namespace {

/// What a check box in each camera's row shows and does.
struct Switch
{
    const char* objectName;
    const char* text;
    bool (*state)(const SimulatedCameraSdk& sdk, const QString& serial);
    void (*set)(SimulatedCameraSdk& sdk, const QString& serial, bool on);
};

template <auto Getter>
bool stateOf(const SimulatedCameraSdk& sdk, const QString& serial)
{
    return (sdk.*Getter)(serial);
}

template <auto Setter>
void setState(SimulatedCameraSdk& sdk, const QString& serial, bool on)
{
    (sdk.*Setter)(serial, on);
}

constexpr std::array<Switch, 4> Switches{{
    {"plugged", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "plugged"),
     &stateOf<&SimulatedCameraSdk::isPlugged>, &setState<&SimulatedCameraSdk::setPlugged>},
    {"cover", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "cover the sensor"),
     &stateOf<&SimulatedCameraSdk::isCovered>, &setState<&SimulatedCameraSdk::setCovered>},
    {"drop", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "drop frames"),
     &stateOf<&SimulatedCameraSdk::dropsFrames>, &setState<&SimulatedCameraSdk::setDropFrames>},
    {"held", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "held by another program"),
     &stateOf<&SimulatedCameraSdk::isHeldElsewhere>,
     &setState<&SimulatedCameraSdk::setHeldElsewhere>},
}};

} // namespace

SimulatedCamerasWindow::SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent)
    : QWidget(parent)
    , m_sdk(sdk)
{
    setWindowTitle(tr("Simulated cameras"));
    setObjectName(QStringLiteral("simulatedCameras"));
    setAttribute(Qt::WA_QuitOnClose, false);

    auto* layout = new QGridLayout(this);
    int row = 0;
    const QStringList serials = sdk.serials();
    for (const QString& serial : serials) {
        addCamera(layout, row++, serial);
    }
    if (!serials.isEmpty()) {
        const QFileInfo eeprom(sdk.eepromFileName(serials.first()));
        addLine(layout, row++, "eepromFolder",
                tr("EEPROM files: %1").arg(QDir::toNativeSeparators(eeprom.absolutePath())));
    }
    if (!sdk.message().isEmpty()) {
        addLine(layout, row++, "message", sdk.message());
    }
    layout->setRowStretch(row, 1);

    constexpr int RefreshMsec = 500;
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &SimulatedCamerasWindow::refresh);
    timer->start(RefreshMsec);
}

void SimulatedCamerasWindow::addCamera(QGridLayout* layout, int row, const QString& serial)
{
    int column = 0;
    layout->addWidget(new QLabel(tr("%1  %2").arg(m_sdk.modelOf(serial), serial), this), row,
                      column++);
    for (const Switch& entry : Switches) {
        auto* box = new QCheckBox(tr(entry.text), this);
        box->setObjectName(QLatin1String(entry.objectName) + '_' + serial);
        box->setAccessibleName(tr("%1: %2").arg(serial, box->text()));
        box->setChecked(entry.state(m_sdk, serial));
        connect(box, &QCheckBox::toggled, this,
                [this, serial, &entry](bool on) { entry.set(m_sdk, serial, on); });
        m_refreshers.emplace_back(
            [this, box, serial, &entry] { box->setChecked(entry.state(m_sdk, serial)); });
        layout->addWidget(box, row, column++);
    }

    auto* temperature = new QDoubleSpinBox(this);
    temperature->setObjectName(QStringLiteral("temperature_") + serial);
    temperature->setAccessibleName(tr("%1: temperature of the sensor").arg(serial));
    temperature->setToolTip(tr("Temperature of the sensor"));
    temperature->setRange(-50.0, 100.0);
    temperature->setDecimals(1);
    temperature->setSuffix(tr(" \u00b0C"));
    temperature->setValue(m_sdk.temperature(serial));
    connect(temperature, &QDoubleSpinBox::valueChanged, this,
            [this, serial](double celsius) { m_sdk.setTemperature(serial, celsius); });
    m_refreshers.emplace_back([this, temperature, serial] {
        if (!temperature->hasFocus()) { // somebody may be typing
            temperature->setValue(m_sdk.temperature(serial));
        }
    });
    layout->addWidget(temperature, row, column);
}

void SimulatedCamerasWindow::addLine(QGridLayout* layout, int row, const char* name,
                                     const QString& text)
{
    auto* label = new QLabel(text, this);
    label->setObjectName(QLatin1String(name));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(label, row, 0, 1, -1);
}

void SimulatedCamerasWindow::refresh()
{
    for (const auto& refresher : m_refreshers) {
        refresher();
    }
}
