// SPDX-License-Identifier: MIT
#include "tests/camera/RecordingCameraSdk.h"

#include <utility>

namespace {

QString text(const QString& argument)
{
    return argument;
}

QString text(const char* argument)
{
    return QString::fromLatin1(argument);
}

QString text(double argument)
{
    return QString::number(argument, 'g', 12);
}

QString text(std::int32_t argument)
{
    return QString::number(argument);
}

QString text(std::uint32_t argument)
{
    return QString::number(argument);
}

} // namespace

QStringList RecordingCameraSdk::takeCalls()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_calls, {});
}

void RecordingCameraSdk::note(const QString& text)
{
    const std::lock_guard lock(m_mutex);
    m_calls.append(text);
}

EventHandle RecordingCameraSdk::event(int eventId)
{
    const std::lock_guard lock(m_mutex);
    return m_events.value(eventId);
}

template <typename... Arguments>
std::int32_t RecordingCameraSdk::record(const char* operation, const Arguments&... arguments)
{
    const QString call = QString::fromLatin1("%1(%2)").arg(
        QString::fromLatin1(operation),
        QStringList({text(arguments)...}).join(QLatin1String(", ")));
    const std::lock_guard lock(m_mutex);
    m_calls.append(call);
    QList<std::int32_t>& answers = results[call];
    return answers.isEmpty() ? 0 : answers.takeFirst();
}

QString RecordingCameraSdk::memoryName(const char* pointer) const
{
    for (std::size_t i = 0; i < memory.size(); ++i) {
        if (pointer == memory[i].data()) {
            return QStringLiteral("memory%1").arg(i + 1);
        }
    }
    return QStringLiteral("unknown memory");
}

std::int32_t RecordingCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    return record("stopLiveVideo", handle, waitMode);
}

std::int32_t RecordingCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    return record("startLiveVideo", handle, waitMode);
}

std::int32_t RecordingCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    const std::int32_t result = record("setColorMode", handle, mode);
    return mode == camera::QueryCurrent ? currentColorMode : result;
}

std::int32_t RecordingCameraSdk::getError(Handle handle, std::int32_t* code, char** text)
{
    const std::int32_t result = record("getError", handle, *code);
    if (!errorTexts.contains(*code)) {
        return 1;
    }
    *text = errorTexts[*code].data();
    return result;
}

std::int32_t RecordingCameraSdk::allocImageMemory(Handle handle, std::int32_t width,
                                                  std::int32_t height, std::int32_t bitsPerPixel,
                                                  char** pointer, std::int32_t* memoryId)
{
    const std::int32_t result = record("allocImageMemory", handle, width, height, bitsPerPixel);
    if (result == 0) {
        *pointer = memory.at(m_allocated).data();
        *memoryId = static_cast<std::int32_t>(++m_allocated) * 10;
    }
    return result;
}

std::int32_t RecordingCameraSdk::freeImageMemory(Handle handle, char* pointer,
                                                 std::int32_t memoryId)
{
    return record("freeImageMemory", handle, memoryName(pointer), memoryId);
}

std::int32_t RecordingCameraSdk::initEvent(Handle handle, EventHandle event, std::int32_t eventId)
{
    const std::int32_t result = record("initEvent", handle, eventId);
    const std::lock_guard lock(m_mutex);
    m_events[eventId] = event;
    return result;
}

std::int32_t RecordingCameraSdk::exitEvent(Handle handle, std::int32_t eventId)
{
    return record("exitEvent", handle, eventId);
}

std::int32_t RecordingCameraSdk::enableEvent(Handle handle, std::int32_t eventId)
{
    const std::int32_t result = record("enableEvent", handle, eventId);
    return threads ? result : 1;
}

std::int32_t RecordingCameraSdk::disableEvent(Handle handle, std::int32_t eventId)
{
    const std::int32_t result = record("disableEvent", handle, eventId);
    if (onDisableEvent) {
        onDisableEvent(eventId);
    }
    return result;
}

std::int32_t RecordingCameraSdk::addToSequence(Handle handle, char* pointer, std::int32_t memoryId)
{
    return record("addToSequence", handle, memoryName(pointer), memoryId);
}

std::int32_t RecordingCameraSdk::clearSequence(Handle handle)
{
    return record("clearSequence", handle);
}

std::int32_t RecordingCameraSdk::getFrameMemory(Handle handle, std::int32_t first,
                                                std::int32_t second, char** pointer)
{
    *pointer = frameMemory;
    return record("getFrameMemory", handle, first, second);
}

std::int32_t RecordingCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    const std::int32_t result = record("setPixelClock", handle, value);
    switch (value) {
    case camera::QueryCurrent:
        return currentPixelclock;
    case camera::QueryDefault:
        return defaultPixelclock;
    default:
        return result;
    }
}

std::int32_t RecordingCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    info->maxWidth = sensorWidth;
    info->maxHeight = sensorHeight;
    return record("getSensorInfo", handle);
}

std::int32_t RecordingCameraSdk::setHardwareGain(Handle handle, std::int32_t master,
                                                 std::int32_t red, std::int32_t green,
                                                 std::int32_t blue)
{
    const std::int32_t result = record("setHardwareGain", handle, master, red, green, blue);
    return master == camera::QueryCurrent ? currentGain : result;
}

std::int32_t RecordingCameraSdk::getFramesPerSecond(Handle handle, double* rate)
{
    *rate = framesPerSecond;
    return record("getFramesPerSecond", handle);
}

std::int32_t RecordingCameraSdk::setFrameRate(Handle handle, double rate, double* actual)
{
    const std::int32_t result = record("setFrameRate", handle, rate);
    *actual = rate * framerateFactor;
    return result;
}

std::int32_t RecordingCameraSdk::setExposureTime(Handle handle, double milliseconds, double* actual)
{
    const std::int32_t result = record("setExposureTime", handle, milliseconds);
    if (milliseconds == camera::QueryDefaultDouble) {
        *actual = defaultExposure;
    } else if (milliseconds == camera::QueryCurrentDouble) {
        *actual = -1.0; // nobody is to use it
    } else {
        *actual = milliseconds * exposureFactor;
    }
    return result;
}

std::int32_t RecordingCameraSdk::initCamera(Handle* handle, void* window)
{
    const std::int32_t result =
        record("initCamera", *handle, window == nullptr ? "null" : "a window");
    if (result == 0) {
        *handle = RecordedHandle;
    } else if (result == camera::FirmwareUploadNeeded) {
        *handle += 100; // what a refused opening leaves there is the SDK's business
    }
    return result;
}

std::int32_t RecordingCameraSdk::exitCamera(Handle handle)
{
    return record("exitCamera", handle);
}

std::int32_t RecordingCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    *count = 0;
    return record("getNumberOfCameras");
}

std::int32_t RecordingCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                   double* step)
{
    const std::int32_t result = record("getFrameTimeRange", handle, *minimum, *maximum, *step);
    if (result == 0) {
        *minimum = minFrameTime;
        *maximum = maxFrameTime;
        *step = frameTimeStep;
    }
    return result;
}

std::int32_t RecordingCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                  double* step)
{
    *minimum = minExposure;
    *maximum = maxExposure;
    *step = exposureStep;
    return record("getExposureRange", handle);
}

std::int32_t RecordingCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                    std::int32_t* maximum)
{
    *minimum = minPixelclock;
    *maximum = maxPixelclock;
    return record("getPixelClockRange", handle);
}

std::int32_t RecordingCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    return record("loadParameters", handle, fileName);
}

std::int32_t RecordingCameraSdk::getCameraList(CameraList* list)
{
    list->count = 0;
    return record("getCameraList");
}

std::int32_t RecordingCameraSdk::getFirmwareUploadTime(Handle handle, std::int32_t one,
                                                       std::int32_t* milliseconds)
{
    const std::int32_t result = record("getFirmwareUploadTime", handle, one, *milliseconds);
    if (uploadMsec != 0) {
        *milliseconds = uploadMsec;
    }
    return result;
}

std::int32_t RecordingCameraSdk::hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                                 std::int32_t size)
{
    return record("hotpixelCommand", handle, command, buffer == nullptr ? "null" : "a buffer",
                  size);
}
