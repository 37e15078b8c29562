// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/BusDescription.h"
#include "simulator/CameraEeprom.h"
#include "simulator/EventBindings.h"
#include "simulator/LiveCapture.h"
#include "simulator/Mutex.h"
#include "simulator/ProcessLock.h"
#include "simulator/SensorModel.h"
#include "simulator/SensorTiming.h"

#include <QString>

#include <array>
#include <condition_variable>
#include <cstdint>
#include <string>
#include <vector>

class QSettings;

/// One pixel that is known to be hot, and what it shows.
struct KnownHotPixel
{
    std::uint16_t x;
    std::uint16_t y;
    double meanDn; ///< the mean grey value of many dark frames, at most 255
};

/// One camera of a SimulatedCameraSdk: its cable, its sensor, its EEPROM, and what has been set up
/// on it while it is open. Any thread may call it at any time.
class SimulatedCamera
{
public:
    /// The four gains, in the order of the SDK's operation.
    enum Gain : std::size_t { Master, Red, Green, Blue, GainCount };
    using Gains = std::array<std::int32_t, GainCount>;

    /// @param speed simulated seconds in a second
    SimulatedCamera(const CameraDescription& description, const QString& eepromFolder,
                    double speed);
    SimulatedCamera(const SimulatedCamera&) = delete;
    SimulatedCamera& operator=(const SimulatedCamera&) = delete;

    // The camera as it lies on the table.

    [[nodiscard]] const CameraDescription& description() const { return m_model.description(); }
    [[nodiscard]] QString eepromFileName() const { return m_eepromFileName; }
    [[nodiscard]] bool isUsed() const;        ///< by this program or by another one
    [[nodiscard]] bool needsFirmware() const; ///< by what its EEPROM says

    /// @return false, and nothing is signalled, when the cable is so already
    bool setPlugged(bool plugged);
    [[nodiscard]] bool isPlugged() const;
    void setCovered(bool covered);
    [[nodiscard]] bool isCovered() const;
    void setDropFrames(bool drop);
    [[nodiscard]] bool dropsFrames() const;
    void setHeldElsewhere(bool held);
    [[nodiscard]] bool isHeldElsewhere() const;
    void setTemperature(double celsius);
    [[nodiscard]] double temperature() const;

    /// See SimulatedCameraControl.
    [[nodiscard]] std::vector<KnownHotPixel> knownHotPixels() const;
    [[nodiscard]] double darkMeanDn(int x, int y) const;

    /// Opens the camera; waits for the upload when one is needed.
    /// @return 0, camera::FirmwareUploadNeeded without @p uploadFirmware, or a simulator::SdkError
    std::int32_t open(bool uploadFirmware);

    /// Stops live capture and gives the camera free.
    void close();

    // The open camera. What returns a std::int32_t gives 0 or a simulator::SdkError.

    [[nodiscard]] EventBindings& events() { return m_events; }
    [[nodiscard]] LiveCapture& capture() { return m_capture; }

    [[nodiscard]] int colorMode() const;
    [[nodiscard]] int bitsPerPixel() const; ///< of the frames in that mode
    std::int32_t setColorMode(std::int32_t mode);

    [[nodiscard]] SensorTiming timing() const;
    std::int32_t setPixelClock(std::int32_t megahertz);
    double setFrameRate(double framesPerSecond); ///< @return the rate that was taken
    double setExposure(double milliseconds);     ///< @return the exposure that was taken

    [[nodiscard]] std::int32_t masterGain() const;
    /// Each 0 to 100, or camera::KeepGain; all of them or none.
    std::int32_t setGains(const Gains& gains);

    /// Takes over what a settings file says (pixelClock, frameRate, exposure, masterGain, redGain,
    /// greenGain, blueGain), or nothing of it when something is out of range or unknown.
    std::int32_t loadParameters(const QSettings& file);

    std::int32_t startLive();
    void stopLive(); ///< returns when no frame is being written any more

    std::int32_t hotpixelCommand(std::int32_t command, void* buffer, std::int32_t size);

    /// What there is to say about the latest failure @p code beyond its general text; may be empty.
    [[nodiscard]] std::string errorDetail(std::int32_t code) const;

private:
    bool takeLock() VORN_REQUIRES(m_mutex);
    [[nodiscard]] SensorSettings sensorSettings() const VORN_REQUIRES(m_mutex);
    [[nodiscard]] int depth() const VORN_REQUIRES(m_mutex);
    void tellCapture() VORN_REQUIRES(m_mutex);
    std::int32_t switchCorrection(bool on, const void* buffer, std::int32_t size)
        VORN_REQUIRES(m_mutex);

    const SensorModel m_model;
    const double m_speed;
    const QString m_eepromFileName;
    EventBindings m_events;
    LiveCapture m_capture;

    mutable Mutex m_mutex;
    std::condition_variable m_unplugged; ///< an upload waits for it
    mutable ProcessLock m_lock VORN_GUARDED_BY(m_mutex);
    bool m_plugged VORN_GUARDED_BY(m_mutex);
    bool m_covered VORN_GUARDED_BY(m_mutex) = false;
    bool m_dropFrames VORN_GUARDED_BY(m_mutex) = false;
    bool m_heldElsewhere VORN_GUARDED_BY(m_mutex);
    double m_temperature VORN_GUARDED_BY(m_mutex); ///< °C
    bool m_open VORN_GUARDED_BY(m_mutex) = false;
    bool m_opening VORN_GUARDED_BY(m_mutex) = false; ///< waits for its firmware
    CameraEeprom m_eeprom VORN_GUARDED_BY(m_mutex);
    bool m_correction VORN_GUARDED_BY(m_mutex) = false;
    SensorTiming m_timing VORN_GUARDED_BY(m_mutex);
    Gains m_gains VORN_GUARDED_BY(m_mutex) = {};
    int m_colorMode VORN_GUARDED_BY(m_mutex);
    SdkFailure m_failure VORN_GUARDED_BY(m_mutex);
};
