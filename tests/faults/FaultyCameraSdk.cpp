// SPDX-License-Identifier: MIT
#include "tests/faults/FaultyCameraSdk.h"

#include <bit>
#include <cstring>
#include <limits>

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

constexpr std::int32_t GarbageNumber = -1515870811; // 0xA5A5A5A5

// A pointer that nobody may follow after a failure; its address has no mapping.
char* garbagePointer()
{
    return std::bit_cast<char*>(std::uintptr_t{0xA5A5A5A5A5});
}

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

void FaultyCameraSdk::arm(std::optional<SdkFault> fault)
{
    const std::lock_guard lock(m_mutex);
    m_fault = fault;
    m_calls.fill(0);
    m_struck = false;
}

int FaultyCameraSdk::calls(SdkOperation operation) const
{
    const std::lock_guard lock(m_mutex);
    return m_calls[static_cast<std::size_t>(operation)];
}

FaultyCameraSdk::Outcome FaultyCameraSdk::count(SdkOperation operation)
{
    const std::lock_guard lock(m_mutex);
    const int call = ++m_calls[static_cast<std::size_t>(operation)];
    if (!m_fault || m_fault->operation != operation || m_fault->call != call) {
        return Outcome::PassOn;
    }
    m_struck = true;
    return m_fault->garbage ? Outcome::FailWithGarbage : Outcome::Fail;
}

std::int32_t FaultyCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    const Outcome outcome = count(SdkOperation::StopLiveVideo);
    const std::int32_t result = m_sdk.stopLiveVideo(handle, waitMode);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    return count(SdkOperation::StartLiveVideo) == Outcome::PassOn
               ? m_sdk.startLiveVideo(handle, waitMode)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    return count(SdkOperation::SetColorMode) == Outcome::PassOn ? m_sdk.setColorMode(handle, mode)
                                                                : FaultCode;
}

std::int32_t FaultyCameraSdk::getError(Handle handle, std::int32_t* code, char** text)
{
    const Outcome outcome = count(SdkOperation::GetError);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getError(handle, code, text);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *code = GarbageNumber;
        *text = garbagePointer();
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::allocImageMemory(Handle handle, std::int32_t width,
                                               std::int32_t height, std::int32_t bitsPerPixel,
                                               char** memory, std::int32_t* memoryId)
{
    const Outcome outcome = count(SdkOperation::AllocImageMemory);
    if (outcome == Outcome::PassOn) {
        return m_sdk.allocImageMemory(handle, width, height, bitsPerPixel, memory, memoryId);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *memory = garbagePointer();
        *memoryId = GarbageNumber;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::freeImageMemory(Handle handle, char* memory, std::int32_t memoryId)
{
    const Outcome outcome = count(SdkOperation::FreeImageMemory);
    const std::int32_t result = m_sdk.freeImageMemory(handle, memory, memoryId);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::initEvent(Handle handle, EventHandle event, std::int32_t eventId)
{
    return count(SdkOperation::InitEvent) == Outcome::PassOn
               ? m_sdk.initEvent(handle, event, eventId)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::exitEvent(Handle handle, std::int32_t eventId)
{
    const Outcome outcome = count(SdkOperation::ExitEvent);
    const std::int32_t result = m_sdk.exitEvent(handle, eventId);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::enableEvent(Handle handle, std::int32_t eventId)
{
    return count(SdkOperation::EnableEvent) == Outcome::PassOn ? m_sdk.enableEvent(handle, eventId)
                                                               : FaultCode;
}

std::int32_t FaultyCameraSdk::disableEvent(Handle handle, std::int32_t eventId)
{
    const Outcome outcome = count(SdkOperation::DisableEvent);
    const std::int32_t result = m_sdk.disableEvent(handle, eventId);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::addToSequence(Handle handle, char* memory, std::int32_t memoryId)
{
    return count(SdkOperation::AddToSequence) == Outcome::PassOn
               ? m_sdk.addToSequence(handle, memory, memoryId)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::clearSequence(Handle handle)
{
    const Outcome outcome = count(SdkOperation::ClearSequence);
    const std::int32_t result = m_sdk.clearSequence(handle);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                             char** memory)
{
    const Outcome outcome = count(SdkOperation::GetFrameMemory);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getFrameMemory(handle, first, second, memory);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *memory = garbagePointer();
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return count(SdkOperation::SetPixelClock) == Outcome::PassOn
               ? m_sdk.setPixelClock(handle, value)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    const Outcome outcome = count(SdkOperation::GetSensorInfo);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getSensorInfo(handle, info);
    }
    if (outcome == Outcome::FailWithGarbage) {
        std::memset(info, 0xA5, sizeof *info);
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                              std::int32_t green, std::int32_t blue)
{
    return count(SdkOperation::SetHardwareGain) == Outcome::PassOn
               ? m_sdk.setHardwareGain(handle, master, red, green, blue)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    const Outcome outcome = count(SdkOperation::GetFramesPerSecond);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getFramesPerSecond(handle, framesPerSecond);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *framesPerSecond = std::numeric_limits<double>::quiet_NaN();
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::setFrameRate(Handle handle, double framesPerSecond, double* actual)
{
    const Outcome outcome = count(SdkOperation::SetFrameRate);
    if (outcome == Outcome::PassOn) {
        return m_sdk.setFrameRate(handle, framesPerSecond, actual);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *actual = -1e300;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::setExposureTime(Handle handle, double milliseconds, double* actual)
{
    const Outcome outcome = count(SdkOperation::SetExposureTime);
    if (outcome == Outcome::PassOn) {
        return m_sdk.setExposureTime(handle, milliseconds, actual);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *actual = std::numeric_limits<double>::infinity();
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::initCamera(Handle* handle, void* window)
{
    const Outcome outcome = count(SdkOperation::InitCamera);
    if (outcome == Outcome::PassOn) {
        return m_sdk.initCamera(handle, window);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *handle = static_cast<Handle>(GarbageNumber);
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::exitCamera(Handle handle)
{
    const Outcome outcome = count(SdkOperation::ExitCamera);
    const std::int32_t result = m_sdk.exitCamera(handle);
    return outcome == Outcome::PassOn ? result : FaultCode;
}

std::int32_t FaultyCameraSdk::getNumberOfCameras(std::int32_t* number)
{
    const Outcome outcome = count(SdkOperation::GetNumberOfCameras);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getNumberOfCameras(number);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *number = GarbageNumber;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                double* step)
{
    const Outcome outcome = count(SdkOperation::GetFrameTimeRange);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getFrameTimeRange(handle, minimum, maximum, step);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *minimum = 0.0;
        *maximum = std::numeric_limits<double>::quiet_NaN();
        *step = 0.0;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                               double* step)
{
    const Outcome outcome = count(SdkOperation::GetExposureRange);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getExposureRange(handle, minimum, maximum, step);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *minimum = 1e300;
        *maximum = -1e300;
        *step = 0.0;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                 std::int32_t* maximum)
{
    const Outcome outcome = count(SdkOperation::GetPixelClockRange);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getPixelClockRange(handle, minimum, maximum);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *minimum = 0x5A5A5A5A;
        *maximum = GarbageNumber;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    return count(SdkOperation::LoadParameters) == Outcome::PassOn
               ? m_sdk.loadParameters(handle, fileName)
               : FaultCode;
}

std::int32_t FaultyCameraSdk::getCameraList(CameraList* list)
{
    const Outcome outcome = count(SdkOperation::GetCameraList);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getCameraList(list);
    }
    if (outcome == Outcome::FailWithGarbage) {
        list->count = static_cast<std::uint32_t>(GarbageNumber);
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::getFirmwareUploadTime(Handle handle, std::int32_t one,
                                                    std::int32_t* milliseconds)
{
    const Outcome outcome = count(SdkOperation::GetFirmwareUploadTime);
    if (outcome == Outcome::PassOn) {
        return m_sdk.getFirmwareUploadTime(handle, one, milliseconds);
    }
    if (outcome == Outcome::FailWithGarbage) {
        *milliseconds = GarbageNumber;
    }
    return FaultCode;
}

std::int32_t FaultyCameraSdk::hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                              std::int32_t size)
{
    const Outcome outcome = count(SdkOperation::HotpixelCommand);
    if (outcome == Outcome::PassOn) {
        return m_sdk.hotpixelCommand(handle, command, buffer, size);
    }
    // Only the commands that read write into the buffer.
    if (outcome == Outcome::FailWithGarbage && buffer != nullptr && size > 0 &&
        command != camera::SetUserList) {
        std::memset(buffer, 0xA5, static_cast<std::size_t>(size));
    }
    return FaultCode;
}
