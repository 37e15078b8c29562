// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

/// A camera that has nothing but its two hotpixel lists, and keeps account of the commands for
/// them. Everything else succeeds without doing anything.
class FakeListCamera final : public CameraSdk
{
public:
    struct Command
    {
        Handle handle;
        std::int32_t code;
        bool hasBuffer;
        std::int32_t size;
        friend bool operator==(const Command&, const Command&) = default;
    };

    static constexpr Handle OpenHandle = 7;

    std::int32_t maxUserEntries = 1000;
    std::int32_t factoryCount = 0; ///< as reported, whatever the list holds
    std::int32_t userCount = 0;
    std::vector<std::uint16_t> factoryList; ///< the list buffer: count, then x and y in turn
    std::vector<std::uint16_t> userList;
    std::map<std::int32_t, std::int32_t> results; ///< for the commands that are to fail

    std::vector<Command> commands;
    std::vector<std::uint16_t> written; ///< the list buffer that was written last

    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override
    {
        commands.push_back({handle, command, buffer != nullptr, size});
        if (results.contains(command)) {
            return results.at(command);
        }
        switch (command) {
        case camera::GetMaxUserEntries:
            std::memcpy(buffer, &maxUserEntries, sizeof maxUserEntries);
            break;
        case camera::GetFactoryCount:
            std::memcpy(buffer, &factoryCount, sizeof factoryCount);
            break;
        case camera::GetUserCount:
            std::memcpy(buffer, &userCount, sizeof userCount);
            break;
        case camera::GetFactoryList:
            copy(factoryList, buffer, size);
            break;
        case camera::GetUserList:
            copy(userList, buffer, size);
            break;
        case camera::SetUserList:
            written.resize(static_cast<std::size_t>(size) / 2);
            std::memcpy(written.data(), buffer, static_cast<std::size_t>(size));
            break;
        default:
            break;
        }
        return 0;
    }

    std::int32_t initCamera(Handle* handle, void* /*window*/) override
    {
        *handle = OpenHandle;
        return 0;
    }
    std::int32_t getSensorInfo(Handle /*handle*/, SensorInfo* info) override
    {
        *info = {};
        info->maxWidth = 4;
        info->maxHeight = 4;
        return 0;
    }
    std::int32_t setColorMode(Handle /*handle*/, std::int32_t mode) override
    {
        return mode == camera::QueryCurrent ? camera::ColorModeMono8 : 0;
    }
    std::int32_t allocImageMemory(Handle /*handle*/, std::int32_t /*width*/,
                                  std::int32_t /*height*/, std::int32_t /*bitsPerPixel*/,
                                  char** memory, std::int32_t* memoryId) override
    {
        *memory = m_memory.data();
        *memoryId = 1;
        return 0;
    }
    std::int32_t getError(Handle, std::int32_t*, char**) override { return 1; }
    std::int32_t stopLiveVideo(Handle, std::int32_t) override { return 0; }
    std::int32_t startLiveVideo(Handle, std::int32_t) override { return 0; }
    std::int32_t freeImageMemory(Handle, char*, std::int32_t) override { return 0; }
    std::int32_t initEvent(Handle, EventHandle, std::int32_t) override { return 0; }
    std::int32_t exitEvent(Handle, std::int32_t) override { return 0; }
    std::int32_t enableEvent(Handle, std::int32_t) override { return 0; }
    std::int32_t disableEvent(Handle, std::int32_t) override { return 0; }
    std::int32_t addToSequence(Handle, char*, std::int32_t) override { return 0; }
    std::int32_t clearSequence(Handle) override { return 0; }
    std::int32_t getFrameMemory(Handle, std::int32_t, std::int32_t, char**) override { return 1; }
    std::int32_t setPixelClock(Handle, std::int32_t) override { return 0; }
    std::int32_t setHardwareGain(Handle, std::int32_t, std::int32_t, std::int32_t,
                                 std::int32_t) override
    {
        return 0;
    }
    std::int32_t getFramesPerSecond(Handle, double*) override { return 0; }
    std::int32_t setFrameRate(Handle, double, double*) override { return 0; }
    std::int32_t setExposureTime(Handle, double, double*) override { return 0; }
    std::int32_t exitCamera(Handle) override { return 0; }
    std::int32_t getNumberOfCameras(std::int32_t*) override { return 1; }
    std::int32_t getFrameTimeRange(Handle /*handle*/, double* minimum, double* maximum,
                                   double* step) override
    {
        *minimum = *maximum = *step = 0.1;
        return 0;
    }
    std::int32_t getExposureRange(Handle /*handle*/, double* minimum, double* maximum,
                                  double* step) override
    {
        *minimum = *maximum = *step = 1;
        return 0;
    }
    std::int32_t getPixelClockRange(Handle /*handle*/, std::int32_t* minimum,
                                    std::int32_t* maximum) override
    {
        *minimum = *maximum = 1;
        return 0;
    }
    std::int32_t loadParameters(Handle, const char*) override { return camera::FileNotOpened; }
    std::int32_t getCameraList(CameraList*) override { return 1; }
    std::int32_t getFirmwareUploadTime(Handle, std::int32_t, std::int32_t*) override { return 1; }

private:
    static void copy(const std::vector<std::uint16_t>& list, void* buffer, std::int32_t size)
    {
        std::memcpy(buffer, list.data(), std::min(list.size() * 2, static_cast<std::size_t>(size)));
    }

    std::string m_memory = std::string(64, '\0');
};
