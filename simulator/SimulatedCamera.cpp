// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamera.h"

#include "camera/CameraSdk.h"
#include "simulator/SdkErrors.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

namespace {

constexpr double Saturation = 255.0;
constexpr std::int32_t HighestGain = 100;

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

bool isGain(std::int32_t gain)
{
    return gain == camera::KeepGain || (gain >= 0 && gain <= HighestGain);
}

} // namespace

SimulatedCamera::SimulatedCamera(const CameraDescription& description, const QString& eepromFolder,
                                 double speed)
    : m_model(description)
    , m_speed(speed)
    , m_eepromFileName(fileOf(eepromFolder, description.serial, ".eeprom"))
    , m_capture(m_model, m_events, speed)
    , m_lock(fileOf(eepromFolder, description.serial, ".lock"))
    , m_plugged(description.plugged)
    , m_heldElsewhere(description.heldElsewhere)
    , m_temperature(description.temperature)
    , m_eeprom(m_eepromFileName,
               {false, positionsOf(m_model.factoryPixels()), positionsOf(m_model.userPixels())},
               description.userCapacity)
    , m_timing(description)
    , m_colorMode(description.colorMode)
{}

bool SimulatedCamera::setPlugged(bool plugged)
{
    const MutexLock lock(m_mutex);
    if (m_plugged == plugged) {
        return false;
    }
    m_plugged = plugged;
    m_unplugged.notify_all();
    tellCapture();
    m_events.signal(plugged ? camera::EventReconnected : camera::EventRemoved);
    return true;
}

bool SimulatedCamera::isPlugged() const
{
    const MutexLock lock(m_mutex);
    return m_plugged;
}

void SimulatedCamera::setCovered(bool covered)
{
    const MutexLock lock(m_mutex);
    m_covered = covered;
    tellCapture();
}

bool SimulatedCamera::isCovered() const
{
    const MutexLock lock(m_mutex);
    return m_covered;
}

void SimulatedCamera::setDropFrames(bool drop)
{
    const MutexLock lock(m_mutex);
    m_dropFrames = drop;
    tellCapture();
}

bool SimulatedCamera::dropsFrames() const
{
    const MutexLock lock(m_mutex);
    return m_dropFrames;
}

void SimulatedCamera::setHeldElsewhere(bool held)
{
    const MutexLock lock(m_mutex);
    m_heldElsewhere = held;
}

bool SimulatedCamera::isHeldElsewhere() const
{
    const MutexLock lock(m_mutex);
    return m_heldElsewhere;
}

void SimulatedCamera::setTemperature(double celsius)
{
    const MutexLock lock(m_mutex);
    m_temperature = celsius;
    tellCapture();
}

double SimulatedCamera::temperature() const
{
    const MutexLock lock(m_mutex);
    return m_temperature;
}

bool SimulatedCamera::isUsed() const
{
    const MutexLock lock(m_mutex);
    if (m_open || m_opening || m_heldElsewhere) {
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
    const MutexLock lock(m_mutex);
    return description().firmwareUpload && m_eeprom.needsFirmware();
}

SensorSettings SimulatedCamera::sensorSettings() const
{
    return {m_timing.exposure() / 1000.0,
            m_gains[Master],
            m_gains[Red],
            m_gains[Green],
            m_gains[Blue],
            m_temperature,
            m_covered};
}

void SimulatedCamera::tellCapture()
{
    m_capture.setSettings(
        {m_plugged, m_dropFrames, m_timing.frameTime(), sensorSettings(), m_colorMode,
         m_correction ? m_eeprom.correctedPositions() : std::vector<EepromPosition>()});
}

std::vector<KnownHotPixel> SimulatedCamera::knownHotPixels() const
{
    if (description().playsRecordedFramesOnly()) {
        return {};
    }
    const MutexLock lock(m_mutex);
    const SensorSettings settings = sensorSettings();
    std::vector<KnownHotPixel> known;
    for (const SimulatedHotPixel& pixel : m_model.hotPixels()) {
        const double gain = m_model.systemGain(pixel.x, pixel.y, settings);
        const double mean = m_model.meanDn(m_model.darkElectrons(pixel, settings), gain);
        known.push_back({pixel.x, pixel.y, std::min(mean, Saturation)});
    }
    return known;
}

double SimulatedCamera::darkMeanDn(int x, int y) const
{
    if (description().playsRecordedFramesOnly()) {
        return 0;
    }
    const MutexLock lock(m_mutex);
    const SensorSettings settings = sensorSettings();
    const double gain = m_model.systemGain(x, y, settings);
    return std::min(m_model.meanDn(m_model.darkElectrons(settings), gain), Saturation);
}

bool SimulatedCamera::takeLock()
{
    // Another program's look at the camera list holds the lock for a moment.
    constexpr int PatienceMsec = 150;
    QDir().mkpath(QFileInfo(m_lock.fileName()).absolutePath());
    return m_lock.tryLock(PatienceMsec) != ProcessLock::Result::Held;
}

std::int32_t SimulatedCamera::open(bool uploadAllowed)
{
    MutexLock lock(m_mutex);
    if (!m_plugged) {
        return simulator::CameraNotFound;
    }
    if (m_open || m_opening || m_heldElsewhere || !takeLock()) {
        return simulator::CameraInUse;
    }
    m_eeprom.load();
    m_failure = m_eeprom.failure();
    if (description().firmwareUpload && m_eeprom.lacksFirmware()) {
        if (!uploadAllowed) {
            m_lock.unlock();
            return camera::FirmwareUploadNeeded;
        }
        const auto end = std::chrono::steady_clock::now() +
                         std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                             std::chrono::duration<double, std::milli>(
                                 description().firmwareUploadMsec / m_speed));
        m_opening = true;
        while (m_plugged && !lock.waitUntil(m_unplugged, end)) {
        }
        m_opening = false;
        if (!m_plugged) {
            m_lock.unlock();
            return simulator::FirmwareUploadFailed;
        }
        m_eeprom.setFirmwareUploaded();
        m_failure = m_eeprom.failure();
    }

    m_open = true;
    m_timing = SensorTiming(description());
    m_gains = {};
    m_colorMode = description().colorMode;
    m_correction = false;
    tellCapture();
    return simulator::Success;
}

void SimulatedCamera::close()
{
    m_capture.reset();
    m_events.clear();
    const MutexLock lock(m_mutex);
    m_open = false;
    m_lock.unlock();
}

std::string SimulatedCamera::errorDetail(std::int32_t code) const
{
    const MutexLock lock(m_mutex);
    return code == m_failure.code ? m_failure.detail : std::string();
}

int SimulatedCamera::colorMode() const
{
    const MutexLock lock(m_mutex);
    return m_colorMode;
}

int SimulatedCamera::bitsPerPixel() const
{
    const MutexLock lock(m_mutex);
    return depth();
}

int SimulatedCamera::depth() const
{
    return m_colorMode == camera::ColorModeRgb32 ? 32 : 8;
}

std::int32_t SimulatedCamera::setColorMode(std::int32_t mode)
{
    if (mode != camera::ColorModeRgb32 && mode != camera::ColorModeMono8 &&
        mode != camera::ColorModeBayer8) {
        return simulator::InvalidColorMode;
    }
    const MutexLock lock(m_mutex);
    if (m_capture.isRunning()) {
        return simulator::CaptureRunning;
    }
    // Asked for a mosaic that it does not have, the camera stays with what it has.
    m_colorMode = mode == camera::ColorModeBayer8 ? description().colorMode : mode;
    tellCapture();
    return simulator::Success;
}

SensorTiming SimulatedCamera::timing() const
{
    const MutexLock lock(m_mutex);
    return m_timing;
}

std::int32_t SimulatedCamera::setPixelClock(std::int32_t megahertz)
{
    const MutexLock lock(m_mutex);
    if (!m_timing.setPixelClock(megahertz)) {
        return simulator::InvalidParameter;
    }
    tellCapture();
    return simulator::Success;
}

double SimulatedCamera::setFrameRate(double framesPerSecond)
{
    const MutexLock lock(m_mutex);
    m_timing.setFrameRate(framesPerSecond);
    tellCapture();
    return 1.0 / m_timing.frameTime();
}

double SimulatedCamera::setExposure(double milliseconds)
{
    const MutexLock lock(m_mutex);
    m_timing.setExposure(milliseconds);
    tellCapture();
    return m_timing.exposure();
}

std::int32_t SimulatedCamera::masterGain() const
{
    const MutexLock lock(m_mutex);
    return m_gains[Master];
}

std::int32_t SimulatedCamera::setGains(const Gains& gains)
{
    if (!std::all_of(gains.begin(), gains.end(), isGain)) {
        return simulator::InvalidParameter;
    }
    const MutexLock lock(m_mutex);
    for (std::size_t i = 0; i < gains.size(); ++i) {
        if (gains[i] != camera::KeepGain) {
            m_gains[i] = gains[i];
        }
    }
    tellCapture();
    return simulator::Success;
}

std::int32_t SimulatedCamera::loadParameters(const QSettings& file)
{
    const MutexLock lock(m_mutex);
    SensorTiming loaded = m_timing;
    Gains gains = m_gains;
    constexpr std::array<const char*, GainCount> GainKeys{"masterGain", "redGain", "greenGain",
                                                          "blueGain"};
    std::optional<double> frameRate;
    std::optional<double> exposureMsec;
    std::optional<int> clock;

    const QStringList keys = file.allKeys();
    for (const QString& key : keys) {
        bool isNumber = false;
        const double value = file.value(key).toString().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value) || value < 0) {
            return simulator::InvalidParameterFile;
        }
        if (key == QLatin1String("frameRate") && value > 0) {
            frameRate = value;
        } else if (key == QLatin1String("exposure")) {
            exposureMsec = value;
        } else if (key == QLatin1String("pixelClock") && value < 1e6) {
            clock = static_cast<int>(value);
        } else {
            const auto known = std::find(GainKeys.begin(), GainKeys.end(), key);
            if (known == GainKeys.end() || value > HighestGain) {
                return simulator::InvalidParameterFile;
            }
            gains[static_cast<std::size_t>(known - GainKeys.begin())] =
                static_cast<std::int32_t>(value);
        }
    }
    if (clock && !loaded.setPixelClock(*clock)) {
        return simulator::InvalidParameterFile;
    }
    if (frameRate) {
        loaded.setFrameRate(*frameRate);
    }
    if (exposureMsec) {
        loaded.setExposure(*exposureMsec);
    }
    m_timing = loaded;
    m_gains = gains;
    tellCapture();
    return simulator::Success;
}

std::int32_t SimulatedCamera::startLive()
{
    const MutexLock lock(m_mutex);
    try {
        return m_capture.start(depth());
    } catch (const std::runtime_error& error) {
        m_failure = {simulator::RecordedFramesUnusable, error.what()};
        return m_failure.code;
    }
}

void SimulatedCamera::stopLive()
{
    m_capture.stop();
}

std::int32_t SimulatedCamera::switchCorrection(bool on, const void* buffer, std::int32_t size)
{
    if (buffer != nullptr || size != 0) {
        return simulator::InvalidBufferSize;
    }
    m_correction = on;
    return simulator::Success;
}

std::int32_t SimulatedCamera::hotpixelCommand(std::int32_t command, void* buffer, std::int32_t size)
{
    const MutexLock lock(m_mutex);
    std::int32_t result = simulator::Success;
    switch (command) {
    case camera::CorrectionOnFirst:
    case camera::CorrectionOnSecond:
        result = switchCorrection(true, buffer, size);
        break;
    case camera::CorrectionOffFirst:
    case camera::CorrectionOffSecond:
        result = switchCorrection(false, buffer, size);
        break;
    default:
        result = m_eeprom.command(command, buffer, size);
        if (result != simulator::Success && result == m_eeprom.failure().code) {
            m_failure = m_eeprom.failure();
        }
        break;
    }
    tellCapture();
    return result;
}
