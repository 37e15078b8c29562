// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

using simulatortest::GenerousMsec;
using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

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
    SimulatorFixture fixture;
    const OpenedCamera opened(*fixture.sdk);
    EventHandle removed = bound(*fixture.sdk, opened.handle, camera::EventRemoved);
    EventHandle reconnected = bound(*fixture.sdk, opened.handle, camera::EventReconnected);
    EventHandle deviceRemoved = bound(*fixture.sdk, 0, camera::EventDeviceRemoved);
    EventHandle deviceNew = bound(*fixture.sdk, 0, camera::EventDeviceNew);

    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(removed, GenerousMsec));
    EXPECT_TRUE(waitForEventObject(deviceRemoved, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(reconnected, 0));
    EXPECT_FALSE(waitForEventObject(deviceNew, 0));

    fixture.sdk->control(Mono).setPlugged(true);
    EXPECT_TRUE(waitForEventObject(reconnected, GenerousMsec));
    EXPECT_TRUE(waitForEventObject(deviceNew, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(removed, 0));
    EXPECT_FALSE(waitForEventObject(deviceRemoved, 0));
}

TEST(SimulatedEvents, ACableThatIsAlreadyThereSignalsNothing)
{
    SimulatorFixture fixture;
    EventHandle deviceNew = bound(*fixture.sdk, 0, camera::EventDeviceNew);
    fixture.sdk->control(Mono).setPlugged(true);
    EXPECT_FALSE(waitForEventObject(deviceNew, 0));
}

TEST(SimulatedEvents, OtherCamerasAreNotConcerned)
{
    SimulatorFixture fixture;
    const OpenedCamera bayer(*fixture.sdk, 2);
    EventHandle removed = bound(*fixture.sdk, bayer.handle, camera::EventRemoved);
    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(removed, 0));
}

TEST(SimulatedEvents, OnlyEnabledOnesAreSignalled)
{
    SimulatorFixture fixture;
    EventHandle event = createEventObject();
    ASSERT_EQ(fixture.sdk->initEvent(0, event, camera::EventDeviceRemoved), 0);
    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(event, 0)) << "not enabled yet";

    fixture.sdk->control(Mono).setPlugged(true);
    ASSERT_EQ(fixture.sdk->enableEvent(0, camera::EventDeviceRemoved), 0);
    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(event, GenerousMsec));

    fixture.sdk->control(Mono).setPlugged(true);
    ASSERT_EQ(fixture.sdk->disableEvent(0, camera::EventDeviceRemoved), 0);
    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_FALSE(waitForEventObject(event, 0)) << "disabled again";
}

TEST(SimulatedEvents, ANewBindingReplacesTheOld)
{
    SimulatorFixture fixture;
    EventHandle old = bound(*fixture.sdk, 0, camera::EventDeviceRemoved);
    EventHandle fresh = bound(*fixture.sdk, 0, camera::EventDeviceRemoved);
    EXPECT_EQ(fixture.sdk->boundEvents(), 1);
    fixture.sdk->control(Mono).setPlugged(false);
    EXPECT_TRUE(waitForEventObject(fresh, GenerousMsec));
    EXPECT_FALSE(waitForEventObject(old, 0));
}

TEST(SimulatedEvents, WithoutABindingThereIsNothingToSwitch)
{
    SimulatorFixture fixture;
    const OpenedCamera opened(*fixture.sdk);
    for (const CameraSdk::Handle handle : {CameraSdk::Handle{0}, opened.handle}) {
        const std::int32_t id = handle == 0 ? camera::EventDeviceNew : camera::EventFrame;
        EXPECT_EQ(fixture.sdk->enableEvent(handle, id), simulator::EventNotBound);
        EXPECT_EQ(fixture.sdk->disableEvent(handle, id), simulator::EventNotBound);
        EXPECT_EQ(fixture.sdk->exitEvent(handle, id), simulator::EventNotBound);
    }
}

TEST(SimulatedEvents, ThatDoNotExistAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera opened(*fixture.sdk);
    EventHandle event = createEventObject();
    EXPECT_EQ(fixture.sdk->initEvent(opened.handle, event, 3), simulator::InvalidParameter);
    EXPECT_EQ(fixture.sdk->initEvent(opened.handle, event, camera::EventDeviceNew),
              simulator::InvalidParameter);
    EXPECT_EQ(fixture.sdk->initEvent(0, event, camera::EventFrame), simulator::InvalidParameter);
}

TEST(SimulatedEvents, ClosingReleasesTheCamerasBindings)
{
    SimulatorFixture fixture;
    bound(*fixture.sdk, 0, camera::EventDeviceNew);
    OpenedCamera opened(*fixture.sdk);
    bound(*fixture.sdk, opened.handle, camera::EventRemoved);
    EXPECT_EQ(fixture.sdk->boundEvents(), 2);
    opened.close();
    EXPECT_EQ(fixture.sdk->boundEvents(), 1);
}

} // namespace
