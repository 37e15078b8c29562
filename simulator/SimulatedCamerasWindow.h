#pragma once

#include <QWidget>

class SimulatedCameraSdk;

/// The window "Simulated cameras": what one does to cameras by hand, a row for each of them. The
/// program ends without asking for this window. GUI thread.
class SimulatedCamerasWindow final : public QWidget
{
    Q_OBJECT

public:
    /// @param sdk must outlive the window
    explicit SimulatedCamerasWindow(SimulatedCameraSdk& sdk, QWidget* parent = nullptr);
};
