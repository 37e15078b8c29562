// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"
#include "tests/sdk/ListBuffer.h"
#include "tests/sdk/MockCameraSdk.h"

#include <cstring>
#include <functional>
#include <vector>

/// An SDK of which only the EEPROM works, and not always. Every call of hotpixelCommand has a
/// number, from 1 on, and a chosen one of them goes wrong in a chosen way.
class EepromSdk final : public SilentCameraSdk
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

    // No events, so no event threads, and no list of cameras.
    std::int32_t enableEvent(Handle /*handle*/, std::int32_t /*eventId*/) override { return 1; }
    std::int32_t getNumberOfCameras(std::int32_t* /*count*/) override { return 1; }

private:
    static std::int32_t answer(std::int32_t number, void* buffer)
    {
        std::memcpy(buffer, &number, sizeof number);
        return 0;
    }

    static std::int32_t answer(const std::vector<BadpixelEntry>& list, void* buffer)
    {
        listbuffer::write(list, buffer);
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
        user = command == camera::DeleteUserList
                   ? std::vector<BadpixelEntry>()
                   : listbuffer::read<std::vector<BadpixelEntry>>(buffer);
    }
};
