// SPDX-License-Identifier: MIT
#include "tests/sdk/ScriptedSdk.h"

#include "tests/sdk/ListBuffer.h"

#include <QMutexLocker>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::int32_t Failure = 7;
constexpr std::uint32_t DeviceMask = 0x7fff;
constexpr std::uint32_t UploadFlag = 0x10000;

} // namespace

ScriptedSdk::ScriptedSdk(std::vector<Device> connected)
    : devices(std::move(connected))
{}

void ScriptedSdk::sendFrame(const QByteArray& bytes)
{
    if (m_sequence.isEmpty()) {
        return;
    }
    m_latest = m_latest == m_sequence.first() ? m_sequence.last() : m_sequence.first();
    std::memcpy(m_latest, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    sendEvent(camera::EventFrame);
}

void ScriptedSdk::sendEvent(std::int32_t eventId)
{
    const QMutexLocker lock(&m_mutex);
    signalEventObject(m_events.value(eventId));
}

QStringList ScriptedSdk::takeCalls()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_calls, {});
}

std::int32_t ScriptedSdk::record(const QString& operation, const QString& arguments)
{
    const QMutexLocker lock(&m_mutex);
    m_calls.append(arguments.isEmpty() ? operation : operation + ' ' + arguments);
    return m_open != nullptr && m_open->openFailure == operation ? Failure : 0;
}

std::int32_t ScriptedSdk::stopLiveVideo(Handle /*handle*/, std::int32_t waitMode)
{
    return record("stopLiveVideo", QString::number(waitMode));
}

std::int32_t ScriptedSdk::startLiveVideo(Handle /*handle*/, std::int32_t waitMode)
{
    const std::int32_t result = record("startLiveVideo", QString::number(waitMode));
    return startsUntilFailure < 0 || startsUntilFailure-- > 0 ? result : Failure;
}

std::int32_t ScriptedSdk::setColorMode(Handle /*handle*/, std::int32_t mode)
{
    return mode == camera::QueryCurrent ? colorMode : record("setColorMode");
}

std::int32_t ScriptedSdk::getError(Handle /*handle*/, std::int32_t* code, char** text)
{
    m_errorText = "Error " + QByteArray::number(*code);
    *text = m_errorText.data();
    return 0;
}

std::int32_t ScriptedSdk::allocImageMemory(Handle /*handle*/, std::int32_t width,
                                           std::int32_t height, std::int32_t bitsPerPixel,
                                           char** memory, std::int32_t* memoryId)
{
    const auto block = std::make_shared<QByteArray>(width * height * bitsPerPixel / 8, '\0');
    *memory = block->data();
    *memoryId = static_cast<std::int32_t>(m_memory.size()) + 1;
    m_memory.insert(*memory, block);
    return record("allocImageMemory");
}

std::int32_t ScriptedSdk::freeImageMemory(Handle /*handle*/, char* memory,
                                          std::int32_t /*memoryId*/)
{
    m_memory.remove(memory);
    return record("freeImageMemory");
}

std::int32_t ScriptedSdk::initEvent(Handle /*handle*/, EventHandle event, std::int32_t eventId)
{
    const QMutexLocker lock(&m_mutex);
    m_events.insert(eventId, event);
    return 0;
}

std::int32_t ScriptedSdk::addToSequence(Handle /*handle*/, char* memory, std::int32_t /*memoryId*/)
{
    m_sequence.append(memory);
    return record("addToSequence");
}

std::int32_t ScriptedSdk::clearSequence(Handle /*handle*/)
{
    m_sequence.clear();
    return record("clearSequence");
}

std::int32_t ScriptedSdk::getFrameMemory(Handle /*handle*/, std::int32_t /*first*/,
                                         std::int32_t /*second*/, char** memory)
{
    ++m_framesFetched;
    *memory = m_latest;
    return record("getFrameMemory");
}

std::int32_t ScriptedSdk::setPixelClock(Handle /*handle*/, std::int32_t value)
{
    if (value == camera::QueryCurrent || value == camera::QueryDefault) {
        return m_pixelClock;
    }
    m_pixelClock = value;
    return record("setPixelClock", QString::number(value));
}

std::int32_t ScriptedSdk::getSensorInfo(Handle /*handle*/, SensorInfo* info)
{
    info->maxWidth = Width;
    info->maxHeight = Height;
    return 0;
}

std::int32_t ScriptedSdk::setHardwareGain(Handle /*handle*/, std::int32_t master,
                                          std::int32_t /*red*/, std::int32_t /*green*/,
                                          std::int32_t /*blue*/)
{
    if (master == camera::QueryCurrent) {
        return m_gain;
    }
    m_gain = master;
    return record("setHardwareGain", QString::number(master));
}

std::int32_t ScriptedSdk::getFramesPerSecond(Handle /*handle*/, double* rate)
{
    *rate = framesPerSecond;
    return 0;
}

std::int32_t ScriptedSdk::setFrameRate(Handle /*handle*/, double rate, double* actual)
{
    *actual = rate;
    return record("setFrameRate", QString::number(rate));
}

std::int32_t ScriptedSdk::setExposureTime(Handle /*handle*/, double milliseconds, double* actual)
{
    if (milliseconds == camera::QueryCurrentDouble || milliseconds == camera::QueryDefaultDouble) {
        *actual = m_exposure;
        return 0;
    }
    m_exposure = milliseconds;
    *actual = milliseconds;
    return record("setExposureTime", QString::number(milliseconds));
}

std::int32_t ScriptedSdk::initCamera(Handle* handle, void* /*window*/)
{
    static_cast<void>(record("initCamera", QString::number(*handle)));
    const auto device = std::find_if(devices.begin(), devices.end(), [&](const Device& candidate) {
        return candidate.devId == (*handle & DeviceMask);
    });
    if (device == devices.end() || device->openFailure == "initCamera") {
        return Failure;
    }
    if (device->firmwareUploadMsec != 0 && (*handle & UploadFlag) == 0) {
        return camera::FirmwareUploadNeeded;
    }
    if (device->firmwareUploadMsec != 0 && onUpload) {
        onUpload();
    }
    m_open = &*device;
    ++m_open->status;
    *handle = ++m_handle;
    return 0;
}

std::int32_t ScriptedSdk::exitCamera(Handle /*handle*/)
{
    const std::int32_t result = record("exitCamera");
    if (m_open != nullptr) {
        --m_open->status;
        m_open = nullptr;
    }
    return result;
}

std::int32_t ScriptedSdk::getNumberOfCameras(std::int32_t* count)
{
    *count = static_cast<std::int32_t>(devices.size());
    return 0;
}

std::int32_t ScriptedSdk::getFrameTimeRange(Handle /*handle*/, double* minimum, double* maximum,
                                            double* step)
{
    *minimum = 0.5;
    *maximum = 10.0;
    *step = 0.1;
    return 0;
}

std::int32_t ScriptedSdk::getExposureRange(Handle /*handle*/, double* minimum, double* maximum,
                                           double* step)
{
    *minimum = 1.0;
    *maximum = 101.0;
    *step = 1.0;
    return 0;
}

std::int32_t ScriptedSdk::getPixelClockRange(Handle /*handle*/, std::int32_t* minimum,
                                             std::int32_t* maximum)
{
    *minimum = 5;
    *maximum = 40;
    return 0;
}

std::int32_t ScriptedSdk::getCameraList(CameraList* list)
{
    list->count = std::min(list->count, static_cast<std::uint32_t>(devices.size()));
    CameraListEntry* entry = list->entries;
    for (std::uint32_t i = 0; i < list->count; ++i, ++entry) {
        *entry = {};
        entry->camId = i + 1;
        entry->devId = devices[i].devId;
        entry->status = devices[i].status;
        std::memcpy(entry->serNo, devices[i].serNo.constData(),
                    static_cast<std::size_t>(devices[i].serNo.size()));
        std::memcpy(entry->model, devices[i].model.constData(),
                    static_cast<std::size_t>(devices[i].model.size()));
    }
    return 0;
}

std::int32_t ScriptedSdk::getFirmwareUploadTime(Handle handle, std::int32_t /*one*/,
                                                std::int32_t* milliseconds)
{
    for (const Device& device : devices) {
        if (device.devId == (handle & DeviceMask)) {
            *milliseconds = device.firmwareUploadMsec;
        }
    }
    return record("getFirmwareUploadTime");
}

std::int32_t ScriptedSdk::hotpixelCommand(Handle /*handle*/, std::int32_t command, void* buffer,
                                          std::int32_t size)
{
    if (m_open == nullptr) {
        return Failure;
    }
    const auto count = [buffer](qsizetype value) {
        *static_cast<std::int32_t*>(buffer) = static_cast<std::int32_t>(value);
        return 0;
    };
    switch (command) {
    case camera::GetFactoryCount:
        return count(m_open->factory.size());
    case camera::GetUserCount:
        return count(m_open->user.size());
    case camera::GetMaxUserEntries:
        return count(m_open->maxUserEntries);
    case camera::GetFactoryList:
        listbuffer::write(m_open->factory, buffer);
        return 0;
    case camera::GetUserList:
        listbuffer::write(m_open->user, buffer);
        return 0;
    case camera::SetUserList:
    case camera::DeleteUserList:
        if (failEveryWrite) {
            return Failure;
        }
        m_open->user = command == camera::SetUserList ? listbuffer::read<QList<QPoint>>(buffer)
                                                      : QList<QPoint>();
        break;
    default:
        break;
    }
    return record("hotpixelCommand", QStringLiteral("%1 %2").arg(command).arg(size));
}
