// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatedBench.h"

using bench::Bench;
using bench::GenerousMsec;
using bench::OpenedCamera;

namespace {

const QString Mono = QStringLiteral("M1");

/// An event object that is bound to an SDK event and enabled.
EventHandle bound(CameraSdk& sdk, CameraSdk::Handle handle, std::int32_t id)
{
    EventHandle event = createEventObject();
    EXPECT_EQ(sdk.initEvent(handle, event, id), 0);
    EXPECT_EQ(sdk.enableEvent(handle, id), 0);
    return event;
}

TEST(SimulatedEvents, PullingACableSignalsTheCameraAndTheBus)
{
    Bench bench;
    const OpenedCamera opened(*bench.sdk);
    EventHandle removed = bound(*bench.sdk, opened.handle, camera::EventRemoved);
    EventHandle reconnected = bound(*bench.sdk, opened.handle, camera::EventReconnected);
    EventHandle deviceRemoved = bound(*bench.sdk, 0, camera::EventDeviceRemoved);
    EventHandle deviceNew = bound(*bench.sdk, 0, camera::EventDeviceNew);

    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(removed, GenerousMsec));
    EXPECT_TRUE(waitForEventObject(deviceRemoved, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(reconnected, 0));
    EXPECT_FALSE(waitForEventObject(deviceNew, 0));

    bench.sdk->control(Mono).setPlugged(true);
    EXPECT_TRUE(waitForEventObject(reconnected, GenerousMsec));
    EXPECT_TRUE(waitForEventObject(deviceNew, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(removed, 0));
    EXPECT_FALSE(waitForEventObject(deviceRemoved, 0));
}

TEST(SimulatedEvents, ACableThatIsAlreadyThereSignalsNothing)
{
    Bench bench;
    EventHandle deviceNew = bound(*bench.sdk, 0, camera::EventDeviceNew);
    bench.sdk->control(Mono).setPlugged(true);
    EXPECT_FALSE(waitForEventObject(deviceNew, 0));
}

TEST(SimulatedEvents, OtherCamerasAreNotConcerned)
{
    Bench bench;
    const OpenedCamera bayer(*bench.sdk, 2);
    EventHandle removed = bound(*bench.sdk, bayer.handle, camera::EventRemoved);
    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(removed, 0));
}

TEST(SimulatedEvents, OnlyEnabledOnesAreSignalled)
{
    Bench bench;
    EventHandle event = createEventObject();
    ASSERT_EQ(bench.sdk->initEvent(0, event, camera::EventDeviceRemoved), 0);
    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(event, 0)) << "not enabled yet";

    bench.sdk->control(Mono).setPlugged(true);
    ASSERT_EQ(bench.sdk->enableEvent(0, camera::EventDeviceRemoved), 0);
    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(event, GenerousMsec));

    bench.sdk->control(Mono).setPlugged(true);
    ASSERT_EQ(bench.sdk->disableEvent(0, camera::EventDeviceRemoved), 0);
    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(event, 0)) << "disabled again";
}

TEST(SimulatedEvents, ANewBindingReplacesTheOld)
{
    Bench bench;
    EventHandle old = bound(*bench.sdk, 0, camera::EventDeviceRemoved);
    EventHandle fresh = bound(*bench.sdk, 0, camera::EventDeviceRemoved);
    EXPECT_EQ(bench.sdk->boundEvents(), 1);
    bench.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(fresh, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(old, 0));
}

TEST(SimulatedEvents, WithoutABindingThereIsNothingToSwitch)
{
    Bench bench;
    const OpenedCamera opened(*bench.sdk);
    for (const CameraSdk::Handle handle : {CameraSdk::Handle{0}, opened.handle}) {
        const std::int32_t id = handle == 0 ? camera::EventDeviceNew : camera::EventFrame;
        EXPECT_EQ(bench.sdk->enableEvent(handle, id), simulator::EventNotBound);
        EXPECT_EQ(bench.sdk->disableEvent(handle, id), simulator::EventNotBound);
        EXPECT_EQ(bench.sdk->exitEvent(handle, id), simulator::EventNotBound);
    }
}

TEST(SimulatedEvents, ThatDoNotExistAreRefused)
{
    Bench bench;
    const OpenedCamera opened(*bench.sdk);
    EventHandle event = createEventObject();
    EXPECT_EQ(bench.sdk->initEvent(opened.handle, event, 3), simulator::InvalidParameter);
    EXPECT_EQ(bench.sdk->initEvent(opened.handle, event, camera::EventDeviceNew),
              simulator::InvalidParameter);
    EXPECT_EQ(bench.sdk->initEvent(0, event, camera::EventFrame), simulator::InvalidParameter);
}

TEST(SimulatedEvents, ClosingReleasesTheCamerasBindings)
{
    Bench bench;
    bound(*bench.sdk, 0, camera::EventDeviceNew);
    OpenedCamera opened(*bench.sdk);
    bound(*bench.sdk, opened.handle, camera::EventRemoved);
    EXPECT_EQ(bench.sdk->boundEvents(), 2);
    opened.close();
    EXPECT_EQ(bench.sdk->boundEvents(), 1);
}

} // namespace
