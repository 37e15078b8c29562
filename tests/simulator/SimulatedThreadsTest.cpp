// SPDX-License-Identifier: MIT
#include "tests/simulator/SimulatorFixture.h"

#include <atomic>
#include <thread>

using simulatortest::GenerousMsec;
using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

namespace {

TEST(SimulatedThreads, MayCallEverythingAtOnce)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    std::atomic<bool> done = false;
    std::vector<std::thread> threads;
    const auto repeat = [&](auto call) {
        threads.emplace_back([&done, call] {
            while (!done) {
                call();
                std::this_thread::yield();
            }
        });
    };
    SimulatedCameraSdk& sdk = *fixture.sdk;
    const CameraSdk::Handle handle = mono.handle;
    const QString serial = QStringLiteral("M1");
    repeat([&] {
        double actual = 0;
        sdk.setExposureTime(handle, 3.0, &actual);
        sdk.setFrameRate(handle, 2.0, &actual);
        sdk.setPixelClock(handle, 3);
        sdk.setHardwareGain(handle, 20, 1, 2, 3);
    });
    repeat([&] {
        sdk.control(serial).setCovered(!sdk.control(serial).isCovered());
        sdk.control(serial).setTemperature(20.0);
        static_cast<void>(sdk.control(serial).knownHotPixels());
    });
    repeat([&] {
        std::uint16_t list[] = {1, 4, 5};
        sdk.hotpixelCommand(handle, camera::CorrectionOnFirst, nullptr, 0);
        sdk.hotpixelCommand(handle, camera::SetUserList, list, sizeof list);
        std::int32_t code = 1005;
        char* text = nullptr;
        sdk.getError(handle, &code, &text);
    });
    repeat([&] {
        CameraList list{};
        list.count = 1;
        sdk.getCameraList(&list);
        CameraSdk::Handle other = 2 | camera::OpenByDevice;
        if (sdk.initCamera(&other, nullptr) == 0) {
            sdk.exitCamera(other);
        }
    });
    repeat([&] {
        EventHandle event = mono.failedEvent;
        sdk.initEvent(handle, event, camera::EventFrameFailed);
        sdk.enableEvent(handle, camera::EventFrameFailed);
        sdk.disableEvent(handle, camera::EventFrameFailed);
        sdk.exitEvent(handle, camera::EventFrameFailed);
    });
    for (int frame = 0; frame < 30; ++frame) {
        ASSERT_FALSE(mono.nextFrame().empty());
    }
    done = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(SimulatedThreads, CablesLidsAndClosingMayComeAtAnyMoment)
{
    SimulatorFixture fixture;
    SimulatedCameraSdk& sdk = *fixture.sdk;
    const QString serial = QStringLiteral("M1");
    std::atomic<bool> done = false;
    std::thread hands([&] {
        bool on = false;
        while (!done) {
            sdk.control(serial).setPlugged(on);
            sdk.control(serial).setDropFrames(on);
            on = !on;
            std::this_thread::yield();
        }
        sdk.control(serial).setPlugged(true);
    });
    for (int cycle = 0; cycle < 50; ++cycle) {
        CameraSdk::Handle handle = 1 | camera::OpenByDevice;
        while (sdk.initCamera(&handle, nullptr) != 0) {
            std::this_thread::yield();
        }
        OpenedCamera::Memory memories[2];
        for (OpenedCamera::Memory& memory : memories) {
            ASSERT_EQ(sdk.allocImageMemory(handle, 96, 64, 8, &memory.pointer, &memory.id), 0);
            ASSERT_EQ(sdk.addToSequence(handle, memory.pointer, memory.id), 0);
        }
        sdk.startLiveVideo(handle, camera::DontWait);
        char* frame = nullptr;
        sdk.getFrameMemory(handle, 0, 0, &frame);
        if (cycle % 2 == 0) {
            sdk.stopLiveVideo(handle, camera::Wait);
        }
        ASSERT_EQ(sdk.exitCamera(handle), 0);
        for (const OpenedCamera::Memory& memory : memories) {
            ASSERT_EQ(sdk.freeImageMemory(handle, memory.pointer, memory.id), 0);
        }
    }
    done = true;
    hands.join();
    EXPECT_EQ(sdk.openCameras(), 0);
    EXPECT_EQ(sdk.imageMemories(), 0);
    EXPECT_EQ(sdk.boundEvents(), 0);
}

TEST(SimulatedThreads, SeveralMayStopAtOnce)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                fixture.sdk->stopLiveVideo(mono.handle, camera::Wait);
                fixture.sdk->startLiveVideo(mono.handle, camera::Wait);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, camera::Wait), 0);
}

TEST(SimulatedThreads, AnSdkMayEndWithCamerasRunning)
{
    SimulatorFixture fixture;
    CameraSdk::Handle handle = 1 | camera::OpenByDevice;
    ASSERT_EQ(fixture.sdk->initCamera(&handle, nullptr), 0);
    OpenedCamera::Memory memory;
    ASSERT_EQ(fixture.sdk->allocImageMemory(handle, 96, 64, 8, &memory.pointer, &memory.id), 0);
    ASSERT_EQ(fixture.sdk->addToSequence(handle, memory.pointer, memory.id), 0);
    ASSERT_EQ(fixture.sdk->startLiveVideo(handle, camera::DontWait), 0);
    fixture.restart();
    const OpenedCamera again(*fixture.sdk);
    EXPECT_EQ(fixture.sdk->openCameras(), 1);
}

} // namespace
