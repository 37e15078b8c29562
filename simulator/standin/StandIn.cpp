// SPDX-License-Identifier: MIT
// A library that stands in for the camera maker's "Vorn_api_64.dll": the same ordinals, and
// simulated cameras behind them. Laid beside the unchanged program, it shows that the program works
// through its real import table, where there is neither the maker's library nor a camera.

#include "camera/OrdinalFunctions.h"

namespace {

CameraSdk& sdk()
{
    // Never destroyed: when a library is unloaded at the end of the process its threads are gone
    // already, and waiting for them would never end.
    static CameraSdk* const instance = createCameraSdk().release();
    return *instance;
}

} // namespace

std::int32_t vorn_stopLiveVideo(std::uint32_t handle, std::int32_t waitMode)
{
    return sdk().stopLiveVideo(handle, waitMode);
}

std::int32_t vorn_startLiveVideo(std::uint32_t handle, std::int32_t waitMode)
{
    return sdk().startLiveVideo(handle, waitMode);
}

std::int32_t vorn_setColorMode(std::uint32_t handle, std::int32_t mode)
{
    return sdk().setColorMode(handle, mode);
}

std::int32_t vorn_getError(std::uint32_t handle, std::int32_t* code, char** text)
{
    return sdk().getError(handle, code, text);
}

std::int32_t vorn_allocImageMemory(std::uint32_t handle, std::int32_t width, std::int32_t height,
                                   std::int32_t bitsPerPixel, char** memory, std::int32_t* memoryId)
{
    return sdk().allocImageMemory(handle, width, height, bitsPerPixel, memory, memoryId);
}

std::int32_t vorn_freeImageMemory(std::uint32_t handle, char* memory, std::int32_t memoryId)
{
    return sdk().freeImageMemory(handle, memory, memoryId);
}

std::int32_t vorn_initEvent(std::uint32_t handle, EventHandle event, std::int32_t eventId)
{
    return sdk().initEvent(handle, event, eventId);
}

std::int32_t vorn_exitEvent(std::uint32_t handle, std::int32_t eventId)
{
    return sdk().exitEvent(handle, eventId);
}

std::int32_t vorn_enableEvent(std::uint32_t handle, std::int32_t eventId)
{
    return sdk().enableEvent(handle, eventId);
}

std::int32_t vorn_disableEvent(std::uint32_t handle, std::int32_t eventId)
{
    return sdk().disableEvent(handle, eventId);
}

std::int32_t vorn_addToSequence(std::uint32_t handle, char* memory, std::int32_t memoryId)
{
    return sdk().addToSequence(handle, memory, memoryId);
}

std::int32_t vorn_clearSequence(std::uint32_t handle)
{
    return sdk().clearSequence(handle);
}

std::int32_t vorn_getFrameMemory(std::uint32_t handle, std::int32_t firstZero,
                                 std::int32_t secondZero, char** memory)
{
    return sdk().getFrameMemory(handle, firstZero, secondZero, memory);
}

std::int32_t vorn_setPixelClock(std::uint32_t handle, std::int32_t value)
{
    return sdk().setPixelClock(handle, value);
}

std::int32_t vorn_getSensorInfo(std::uint32_t handle, SensorInfo* info)
{
    return sdk().getSensorInfo(handle, info);
}

std::int32_t vorn_setHardwareGain(std::uint32_t handle, std::int32_t master, std::int32_t red,
                                  std::int32_t green, std::int32_t blue)
{
    return sdk().setHardwareGain(handle, master, red, green, blue);
}

std::int32_t vorn_getFramesPerSecond(std::uint32_t handle, double* framesPerSecond)
{
    return sdk().getFramesPerSecond(handle, framesPerSecond);
}

std::int32_t vorn_setFrameRate(std::uint32_t handle, double framesPerSecond, double* actual)
{
    return sdk().setFrameRate(handle, framesPerSecond, actual);
}

std::int32_t vorn_setExposureTime(std::uint32_t handle, double milliseconds, double* actual)
{
    return sdk().setExposureTime(handle, milliseconds, actual);
}

std::int32_t vorn_initCamera(std::uint32_t* handle, void* window)
{
    return sdk().initCamera(handle, window);
}

std::int32_t vorn_exitCamera(std::uint32_t handle)
{
    return sdk().exitCamera(handle);
}

std::int32_t vorn_getNumberOfCameras(std::int32_t* count)
{
    return sdk().getNumberOfCameras(count);
}

std::int32_t vorn_getFrameTimeRange(std::uint32_t handle, double* minimum, double* maximum,
                                    double* step)
{
    return sdk().getFrameTimeRange(handle, minimum, maximum, step);
}

std::int32_t vorn_getExposureRange(std::uint32_t handle, double* minimum, double* maximum,
                                   double* step)
{
    return sdk().getExposureRange(handle, minimum, maximum, step);
}

std::int32_t vorn_getPixelClockRange(std::uint32_t handle, std::int32_t* minimum,
                                     std::int32_t* maximum)
{
    return sdk().getPixelClockRange(handle, minimum, maximum);
}

std::int32_t vorn_loadParameters(std::uint32_t handle, const char* fileName)
{
    return sdk().loadParameters(handle, fileName);
}

std::int32_t vorn_getCameraList(CameraList* list)
{
    return sdk().getCameraList(list);
}

std::int32_t vorn_getFirmwareUploadTime(std::uint32_t handle, std::int32_t one,
                                        std::int32_t* milliseconds)
{
    return sdk().getFirmwareUploadTime(handle, one, milliseconds);
}

std::int32_t vorn_hotpixelCommand(std::uint32_t handle, std::int32_t command, void* buffer,
                                  std::int32_t size)
{
    return sdk().hotpixelCommand(handle, command, buffer, size);
}
