// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <mutex>

/// Handle of the one camera of RecordingCameraSdk.
inline constexpr CameraSdk::Handle RecordedHandle = 7;

/// A camera that writes each call down as one line of text, with the arguments that go in, and
/// answers from its public fields.
///
/// Image memory is written as "memory1", "memory2" and so on. Unless threads is set, enableEvent
/// fails and no event thread runs, so a test ends at once and all calls come from its own thread.
class RecordingCameraSdk final : public CameraSdk
{
public:
    bool threads = false;
    std::uint32_t sensorWidth = 6;
    std::uint32_t sensorHeight = 3;
    std::int32_t currentColorMode = 11;
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
    std::array<std::array<char, 64>, 8> memory = {};
    char* frameMemory = memory[0].data();
    std::function<void(int eventId)> onDisableEvent; ///< on the event thread, once it is recorded
    QMap<QString, QList<std::int32_t>> results;      ///< of a call, once for each time it is made

    /// The calls so far, which are forgotten.
    QStringList takeCalls();

    /// Writes something else down between the calls.
    void note(const QString& text);

    std::int32_t stopLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t startLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t setColorMode(Handle handle, std::int32_t mode) override;
    std::int32_t getError(Handle handle, std::int32_t* code, char** text) override;
    std::int32_t allocImageMemory(Handle handle, std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel, char** pointer,
                                  std::int32_t* memoryId) override;
    std::int32_t freeImageMemory(Handle handle, char* pointer, std::int32_t memoryId) override;
    std::int32_t initEvent(Handle handle, EventHandle event, std::int32_t eventId) override;
    std::int32_t exitEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t enableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t disableEvent(Handle handle, std::int32_t eventId) override;
    std::int32_t addToSequence(Handle handle, char* pointer, std::int32_t memoryId) override;
    std::int32_t clearSequence(Handle handle) override;
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
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t one,
                                       std::int32_t* milliseconds) override;
    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override;

    /// The event object that @p eventId was bound to last.
    EventHandle event(int eventId);

private:
    template <typename... Arguments>
    std::int32_t record(const char* operation, const Arguments&... arguments);
    QString memoryName(const char* pointer) const;

    std::mutex m_mutex; ///< event threads call too
    QStringList m_calls;
    QMap<int, EventHandle> m_events;
    std::size_t m_allocated = 0;
};
