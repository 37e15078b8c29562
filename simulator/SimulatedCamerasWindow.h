// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QWidget>

#include <functional>
#include <vector>

class QCloseEvent;
class QGridLayout;
class QShowEvent;
class SimulatedCameraSdk;

namespace simulator {

/// The upper left corners of two windows, with their frames.
struct Places
{
    QPoint main;
    QPoint other;
};

/// Where a window of @p size goes that belongs to the window @p main: to its right, left, below or
/// above it, wherever it fits first on @p screen. Where it fits nowhere, the main window goes up so
/// that it fits below; and when there is no room for both, they go to opposite corners of the
/// screen, the main window to the upper left one, where its lists and controls are.
[[nodiscard]] Places placesBeside(const QRect& main, const QSize& size, const QRect& screen);

} // namespace simulator

/// The window "Simulated cameras": what one does to cameras by hand, a row for each of them, and
/// where their EEPROM files are. It follows what happens to the cameras from elsewhere. GUI thread.
///
/// Shown, it takes its place beside the program's main window (simulator::placesBeside()), on top
/// of all others, and takes no focus from it. By hand it can't be closed, and it doesn't keep the
/// program from ending.
///
/// The controls are named after what they do and the serial number: "plugged_", "cover_", "drop_",
/// "held_" and "temperature_".
class SimulatedCamerasWindow final : public QWidget
{
    Q_OBJECT

public:
    /// @param sdk must outlive the window
    explicit SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void placeBesideMainWindow();
    void addCamera(QGridLayout* layout, int row, const QString& serial);
    void addLine(QGridLayout* layout, int row, const char* name, const QString& text);
    void refresh();

    SimulatedCameraSdk& m_sdk;
    int m_placeAttempts = 0;
    std::vector<std::function<void()>> m_refreshers; ///< one for each control
};
