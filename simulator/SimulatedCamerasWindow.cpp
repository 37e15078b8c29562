// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamerasWindow.h"

#include "simulator/SimulatedCameraSdk.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QMainWindow>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <array>

namespace {

/// What a check box in each camera's row shows and does.
struct Switch
{
    const char* objectName;
    const char* text;
    bool (SimulatedCameraControl::*state)() const;
    void (SimulatedCameraControl::*set)(bool on) const;
};

constexpr std::array<Switch, 4> Switches{{
    {"plugged", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "plugged"),
     &SimulatedCameraControl::isPlugged, &SimulatedCameraControl::setPlugged},
    {"cover", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "cover the sensor"),
     &SimulatedCameraControl::isCovered, &SimulatedCameraControl::setCovered},
    {"drop", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "drop frames"),
     &SimulatedCameraControl::dropsFrames, &SimulatedCameraControl::setDropFrames},
    {"held", QT_TRANSLATE_NOOP("SimulatedCamerasWindow", "held by another program"),
     &SimulatedCameraControl::isHeldElsewhere, &SimulatedCameraControl::setHeldElsewhere},
}};

constexpr Qt::WindowFlags Flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                  Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint;

QWidget* mainWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
        return qobject_cast<const QMainWindow*>(window) != nullptr && window->isVisible();
    });
    return found == windows.end() ? nullptr : *found;
}

} // namespace

simulator::Places simulator::placesBeside(const QRect& main, const QSize& size, const QRect& screen)
{
    const QPoint corner(std::max(screen.left(), screen.right() + 1 - size.width()),
                        std::max(screen.top(), screen.bottom() + 1 - size.height()));
    const int x = std::clamp(main.left(), screen.left(), corner.x());
    const int y = std::clamp(main.top(), screen.top(), corner.y());
    for (const QPoint place :
         {QPoint(main.right() + 1, y), QPoint(main.left() - size.width(), y),
          QPoint(x, main.bottom() + 1), QPoint(x, main.top() - size.height())}) {
        if (screen.contains(QRect(place, size))) {
            return {main.topLeft(), place};
        }
    }
    if (const int top = corner.y() - main.height(); top >= screen.top()) {
        return {{main.left(), top}, {x, corner.y()}};
    }
    return {screen.topLeft(), corner};
}

SimulatedCamerasWindow::SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent)
    : QWidget(parent, Flags)
    , m_sdk(sdk)
{
    setWindowTitle(tr("Simulated cameras"));
    setObjectName(QStringLiteral("simulatedCameras"));
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_ShowWithoutActivating);

    auto* layout = new QGridLayout(this);
    // It shares a small screen with the main window.
    constexpr int Margin = 6;
    constexpr int LineSpacing = 2;
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setVerticalSpacing(LineSpacing);
    int row = 0;
    const QStringList serials = sdk.serials();
    for (const QString& serial : serials) {
        addCamera(layout, row++, serial);
    }
    if (!serials.isEmpty()) {
        const QFileInfo eeprom(sdk.control(serials.first()).eepromFileName());
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

void SimulatedCamerasWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_placeAttempts = 0;
    placeBesideMainWindow();
}

void SimulatedCamerasWindow::placeBesideMainWindow()
{
    // The window manager places the main window and gives both their frames only after a while.
    constexpr int RetryMsec = 50;
    constexpr int MaxAttempts = 20;
    QWidget* const main = mainWindow();
    const auto isFramed = [](const QWidget* window) {
        return window->windowHandle()->isExposed() && window->frameGeometry() != window->geometry();
    };
    if (main != nullptr && (!isFramed(main) || !isFramed(this)) &&
        m_placeAttempts++ < MaxAttempts) {
        QTimer::singleShot(RetryMsec, this, &SimulatedCamerasWindow::placeBesideMainWindow);
        return;
    }
    if (main == nullptr) {
        return;
    }
    const auto [mainPlace, place] = simulator::placesBeside(
        main->frameGeometry(), frameGeometry().size(), main->screen()->availableGeometry());
    if (mainPlace != main->pos() && !main->isMaximized() && !main->isFullScreen()) {
        main->move(mainPlace);
    }
    move(place);
    raise();
}

void SimulatedCamerasWindow::closeEvent(QCloseEvent* event)
{
    // By hand there would be no way to get it back. A program that ends closes it all the same.
    event->setAccepted(!event->spontaneous());
}

void SimulatedCamerasWindow::addCamera(QGridLayout* layout, int row, const QString& serial)
{
    const SimulatedCameraControl camera = m_sdk.control(serial);
    int column = 0;
    layout->addWidget(new QLabel(tr("%1  %2").arg(camera.model(), serial), this), row, column++);
    for (const Switch& entry : Switches) {
        auto* box = new QCheckBox(tr(entry.text), this);
        box->setObjectName(QLatin1String(entry.objectName) + '_' + serial);
        box->setAccessibleName(tr("%1: %2").arg(serial, box->text()));
        box->setChecked((camera.*entry.state)());
        connect(box, &QCheckBox::toggled, this,
                [camera, &entry](bool on) { (camera.*entry.set)(on); });
        m_refreshers.emplace_back(
            [box, camera, &entry] { box->setChecked((camera.*entry.state)()); });
        layout->addWidget(box, row, column++);
    }

    auto* temperature = new QDoubleSpinBox(this);
    temperature->setObjectName(QStringLiteral("temperature_") + serial);
    temperature->setAccessibleName(tr("%1: temperature of the sensor").arg(serial));
    temperature->setToolTip(tr("Temperature of the sensor"));
    temperature->setRange(-50.0, 100.0);
    temperature->setDecimals(1);
    temperature->setSuffix(tr(" °C"));
    temperature->setValue(camera.temperature());
    connect(temperature, &QDoubleSpinBox::valueChanged, this,
            [camera](double celsius) { camera.setTemperature(celsius); });
    m_refreshers.emplace_back([temperature, camera] {
        if (!temperature->hasFocus()) { // somebody may be typing
            temperature->setValue(camera.temperature());
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
