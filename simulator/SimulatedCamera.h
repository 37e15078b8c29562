// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/BusDescription.h"
#include "simulator/EepromFile.h"
#include "simulator/EventBindings.h"
#include "simulator/FrameRing.h"
#include "simulator/ProcessLock.h"
#include "simulator/SensorFrameSource.h"
#include "simulator/SensorModel.h"
#include "simulator/SensorTiming.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class QSettings;

/// One camera of a SimulatedCameraSdk: its cable, its sensor, its EEPROM, and what has been set up
/// on it while it is open.
///
/// Every public operation is called with the mutex held that the constructor takes; those that wait
/// get the lock and give it up meanwhile. The capture thread holds the mutex for all but the making
/// of a frame.
class SimulatedCamera
{
public:
    using Lock = std::unique_lock<std::mutex>;

    /// @param changed is notified, and waited on, with the mutex @p mutex
    SimulatedCamera(CameraDescription description, const QString& eepromFolder, double speed,
                    std::mutex& mutex, std::condition_variable& changed);
    ~SimulatedCamera();

    // The camera as it lies on the table.

    [[nodiscard]] const CameraDescription& description() const { return m_model.description(); }
    [[nodiscard]] const SensorModel& model() const { return m_model; }
    [[nodiscard]] const EepromFile& eepromFile() const { return m_eepromFile; }
    [[nodiscard]] bool isOpen() const { return m_handle != 0; }
    [[nodiscard]] std::uint32_t handle() const { return m_handle; }
    [[nodiscard]] bool isPlugged() const { return m_plugged; }
    void setPlugged(bool plugged);
    [[nodiscard]] bool isUsed(); ///< by this program or by another one
    [[nodiscard]] bool needsFirmware() const;
    [[nodiscard]] bool playsRecordedFramesOnly() const;
    [[nodiscard]] SensorSettings settings() const;

    bool covered = false;       ///< the lens cap is on
    bool dropFrames = false;    ///< every frame fails on its way
    bool heldElsewhere = false; ///< another program has it open
    double temperature = 25.0;  ///< °C

    /// Opens the camera as @p handle; waits for the upload when one is needed.
    /// @return 0, camera::FirmwareUploadNeeded without @p uploadFirmware, or a simulator::SdkError
    std::int32_t open(std::uint32_t handle, bool uploadFirmware, Lock& lock);

    /// Stops live capture and gives the camera free.
    void close(Lock& lock);

    // The open camera.

    EventBindings events;
    FrameRing ring;
    SensorTiming timing;
    int masterGain = 0;
    int redGain = 0;
    int greenGain = 0;
    int blueGain = 0;

    [[nodiscard]] int colorMode() const { return m_colorMode; }
    [[nodiscard]] int bitsPerPixel() const;
    std::int32_t setColorMode(std::int32_t mode);

    /// Takes over what a settings file says (pixelClock, frameRate, exposure, masterGain, redGain,
    /// greenGain, blueGain), or nothing of it when something is out of range or unknown.
    std::int32_t loadParameters(const QSettings& file);

    [[nodiscard]] bool isLive() const { return m_liveSession != 0; }
    std::int32_t startLive();
    /// Returns when no frame is being written any more.
    void stopLive(Lock& lock);

    /// The latest complete frame, null when there is none; waits when it is just being replaced.
    FrameRing::Memory latestFrame(Lock& lock);

    std::int32_t hotpixelCommand(std::int32_t command, void* buffer, std::int32_t size);

    /// What there is to say about the latest failure @p code beyond its general text; may be empty.
    [[nodiscard]] std::string errorDetail(std::int32_t code) const;

private:
    using Clock = std::chrono::steady_clock;

    bool takeLock();
    void loadEeprom();
    std::int32_t uploadFirmware(Lock& lock);
    std::int32_t writeEeprom(const EepromContent& content);
    [[nodiscard]] std::int32_t readList(const std::vector<EepromPosition>& list, void* buffer,
                                        std::int32_t size);
    [[nodiscard]] std::int32_t writeUserList(const void* buffer, std::int32_t size);
    std::int32_t fail(std::int32_t code, const std::string& detail);
    std::int32_t prepareSources();

    void capture(std::uint64_t session);
    void captureFrame(Lock& lock, std::uint64_t session);
    void renderFrame(std::uint64_t frame, const SensorSettings& settings,
                     const std::vector<EepromPosition>& corrected, int mode,
                     const SimulatedImageMemory& memory);
    [[nodiscard]] Clock::duration frameInterval() const;

    std::mutex& m_mutex;
    std::condition_variable& m_changed;
    const SensorModel m_model;
    const EepromFile m_eepromFile;
    const double m_speed;
    ProcessLock m_lock;
    bool m_plugged;
    bool m_opening = false;

    std::uint32_t m_handle = 0;
    EepromContent m_eeprom;
    bool m_eepromDamaged = false;
    bool m_correction = false;
    int m_colorMode = 6;
    std::int32_t m_failure = 0;
    std::string m_failureDetail;

    std::uint64_t m_liveSession = 0; ///< 0 while no capture is running
    std::uint64_t m_lastSession = 0;
    bool m_capturing = false; ///< a capture thread has not ended yet
    std::thread m_captureThread;
    std::uint64_t m_frame = 0; ///< number of the next frame, from the opening on

    // Touched by the capture thread alone while it makes a frame, and while no such thread runs.
    std::unique_ptr<SensorFrameSource> m_modelledFrames;
    std::unique_ptr<SensorFrameSource> m_recordedFrames;
    std::vector<std::uint8_t> m_rawFrame;
};
