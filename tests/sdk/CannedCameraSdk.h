// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/MockCameraSdk.h"

#include <QByteArray>
#include <QMap>

#include <array>
#include <functional>
#include <mutex>

/// One camera that answers from its public fields, succeeds in the rest and does nothing by itself.
///
/// Unless threads is set, enableEvent fails and no event thread runs, so a test ends at once and
/// all calls come from its own thread.
class CannedCameraSdk : public SilentCameraSdk
{
public:
    static constexpr Handle OpenHandle = 7;

    bool threads = false;
    std::uint32_t sensorWidth = 6;
    std::uint32_t sensorHeight = 3;
    std::int32_t currentColorMode = camera::ColorModeBayer8;
    std::int32_t minPixelclock = 5;
    std::int32_t maxPixelclock = 40;
    std::int32_t defaultPixelclock = 24;
    std::int32_t currentPixelclock = 22;
    double minFrameTime = 0.25;
    double maxFrameTime = 2.0;
    double frameTimeStep = 0.25;
    double framesPerSecond = 1.5;
    double framerateFactor = 1.0; ///< what setFrameRate makes of the rate that it is told
    double minExposure = 0.5;
    double maxExposure = 900.0;
    double exposureStep = 0.25;
    double defaultExposure = 66.0;
    double exposureFactor = 1.0;
    std::int32_t currentGain = 13;
    std::int32_t uploadMsec = 0; ///< 0: none is given
    QMap<int, QByteArray> errorTexts;
    std::array<std::array<char, 64>, 8> memory =
        {}; ///< image memory, in the order of its allocation
    char* frameMemory = memory[0].data();
    std::function<void(int eventId)> onDisableEvent; ///< on the event thread

    /// The event object that @p eventId was bound to last.
    EventHandle event(int eventId);

    std::int32_t setColorMode(Handle handle, std::int32_t mode) override;
    std::int32_t getError(Handle handle, std::int32_t* code, char** text) override;
    std::int32_t allocImageMemory(Handle handle, std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel, char** pointer,
                                  std::int32_t* memoryId) override;
    std::int32_t initEvent(Handle handle, EventHandle event, std::int32_t eventId) override;
    std::int32_t enableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t disableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                char** pointer) override;
    std::int32_t setPixelClock(Handle handle, std::int32_t value) override;
    std::int32_t getSensorInfo(Handle handle, SensorInfo* info) override;
    std::int32_t setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                 std::int32_t green, std::int32_t blue) override;
    std::int32_t getFramesPerSecond(Handle handle, double* rate) override;
    std::int32_t setFrameRate(Handle handle, double rate, double* actual) override;
    std::int32_t setExposureTime(Handle handle, double milliseconds, double* actual) override;
    std::int32_t initCamera(Handle* handle, void* window) override;
    std::int32_t getNumberOfCameras(std::int32_t* count) override;
    std::int32_t getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                   double* step) override;
    std::int32_t getExposureRange(Handle handle, double* minimum, double* maximum,
                                  double* step) override;
    std::int32_t getPixelClockRange(Handle handle, std::int32_t* minimum,
                                    std::int32_t* maximum) override;
    std::int32_t getCameraList(CameraList* list) override;
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t one,
                                       std::int32_t* milliseconds) override;

private:
    std::mutex m_mutex; ///< event threads call too
    QMap<int, EventHandle> m_events;
    std::size_t m_allocated = 0;
};
