// SPDX-License-Identifier: MIT
#include "camera/ConnectedCameras.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ConnectedCameras)
};

[[noreturn]] void fail(const char* text)
{
    throw std::runtime_error(Text::tr(text).toStdString());
}

template <std::size_t size>
QString textOf(const std::array<char, size>& text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(qstrnlen(text.data(), size)));
}

CameraItem itemOf(const CameraListEntry& entry)
{
    return {.opened = false,
            .camId = entry.camId,
            .devId = entry.devId,
            .word2 = entry.word2,
            .status = entry.status,
            .serNo = textOf(std::to_array(entry.serNo)),
            .model = textOf(std::to_array(entry.model))};
}

} // namespace

QList<CameraItem> camera::connectedCameras(CameraSdk& sdk)
{
    const std::int32_t count = numberOfCameras(sdk);
    return count < 1 ? QList<CameraItem>() : cameraList(sdk, count);
}

std::int32_t camera::numberOfCameras(CameraSdk& sdk)
{
    std::int32_t count = 0;
    if (sdk.getNumberOfCameras(&count) != 0) {
        fail(QT_TRANSLATE_NOOP("ConnectedCameras", "Can't get number of cameras."));
    }
    return count;
}

QList<CameraItem> camera::cameraList(CameraSdk& sdk, std::int32_t count)
{
    const auto room = static_cast<std::uint32_t>(count);
    std::vector<std::byte> memory(offsetof(CameraList, entries) +
                                  std::size_t{room} * sizeof(CameraListEntry));
    auto* const list = reinterpret_cast<CameraList*>(memory.data());
    list->count = room;
    if (sdk.getCameraList(list) != 0) {
        fail(QT_TRANSLATE_NOOP("ConnectedCameras", "Can't get camera list."));
    }

    // A camera plugged in between the two calls makes the count greater than the room for it.
    const std::uint32_t filled = std::min(list->count, room);
    QList<CameraItem> cameras;
    for (std::uint32_t i = 0; i < filled; ++i) {
        CameraListEntry entry;
        std::memcpy(&entry,
                    memory.data() + offsetof(CameraList, entries) +
                        std::size_t{i} * sizeof(CameraListEntry),
                    sizeof entry);
        cameras.append(itemOf(entry));
    }
    return cameras;
}
