// SPDX-License-Identifier: MIT
#include "simulator/CameraEeprom.h"

#include "camera/CameraSdk.h"
#include "simulator/SdkErrors.h"

#include <QtGlobal>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

std::int32_t tellNumber(std::size_t number, void* buffer, std::int32_t size)
{
    const auto value = static_cast<std::int32_t>(number);
    if (buffer == nullptr) {
        return simulator::NullPointer;
    }
    if (size != static_cast<std::int32_t>(sizeof value)) {
        return simulator::InvalidBufferSize;
    }
    std::memcpy(buffer, &value, sizeof value);
    return simulator::Success;
}

std::int32_t tellList(const std::vector<EepromPosition>& list, void* buffer, std::int32_t size)
{
    if (buffer == nullptr) {
        return simulator::NullPointer;
    }
    std::vector<std::uint16_t> words{static_cast<std::uint16_t>(list.size())};
    for (const EepromPosition& position : list) {
        words.push_back(position.x);
        words.push_back(position.y);
    }
    const std::size_t bytes = words.size() * sizeof words.front();
    if (size < 0 || static_cast<std::size_t>(size) < bytes) {
        return simulator::InvalidBufferSize;
    }
    std::memcpy(buffer, words.data(), bytes);
    return simulator::Success;
}

} // namespace

CameraEeprom::CameraEeprom(QString fileName, EepromContent fresh, int userCapacity)
    : m_file(std::move(fileName))
    , m_fresh(std::move(fresh))
    , m_userCapacity(userCapacity)
{}

void CameraEeprom::load()
{
    m_failure = {};
    m_damaged = false;
    m_file.removeLeftovers();
    if (m_file.exists()) {
        try {
            m_content = m_file.read();
        } catch (const std::runtime_error& error) {
            qWarning("%s", error.what());
            m_damaged = true;
            m_content = {true, m_fresh.factory, {}};
            fail(simulator::EepromDamaged, error.what());
        }
        return;
    }
    if (write(m_fresh) != simulator::Success) {
        // Nothing to say: it is made the same again, and who writes a list is told.
        m_content = m_fresh;
    }
}

bool CameraEeprom::needsFirmware() const
{
    try {
        return !m_file.exists() || !m_file.read().firmwareUploaded;
    } catch (const std::runtime_error&) {
        return false;
    }
}

void CameraEeprom::setFirmwareUploaded()
{
    EepromContent content = m_content;
    content.firmwareUploaded = true;
    if (write(content) != simulator::Success) {
        // Nothing to say: all that is lost is that the next opening uploads it again.
        m_content = std::move(content);
    }
}

std::vector<EepromPosition> CameraEeprom::correctedPositions() const
{
    std::vector<EepromPosition> positions = m_content.factory;
    positions.insert(positions.end(), m_content.user.begin(), m_content.user.end());
    return positions;
}

std::int32_t CameraEeprom::command(std::int32_t command, void* buffer, std::int32_t size)
{
    switch (command) {
    case camera::GetMaxUserEntries:
        return tellNumber(static_cast<std::size_t>(m_userCapacity), buffer, size);
    case camera::SetUserList:
        return writeUserList(buffer, size);
    case camera::DeleteUserList:
        if (buffer != nullptr || size != 0) {
            return simulator::InvalidBufferSize;
        }
        return write({m_content.firmwareUploaded, m_content.factory, {}});
    default:
        break;
    }
    if (m_damaged) {
        return simulator::EepromDamaged;
    }
    switch (command) {
    case camera::GetFactoryCount:
        return tellNumber(m_content.factory.size(), buffer, size);
    case camera::GetFactoryList:
        return tellList(m_content.factory, buffer, size);
    case camera::GetUserCount:
        return tellNumber(m_content.user.size(), buffer, size);
    case camera::GetUserList:
        return tellList(m_content.user, buffer, size);
    default:
        return simulator::InvalidParameter;
    }
}

std::int32_t CameraEeprom::writeUserList(const void* buffer, std::int32_t size)
{
    if (buffer == nullptr) {
        return simulator::NullPointer;
    }
    std::uint16_t count = 0;
    if (size < static_cast<std::int32_t>(sizeof count)) {
        return simulator::InvalidBufferSize;
    }
    std::memcpy(&count, buffer, sizeof count);
    if (size != 4 * count + 2) {
        return simulator::InvalidBufferSize;
    }
    if (count > m_userCapacity) {
        return simulator::ListTooLong;
    }
    std::vector<std::uint16_t> words(std::size_t{count} * 2 + 1);
    std::memcpy(words.data(), buffer, words.size() * sizeof words.front());
    EepromContent content{m_content.firmwareUploaded, m_content.factory, {}};
    for (std::size_t i = 1; i < words.size(); i += 2) {
        content.user.push_back({words[i], words[i + 1]});
    }
    return write(content);
}

std::int32_t CameraEeprom::write(const EepromContent& content)
{
    if (m_damaged && m_file.exists() && m_file.keepAside().isEmpty()) {
        return fail(simulator::EepromNotWritten, {});
    }
    try {
        m_file.write(content);
    } catch (const std::runtime_error& error) {
        return fail(simulator::EepromNotWritten, error.what());
    }
    m_content = content;
    m_damaged = false;
    return simulator::Success;
}

std::int32_t CameraEeprom::fail(std::int32_t code, const std::string& detail)
{
    m_failure = {code, detail};
    return code;
}
