// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

/// The camera maker's library "Vorn_api_64.dll", bound by ordinal when the program loads: each
/// operation is one call of the function with its number, nothing is kept, checked or changed.
/// Where the library or one of the 29 ordinals is missing, Windows does not start the program.
/// Windows x64 only. Called on the threads that CameraSdk names.
class OrdinalCameraSdk final : public CameraSdk
{
public:
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
    std::int32_t getFrameMemory(Handle handle, std::int32_t, std::int32_t, char** memory) override;
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
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t,
                                       std::int32_t* milliseconds) override;
    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override;
};
