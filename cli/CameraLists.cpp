// SPDX-License-Identifier: MIT
#include "cli/CameraLists.h"

#include "cli/CommandError.h"

int CameraLists::maxUserEntries() const
{
    return readCount(camera::GetMaxUserEntries,
                     tr("Can't read the capacity of the camera's user list"));
}

std::vector<BadpixelEntry> CameraLists::factoryEntries() const
{
    return readList(camera::GetFactoryCount, camera::GetFactoryList, FactoryPixel,
                    tr("Can't read the camera's factory list"));
}

std::vector<BadpixelEntry> CameraLists::userEntries() const
{
    return readList(camera::GetUserCount, camera::GetUserList, UserPixel,
                    tr("Can't read the camera's user list"));
}

void CameraLists::setUserEntries(std::span<const BadpixelEntry> entries) const
{
    const QString what = tr("Error writing hotpixel list");
    if (entries.empty()) {
        check(m_sdk.hotpixelCommand(m_handle, camera::DeleteUserList, nullptr, 0), what);
        return;
    }
    std::vector<std::uint16_t> buffer{static_cast<std::uint16_t>(entries.size())};
    buffer.reserve(2 * entries.size() + 1);
    for (const BadpixelEntry& entry : entries) {
        buffer.push_back(entry.x);
        buffer.push_back(entry.y);
    }
    check(m_sdk.hotpixelCommand(m_handle, camera::SetUserList, buffer.data(),
                                static_cast<std::int32_t>(2 * buffer.size())),
          what);
}

int CameraLists::readCount(std::int32_t command, const QString& what) const
{
    std::int32_t count = 0;
    check(m_sdk.hotpixelCommand(m_handle, command, &count, sizeof count), what);
    if (count < 0 || count > MaxEntries) {
        throw cli::CommandError(tr("%1: the camera answers %2.").arg(what).arg(count));
    }
    return count;
}

std::vector<BadpixelEntry> CameraLists::readList(std::int32_t countCommand,
                                                 std::int32_t listCommand, Pixelclass pixelClass,
                                                 const QString& what) const
{
    const auto count = static_cast<std::size_t>(readCount(countCommand, what));
    std::vector<BadpixelEntry> entries;
    if (count == 0) {
        return entries;
    }
    std::vector<std::uint16_t> buffer(2 * count + 1);
    check(m_sdk.hotpixelCommand(m_handle, listCommand, buffer.data(),
                                static_cast<std::int32_t>(2 * buffer.size())),
          what);
    entries.reserve(count);
    for (std::size_t word = 1; word < buffer.size(); word += 2) {
        entries.push_back({buffer[word], buffer[word + 1], pixelClass});
    }
    return entries;
}

void CameraLists::check(std::int32_t result, const QString& what) const
{
    if (result == 0) {
        return;
    }
    std::int32_t code = result;
    char* text = nullptr;
    const bool known = m_sdk.getError(m_handle, &code, &text) == 0 && text != nullptr;
    throw cli::CommandError(
        tr("%1: %2").arg(what, known ? QString::fromLatin1(text) : tr("Unknown error.")));
}
