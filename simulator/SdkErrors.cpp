// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"

#include "camera/CameraSdk.h"

namespace simulator {

const char* errorText(std::int32_t code)
{
    switch (code) {
    case Success:
        return "No error.";
    case camera::FileNotOpened:
        return "The settings file can't be opened.";
    case camera::FirmwareUploadNeeded:
        return "The camera needs a firmware upload.";
    case InvalidHandle:
        return "The camera handle is not valid.";
    case CameraClosed:
        return "The camera is closed.";
    case CameraNotFound:
        return "There is no such camera.";
    case CameraInUse:
        return "The camera is in use by another program.";
    case CameraUnplugged:
        return "The camera is not connected.";
    case NullPointer:
        return "A pointer is missing.";
    case InvalidParameter:
        return "A parameter is out of range.";
    case InvalidColorMode:
        return "The camera does not have this color mode.";
    case InvalidBufferSize:
        return "The buffer does not have the right size.";
    case InvalidImageMemory:
        return "This image memory does not belong to the camera.";
    case OutOfMemory:
        return "There is not enough memory.";
    case SequenceEmpty:
        return "There is no image memory to capture into.";
    case NoFrameYet:
        return "No frame has been captured yet.";
    case CaptureRunning:
        return "This is not possible while live capture is running.";
    case EventNotBound:
        return "No event object is bound to this event.";
    case InvalidParameterFile:
        return "The settings file is not valid.";
    case ListTooLong:
        return "The hotpixel list is longer than the camera's memory for it.";
    case EepromDamaged:
        return "The camera's EEPROM is damaged.";
    case EepromNotWritten:
        return "The camera's EEPROM can't be written.";
    case RecordedFramesUnusable:
        return "The recorded frames can't be played.";
    case FirmwareUploadFailed:
        return "The firmware upload failed.";
    default:
        return nullptr;
    }
}

} // namespace simulator
