// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The results of the simulated SDK that camera::FirmwareUploadNeeded and camera::FileNotOpened do
/// not cover. They lie above every value that a query form can return.
namespace simulator {

enum SdkError : std::int32_t {
    Success = 0,
    InvalidHandle = 1001,
    CameraClosed = 1002,
    CameraNotFound = 1003,
    CameraInUse = 1004,
    CameraUnplugged = 1005,
    NullPointer = 1006,
    InvalidParameter = 1007,
    InvalidColorMode = 1008,
    InvalidBufferSize = 1009,
    InvalidImageMemory = 1010,
    OutOfMemory = 1011,
    SequenceEmpty = 1012,
    NoFrameYet = 1013,
    CaptureRunning = 1014,
    EventNotBound = 1015,
    InvalidParameterFile = 1016,
    ListTooLong = 1017,
    EepromDamaged = 1018,
    EepromNotWritten = 1019,
    RecordedFramesUnusable = 1020,
    FirmwareUploadFailed = 1021,
};

/// The text for @p code, null for a code that no operation returns. Static storage.
const char* errorText(std::int32_t code);

} // namespace simulator
