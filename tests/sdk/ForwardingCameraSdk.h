// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <functional>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

/// The operations of CameraSdk, in the order of their ordinals.
enum class SdkOperation {
    StopLiveVideo,
    StartLiveVideo,
    SetColorMode,
    GetError,
    AllocImageMemory,
    FreeImageMemory,
    InitEvent,
    ExitEvent,
    EnableEvent,
    DisableEvent,
    AddToSequence,
    ClearSequence,
    GetFrameMemory,
    SetPixelClock,
    GetSensorInfo,
    SetHardwareGain,
    GetFramesPerSecond,
    SetFrameRate,
    SetExposureTime,
    InitCamera,
    ExitCamera,
    GetNumberOfCameras,
    GetFrameTimeRange,
    GetExposureRange,
    GetPixelClockRange,
    LoadParameters,
    GetCameraList,
    GetFirmwareUploadTime,
    HotpixelCommand
};

inline constexpr std::size_t SdkOperationCount = 29;

/// The operation's name in CameraSdk.
std::string_view name(SdkOperation operation);

/// Whether the operation brings results back through pointers.
bool hasOutParameters(SdkOperation operation);

/// What an operation is called with: a number, the name of a file, image memory, or where to put a
/// result. Windows, event objects and the buffers of hotpixelCommand are plain pointers.
using SdkArgument =
    std::variant<std::int32_t, CameraSdk::Handle, double, const char*, char*, void*, std::int32_t*,
                 CameraSdk::Handle*, double*, char**, SensorInfo*, CameraList*>;

/// One call on its way to the SDK behind. It lives as long as the call.
struct SdkCall
{
    SdkOperation operation;
    std::vector<SdkArgument> arguments;           ///< all of them, in the operation's order
    const std::function<std::int32_t()>& forward; ///< makes the call; its result
};

/// Passes every call on to another SDK, which has to outlive it. What derives from it sees all
/// calls in one place, through(), or overrides the one operation that it is about.
///
/// Any thread, as far as the SDK behind allows it.
class ForwardingCameraSdk : public CameraSdk
{
public:
    explicit ForwardingCameraSdk(CameraSdk& sdk)
        : m_sdk(sdk)
    {}

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
    std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                char** memory) override;
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
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t one,
                                       std::int32_t* milliseconds) override;
    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override;

protected:
    /// Every call comes through here. @return what the caller gets; unless overridden, what the SDK
    /// behind answers.
    virtual std::int32_t through(const SdkCall& call) { return call.forward(); }

private:
    template <typename... Parameters>
    std::int32_t pass(SdkOperation operation, std::int32_t (CameraSdk::*function)(Parameters...),
                      std::type_identity_t<Parameters>... arguments);

    CameraSdk& m_sdk;
};
