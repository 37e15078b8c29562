// SPDX-License-Identifier: MIT
#include "hotpixel/CameraLists.h"

#include "camera/Camera.h"

#include <stdexcept>

namespace {

/// A list as the camera exchanges it: its count, and x and y of each entry in turn.
using Buffer = std::vector<std::uint16_t>;

std::int32_t sizeOf(const Buffer& buffer)
{
    return static_cast<std::int32_t>(buffer.size() * sizeof(Buffer::value_type));
}

} // namespace

int CameraLists::maxUserEntries() const
{
    return count(camera::GetMaxUserEntries,
                 tr("Can't read the capacity of the camera's user list"));
}

std::vector<BadpixelEntry> CameraLists::factoryEntries() const
{
    return list(camera::GetFactoryCount, camera::GetFactoryList, FactoryPixel,
                tr("Can't read the camera's factory list"));
}

std::vector<BadpixelEntry> CameraLists::userEntries() const
{
    return list(camera::GetUserCount, camera::GetUserList, UserPixel,
                tr("Can't read the camera's user list"));
}

void CameraLists::setUserEntries(std::span<const BadpixelEntry> entries) const
{
    check(writeUserList(entries), tr("Error writing hotpixel list"));
}

std::int32_t CameraLists::readNumber(std::int32_t command, std::int32_t& number) const
{
    return m_camera.sdk().hotpixelCommand(m_camera.handle(), command, &number, sizeof number);
}

std::int32_t CameraLists::readList(std::int32_t command, std::size_t count, Pixelclass pixelClass,
                                   std::vector<BadpixelEntry>& entries) const
{
    Buffer buffer(2 * count + 1);
    const std::int32_t result =
        m_camera.sdk().hotpixelCommand(m_camera.handle(), command, buffer.data(), sizeOf(buffer));
    if (result != 0) {
        return result;
    }
    entries.clear();
    entries.reserve(count);
    for (std::size_t word = 1; word < buffer.size(); word += 2) {
        entries.push_back({buffer[word], buffer[word + 1], pixelClass});
    }
    return 0;
}

std::int32_t CameraLists::writeUserList(std::span<const BadpixelEntry> entries) const
{
    if (entries.empty()) {
        return m_camera.sdk().hotpixelCommand(m_camera.handle(), camera::DeleteUserList, nullptr,
                                              0);
    }
    Buffer buffer{static_cast<std::uint16_t>(entries.size())};
    buffer.reserve(2 * entries.size() + 1);
    for (const BadpixelEntry& entry : entries) {
        buffer.push_back(entry.x);
        buffer.push_back(entry.y);
    }
    return m_camera.sdk().hotpixelCommand(m_camera.handle(), camera::SetUserList, buffer.data(),
                                          sizeOf(buffer));
}

int CameraLists::count(std::int32_t command, const QString& what) const
{
    std::int32_t number = 0;
    check(readNumber(command, number), what);
    if (number < 0 || number > MaxEntries) {
        throw std::runtime_error(
            tr("%1: the camera answers %2.").arg(what).arg(number).toStdString());
    }
    return number;
}

std::vector<BadpixelEntry> CameraLists::list(std::int32_t countCommand, std::int32_t listCommand,
                                             Pixelclass pixelClass, const QString& what) const
{
    std::vector<BadpixelEntry> entries;
    if (const int number = count(countCommand, what); number > 0) {
        check(readList(listCommand, static_cast<std::size_t>(number), pixelClass, entries), what);
    }
    return entries;
}

void CameraLists::check(std::int32_t result, const QString& what) const
{
    if (result != 0) {
        throw std::runtime_error(
            tr("%1: %2").arg(what, m_camera.errorMessage(result)).toStdString());
    }
}
