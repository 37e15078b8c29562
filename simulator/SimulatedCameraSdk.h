// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "simulator/BusDescription.h"
#include "simulator/EventBindings.h"

#include <QString>
#include <QStringList>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

class SimulatedCamera;
struct SimulatedImageMemory;

/// One pixel that is known to be hot, and what it shows.
struct KnownHotPixel
{
    std::uint16_t x;
    std::uint16_t y;
    double meanDn; ///< the mean grey value of many dark frames, at most 255
};

/// A bus of simulated cameras behind the camera SDK's interface. Operations, errors and events are
/// those of the interface; besides them stands what hardware is done to by hand: cables, the lens
/// cap, the temperature.
///
/// Any thread may call anything at any time; each open camera delivers its frames from a thread of
/// its own. A camera that this object has open is in use for every other SimulatedCameraSdk, in
/// this process or another, which shares its EEPROM folder.
class SimulatedCameraSdk final : public CameraSdk
{
public:
    /// @param bus the cameras; by default those of this program's settings file
    explicit SimulatedCameraSdk(BusDescription bus = simulator::readBus());

    /// Closes the cameras that are still open and takes back all image memory.
    ~SimulatedCameraSdk() override;

    std::int32_t stopLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t startLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t setColorMode(Handle handle, std::int32_t mode) override;
    std::int32_t getError(Handle handle, std::int32_t* code, char** text) override;
    std::int32_t allocImageMemory(Handle handle, std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel, char** memory,
                                  std::int32_t* memoryId) override;
    std::int32_t freeImageMemory(Handle handle, char* memory, std::int32_t memoryId) override;
    std::int32_t initEvent(Handle handle, EventHandle event, std::int32_t eventId) override;
    std::int32_t exitEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t enableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t disableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t addToSequence(Handle handle, char* memory, std::int32_t memoryId) override;
    std::int32_t clearSequence(Handle handle) override;
    std::int32_t getFrameMemory(Handle handle, std::int32_t, std::int32_t, char** memory) override;
    std::int32_t setPixelClock(Handle handle, std::int32_t value) override;
    std::int32_t getSensorInfo(Handle handle, SensorInfo* info) override;
    std::int32_t setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                 std::int32_t green, std::int32_t blue) override;
    std::int32_t getFramesPerSecond(Handle handle, double* framesPerSecond) override;
    std::int32_t setFrameRate(Handle handle, double framesPerSecond, double* actual) override;
    std::int32_t setExposureTime(Handle handle, double milliseconds, double* actual) override;
    std::int32_t initCamera(Handle* handle, void* window) override;
    std::int32_t exitCamera(Handle handle) override;
    std::int32_t getNumberOfCameras(std::int32_t* count) override;
    std::int32_t getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                   double* step) override;
    std::int32_t getExposureRange(Handle handle, double* minimum, double* maximum,
                                  double* step) override;
    std::int32_t getPixelClockRange(Handle handle, std::int32_t* minimum,
                                    std::int32_t* maximum) override;
    std::int32_t loadParameters(Handle handle, const char* fileName) override;
    std::int32_t getCameraList(CameraList* list) override;
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t,
                                       std::int32_t* milliseconds) override;
    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override;

    // What is done to cameras by hand. Unknown serial numbers are ignored by the setters and give
    // false, 0 or nothing from the others.

    /// What was wrong with the settings file, one line; empty when nothing was.
    [[nodiscard]] QString message() const { return m_bus.message; }

    /// The serial numbers of all cameras, plugged or not, in the order of the bus.
    [[nodiscard]] QStringList serials() const;

    /// The serial number of the camera with this "Dev" number, empty when there is none.
    [[nodiscard]] QString serialOf(std::uint32_t devId) const;

    [[nodiscard]] QString modelOf(const QString& serial) const;

    /// Connects or disconnects the camera's cable. A camera that is open stays open: it stops to
    /// deliver frames when it is unplugged and goes on when it is plugged again.
    void setPlugged(const QString& serial, bool plugged);
    [[nodiscard]] bool isPlugged(const QString& serial) const;

    /// Puts the lens cap on or takes it off.
    void setCovered(const QString& serial, bool covered);
    [[nodiscard]] bool isCovered(const QString& serial) const;

    /// While it is on, every frame fails on its way (camera::EventFrameFailed).
    void setDropFrames(const QString& serial, bool drop);
    [[nodiscard]] bool dropsFrames(const QString& serial) const;

    /// The temperature of the sensor, in °C.
    void setTemperature(const QString& serial, double celsius);
    [[nodiscard]] double temperature(const QString& serial) const;

    /// Whether another program has the camera open, as far as this switch is concerned. A camera
    /// that is open here stays open; the switch counts once it is closed.
    void setHeldElsewhere(const QString& serial, bool held);
    [[nodiscard]] bool isHeldElsewhere(const QString& serial) const;

    /// The hot pixels of the sensor with their means in dark frames under the settings of now
    /// (exposure, gains, temperature), after opening defaults for a closed camera. Without the
    /// camera's correction. Empty for a camera that plays recorded frames only.
    [[nodiscard]] std::vector<KnownHotPixel> knownHotPixels(const QString& serial) const;

    /// The mean grey value of ordinary pixels at (@p x, @p y) in dark frames, likewise.
    [[nodiscard]] double darkMeanDn(const QString& serial, int x = 0, int y = 0) const;

    /// The file that holds the camera's EEPROM.
    [[nodiscard]] QString eepromFileName(const QString& serial) const;

    /// How many cameras this object has open.
    [[nodiscard]] int openCameras() const;

    /// How many image memories have been allocated and not given back.
    [[nodiscard]] int imageMemories() const;

    /// How many event objects are bound to SDK events.
    [[nodiscard]] int boundEvents() const;

private:
    using Lock = std::unique_lock<std::mutex>;
    using CameraCall = std::function<std::int32_t(SimulatedCamera&, Lock&)>;
    struct AllocatedMemory
    {
        Handle handle;
        std::shared_ptr<SimulatedImageMemory> memory;
    };

    std::int32_t withOpenCamera(Handle handle, const CameraCall& call);
    std::int32_t withConnectedCamera(Handle handle, const CameraCall& call);
    [[nodiscard]] std::int32_t handleError(Handle handle) const;
    std::int32_t withEvents(Handle handle, std::int32_t eventId,
                            const std::function<std::int32_t(EventBindings&)>& call);
    [[nodiscard]] std::shared_ptr<SimulatedImageMemory> memoryOf(Handle handle, const char* memory,
                                                                 std::int32_t memoryId) const;
    [[nodiscard]] SimulatedCamera* cameraOf(const QString& serial) const;
    [[nodiscard]] SimulatedCamera* selectedCamera(Handle selector) const;

    mutable std::mutex m_mutex;        ///< guards everything below and every SimulatedCamera
    std::condition_variable m_changed; ///< something that a capture thread may be waiting for
    BusDescription m_bus;
    std::vector<std::unique_ptr<SimulatedCamera>> m_cameras;
    std::map<Handle, SimulatedCamera*> m_open;
    Handle m_lastHandle = 0;
    std::map<std::int32_t, AllocatedMemory> m_memories; ///< by id
    std::int32_t m_lastMemoryId = 0;
    EventBindings m_deviceEvents;
};
