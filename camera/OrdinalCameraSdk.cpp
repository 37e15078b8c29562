// SPDX-License-Identifier: MIT
#include "camera/OrdinalCameraSdk.h"

#include "camera/OrdinalFunctions.h"

std::int32_t OrdinalCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    return vorn_stopLiveVideo(handle, waitMode);
}

std::int32_t OrdinalCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    return vorn_startLiveVideo(handle, waitMode);
}

std::int32_t OrdinalCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    return vorn_setColorMode(handle, mode);
}

std::int32_t OrdinalCameraSdk::getError(Handle handle, std::int32_t* code, char** text)
{
    return vorn_getError(handle, code, text);
}

std::int32_t OrdinalCameraSdk::allocImageMemory(Handle handle, std::int32_t width,
                                                std::int32_t height, std::int32_t bitsPerPixel,
                                                char** memory, std::int32_t* memoryId)
{
    return vorn_allocImageMemory(handle, width, height, bitsPerPixel, memory, memoryId);
}

std::int32_t OrdinalCameraSdk::freeImageMemory(Handle handle, char* memory, std::int32_t memoryId)
{
    return vorn_freeImageMemory(handle, memory, memoryId);
}

std::int32_t OrdinalCameraSdk::initEvent(Handle handle, EventHandle event, std::int32_t eventId)
{
    return vorn_initEvent(handle, event, eventId);
}

std::int32_t OrdinalCameraSdk::exitEvent(Handle handle, std::int32_t eventId)
{
    return vorn_exitEvent(handle, eventId);
}

std::int32_t OrdinalCameraSdk::enableEvent(Handle handle, std::int32_t eventId)
{
    return vorn_enableEvent(handle, eventId);
}

std::int32_t OrdinalCameraSdk::disableEvent(Handle handle, std::int32_t eventId)
{
    return vorn_disableEvent(handle, eventId);
}

std::int32_t OrdinalCameraSdk::addToSequence(Handle handle, char* memory, std::int32_t memoryId)
{
    return vorn_addToSequence(handle, memory, memoryId);
}

std::int32_t OrdinalCameraSdk::clearSequence(Handle handle)
{
    return vorn_clearSequence(handle);
}

std::int32_t OrdinalCameraSdk::getFrameMemory(Handle handle, std::int32_t firstZero,
                                              std::int32_t secondZero, char** memory)
{
    return vorn_getFrameMemory(handle, firstZero, secondZero, memory);
}

std::int32_t OrdinalCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return vorn_setPixelClock(handle, value);
}

std::int32_t OrdinalCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    return vorn_getSensorInfo(handle, info);
}

std::int32_t OrdinalCameraSdk::setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                               std::int32_t green, std::int32_t blue)
{
    return vorn_setHardwareGain(handle, master, red, green, blue);
}

std::int32_t OrdinalCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    return vorn_getFramesPerSecond(handle, framesPerSecond);
}

std::int32_t OrdinalCameraSdk::setFrameRate(Handle handle, double framesPerSecond, double* actual)
{
    return vorn_setFrameRate(handle, framesPerSecond, actual);
}

std::int32_t OrdinalCameraSdk::setExposureTime(Handle handle, double milliseconds, double* actual)
{
    return vorn_setExposureTime(handle, milliseconds, actual);
}

std::int32_t OrdinalCameraSdk::initCamera(Handle* handle, void* window)
{
    return vorn_initCamera(handle, window);
}

std::int32_t OrdinalCameraSdk::exitCamera(Handle handle)
{
    return vorn_exitCamera(handle);
}

std::int32_t OrdinalCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    return vorn_getNumberOfCameras(count);
}

std::int32_t OrdinalCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                 double* step)
{
    return vorn_getFrameTimeRange(handle, minimum, maximum, step);
}

std::int32_t OrdinalCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                double* step)
{
    return vorn_getExposureRange(handle, minimum, maximum, step);
}

std::int32_t OrdinalCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                  std::int32_t* maximum)
{
    return vorn_getPixelClockRange(handle, minimum, maximum);
}

std::int32_t OrdinalCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    return vorn_loadParameters(handle, fileName);
}

std::int32_t OrdinalCameraSdk::getCameraList(CameraList* list)
{
    return vorn_getCameraList(list);
}

std::int32_t OrdinalCameraSdk::getFirmwareUploadTime(Handle handle, std::int32_t one,
                                                     std::int32_t* milliseconds)
{
    return vorn_getFirmwareUploadTime(handle, one, milliseconds);
}

std::int32_t OrdinalCameraSdk::hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                               std::int32_t size)
{
    return vorn_hotpixelCommand(handle, command, buffer, size);
}

std::unique_ptr<CameraSdk> createCameraSdk()
{
    return std::make_unique<OrdinalCameraSdk>();
}
