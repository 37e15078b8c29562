// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCameraSdk.h"

#include "simulator/SdkErrors.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <utility>

using simulator::Success;

namespace {

constexpr CameraSdk::Handle SelectorNumber = 0x7fff;
constexpr CameraSdk::Handle UploadFlag = camera::OpenWithFirmwareUpload & ~camera::OpenByDevice;

bool isCameraEvent(std::int32_t eventId)
{
    return eventId == camera::EventFrame || eventId == camera::EventFrameFailed ||
           eventId == camera::EventReconnected || eventId == camera::EventRemoved;
}

bool isDeviceEvent(std::int32_t eventId)
{
    return eventId == camera::EventDeviceRemoved || eventId == camera::EventDeviceNew;
}

void copyText(char (&field)[16], const QString& text)
{
    const QByteArray bytes = text.toLatin1().left(sizeof field - 1);
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace

SimulatedCameraSdk::SimulatedCameraSdk(BusDescription bus)
    : m_bus(std::move(bus))
{
    const QString folder =
        m_bus.eepromFolder.isEmpty() ? simulator::eepromFolder() : m_bus.eepromFolder;
    for (const CameraDescription& description : m_bus.cameras) {
        m_cameras.push_back(std::make_unique<SimulatedCamera>(description, folder, m_bus.speed));
    }
}

SimulatedCameraSdk::~SimulatedCameraSdk()
{
    const MutexLock lock(m_mutex);
    for (const auto& [handle, camera] : m_open) {
        camera->close();
    }
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

SimulatedCameraControl SimulatedCameraSdk::control(const QString& serial)
{
    const auto camera =
        std::find_if(m_cameras.begin(), m_cameras.end(), [&serial](const auto& candidate) {
            return candidate->description().serial == serial;
        });
    return {*this, camera == m_cameras.end() ? nullptr : camera->get()};
}

void SimulatedCameraSdk::signalDeviceEvent(bool plugged)
{
    m_deviceEvents.signal(plugged ? camera::EventDeviceNew : camera::EventDeviceRemoved);
}

int SimulatedCameraSdk::openCameras() const
{
    const MutexLock lock(m_mutex);
    return static_cast<int>(m_open.size());
}

int SimulatedCameraSdk::imageMemories() const
{
    const MutexLock lock(m_mutex);
    return static_cast<int>(m_memories.size());
}

int SimulatedCameraSdk::boundEvents() const
{
    const MutexLock lock(m_mutex);
    std::size_t bound = m_deviceEvents.size();
    for (const auto& [handle, camera] : m_open) {
        bound += camera->events().size();
    }
    return static_cast<int>(bound);
}

SimulatedCamera* SimulatedCameraSdk::openCamera(Handle handle) const
{
    const auto open = m_open.find(handle);
    return open == m_open.end() ? nullptr : open->second;
}

std::int32_t SimulatedCameraSdk::handleError(Handle handle) const
{
    return handle != 0 && handle <= m_lastHandle ? simulator::CameraClosed
                                                 : simulator::InvalidHandle;
}

std::int32_t SimulatedCameraSdk::withOpenCamera(Handle handle, const CameraCall& call)
{
    const MutexLock lock(m_mutex);
    SimulatedCamera* const camera = openCamera(handle);
    return camera == nullptr ? handleError(handle) : call(*camera);
}

std::int32_t SimulatedCameraSdk::withConnectedCamera(Handle handle, const CameraCall& call)
{
    return withOpenCamera(handle, [&call](SimulatedCamera& camera) {
        return camera.isPlugged() ? call(camera) : simulator::CameraUnplugged;
    });
}

// For what takes as long as a frame: others may call the SDK meanwhile.
std::int32_t SimulatedCameraSdk::waitOnOpenCamera(Handle handle, const CameraCall& call)
{
    MutexLock lock(m_mutex);
    SimulatedCamera* const camera = openCamera(handle);
    if (camera == nullptr) {
        return handleError(handle);
    }
    lock.unlock();
    const std::int32_t result = call(*camera);
    lock.lock();
    return result;
}

std::int32_t SimulatedCameraSdk::withEvents(Handle handle, std::int32_t eventId,
                                            const std::function<std::int32_t(EventBindings&)>& call)
{
    if (handle == 0) {
        return isDeviceEvent(eventId) ? call(m_deviceEvents) : simulator::InvalidParameter;
    }
    return withOpenCamera(handle, [&](SimulatedCamera& camera) {
        return isCameraEvent(eventId) ? call(camera.events()) : simulator::InvalidParameter;
    });
}

std::int32_t SimulatedCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    if (waitMode != camera::DontWait && waitMode != camera::Wait && waitMode != camera::ForceStop) {
        return simulator::InvalidParameter;
    }
    return waitOnOpenCamera(handle, [](SimulatedCamera& camera) {
        camera.stopLive();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    if (waitMode != camera::DontWait && waitMode != camera::Wait) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(handle, [](SimulatedCamera& camera) { return camera.startLive(); });
}

std::int32_t SimulatedCameraSdk::getError(Handle handle, std::int32_t* code, char** text)
{
    if (code == nullptr || text == nullptr) {
        return simulator::NullPointer;
    }
    const char* general = simulator::errorText(*code);
    if (general == nullptr) {
        return simulator::InvalidParameter;
    }
    // Each thread has a text of its own, so that no other thread's call takes it away.
    thread_local std::string latest;
    latest = general;
    withOpenCamera(handle, [code](SimulatedCamera& camera) {
        const std::string detail = camera.errorDetail(*code);
        if (!detail.empty()) {
            latest += " (" + detail + ')';
        }
        return Success;
    });
    *text = latest.data();
    return Success;
}

std::int32_t SimulatedCameraSdk::allocImageMemory(Handle handle, std::int32_t width,
                                                  std::int32_t height, std::int32_t bitsPerPixel,
                                                  char** memory, std::int32_t* memoryId)
{
    if (memory == nullptr || memoryId == nullptr) {
        return simulator::NullPointer;
    }
    constexpr std::int32_t Largest = 32768;
    const bool depthExists =
        bitsPerPixel == 8 || bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32;
    if (width < 1 || height < 1 || width > Largest || height > Largest || !depthExists) {
        return simulator::InvalidParameter;
    }
    const MutexLock lock(m_mutex);
    if (openCamera(handle) == nullptr) {
        return handleError(handle);
    }
    try {
        const std::int32_t id = m_lastMemoryId + 1;
        auto allocated = std::make_shared<SimulatedImageMemory>(id, width, height, bitsPerPixel);
        *memory = allocated->data();
        *memoryId = id;
        m_memories.emplace(id, AllocatedMemory{handle, std::move(allocated)});
        m_lastMemoryId = id;
        return Success;
    } catch (const std::bad_alloc&) {
        return simulator::OutOfMemory;
    }
}

std::shared_ptr<SimulatedImageMemory>
SimulatedCameraSdk::memoryOf(Handle handle, const char* memory, std::int32_t memoryId) const
{
    const auto allocated = m_memories.find(memoryId);
    const bool matches = allocated != m_memories.end() && allocated->second.handle == handle &&
                         allocated->second.memory->data() == memory;
    return matches ? allocated->second.memory : nullptr;
}

std::int32_t SimulatedCameraSdk::freeImageMemory(Handle handle, char* memory, std::int32_t memoryId)
{
    if (memory == nullptr) {
        return simulator::NullPointer;
    }
    // Memory outlives the opening that it was allocated for: it is given back after closing, too.
    const MutexLock lock(m_mutex);
    const std::shared_ptr<SimulatedImageMemory> allocated = memoryOf(handle, memory, memoryId);
    if (!allocated) {
        return handle == 0 || handle > m_lastHandle ? simulator::InvalidHandle
                                                    : simulator::InvalidImageMemory;
    }
    if (SimulatedCamera* const camera = openCamera(handle)) {
        camera->capture().remove(allocated);
    }
    m_memories.erase(memoryId);
    return Success;
}

std::int32_t SimulatedCameraSdk::initEvent(Handle handle, EventHandle event, std::int32_t eventId)
{
    if (event == nullptr) {
        return simulator::NullPointer;
    }
    return withEvents(handle, eventId, [=](EventBindings& events) {
        events.bind(eventId, event);
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::exitEvent(Handle handle, std::int32_t eventId)
{
    return withEvents(handle, eventId, [=](EventBindings& events) {
        return events.release(eventId) ? Success : simulator::EventNotBound;
    });
}

std::int32_t SimulatedCameraSdk::enableEvent(Handle handle, std::int32_t eventId)
{
    return withEvents(handle, eventId, [=](EventBindings& events) {
        return events.setEnabled(eventId, true) ? Success : simulator::EventNotBound;
    });
}

std::int32_t SimulatedCameraSdk::disableEvent(Handle handle, std::int32_t eventId)
{
    return withEvents(handle, eventId, [=](EventBindings& events) {
        return events.setEnabled(eventId, false) ? Success : simulator::EventNotBound;
    });
}

std::int32_t SimulatedCameraSdk::addToSequence(Handle handle, char* memory, std::int32_t memoryId)
{
    if (memory == nullptr) {
        return simulator::NullPointer;
    }
    const MutexLock lock(m_mutex);
    SimulatedCamera* const camera = openCamera(handle);
    if (camera == nullptr) {
        return handleError(handle);
    }
    auto allocated = memoryOf(handle, memory, memoryId);
    if (!allocated || camera->capture().holds(allocated)) {
        return simulator::InvalidImageMemory;
    }
    const CameraDescription& description = camera->description();
    if (allocated->width != description.width || allocated->height != description.height ||
        allocated->bitsPerPixel != camera->bitsPerPixel()) {
        return simulator::InvalidBufferSize;
    }
    camera->capture().append(std::move(allocated));
    return Success;
}

std::int32_t SimulatedCameraSdk::clearSequence(Handle handle)
{
    return withOpenCamera(handle, [](SimulatedCamera& camera) {
        camera.capture().clear();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::getFrameMemory(Handle handle, std::int32_t, std::int32_t,
                                                char** memory)
{
    if (memory == nullptr) {
        return simulator::NullPointer;
    }
    return waitOnOpenCamera(handle, [memory](SimulatedCamera& camera) {
        const FrameRing::Memory latest = camera.capture().latestFrame();
        if (!latest) {
            return simulator::NoFrameYet;
        }
        *memory = latest->data();
        return Success;
    });
}

SimulatedCamera* SimulatedCameraSdk::selectedCamera(Handle selector) const
{
    const Handle number = selector & SelectorNumber;
    const bool byDevice = (selector & camera::OpenByDevice) != 0;
    for (const auto& camera : m_cameras) {
        const CameraDescription& description = camera->description();
        if (camera->isPlugged() && number == (byDevice ? description.devId : description.camId)) {
            return camera.get();
        }
    }
    return nullptr;
}

std::int32_t SimulatedCameraSdk::initCamera(Handle* handle, void* /*window*/)
{
    if (handle == nullptr) {
        return simulator::NullPointer;
    }
    SimulatedCamera* const camera = selectedCamera(*handle);
    if (camera == nullptr) {
        return simulator::CameraNotFound;
    }
    // It may wait for an upload.
    const std::int32_t result = camera->open((*handle & UploadFlag) != 0);
    if (result == Success) {
        const MutexLock lock(m_mutex);
        *handle = ++m_lastHandle;
        m_open.emplace(*handle, camera);
    }
    return result;
}

std::int32_t SimulatedCameraSdk::exitCamera(Handle handle)
{
    MutexLock lock(m_mutex);
    SimulatedCamera* const camera = openCamera(handle);
    if (camera == nullptr) {
        return handleError(handle);
    }
    // Closing waits for the capture thread, and meanwhile nobody else shall find the handle.
    m_open.erase(handle);
    lock.unlock();
    camera->close();
    lock.lock();
    return Success;
}

std::int32_t SimulatedCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    if (count == nullptr) {
        return simulator::NullPointer;
    }
    *count = static_cast<std::int32_t>(
        std::count_if(m_cameras.begin(), m_cameras.end(),
                      [](const auto& camera) { return camera->isPlugged(); }));
    return Success;
}

std::int32_t SimulatedCameraSdk::getCameraList(CameraList* list)
{
    if (list == nullptr) {
        return simulator::NullPointer;
    }
    const std::uint32_t room = list->count;
    std::uint32_t count = 0;
    CameraListEntry* entries = list->entries;
    for (const auto& camera : m_cameras) {
        if (!camera->isPlugged() || count == room) {
            continue;
        }
        const CameraDescription& description = camera->description();
        CameraListEntry entry{};
        entry.camId = description.camId;
        entry.devId = description.devId;
        entry.word2 = description.word2;
        entry.status = camera->isUsed() ? 1 : 0;
        copyText(entry.serNo, description.serial);
        copyText(entry.model, description.model);
        entries[count++] = entry;
    }
    list->count = count;
    return Success;
}

std::int32_t SimulatedCameraSdk::getFirmwareUploadTime(Handle handle, std::int32_t,
                                                       std::int32_t* milliseconds)
{
    if (milliseconds == nullptr) {
        return simulator::NullPointer;
    }
    const SimulatedCamera* camera = selectedCamera(handle);
    if (camera == nullptr) {
        return simulator::CameraNotFound;
    }
    *milliseconds = camera->needsFirmware() ? camera->description().firmwareUploadMsec : 0;
    return Success;
}

std::int32_t SimulatedCameraSdk::hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                                 std::int32_t size)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        return camera.hotpixelCommand(command, buffer, size);
    });
}
