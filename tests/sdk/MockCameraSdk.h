// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <gmock/gmock.h>

/// A camera SDK whose calls are expected and answered by a test; each operation succeeds unless
/// told otherwise.
class MockCameraSdk : public CameraSdk
{
public:
    MOCK_METHOD(std::int32_t, stopLiveVideo, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, startLiveVideo, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, setColorMode, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, getError, (Handle, std::int32_t*, char**), (override));
    MOCK_METHOD(std::int32_t, allocImageMemory,
                (Handle, std::int32_t, std::int32_t, std::int32_t, char**, std::int32_t*),
                (override));
    MOCK_METHOD(std::int32_t, freeImageMemory, (Handle, char*, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, initEvent, (Handle, EventHandle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, exitEvent, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, enableEvent, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, disableEvent, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, addToSequence, (Handle, char*, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, clearSequence, (Handle), (override));
    MOCK_METHOD(std::int32_t, getFrameMemory, (Handle, std::int32_t, std::int32_t, char**),
                (override));
    MOCK_METHOD(std::int32_t, setPixelClock, (Handle, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, getSensorInfo, (Handle, SensorInfo*), (override));
    MOCK_METHOD(std::int32_t, setHardwareGain,
                (Handle, std::int32_t, std::int32_t, std::int32_t, std::int32_t), (override));
    MOCK_METHOD(std::int32_t, getFramesPerSecond, (Handle, double*), (override));
    MOCK_METHOD(std::int32_t, setFrameRate, (Handle, double, double*), (override));
    MOCK_METHOD(std::int32_t, setExposureTime, (Handle, double, double*), (override));
    MOCK_METHOD(std::int32_t, initCamera, (Handle*, void*), (override));
    MOCK_METHOD(std::int32_t, exitCamera, (Handle), (override));
    MOCK_METHOD(std::int32_t, getNumberOfCameras, (std::int32_t*), (override));
    MOCK_METHOD(std::int32_t, getFrameTimeRange, (Handle, double*, double*, double*), (override));
    MOCK_METHOD(std::int32_t, getExposureRange, (Handle, double*, double*, double*), (override));
    MOCK_METHOD(std::int32_t, getPixelClockRange, (Handle, std::int32_t*, std::int32_t*),
                (override));
    MOCK_METHOD(std::int32_t, loadParameters, (Handle, const char*), (override));
    MOCK_METHOD(std::int32_t, getCameraList, (CameraList*), (override));
    MOCK_METHOD(std::int32_t, getFirmwareUploadTime, (Handle, std::int32_t, std::int32_t*),
                (override));
    MOCK_METHOD(std::int32_t, hotpixelCommand, (Handle, std::int32_t, void*, std::int32_t),
                (override));
};

/// An SDK whose operations succeed and do nothing: the base of those that answer only some.
using SilentCameraSdk = testing::NiceMock<MockCameraSdk>;
