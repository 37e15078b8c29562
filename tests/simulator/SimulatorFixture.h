// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "camera/EventObject.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/sdk/ListBuffer.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace simulatortest {

inline constexpr int GenerousMsec = 20000;

inline CameraDescription smallMono()
{
    CameraDescription camera;
    camera.serial = QStringLiteral("M1");
    camera.model = QStringLiteral("Small mono");
    camera.width = 96;
    camera.height = 64;
    camera.pixelClockMin = 1;
    camera.pixelClockDefault = 2;
    camera.hotPixels = 12;
    camera.factoryEntries = 2;
    camera.userEntries = 1;
    camera.userCapacity = 8;
    return camera;
}

inline CameraDescription smallBayer()
{
    CameraDescription camera = smallMono();
    camera.serial = QStringLiteral("B2");
    camera.model = QStringLiteral("Small Bayer");
    camera.camId = 7;
    camera.devId = 2;
    camera.bayer = true;
    camera.colorMode = 11;
    return camera;
}

/// A simulated SDK with small, fast cameras whose EEPROMs are in a folder of its own.
class SimulatorFixture
{
public:
    explicit SimulatorFixture(std::vector<CameraDescription> cameras = {smallMono(), smallBayer()},
                              double speed = 200)
    {
        bus.cameras = std::move(cameras);
        bus.speed = speed;
        bus.eepromFolder = folder.filePath(QStringLiteral("eeprom"));
        restart();
    }

    /// What a program's end and its next start do.
    void restart()
    {
        sdk.reset();
        sdk = std::make_unique<SimulatedCameraSdk>(bus);
    }

    QTemporaryDir folder;
    BusDescription bus;
    std::unique_ptr<SimulatedCameraSdk> sdk;
};

/// A camera that is opened, has a ring of two image memories and its frame events bound.
class OpenedCamera
{
public:
    explicit OpenedCamera(SimulatedCameraSdk& sdk, std::uint32_t devId = 1)
        : m_sdk(sdk)
        , handle(devId | camera::OpenByDevice)
    {
        EXPECT_EQ(sdk.initCamera(&handle, nullptr), 0);
        sdk.getSensorInfo(handle, &info);
    }
    ~OpenedCamera() { close(); }
    OpenedCamera(const OpenedCamera&) = delete;
    OpenedCamera& operator=(const OpenedCamera&) = delete;

    [[nodiscard]] int width() const { return static_cast<int>(info.maxWidth); }
    [[nodiscard]] int height() const { return static_cast<int>(info.maxHeight); }

    void startLive(int buffers = 2, int bitsPerPixel = 8)
    {
        for (int i = 0; i < buffers; ++i) {
            Memory memory;
            ASSERT_EQ(m_sdk.allocImageMemory(handle, width(), height(), bitsPerPixel,
                                             &memory.pointer, &memory.id),
                      0);
            ASSERT_EQ(m_sdk.addToSequence(handle, memory.pointer, memory.id), 0);
            memories.push_back(memory);
        }
        for (const int id : {camera::EventFrame, camera::EventFrameFailed}) {
            ASSERT_EQ(
                m_sdk.initEvent(handle, id == camera::EventFrame ? frameEvent : failedEvent, id),
                0);
            ASSERT_EQ(m_sdk.enableEvent(handle, id), 0);
        }
        ASSERT_EQ(m_sdk.startLiveVideo(handle, camera::DontWait), 0);
    }

    /// The raw pixels of the next frame, line after line; empty when none comes.
    std::vector<std::uint8_t> nextFrame()
    {
        char* memory = nullptr;
        if (!waitForEventObject(frameEvent, GenerousMsec) ||
            m_sdk.getFrameMemory(handle, 0, 0, &memory) != 0) {
            return {};
        }
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(memory);
        return {bytes, bytes + static_cast<std::ptrdiff_t>(width()) * height()};
    }

    void close()
    {
        m_sdk.stopLiveVideo(handle, camera::Wait);
        m_sdk.exitCamera(handle);
        for (const Memory& memory : memories) {
            m_sdk.freeImageMemory(handle, memory.pointer, memory.id);
        }
        memories.clear();
    }

    struct Memory
    {
        char* pointer = nullptr;
        std::int32_t id = 0;
    };

private:
    SimulatedCameraSdk& m_sdk;

public:
    CameraSdk::Handle handle;
    SensorInfo info{};
    std::vector<Memory> memories;
    EventHandle frameEvent = createEventObject();
    EventHandle failedEvent = createEventObject();
};

/// The user or factory list of an opened camera, as its coordinates one after the other.
inline listbuffer::Words readList(CameraSdk& sdk, CameraSdk::Handle handle, bool user)
{
    std::int32_t count = 0;
    EXPECT_EQ(sdk.hotpixelCommand(handle, user ? camera::GetUserCount : camera::GetFactoryCount,
                                  &count, 4),
              0);
    listbuffer::Words words(static_cast<std::size_t>(count) * 2 + 1);
    EXPECT_EQ(sdk.hotpixelCommand(handle, user ? camera::GetUserList : camera::GetFactoryList,
                                  words.data(), listbuffer::sizeOf(words)),
              0);
    EXPECT_EQ(words.front(), count);
    return listbuffer::decode(words.data());
}

} // namespace simulatortest
