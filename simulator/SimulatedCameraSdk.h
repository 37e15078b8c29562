// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "simulator/BusDescription.h"
#include "simulator/EventBindings.h"
#include "simulator/Mutex.h"
#include "simulator/SimulatedCamera.h"
#include "simulator/SimulatedCameraControl.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <vector>

/// A bus of simulated cameras behind the camera SDK's interface. Operations, errors and events are
/// those of the interface; besides them stands what is done to hardware by hand (control()).
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

    /// What was wrong with the settings file, one line; empty when nothing was.
    [[nodiscard]] QString message() const { return m_bus.message; }

    /// The serial numbers of all cameras, plugged or not, in the order of the bus.
    [[nodiscard]] QStringList serials() const;

    /// The serial number of the camera with this "Dev" number, empty when there is none.
    [[nodiscard]] QString serialOf(std::uint32_t devId) const;

    /// What is done to a camera by hand. Also for a serial number that no camera has.
    [[nodiscard]] SimulatedCameraControl control(const QString& serial);

    /// Signals that some camera was plugged in or out.
    void signalDeviceEvent(bool plugged);

    /// How many cameras this object has open.
    [[nodiscard]] int openCameras() const;

    /// How many image memories have been allocated and not given back.
    [[nodiscard]] int imageMemories() const;

    /// How many event objects are bound to SDK events.
    [[nodiscard]] int boundEvents() const;

private:
    using CameraCall = std::function<std::int32_t(SimulatedCamera&)>;
    struct AllocatedMemory
    {
        Handle handle;
        std::shared_ptr<SimulatedImageMemory> memory;
    };

    std::int32_t withOpenCamera(Handle handle, const CameraCall& call);
    std::int32_t withConnectedCamera(Handle handle, const CameraCall& call);
    std::int32_t waitOnOpenCamera(Handle handle, const CameraCall& call);
    std::int32_t withEvents(Handle handle, std::int32_t eventId,
                            const std::function<std::int32_t(EventBindings&)>& call);
    [[nodiscard]] SimulatedCamera* openCamera(Handle handle) const VORN_REQUIRES(m_mutex);
    [[nodiscard]] std::int32_t handleError(Handle handle) const VORN_REQUIRES(m_mutex);
    [[nodiscard]] std::shared_ptr<SimulatedImageMemory> memoryOf(Handle handle, const char* memory,
                                                                 std::int32_t memoryId) const
        VORN_REQUIRES(m_mutex);
    [[nodiscard]] SimulatedCamera* selectedCamera(Handle selector) const;

    BusDescription m_bus;
    std::vector<std::unique_ptr<SimulatedCamera>> m_cameras; ///< as many as long as this lives
    EventBindings m_deviceEvents;

    // Held before a camera's own mutex, never the other way round, and not while waiting.
    mutable Mutex m_mutex;
    std::map<Handle, SimulatedCamera*> m_open VORN_GUARDED_BY(m_mutex);
    Handle m_lastHandle VORN_GUARDED_BY(m_mutex) = 0;
    std::map<std::int32_t, AllocatedMemory> m_memories VORN_GUARDED_BY(m_mutex); ///< by id
    std::int32_t m_lastMemoryId VORN_GUARDED_BY(m_mutex) = 0;
};
