// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamera.h"
#include "simulator/SimulatedCameraSdk.h"

#include <algorithm>

// What is done to cameras by hand: the half of SimulatedCameraSdk behind the 29 operations.

namespace {

constexpr double Saturation = 255.0;

} // namespace

SimulatedCamera* SimulatedCameraSdk::cameraOf(const QString& serial) const
{
    const auto camera =
        std::find_if(m_cameras.begin(), m_cameras.end(), [&serial](const auto& candidate) {
            return candidate->description().serial == serial;
        });
    return camera == m_cameras.end() ? nullptr : camera->get();
}

QStringList SimulatedCameraSdk::serials() const
{
    QStringList serials;
    for (const auto& camera : m_cameras) {
        serials.append(camera->description().serial);
    }
    return serials;
}

QString SimulatedCameraSdk::serialOf(std::uint32_t devId) const
{
    for (const auto& camera : m_cameras) {
        if (camera->description().devId == devId) {
            return camera->description().serial;
        }
    }
    return {};
}

QString SimulatedCameraSdk::modelOf(const QString& serial) const
{
    const SimulatedCamera* camera = cameraOf(serial);
    return camera == nullptr ? QString() : camera->description().model;
}

void SimulatedCameraSdk::setPlugged(const QString& serial, bool plugged)
{
    const std::lock_guard lock(m_mutex);
    SimulatedCamera* camera = cameraOf(serial);
    if (camera == nullptr || camera->isPlugged() == plugged) {
        return;
    }
    camera->setPlugged(plugged);
    m_deviceEvents.signal(plugged ? camera::EventDeviceNew : camera::EventDeviceRemoved);
}

bool SimulatedCameraSdk::isPlugged(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    return camera != nullptr && camera->isPlugged();
}

void SimulatedCameraSdk::setCovered(const QString& serial, bool covered)
{
    const std::lock_guard lock(m_mutex);
    if (SimulatedCamera* camera = cameraOf(serial)) {
        camera->covered = covered;
    }
}

bool SimulatedCameraSdk::isCovered(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    return camera != nullptr && camera->covered;
}

void SimulatedCameraSdk::setDropFrames(const QString& serial, bool drop)
{
    const std::lock_guard lock(m_mutex);
    if (SimulatedCamera* camera = cameraOf(serial)) {
        camera->dropFrames = drop;
    }
}

bool SimulatedCameraSdk::dropsFrames(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    return camera != nullptr && camera->dropFrames;
}

void SimulatedCameraSdk::setTemperature(const QString& serial, double celsius)
{
    const std::lock_guard lock(m_mutex);
    if (SimulatedCamera* camera = cameraOf(serial)) {
        camera->temperature = celsius;
    }
}

double SimulatedCameraSdk::temperature(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    return camera == nullptr ? 0 : camera->temperature;
}

void SimulatedCameraSdk::setHeldElsewhere(const QString& serial, bool held)
{
    const std::lock_guard lock(m_mutex);
    if (SimulatedCamera* camera = cameraOf(serial)) {
        camera->heldElsewhere = held;
    }
}

bool SimulatedCameraSdk::isHeldElsewhere(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    return camera != nullptr && camera->heldElsewhere;
}

std::vector<KnownHotPixel> SimulatedCameraSdk::knownHotPixels(const QString& serial) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    if (camera == nullptr || camera->playsRecordedFramesOnly()) {
        return {};
    }
    const SensorModel& model = camera->model();
    const SensorSettings settings = camera->settings();
    std::vector<KnownHotPixel> known;
    for (const SimulatedHotPixel& pixel : model.hotPixels()) {
        const double gain = model.systemGain(pixel.x, pixel.y, settings);
        const double mean = model.meanDn(model.darkElectrons(pixel, settings), gain);
        known.push_back({pixel.x, pixel.y, std::min(mean, Saturation)});
    }
    return known;
}

double SimulatedCameraSdk::darkMeanDn(const QString& serial, int x, int y) const
{
    const std::lock_guard lock(m_mutex);
    const SimulatedCamera* camera = cameraOf(serial);
    if (camera == nullptr || camera->playsRecordedFramesOnly()) {
        return 0;
    }
    const SensorModel& model = camera->model();
    const SensorSettings settings = camera->settings();
    const double gain = model.systemGain(x, y, settings);
    return std::min(model.meanDn(model.darkElectrons(settings), gain), Saturation);
}

QString SimulatedCameraSdk::eepromFileName(const QString& serial) const
{
    const SimulatedCamera* camera = cameraOf(serial);
    return camera == nullptr ? QString() : camera->eepromFile().fileName();
}

int SimulatedCameraSdk::openCameras() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_open.size());
}

int SimulatedCameraSdk::imageMemories() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_memories.size());
}

int SimulatedCameraSdk::boundEvents() const
{
    const std::lock_guard lock(m_mutex);
    std::size_t bound = m_deviceEvents.size();
    for (const auto& [handle, camera] : m_open) {
        bound += camera->events.size();
    }
    return static_cast<int>(bound);
}
