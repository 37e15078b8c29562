// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>
#include <string_view>

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

/// The operation's name in CameraSdk, for messages.
std::string_view name(SdkOperation operation);

/// Whether the operation brings results back through pointers.
bool hasOutParameters(SdkOperation operation);

/// One fault: the @p call-th call (from 1) of an operation fails.
struct SdkFault
{
    SdkOperation operation;
    int call;
    bool garbage; ///< also write nonsense through the out-parameters
};

/// Passes every call on to another SDK, counts the calls of each operation, and lets the chosen one
/// fail with FaultCode.
///
/// A failing call does not reach the other SDK. The exceptions are the operations that give
/// something back (stopLiveVideo, freeImageMemory, exitEvent, disableEvent, clearSequence and
/// exitCamera): there the SDK does its work and reports a failure all the same, as hardware that
/// has gone does; a camera that was never let go could not be opened again by anybody. Any thread.
class FaultyCameraSdk : public CameraSdk
{
public:
    static constexpr std::int32_t FaultCode = 77;

    explicit FaultyCameraSdk(CameraSdk& sdk)
        : m_sdk(sdk)
    {}

    /// Arms @p fault, or nothing; the counts start again at 0.
    void arm(std::optional<SdkFault> fault);

    /// Calls of @p operation since the last arm().
    [[nodiscard]] int calls(SdkOperation operation) const;

    /// Whether the armed fault has struck.
    [[nodiscard]] bool struck() const { return m_struck; }

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

private:
    enum class Outcome { PassOn, Fail, FailWithGarbage };

    Outcome count(SdkOperation operation);

    CameraSdk& m_sdk;
    mutable std::mutex m_mutex;
    std::array<int, SdkOperationCount> m_calls{};
    std::optional<SdkFault> m_fault;
    std::atomic<bool> m_struck = false;
};
