#include "simulator/SimulatedCamerasWindow.h"

#include "simulator/SimulatedCameraSdk.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>

#include <array>

namespace {

/// What a check box in each camera's row shows and does.
struct Switch
{
    const char* objectName;
    const char* text;
    bool (SimulatedCameraSdk::*state)(const QString&) const;
    void (SimulatedCameraSdk::*set)(const QString&, bool);
};

constexpr std::array<Switch, 4> Switches{{
    {"plugged", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "plugged"),
     &SimulatedCameraSdk::isPlugged, &SimulatedCameraSdk::setPlugged},
    {"cover", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "cover the sensor"),
     &SimulatedCameraSdk::isCovered, &SimulatedCameraSdk::setCovered},
    {"drop", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "drop frames"),
     &SimulatedCameraSdk::dropsFrames, &SimulatedCameraSdk::setDropFrames},
    {"held", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "held by another program"),
     &SimulatedCameraSdk::isHeldElsewhere, &SimulatedCameraSdk::setHeldElsewhere},
}};

} // namespace

SimulatedCamerasWindow::SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent)
    : QWidget(parent)
{
    setWindowTitle(tr("Simulated cameras"));
    setObjectName(QStringLiteral("simulatedCameras"));
    setAttribute(Qt::WA_QuitOnClose, false);

    auto* layout = new QGridLayout(this);
    int row = 0;
    const QStringList serials = sdk.serials();
    for (const QString& serial : serials) {
        int column = 0;
        layout->addWidget(new QLabel(tr("%1 (%2)").arg(serial, sdk.modelOf(serial)), this), row,
                          column++);
        for (const Switch& entry : Switches) {
            auto* box = new QCheckBox(tr(entry.text), this);
            box->setObjectName(QLatin1String(entry.objectName) + '_' + serial);
            box->setChecked((sdk.*entry.state)(serial));
            connect(box, &QCheckBox::toggled, this,
                    [&sdk, serial, set = entry.set](bool on) { (sdk.*set)(serial, on); });
            layout->addWidget(box, row, column++);
        }
        auto* temperature = new QDoubleSpinBox(this);
        temperature->setObjectName(QStringLiteral("temperature_") + serial);
        temperature->setRange(-50.0, 100.0);
        temperature->setDecimals(1);
        temperature->setSuffix(tr(" °C"));
        temperature->setAccessibleName(tr("Temperature of %1").arg(serial));
        temperature->setValue(sdk.temperature(serial));
        connect(temperature, &QDoubleSpinBox::valueChanged, this,
                [&sdk, serial](double celsius) { sdk.setTemperature(serial, celsius); });
        layout->addWidget(temperature, row, column);
        ++row;
    }
    const QString folder = serials.isEmpty()
                               ? QString()
                               : QFileInfo(sdk.eepromFileName(serials.first())).absolutePath();
    auto* where = new QLabel(tr("EEPROM files: %1").arg(folder), this);
    where->setObjectName(QStringLiteral("eepromFolder"));
    where->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(where, row, 0, 1, -1);
}
