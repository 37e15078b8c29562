// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <cstdint>

// The functions of the camera maker's library "Vorn_api_64.dll", as C sees them. They have no names
// there: camera/Vorn_api_64.def gives each its ordinal. Whoever makes a library of this kind
// defines VORN_API_EXPORTS and exports them through the same file.
#ifdef VORN_API_EXPORTS
#define VORN_API
#else
#define VORN_API __declspec(dllimport)
#endif

extern "C" {
VORN_API std::int32_t vorn_stopLiveVideo(std::uint32_t handle, std::int32_t waitMode);
VORN_API std::int32_t vorn_startLiveVideo(std::uint32_t handle, std::int32_t waitMode);
VORN_API std::int32_t vorn_setColorMode(std::uint32_t handle, std::int32_t mode);
VORN_API std::int32_t vorn_getError(std::uint32_t handle, std::int32_t* code, char** text);
VORN_API std::int32_t vorn_allocImageMemory(std::uint32_t handle, std::int32_t width,
                                            std::int32_t height, std::int32_t bitsPerPixel,
                                            char** memory, std::int32_t* memoryId);
VORN_API std::int32_t vorn_freeImageMemory(std::uint32_t handle, char* memory,
                                           std::int32_t memoryId);
VORN_API std::int32_t vorn_initEvent(std::uint32_t handle, EventHandle event, std::int32_t eventId);
VORN_API std::int32_t vorn_exitEvent(std::uint32_t handle, std::int32_t eventId);
VORN_API std::int32_t vorn_enableEvent(std::uint32_t handle, std::int32_t eventId);
VORN_API std::int32_t vorn_disableEvent(std::uint32_t handle, std::int32_t eventId);
VORN_API std::int32_t vorn_addToSequence(std::uint32_t handle, char* memory, std::int32_t memoryId);
VORN_API std::int32_t vorn_clearSequence(std::uint32_t handle);
VORN_API std::int32_t vorn_getFrameMemory(std::uint32_t handle, std::int32_t, std::int32_t,
                                          char** memory);
VORN_API std::int32_t vorn_setPixelClock(std::uint32_t handle, std::int32_t value);
VORN_API std::int32_t vorn_getSensorInfo(std::uint32_t handle, SensorInfo* info);
VORN_API std::int32_t vorn_setHardwareGain(std::uint32_t handle, std::int32_t master,
                                           std::int32_t red, std::int32_t green, std::int32_t blue);
VORN_API std::int32_t vorn_getFramesPerSecond(std::uint32_t handle, double* framesPerSecond);
VORN_API std::int32_t vorn_setFrameRate(std::uint32_t handle, double framesPerSecond,
                                        double* actual);
VORN_API std::int32_t vorn_setExposureTime(std::uint32_t handle, double milliseconds,
                                           double* actual);
VORN_API std::int32_t vorn_initCamera(std::uint32_t* handle, void* window);
VORN_API std::int32_t vorn_exitCamera(std::uint32_t handle);
VORN_API std::int32_t vorn_getNumberOfCameras(std::int32_t* count);
VORN_API std::int32_t vorn_getFrameTimeRange(std::uint32_t handle, double* minimum, double* maximum,
                                             double* step);
VORN_API std::int32_t vorn_getExposureRange(std::uint32_t handle, double* minimum, double* maximum,
                                            double* step);
VORN_API std::int32_t vorn_getPixelClockRange(std::uint32_t handle, std::int32_t* minimum,
                                              std::int32_t* maximum);
VORN_API std::int32_t vorn_loadParameters(std::uint32_t handle, const char* fileName);
VORN_API std::int32_t vorn_getCameraList(CameraList* list);
VORN_API std::int32_t vorn_getFirmwareUploadTime(std::uint32_t handle, std::int32_t,
                                                 std::int32_t* milliseconds);
VORN_API std::int32_t vorn_hotpixelCommand(std::uint32_t handle, std::int32_t command, void* buffer,
                                           std::int32_t size);
}
