// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamera.h"

#include "camera/CameraSdk.h"
#include "simulator/SdkErrors.h"

#include <QDir>
#include <QFileInfo>
#include <QtGlobal>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

std::vector<EepromPosition> positionsOf(const std::vector<SimulatedHotPixel>& pixels)
{
    std::vector<EepromPosition> positions;
    positions.reserve(pixels.size());
    for (const SimulatedHotPixel& pixel : pixels) {
        positions.push_back({pixel.x, pixel.y});
    }
    return positions;
}

QString fileOf(const QString& folder, const QString& serial, const char* suffix)
{
    return QDir(folder).filePath(serial + QLatin1String(suffix));
}

} // namespace

SimulatedCamera::SimulatedCamera(CameraDescription description, const QString& eepromFolder,
                                 double speed, std::mutex& mutex, std::condition_variable& changed)
    : heldElsewhere(description.heldElsewhere)
    , temperature(description.temperature)
    , timing(description)
    , m_mutex(mutex)
    , m_changed(changed)
    , m_model(description)
    , m_eepromFile(fileOf(eepromFolder, description.serial, ".eeprom"))
    , m_speed(speed)
    , m_lock(fileOf(eepromFolder, description.serial, ".lock"))
    , m_plugged(description.plugged)
    , m_colorMode(description.colorMode)
{}

SimulatedCamera::~SimulatedCamera() = default;

void SimulatedCamera::setPlugged(bool plugged)
{
    m_plugged = plugged;
    m_changed.notify_all();
    events.signal(plugged ? camera::EventReconnected : camera::EventRemoved);
}

bool SimulatedCamera::isUsed()
{
    if (isOpen() || m_opening || heldElsewhere) {
        return true;
    }
    if (!QFileInfo::exists(m_lock.fileName())) {
        return false;
    }
    const ProcessLock::Result result = m_lock.tryLock(0);
    m_lock.unlock();
    return result == ProcessLock::Result::Held;
}

bool SimulatedCamera::needsFirmware() const
{
    if (!description().firmwareUpload) {
        return false;
    }
    try {
        return !m_eepromFile.exists() || !m_eepromFile.read().firmwareUploaded;
    } catch (const std::runtime_error&) {
        return false;
    }
}

bool SimulatedCamera::playsRecordedFramesOnly() const
{
    return !description().recordedFrames.isEmpty() && !description().recordedOnlyCovered;
}

SensorSettings SimulatedCamera::settings() const
{
    return {
        timing.exposure() / 1000.0, masterGain, redGain, greenGain, blueGain, temperature, covered};
}

bool SimulatedCamera::takeLock()
{
    // Another program's look at the camera list holds the lock for a moment.
    constexpr int PatienceMsec = 150;
    QDir().mkpath(QFileInfo(m_lock.fileName()).absolutePath());
    return m_lock.tryLock(PatienceMsec) != ProcessLock::Result::Held;
}

std::int32_t SimulatedCamera::open(std::uint32_t handle, bool uploadAllowed, Lock& lock)
{
    if (!m_plugged) {
        return simulator::CameraNotFound;
    }
    if (isOpen() || m_opening || heldElsewhere || !takeLock()) {
        return simulator::CameraInUse;
    }
    loadEeprom();
    if (description().firmwareUpload && !m_eeprom.firmwareUploaded && !m_eepromDamaged) {
        const std::int32_t result =
            uploadAllowed ? uploadFirmware(lock) : camera::FirmwareUploadNeeded;
        if (result != simulator::Success) {
            m_lock.unlock();
            return result;
        }
    }

    m_handle = handle;
    timing = SensorTiming(description());
    masterGain = redGain = greenGain = blueGain = 0;
    m_colorMode = description().colorMode;
    m_correction = false;
    m_frame = 0;
    return simulator::Success;
}

void SimulatedCamera::close(Lock& lock)
{
    stopLive(lock);
    events.clear();
    ring.clear();
    m_modelledFrames.reset();
    m_recordedFrames.reset();
    m_rawFrame = {};
    m_handle = 0;
    m_lock.unlock();
    m_changed.notify_all();
}

void SimulatedCamera::loadEeprom()
{
    m_failure = simulator::Success;
    m_eepromDamaged = false;
    m_eepromFile.removeLeftovers();
    if (m_eepromFile.exists()) {
        try {
            m_eeprom = m_eepromFile.read();
        } catch (const std::runtime_error& error) {
            qWarning("%s", error.what());
            m_eepromDamaged = true;
            m_eeprom = {true, positionsOf(m_model.factoryPixels()), {}};
            fail(simulator::EepromDamaged, error.what());
        }
        return;
    }
    EepromContent fresh{false, positionsOf(m_model.factoryPixels()),
                        positionsOf(m_model.userPixels())};
    if (writeEeprom(fresh) != simulator::Success) {
        // Nothing to say: it is made the same again, and who writes a list is told.
        m_eeprom = std::move(fresh);
    }
}

std::int32_t SimulatedCamera::uploadFirmware(Lock& lock)
{
    const auto duration = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double, std::milli>(description().firmwareUploadMsec / m_speed));
    m_opening = true;
    const bool pulled =
        m_changed.wait_until(lock, Clock::now() + duration, [this] { return !m_plugged; });
    m_opening = false;
    if (pulled) {
        return simulator::FirmwareUploadFailed;
    }
    EepromContent content = m_eeprom;
    content.firmwareUploaded = true;
    if (writeEeprom(content) != simulator::Success) {
        // Nothing to say: all that is lost is that the next opening uploads it again.
        m_eeprom = std::move(content);
    }
    return simulator::Success;
}

std::int32_t SimulatedCamera::writeEeprom(const EepromContent& content)
{
    if (m_eepromDamaged && m_eepromFile.exists() && m_eepromFile.keepAside().isEmpty()) {
        return fail(simulator::EepromNotWritten, {});
    }
    try {
        m_eepromFile.write(content);
    } catch (const std::runtime_error& error) {
        return fail(simulator::EepromNotWritten, error.what());
    }
    m_eeprom = content;
    m_eepromDamaged = false;
    return simulator::Success;
}

std::int32_t SimulatedCamera::fail(std::int32_t code, const std::string& detail)
{
    m_failure = code;
    m_failureDetail = detail;
    return code;
}

std::string SimulatedCamera::errorDetail(std::int32_t code) const
{
    return code == m_failure ? m_failureDetail : std::string();
}

int SimulatedCamera::bitsPerPixel() const
{
    return m_colorMode == camera::ColorModeRgb32 ? 32 : 8;
}

std::int32_t SimulatedCamera::setColorMode(std::int32_t mode)
{
    if (mode != camera::ColorModeRgb32 && mode != camera::ColorModeMono8 &&
        mode != camera::ColorModeBayer8) {
        return simulator::InvalidColorMode;
    }
    if (isLive()) {
        return simulator::CaptureRunning;
    }
    // Asked for a mosaic that it does not have, the camera stays with what it has.
    m_colorMode = mode == camera::ColorModeBayer8 ? description().colorMode : mode;
    return simulator::Success;
}

std::int32_t SimulatedCamera::hotpixelCommand(std::int32_t command, void* buffer, std::int32_t size)
{
    const auto switchCorrection = [&](bool on) -> std::int32_t {
        if (buffer != nullptr || size != 0) {
            return simulator::InvalidBufferSize;
        }
        m_correction = on;
        return simulator::Success;
    };
    const auto tellNumber = [&](std::size_t number) -> std::int32_t {
        const auto value = static_cast<std::int32_t>(number);
        if (buffer == nullptr) {
            return simulator::NullPointer;
        }
        if (size != static_cast<std::int32_t>(sizeof value)) {
            return simulator::InvalidBufferSize;
        }
        std::memcpy(buffer, &value, sizeof value);
        return simulator::Success;
    };

    switch (command) {
    case camera::CorrectionOnFirst:
    case camera::CorrectionOnSecond:
        return switchCorrection(true);
    case camera::CorrectionOffFirst:
    case camera::CorrectionOffSecond:
        return switchCorrection(false);
    case camera::GetMaxUserEntries:
        return tellNumber(static_cast<std::size_t>(description().userCapacity));
    case camera::SetUserList:
        return writeUserList(buffer, size);
    case camera::DeleteUserList:
        if (buffer != nullptr || size != 0) {
            return simulator::InvalidBufferSize;
        }
        return writeEeprom({m_eeprom.firmwareUploaded, m_eeprom.factory, {}});
    default:
        break;
    }
    if (m_eepromDamaged) {
        return simulator::EepromDamaged;
    }
    switch (command) {
    case camera::GetFactoryCount:
        return tellNumber(m_eeprom.factory.size());
    case camera::GetFactoryList:
        return readList(m_eeprom.factory, buffer, size);
    case camera::GetUserCount:
        return tellNumber(m_eeprom.user.size());
    case camera::GetUserList:
        return readList(m_eeprom.user, buffer, size);
    default:
        return simulator::InvalidParameter;
    }
}

std::int32_t SimulatedCamera::readList(const std::vector<EepromPosition>& list, void* buffer,
                                       std::int32_t size)
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

std::int32_t SimulatedCamera::writeUserList(const void* buffer, std::int32_t size)
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
    if (count > description().userCapacity) {
        return simulator::ListTooLong;
    }
    std::vector<std::uint16_t> words(std::size_t{count} * 2 + 1);
    std::memcpy(words.data(), buffer, words.size() * sizeof words.front());
    EepromContent content{m_eeprom.firmwareUploaded, m_eeprom.factory, {}};
    for (std::size_t i = 1; i < words.size(); i += 2) {
        content.user.push_back({words[i], words[i + 1]});
    }
    return writeEeprom(content);
}
