// SPDX-License-Identifier: MIT
#include "tests/sdk/ForwardingCameraSdk.h"

#include <array>

namespace {

constexpr std::array<std::string_view, SdkOperationCount> Names = {
    "stopLiveVideo",      "startLiveVideo",     "setColorMode",      "getError",
    "allocImageMemory",   "freeImageMemory",    "initEvent",         "exitEvent",
    "enableEvent",        "disableEvent",       "addToSequence",     "clearSequence",
    "getFrameMemory",     "setPixelClock",      "getSensorInfo",     "setHardwareGain",
    "getFramesPerSecond", "setFrameRate",       "setExposureTime",   "initCamera",
    "exitCamera",         "getNumberOfCameras", "getFrameTimeRange", "getExposureRange",
    "getPixelClockRange", "loadParameters",     "getCameraList",     "getFirmwareUploadTime",
    "hotpixelCommand"};

} // namespace

std::string_view name(SdkOperation operation)
{
    return Names[static_cast<std::size_t>(operation)];
}

bool hasOutParameters(SdkOperation operation)
{
    switch (operation) {
    case SdkOperation::GetError:
    case SdkOperation::AllocImageMemory:
    case SdkOperation::GetFrameMemory:
    case SdkOperation::GetSensorInfo:
    case SdkOperation::GetFramesPerSecond:
    case SdkOperation::SetFrameRate:
    case SdkOperation::SetExposureTime:
    case SdkOperation::InitCamera:
    case SdkOperation::GetNumberOfCameras:
    case SdkOperation::GetFrameTimeRange:
    case SdkOperation::GetExposureRange:
    case SdkOperation::GetPixelClockRange:
    case SdkOperation::GetCameraList:
    case SdkOperation::GetFirmwareUploadTime:
    case SdkOperation::HotpixelCommand:
        return true;
    default:
        return false;
    }
}

template <typename... Parameters>
std::int32_t ForwardingCameraSdk::pass(SdkOperation operation,
                                       std::int32_t (CameraSdk::*function)(Parameters...),
                                       std::type_identity_t<Parameters>... arguments)
{
    const std::function<std::int32_t()> forward = [&] { return (m_sdk.*function)(arguments...); };
    return through({operation, {arguments...}, forward});
}

std::int32_t ForwardingCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    return pass(SdkOperation::StopLiveVideo, &CameraSdk::stopLiveVideo, handle, waitMode);
}

std::int32_t ForwardingCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    return pass(SdkOperation::StartLiveVideo, &CameraSdk::startLiveVideo, handle, waitMode);
}

std::int32_t ForwardingCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    return pass(SdkOperation::SetColorMode, &CameraSdk::setColorMode, handle, mode);
}

std::int32_t ForwardingCameraSdk::getError(Handle handle, std::int32_t* code, char** text)
{
    return pass(SdkOperation::GetError, &CameraSdk::getError, handle, code, text);
}

std::int32_t ForwardingCameraSdk::allocImageMemory(Handle handle, std::int32_t width,
                                                   std::int32_t height, std::int32_t bitsPerPixel,
                                                   char** memory, std::int32_t* memoryId)
{
    return pass(SdkOperation::AllocImageMemory, &CameraSdk::allocImageMemory, handle, width, height,
                bitsPerPixel, memory, memoryId);
}

std::int32_t ForwardingCameraSdk::freeImageMemory(Handle handle, char* memory,
                                                  std::int32_t memoryId)
{
    return pass(SdkOperation::FreeImageMemory, &CameraSdk::freeImageMemory, handle, memory,
                memoryId);
}

std::int32_t ForwardingCameraSdk::initEvent(Handle handle, EventHandle event, std::int32_t eventId)
{
    return pass(SdkOperation::InitEvent, &CameraSdk::initEvent, handle, event, eventId);
}

std::int32_t ForwardingCameraSdk::exitEvent(Handle handle, std::int32_t eventId)
{
    return pass(SdkOperation::ExitEvent, &CameraSdk::exitEvent, handle, eventId);
}

std::int32_t ForwardingCameraSdk::enableEvent(Handle handle, std::int32_t eventId)
{
    return pass(SdkOperation::EnableEvent, &CameraSdk::enableEvent, handle, eventId);
}

std::int32_t ForwardingCameraSdk::disableEvent(Handle handle, std::int32_t eventId)
{
    return pass(SdkOperation::DisableEvent, &CameraSdk::disableEvent, handle, eventId);
}

std::int32_t ForwardingCameraSdk::addToSequence(Handle handle, char* memory, std::int32_t memoryId)
{
    return pass(SdkOperation::AddToSequence, &CameraSdk::addToSequence, handle, memory, memoryId);
}

std::int32_t ForwardingCameraSdk::clearSequence(Handle handle)
{
    return pass(SdkOperation::ClearSequence, &CameraSdk::clearSequence, handle);
}

std::int32_t ForwardingCameraSdk::getFrameMemory(Handle handle, std::int32_t first,
                                                 std::int32_t second, char** memory)
{
    return pass(SdkOperation::GetFrameMemory, &CameraSdk::getFrameMemory, handle, first, second,
                memory);
}

std::int32_t ForwardingCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return pass(SdkOperation::SetPixelClock, &CameraSdk::setPixelClock, handle, value);
}

std::int32_t ForwardingCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    return pass(SdkOperation::GetSensorInfo, &CameraSdk::getSensorInfo, handle, info);
}

std::int32_t ForwardingCameraSdk::setHardwareGain(Handle handle, std::int32_t master,
                                                  std::int32_t red, std::int32_t green,
                                                  std::int32_t blue)
{
    return pass(SdkOperation::SetHardwareGain, &CameraSdk::setHardwareGain, handle, master, red,
                green, blue);
}

std::int32_t ForwardingCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    return pass(SdkOperation::GetFramesPerSecond, &CameraSdk::getFramesPerSecond, handle,
                framesPerSecond);
}

std::int32_t ForwardingCameraSdk::setFrameRate(Handle handle, double framesPerSecond,
                                               double* actual)
{
    return pass(SdkOperation::SetFrameRate, &CameraSdk::setFrameRate, handle, framesPerSecond,
                actual);
}

std::int32_t ForwardingCameraSdk::setExposureTime(Handle handle, double milliseconds,
                                                  double* actual)
{
    return pass(SdkOperation::SetExposureTime, &CameraSdk::setExposureTime, handle, milliseconds,
                actual);
}

std::int32_t ForwardingCameraSdk::initCamera(Handle* handle, void* window)
{
    return pass(SdkOperation::InitCamera, &CameraSdk::initCamera, handle, window);
}

std::int32_t ForwardingCameraSdk::exitCamera(Handle handle)
{
    return pass(SdkOperation::ExitCamera, &CameraSdk::exitCamera, handle);
}

std::int32_t ForwardingCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    return pass(SdkOperation::GetNumberOfCameras, &CameraSdk::getNumberOfCameras, count);
}

std::int32_t ForwardingCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                    double* step)
{
    return pass(SdkOperation::GetFrameTimeRange, &CameraSdk::getFrameTimeRange, handle, minimum,
                maximum, step);
}

std::int32_t ForwardingCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                   double* step)
{
    return pass(SdkOperation::GetExposureRange, &CameraSdk::getExposureRange, handle, minimum,
                maximum, step);
}

std::int32_t ForwardingCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                     std::int32_t* maximum)
{
    return pass(SdkOperation::GetPixelClockRange, &CameraSdk::getPixelClockRange, handle, minimum,
                maximum);
}

std::int32_t ForwardingCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    return pass(SdkOperation::LoadParameters, &CameraSdk::loadParameters, handle, fileName);
}

std::int32_t ForwardingCameraSdk::getCameraList(CameraList* list)
{
    return pass(SdkOperation::GetCameraList, &CameraSdk::getCameraList, list);
}

std::int32_t ForwardingCameraSdk::getFirmwareUploadTime(Handle handle, std::int32_t one,
                                                        std::int32_t* milliseconds)
{
    return pass(SdkOperation::GetFirmwareUploadTime, &CameraSdk::getFirmwareUploadTime, handle, one,
                milliseconds);
}

std::int32_t ForwardingCameraSdk::hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                                  std::int32_t size)
{
    return pass(SdkOperation::HotpixelCommand, &CameraSdk::hotpixelCommand, handle, command, buffer,
                size);
}
