// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "hotpixel/BadpixelEntry.h"

#include <cstring>
#include <functional>
#include <vector>

/// An SDK of which only the EEPROM works, and not always. Every call of hotpixelCommand has a
/// number, from 1 on, and a chosen one of them goes wrong in a chosen way.
class EepromSdk final : public CameraSdk
{
public:
    enum class Fault {
        None,
        Refuse,            ///< fails and does nothing
        RefuseWithGarbage, ///< fails and leaves nonsense in the buffer
        RefuseFromThenOn,  ///< as if the cable had been pulled
        Tear,              ///< a write that stores half of the list and fails
        StoreOther,        ///< a write that stores another list and succeeds
        StoreChanged,      ///< a write that stores as many entries, one of them wrong, and succeeds
        StoreAndFail       ///< a write that stores the list and fails all the same
    };

    static constexpr std::int32_t FaultCode = 77;

    std::vector<BadpixelEntry> user;
    std::vector<BadpixelEntry> factory;
    std::int32_t capacity = 10;
    Fault fault = Fault::None;
    int faultyCall = 0;
    int unlikeWrites = 0; ///< how many writes, from the first on, store one entry wrong and succeed
    int calls = 0;
    int writes = 0;
    int deletions = 0;    ///< those of the writes that delete the list
    bool explains = true; ///< whether it has a text for what went wrong

    /// Called before each command that changes the EEPROM.
    std::function<void()> beforeChange = [] {};

    std::int32_t hotpixelCommand(Handle /*handle*/, std::int32_t command, void* buffer,
                                 std::int32_t size) override
    {
        ++calls;
        const bool changes = command == camera::SetUserList || command == camera::DeleteUserList;
        if (changes) {
            ++writes;
            deletions += command == camera::DeleteUserList ? 1 : 0;
            beforeChange();
        }
        if (changes && writes <= unlikeWrites) {
            storeChanged(command, buffer);
            return 0;
        }
        const bool struck =
            fault == Fault::RefuseFromThenOn ? calls >= faultyCall : calls == faultyCall;
        if (struck) {
            switch (fault) {
            case Fault::None:
                break;
            case Fault::RefuseWithGarbage:
                if (!changes) {
                    std::memset(buffer, 0x2a, static_cast<std::size_t>(size));
                }
                return FaultCode;
            case Fault::Refuse:
            case Fault::RefuseFromThenOn:
                return FaultCode;
            case Fault::Tear:
                if (changes) {
                    store(command, buffer);
                    user.resize(user.size() / 2);
                }
                return FaultCode;
            case Fault::StoreOther:
                if (changes) {
                    storeOther(command, buffer);
                    return 0;
                }
                break;
            case Fault::StoreChanged:
                if (changes) {
                    storeChanged(command, buffer);
                    return 0;
                }
                break;
            case Fault::StoreAndFail:
                if (changes) {
                    store(command, buffer);
                }
                return FaultCode;
            }
        }
        switch (command) {
        case camera::GetMaxUserEntries:
            return answer(capacity, buffer);
        case camera::GetFactoryCount:
            return answer(static_cast<std::int32_t>(factory.size()), buffer);
        case camera::GetUserCount:
            return answer(static_cast<std::int32_t>(user.size()), buffer);
        case camera::GetFactoryList:
            return answer(factory, buffer);
        case camera::GetUserList:
            return answer(user, buffer);
        default:
            store(command, buffer);
            return 0;
        }
    }

    std::int32_t getError(Handle /*handle*/, std::int32_t* code, char** text) override
    {
        static char tired[] = "The EEPROM is tired.";
        *text = tired;
        return explains && *code == FaultCode ? 0 : 1;
    }

    // No camera behind it.
    std::int32_t stopLiveVideo(Handle, std::int32_t) override { return 1; }
    std::int32_t startLiveVideo(Handle, std::int32_t) override { return 1; }
    std::int32_t setColorMode(Handle, std::int32_t) override { return 1; }
    std::int32_t allocImageMemory(Handle, std::int32_t, std::int32_t, std::int32_t, char**,
                                  std::int32_t*) override
    {
        return 1;
    }
    std::int32_t freeImageMemory(Handle, char*, std::int32_t) override { return 1; }
    std::int32_t initEvent(Handle, EventHandle, std::int32_t) override { return 1; }
    std::int32_t exitEvent(Handle, std::int32_t) override { return 1; }
    std::int32_t enableEvent(Handle, std::int32_t) override { return 1; }
    std::int32_t disableEvent(Handle, std::int32_t) override { return 1; }
    std::int32_t addToSequence(Handle, char*, std::int32_t) override { return 1; }
    std::int32_t clearSequence(Handle) override { return 1; }
    std::int32_t getFrameMemory(Handle, std::int32_t, std::int32_t, char**) override { return 1; }
    std::int32_t setPixelClock(Handle, std::int32_t) override { return 1; }
    std::int32_t getSensorInfo(Handle, SensorInfo*) override { return 1; }
    std::int32_t setHardwareGain(Handle, std::int32_t, std::int32_t, std::int32_t,
                                 std::int32_t) override
    {
        return 1;
    }
    std::int32_t getFramesPerSecond(Handle, double*) override { return 1; }
    std::int32_t setFrameRate(Handle, double, double*) override { return 1; }
    std::int32_t setExposureTime(Handle, double, double*) override { return 1; }
    std::int32_t initCamera(Handle*, void*) override { return 1; }
    std::int32_t exitCamera(Handle) override { return 1; }
    std::int32_t getNumberOfCameras(std::int32_t*) override { return 1; }
    std::int32_t getFrameTimeRange(Handle, double*, double*, double*) override { return 1; }
    std::int32_t getExposureRange(Handle, double*, double*, double*) override { return 1; }
    std::int32_t getPixelClockRange(Handle, std::int32_t*, std::int32_t*) override { return 1; }
    std::int32_t loadParameters(Handle, const char*) override { return 1; }
    std::int32_t getCameraList(CameraList*) override { return 1; }
    std::int32_t getFirmwareUploadTime(Handle, std::int32_t, std::int32_t*) override { return 1; }

private:
    static std::int32_t answer(std::int32_t number, void* buffer)
    {
        std::memcpy(buffer, &number, sizeof number);
        return 0;
    }

    static std::int32_t answer(const std::vector<BadpixelEntry>& list, void* buffer)
    {
        auto* words = static_cast<std::uint16_t*>(buffer);
        *words++ = static_cast<std::uint16_t>(list.size());
        for (const BadpixelEntry& entry : list) {
            *words++ = entry.x;
            *words++ = entry.y;
        }
        return 0;
    }

    void storeOther(std::int32_t command, const void* buffer)
    {
        store(command, buffer);
        user.push_back({1, 1, UserPixel});
    }

    void storeChanged(std::int32_t command, const void* buffer)
    {
        store(command, buffer);
        if (!user.empty()) {
            user.back().y ^= 1U;
        }
    }

    void store(std::int32_t command, const void* buffer)
    {
        user.clear();
        if (command == camera::DeleteUserList) {
            return;
        }
        const auto* words = static_cast<const std::uint16_t*>(buffer);
        const std::size_t count = *words++;
        for (std::size_t i = 0; i < count; ++i) {
            user.push_back({words[2 * i], words[2 * i + 1], UserPixel});
        }
    }
};
