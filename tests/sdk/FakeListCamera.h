// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/CannedCameraSdk.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

/// A camera whose two hotpixel lists are the bytes that a test says, whether they fit together or
/// not. It keeps account of the commands for them.
class FakeListCamera final : public CannedCameraSdk
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

private:
    static void copy(const std::vector<std::uint16_t>& list, void* buffer, std::int32_t size)
    {
        std::memcpy(buffer, list.data(), std::min(list.size() * 2, static_cast<std::size_t>(size)));
    }
};
