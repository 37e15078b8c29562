// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>
#include <vector>

class QGridLayout;
class SimulatedCameraSdk;

/// The window "Simulated cameras": what one does to cameras by hand, a row for each of them, and
/// where their EEPROM files are. It follows what happens to the cameras from elsewhere, and the
/// program ends without asking for this window. GUI thread.
///
/// The controls are named after what they do and the serial number: "plugged_", "cover_", "drop_",
/// "held_" and "temperature_".
class SimulatedCamerasWindow final : public QWidget
{
    Q_OBJECT

public:
    /// @param sdk must outlive the window
    explicit SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent = nullptr);

private:
    void addCamera(QGridLayout* layout, int row, const QString& serial);
    void addLine(QGridLayout* layout, int row, const char* name, const QString& text);
    void refresh();

    SimulatedCameraSdk& m_sdk;
    std::vector<std::function<void()>> m_refreshers; ///< one for each control
};
