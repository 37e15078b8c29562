// SPDX-License-Identifier: MIT
#include "tests/sdk/CannedCameraSdk.h"

EventHandle CannedCameraSdk::event(int eventId)
{
    const std::lock_guard lock(m_mutex);
    return m_events.value(eventId);
}

std::int32_t CannedCameraSdk::setColorMode(Handle /*handle*/, std::int32_t mode)
{
    return mode == camera::QueryCurrent ? currentColorMode : 0;
}

std::int32_t CannedCameraSdk::getError(Handle /*handle*/, std::int32_t* code, char** text)
{
    if (!errorTexts.contains(*code)) {
        return 1;
    }
    *text = errorTexts[*code].data();
    return 0;
}

std::int32_t CannedCameraSdk::allocImageMemory(Handle /*handle*/, std::int32_t /*width*/,
                                               std::int32_t /*height*/,
                                               std::int32_t /*bitsPerPixel*/, char** pointer,
                                               std::int32_t* memoryId)
{
    *pointer = memory.at(m_allocated).data();
    *memoryId = static_cast<std::int32_t>(++m_allocated) * 10;
    return 0;
}

std::int32_t CannedCameraSdk::initEvent(Handle /*handle*/, EventHandle event, std::int32_t eventId)
{
    const std::lock_guard lock(m_mutex);
    m_events[eventId] = event;
    return 0;
}

std::int32_t CannedCameraSdk::enableEvent(Handle /*handle*/, std::int32_t /*eventId*/)
{
    return threads ? 0 : 1;
}

std::int32_t CannedCameraSdk::disableEvent(Handle /*handle*/, std::int32_t eventId)
{
    if (onDisableEvent) {
        onDisableEvent(eventId);
    }
    return 0;
}

std::int32_t CannedCameraSdk::getFrameMemory(Handle /*handle*/, std::int32_t /*first*/,
                                             std::int32_t /*second*/, char** pointer)
{
    *pointer = frameMemory;
    return 0;
}

std::int32_t CannedCameraSdk::setPixelClock(Handle /*handle*/, std::int32_t value)
{
    switch (value) {
    case camera::QueryCurrent:
        return currentPixelclock;
    case camera::QueryDefault:
        return defaultPixelclock;
    default:
        return 0;
    }
}

std::int32_t CannedCameraSdk::getSensorInfo(Handle /*handle*/, SensorInfo* info)
{
    info->maxWidth = sensorWidth;
    info->maxHeight = sensorHeight;
    return 0;
}

std::int32_t CannedCameraSdk::setHardwareGain(Handle /*handle*/, std::int32_t master,
                                              std::int32_t /*red*/, std::int32_t /*green*/,
                                              std::int32_t /*blue*/)
{
    return master == camera::QueryCurrent ? currentGain : 0;
}

std::int32_t CannedCameraSdk::getFramesPerSecond(Handle /*handle*/, double* rate)
{
    *rate = framesPerSecond;
    return 0;
}

std::int32_t CannedCameraSdk::setFrameRate(Handle /*handle*/, double rate, double* actual)
{
    *actual = rate * framerateFactor;
    return 0;
}

std::int32_t CannedCameraSdk::setExposureTime(Handle /*handle*/, double milliseconds,
                                              double* actual)
{
    if (milliseconds == camera::QueryDefaultDouble) {
        *actual = defaultExposure;
    } else if (milliseconds == camera::QueryCurrentDouble) {
        *actual = -1.0; // nobody is to use it
    } else {
        *actual = milliseconds * exposureFactor;
    }
    return 0;
}

std::int32_t CannedCameraSdk::initCamera(Handle* handle, void* /*window*/)
{
    *handle = OpenHandle;
    return 0;
}

std::int32_t CannedCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    *count = 0;
    return 0;
}

std::int32_t CannedCameraSdk::getFrameTimeRange(Handle /*handle*/, double* minimum, double* maximum,
                                                double* step)
{
    *minimum = minFrameTime;
    *maximum = maxFrameTime;
    *step = frameTimeStep;
    return 0;
}

std::int32_t CannedCameraSdk::getExposureRange(Handle /*handle*/, double* minimum, double* maximum,
                                               double* step)
{
    *minimum = minExposure;
    *maximum = maxExposure;
    *step = exposureStep;
    return 0;
}

std::int32_t CannedCameraSdk::getPixelClockRange(Handle /*handle*/, std::int32_t* minimum,
                                                 std::int32_t* maximum)
{
    *minimum = minPixelclock;
    *maximum = maxPixelclock;
    return 0;
}

std::int32_t CannedCameraSdk::getCameraList(CameraList* list)
{
    list->count = 0;
    return 0;
}

std::int32_t CannedCameraSdk::getFirmwareUploadTime(Handle /*handle*/, std::int32_t /*one*/,
                                                    std::int32_t* milliseconds)
{
    if (uploadMsec != 0) {
        *milliseconds = uploadMsec;
    }
    return 0;
}
