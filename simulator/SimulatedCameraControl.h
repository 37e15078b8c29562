// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/SimulatedCamera.h"

#include <QString>

#include <vector>

class SimulatedCameraSdk;

/// What is done to one simulated camera by hand: its cable, its cover, the temperature of its
/// sensor; and what can be known of it from outside. Got from SimulatedCameraSdk::control(), which
/// it must not outlive. Of a camera that does not exist, everything is false, 0 or empty, and
/// nothing can be set.
///
/// Any thread may call it at any time.
class SimulatedCameraControl
{
public:
    SimulatedCameraControl(SimulatedCameraSdk& sdk, SimulatedCamera* camera)
        : m_sdk(&sdk)
        , m_camera(camera)
    {}

    [[nodiscard]] QString serial() const;
    [[nodiscard]] QString model() const;

    /// Connects or disconnects the camera's cable. A camera that is open stays open: it stops to
    /// deliver frames when it is unplugged and goes on when it is plugged again.
    void setPlugged(bool plugged) const;
    [[nodiscard]] bool isPlugged() const;

    /// Puts the cover on the sensor or takes it off.
    void setCovered(bool covered) const;
    [[nodiscard]] bool isCovered() const;

    /// While it is on, every frame fails on its way (camera::EventFrameFailed).
    void setDropFrames(bool drop) const;
    [[nodiscard]] bool dropsFrames() const;

    /// The temperature of the sensor, in °C.
    void setTemperature(double celsius) const;
    [[nodiscard]] double temperature() const;

    /// Whether another program has the camera open, as far as this switch is concerned. A camera
    /// that is open here stays open; the switch counts once it is closed.
    void setHeldElsewhere(bool held) const;
    [[nodiscard]] bool isHeldElsewhere() const;

    /// The hot pixels of the sensor with their means in dark frames under the settings of now
    /// (exposure, gains, temperature), after opening defaults for a closed camera. Without the
    /// camera's correction. Empty for a camera that plays recorded frames only.
    [[nodiscard]] std::vector<KnownHotPixel> knownHotPixels() const;

    /// The mean grey value of ordinary pixels at (@p x, @p y) in dark frames, likewise.
    [[nodiscard]] double darkMeanDn(int x = 0, int y = 0) const;

    /// The file that holds the camera's EEPROM.
    [[nodiscard]] QString eepromFileName() const;

private:
    SimulatedCameraSdk* m_sdk;
    SimulatedCamera* m_camera; ///< null for a camera that does not exist
};
