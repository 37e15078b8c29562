#include "simulator/SimulatedCameraSdk.h"

#include "simulator/SdkErrors.h"
#include "simulator/SimulatedCamera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <string>
#include <utility>

using simulator::Success;

namespace {

constexpr CameraSdk::Handle SelectorNumber = 0x7fff;
constexpr CameraSdk::Handle UploadFlag = camera::OpenWithFirmwareUpload & ~camera::OpenByDevice;
constexpr std::int32_t HighestGain = 100;

bool isCameraEvent(std::int32_t eventId)
{
    return eventId == camera::EventFrame || eventId == camera::EventFrameFailed ||
           eventId == camera::EventReconnected || eventId == camera::EventRemoved;
}

bool isDeviceEvent(std::int32_t eventId)
{
    return eventId == camera::EventDeviceRemoved || eventId == camera::EventDeviceNew;
}

bool isGain(std::int32_t gain)
{
    return gain == camera::KeepGain || (gain >= 0 && gain <= HighestGain);
}

void copyText(char (&field)[16], const QString& text)
{
    const QByteArray bytes = text.toLatin1().left(sizeof field - 1);
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

std::int32_t giveRange(const SensorTiming::Range& range, double* minimum, double* maximum,
                       double* step)
{
    if (minimum == nullptr || maximum == nullptr || step == nullptr) {
        return simulator::NullPointer;
    }
    *minimum = range.minimum;
    *maximum = range.maximum;
    *step = range.step;
    return Success;
}

} // namespace

SimulatedCameraSdk::SimulatedCameraSdk(BusDescription bus)
    : m_bus(std::move(bus))
{
    const QString folder =
        m_bus.eepromFolder.isEmpty() ? simulator::eepromFolder() : m_bus.eepromFolder;
    for (const CameraDescription& description : m_bus.cameras) {
        m_cameras.push_back(std::make_unique<SimulatedCamera>(description, folder, m_bus.speed,
                                                              m_mutex, m_changed));
    }
}

SimulatedCameraSdk::~SimulatedCameraSdk()
{
    SimulatedCamera::Lock lock(m_mutex);
    for (const auto& [handle, camera] : m_open) {
        camera->close(lock);
    }
}

std::int32_t SimulatedCameraSdk::handleError(Handle handle) const
{
    return handle != 0 && handle <= m_lastHandle ? simulator::CameraClosed
                                                 : simulator::InvalidHandle;
}

std::int32_t SimulatedCameraSdk::withOpenCamera(Handle handle, const CameraCall& call)
{
    SimulatedCamera::Lock lock(m_mutex);
    const auto open = m_open.find(handle);
    return open == m_open.end() ? handleError(handle) : call(*open->second, lock);
}

std::int32_t SimulatedCameraSdk::withConnectedCamera(Handle handle, const CameraCall& call)
{
    return withOpenCamera(handle, [&call](SimulatedCamera& camera, SimulatedCamera::Lock& lock) {
        return camera.isPlugged() ? call(camera, lock) : simulator::CameraUnplugged;
    });
}

std::int32_t SimulatedCameraSdk::withEvents(Handle handle, std::int32_t eventId,
                                            const std::function<std::int32_t(EventBindings&)>& call)
{
    if (handle == 0) {
        const std::lock_guard lock(m_mutex);
        return isDeviceEvent(eventId) ? call(m_deviceEvents) : simulator::InvalidParameter;
    }
    return withOpenCamera(handle, [&](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return isCameraEvent(eventId) ? call(camera.events) : simulator::InvalidParameter;
    });
}

std::int32_t SimulatedCameraSdk::stopLiveVideo(Handle handle, std::int32_t waitMode)
{
    if (waitMode != camera::DontWait && waitMode != camera::Wait && waitMode != camera::ForceStop) {
        return simulator::InvalidParameter;
    }
    return withOpenCamera(handle, [](SimulatedCamera& camera, SimulatedCamera::Lock& lock) {
        camera.stopLive(lock);
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::startLiveVideo(Handle handle, std::int32_t waitMode)
{
    if (waitMode != camera::DontWait && waitMode != camera::Wait) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(
        handle, [](SimulatedCamera& camera, SimulatedCamera::Lock&) { return camera.startLive(); });
}

std::int32_t SimulatedCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    return withConnectedCamera(handle, [mode](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return mode == camera::QueryCurrent ? camera.colorMode() : camera.setColorMode(mode);
    });
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
    withOpenCamera(handle, [code](SimulatedCamera& camera, SimulatedCamera::Lock&) {
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
    return withOpenCamera(handle, [&](SimulatedCamera&, SimulatedCamera::Lock&) -> std::int32_t {
        try {
            const std::int32_t id = m_lastMemoryId + 1;
            auto allocated =
                std::make_shared<SimulatedImageMemory>(id, width, height, bitsPerPixel);
            *memory = allocated->data();
            *memoryId = id;
            m_memories.emplace(id, AllocatedMemory{handle, std::move(allocated)});
            m_lastMemoryId = id;
            return Success;
        } catch (const std::bad_alloc&) {
            return simulator::OutOfMemory;
        }
    });
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
    const std::lock_guard lock(m_mutex);
    const std::shared_ptr<SimulatedImageMemory> allocated = memoryOf(handle, memory, memoryId);
    if (!allocated) {
        return handle == 0 || handle > m_lastHandle ? simulator::InvalidHandle
                                                    : simulator::InvalidImageMemory;
    }
    const auto open = m_open.find(handle);
    if (open != m_open.end()) {
        open->second->ring.remove(allocated);
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
    return withOpenCamera(
        handle, [&](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
            auto allocated = memoryOf(handle, memory, memoryId);
            const auto& inRing = camera.ring.memories();
            if (!allocated || std::find(inRing.begin(), inRing.end(), allocated) != inRing.end()) {
                return simulator::InvalidImageMemory;
            }
            const CameraDescription& description = camera.description();
            if (allocated->width != description.width || allocated->height != description.height ||
                allocated->bitsPerPixel != camera.bitsPerPixel()) {
                return simulator::InvalidBufferSize;
            }
            camera.ring.append(std::move(allocated));
            return Success;
        });
}

std::int32_t SimulatedCameraSdk::clearSequence(Handle handle)
{
    return withOpenCamera(handle, [](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        camera.ring.clear();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::getFrameMemory(Handle handle, std::int32_t, std::int32_t,
                                                char** memory)
{
    if (memory == nullptr) {
        return simulator::NullPointer;
    }
    return withOpenCamera(handle, [memory](SimulatedCamera& camera, SimulatedCamera::Lock& lock) {
        const FrameRing::Memory latest = camera.latestFrame(lock);
        if (!latest) {
            return simulator::NoFrameYet;
        }
        *memory = latest->data();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return withConnectedCamera(
        handle, [value](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
            if (value == camera::QueryCurrent) {
                return camera.timing.pixelClock();
            }
            if (value == camera::QueryDefault) {
                return camera.timing.pixelClockDefault();
            }
            return camera.timing.setPixelClock(value) ? Success : simulator::InvalidParameter;
        });
}

std::int32_t SimulatedCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    if (info == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [info](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        *info = {};
        info->maxWidth = static_cast<std::uint32_t>(camera.description().width);
        info->maxHeight = static_cast<std::uint32_t>(camera.description().height);
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setHardwareGain(Handle handle, std::int32_t master,
                                                 std::int32_t red, std::int32_t green,
                                                 std::int32_t blue)
{
    return withConnectedCamera(
        handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
            if (master == camera::QueryCurrent) {
                return camera.masterGain;
            }
            const std::array<std::pair<std::int32_t, int*>, 4> gains{{{master, &camera.masterGain},
                                                                      {red, &camera.redGain},
                                                                      {green, &camera.greenGain},
                                                                      {blue, &camera.blueGain}}};
            for (const auto& [value, gain] : gains) {
                if (!isGain(value)) {
                    return simulator::InvalidParameter;
                }
            }
            for (const auto& [value, gain] : gains) {
                if (value != camera::KeepGain) {
                    *gain = value;
                }
            }
            return Success;
        });
}

std::int32_t SimulatedCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    if (framesPerSecond == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle,
                               [framesPerSecond](SimulatedCamera& camera, SimulatedCamera::Lock&) {
                                   *framesPerSecond = 1.0 / camera.timing.frameTime();
                                   return Success;
                               });
}

std::int32_t SimulatedCameraSdk::setFrameRate(Handle handle, double framesPerSecond, double* actual)
{
    if (actual == nullptr) {
        return simulator::NullPointer;
    }
    if (!std::isfinite(framesPerSecond) || framesPerSecond <= 0) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(handle, [=, this](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        camera.timing.setFrameRate(framesPerSecond);
        m_changed.notify_all();
        *actual = 1.0 / camera.timing.frameTime();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setExposureTime(Handle handle, double milliseconds, double* actual)
{
    if (actual == nullptr) {
        return simulator::NullPointer;
    }
    if (!std::isfinite(milliseconds) || milliseconds < 0) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        if (milliseconds == camera::QueryDefaultDouble) {
            *actual = camera.timing.defaultExposure();
            return Success;
        }
        if (milliseconds != camera::QueryCurrentDouble) {
            camera.timing.setExposure(milliseconds);
        }
        *actual = camera.timing.exposure();
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
    SimulatedCamera::Lock lock(m_mutex);
    SimulatedCamera* camera = selectedCamera(*handle);
    if (camera == nullptr) {
        return simulator::CameraNotFound;
    }
    const Handle fresh = ++m_lastHandle;
    const std::int32_t result = camera->open(fresh, (*handle & UploadFlag) != 0, lock);
    if (result == Success) {
        m_open.emplace(fresh, camera);
        *handle = fresh;
    }
    return result;
}

std::int32_t SimulatedCameraSdk::exitCamera(Handle handle)
{
    SimulatedCamera::Lock lock(m_mutex);
    const auto open = m_open.find(handle);
    if (open == m_open.end()) {
        return handleError(handle);
    }
    // Closing waits for the capture thread, and meanwhile nobody else shall find the handle.
    SimulatedCamera* camera = open->second;
    m_open.erase(open);
    camera->close(lock);
    return Success;
}

std::int32_t SimulatedCameraSdk::getNumberOfCameras(std::int32_t* count)
{
    if (count == nullptr) {
        return simulator::NullPointer;
    }
    const std::lock_guard lock(m_mutex);
    *count = static_cast<std::int32_t>(
        std::count_if(m_cameras.begin(), m_cameras.end(),
                      [](const auto& camera) { return camera->isPlugged(); }));
    return Success;
}

std::int32_t SimulatedCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                   double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return giveRange(camera.timing.frameTimeRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                  double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return giveRange(camera.timing.exposureRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                    std::int32_t* maximum)
{
    if (minimum == nullptr || maximum == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        *minimum = camera.timing.pixelClockMin();
        *maximum = camera.timing.pixelClockMax();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::getCameraList(CameraList* list)
{
    if (list == nullptr) {
        return simulator::NullPointer;
    }
    const std::lock_guard lock(m_mutex);
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
    const std::lock_guard lock(m_mutex);
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
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return camera.hotpixelCommand(command, buffer, size);
    });
}
