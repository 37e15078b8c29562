// SPDX-License-Identifier: MIT
#include "camera/EventThread.h"

#include "tests/sdk/MockCameraSdk.h"

#include <QTest>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace {

using ::testing::_;
using ::testing::DoAll;
using ::testing::InSequence;
using ::testing::Invoke;
using ::testing::NiceMock;
using ::testing::NotNull;
using ::testing::Return;
using ::testing::SaveArg;
using ::testing::StrictMock;

constexpr int LongMsec = 60'000;
constexpr unsigned long LongWait = LongMsec;

class EventThreadFixture : public ::testing::Test
{
protected:
    // The event object that was bound last.
    void rememberEvent()
    {
        ON_CALL(sdk, initEvent).WillByDefault(DoAll(SaveArg<1>(&event), Return(0)));
    }

    void receive(EventThread& thread)
    {
        QObject::connect(&thread, &EventThread::eventhappen, &receiver, [this](int id) {
            received.append(id);
            onGuiThread = onGuiThread && QThread::currentThread() == receiver.thread();
        });
    }

    bool receivedSoon(const QList<int>& events)
    {
        return QTest::qWaitFor([&] { return received == events; }, LongMsec);
    }

    NiceMock<MockCameraSdk> sdk;
    EventHandle event = nullptr;
    QObject receiver;
    QList<int> received;
    bool onGuiThread = true;
};

class EventThreadStart : public EventThreadFixture
{};

TEST_F(EventThreadStart, BindsAnEventObjectAndEnablesTheEvent)
{
    StrictMock<MockCameraSdk> strictSdk;
    EventThread thread(strictSdk);
    {
        const InSequence sequence;
        EXPECT_CALL(strictSdk, initEvent(7, NotNull(), 2)).WillOnce(Return(0));
        EXPECT_CALL(strictSdk, enableEvent(7, 2)).WillOnce(Return(0));
        EXPECT_CALL(strictSdk, disableEvent(7, 2)).WillOnce(Return(0));
        EXPECT_CALL(strictSdk, exitEvent(7, 2)).WillOnce(Return(0));
    }
    EXPECT_EQ(thread.start(7, 2), 0);
    EXPECT_TRUE(thread.isRunning());
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
}

TEST_F(EventThreadStart, IgnoresTheResultOfTheBindingAndOfTheRelease)
{
    ON_CALL(sdk, initEvent).WillByDefault(Return(12));
    ON_CALL(sdk, disableEvent).WillByDefault(Return(12));
    EXPECT_CALL(sdk, exitEvent(7, 2)).WillOnce(Return(12));
    EventThread thread(sdk);
    EXPECT_EQ(thread.start(7, 2), 0);
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
}

TEST_F(EventThreadStart, ReturnsTheCodeAndRunsNoThreadWhenTheEventCannotBeEnabled)
{
    StrictMock<MockCameraSdk> strictSdk;
    EXPECT_CALL(strictSdk, initEvent(7, _, 2)).WillOnce(Return(0));
    EXPECT_CALL(strictSdk, enableEvent(7, 2)).WillOnce(Return(12));
    EventThread thread(strictSdk);
    EXPECT_EQ(thread.start(7, 2), 12);
    EXPECT_FALSE(thread.isRunning());
    EXPECT_TRUE(thread.wait(LongWait));
}

TEST_F(EventThreadStart, OfARunningThreadLeavesItAtItsOldEventObject)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 8);
    const EventHandle first = event;
    signalEventObject(first);
    ASSERT_TRUE(receivedSoon({8})) << "the thread has taken its event object";

    thread.start(9, 128);
    const EventHandle second = event;
    EXPECT_NE(second, first);
    signalEventObject(second); // nobody waits for it
    signalEventObject(first);
    EXPECT_TRUE(receivedSoon({8, 128}));
    EXPECT_TRUE(waitForEventObject(second, 0)) << "still signalled, so nobody took it";

    EXPECT_CALL(sdk, disableEvent(9, 128));
    EXPECT_CALL(sdk, exitEvent(9, 128));
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
}

TEST_F(EventThreadStart, RunsAThreadThatHasEndedAgain)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 2);
    thread.stop();
    ASSERT_TRUE(thread.wait(LongWait));
    thread.start(8, 2);
    signalEventObject(event);
    EXPECT_TRUE(receivedSoon({2}));
}

// As a camera does that is closed and at once opened again.
TEST_F(EventThreadStart, OfAThreadThatIsAboutToEndRunsItAfresh)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 9);
    const EventHandle first = event;
    signalEventObject(first);
    ASSERT_TRUE(receivedSoon({9})) << "the thread has taken its event object";
    {
        const InSequence sequence;
        EXPECT_CALL(sdk, disableEvent(7, 9));
        EXPECT_CALL(sdk, exitEvent(7, 9));
        EXPECT_CALL(sdk, initEvent(8, _, 9)).WillOnce(DoAll(SaveArg<1>(&event), Return(0)));
        EXPECT_CALL(sdk, enableEvent(8, 9));
        EXPECT_CALL(sdk, disableEvent(8, 9));
        EXPECT_CALL(sdk, exitEvent(8, 9));
    }
    thread.stop();
    thread.start(8, 9);
    ASSERT_NE(event, first);
    signalEventObject(event);
    EXPECT_TRUE(receivedSoon({9, 9}));
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
}

TEST_F(EventThreadStart, OfATerminatedThreadRunsItAfresh)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 2);
    thread.stop();
    thread.terminate();
    thread.start(8, 2);
    signalEventObject(event);
    EXPECT_TRUE(receivedSoon({2}));
}

class EventThreadLoop : public EventThreadFixture
{};

TEST_F(EventThreadLoop, ReportsEachSignalOnTheReceiversThread)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 129);
    QList<int> expected;
    for (int i = 0; i < 3; ++i) {
        signalEventObject(event);
        expected.append(129);
        EXPECT_TRUE(receivedSoon(expected));
    }
    EXPECT_TRUE(onGuiThread);
}

TEST_F(EventThreadLoop, EmitsFromItsOwnThread)
{
    rememberEvent();
    EventThread thread(sdk);
    std::atomic<QThread*> emitter = nullptr;
    QObject::connect(
        &thread, &EventThread::eventhappen, &receiver,
        [&emitter](int) { emitter = QThread::currentThread(); }, Qt::DirectConnection);
    thread.start(7, 2);
    signalEventObject(event);
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter == &thread; }, LongMsec));
}

// It ends without a signal, so it wakes by itself.
TEST_F(EventThreadLoop, EmitsNothingForAnEventThatIsNeverSignalled)
{
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 2);
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
    QCoreApplication::processEvents();
    EXPECT_EQ(received, QList<int>());
}

TEST_F(EventThreadLoop, ReleasesTheEventFromItsOwnThread)
{
    EventThread thread(sdk);
    std::atomic<QThread*> disabledBy = nullptr;
    std::atomic<QThread*> exitedBy = nullptr;
    EXPECT_CALL(sdk, disableEvent(7, 2)).WillOnce(Invoke([&](CameraSdk::Handle, std::int32_t) {
        disabledBy = QThread::currentThread();
        return 0;
    }));
    EXPECT_CALL(sdk, exitEvent(7, 2)).WillOnce(Invoke([&](CameraSdk::Handle, std::int32_t) {
        exitedBy = QThread::currentThread();
        return 0;
    }));
    thread.start(7, 2);
    thread.stop();
    EXPECT_TRUE(thread.wait(LongWait));
    EXPECT_EQ(disabledBy, &thread);
    EXPECT_EQ(exitedBy, &thread);
}

class EventThreadTermination : public EventThreadFixture
{
protected:
    // Waits in a place where a thread could be terminated if that was not switched off.
    void pause()
    {
        signalEventObject(paused);
        waitForEventObject(goOn, LongMsec);
    }

    EventHandle paused = createEventObject();
    EventHandle goOn = createEventObject();
};

TEST_F(EventThreadTermination, StrikesInTheWaitAndLeavesTheEventObjectWhole)
{
    rememberEvent();
    EXPECT_CALL(sdk, disableEvent).Times(0);
    EXPECT_CALL(sdk, exitEvent).Times(0);
    EventThread thread(sdk);
    receive(thread);
    thread.start(7, 8);
    signalEventObject(event);
    ASSERT_TRUE(receivedSoon({8}));
    thread.terminate();
    ASSERT_TRUE(thread.wait(LongWait));
    EXPECT_TRUE(thread.isFinished());

    signalEventObject(event);
    EXPECT_TRUE(waitForEventObject(event, 0));
    EXPECT_FALSE(waitForEventObject(event, 0));
}

TEST_F(EventThreadTermination, OfAThreadThatHasEndedDoesNothing)
{
    EventThread thread(sdk);
    thread.terminate();
    thread.start(7, 2);
    thread.stop();
    ASSERT_TRUE(thread.wait(LongWait));
    thread.terminate();
    EXPECT_TRUE(thread.isFinished());
}

TEST_F(EventThreadTermination, StrikesAfterTheCallOfTheSdkThatItCameInAndBeforeTheNext)
{
    std::atomic<bool> returned = false;
    ON_CALL(sdk, disableEvent).WillByDefault(Invoke([&](CameraSdk::Handle, std::int32_t) {
        pause();
        returned = true;
        return 0;
    }));
    EXPECT_CALL(sdk, exitEvent).Times(0);
    EventThread thread(sdk);
    thread.start(7, 2);
    thread.stop();
    ASSERT_TRUE(waitForEventObject(paused, LongMsec));
    thread.terminate();
    signalEventObject(goOn);
    EXPECT_TRUE(thread.wait(LongWait));
    EXPECT_TRUE(returned);
}

TEST_F(EventThreadTermination, DoesNotStrikeInTheEmissionButInTheWaitAfterIt)
{
    rememberEvent();
    EXPECT_CALL(sdk, disableEvent).Times(0);
    EventThread thread(sdk);
    std::atomic<bool> emitted = false;
    QObject::connect(
        &thread, &EventThread::eventhappen, &receiver,
        [&](int) {
            pause();
            emitted = true;
        },
        Qt::DirectConnection);
    thread.start(7, 2);
    signalEventObject(event);
    ASSERT_TRUE(waitForEventObject(paused, LongMsec));
    thread.terminate();
    signalEventObject(goOn);
    EXPECT_TRUE(thread.wait(LongWait));
    EXPECT_TRUE(emitted);
}

TEST_F(EventThreadTermination, LetsTheThreadBeStartedAgain)
{
    rememberEvent();
    EventThread thread(sdk);
    receive(thread);
    for (int round = 1; round <= 20; ++round) {
        ASSERT_EQ(thread.start(7, 2), 0);
        signalEventObject(event);
        ASSERT_TRUE(receivedSoon(QList<int>(round, 2)));
        thread.terminate();
        ASSERT_TRUE(thread.wait(LongWait));
    }
}

class EventThreadDestruction : public EventThreadFixture
{};

TEST_F(EventThreadDestruction, WaitsForAThreadThatStillRuns)
{
    EXPECT_CALL(sdk, disableEvent(7, 9)).Times(1);
    EXPECT_CALL(sdk, exitEvent(7, 9)).Times(1);
    {
        EventThread thread(sdk);
        thread.start(7, 9);
    }
    EXPECT_TRUE(::testing::Mock::VerifyAndClearExpectations(&sdk)) << "it has released its event";
}

TEST_F(EventThreadDestruction, OfAThreadThatNeverRanCallsNothing)
{
    StrictMock<MockCameraSdk> strictSdk;
    const EventThread thread(strictSdk);
}

} // namespace
