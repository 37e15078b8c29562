// SPDX-License-Identifier: MIT
#include "camera/EventObject.h"

#include <QtGlobal>
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#ifdef Q_OS_UNIX
#include <csignal>
#include <pthread.h>
#endif

namespace {

constexpr int LongMsec = 60'000;

TEST(EventObject, IsNotSignalledAtFirst)
{
    const EventHandle event = createEventObject();
    ASSERT_NE(event, nullptr);
    EXPECT_FALSE(waitForEventObject(event, 0));
    EXPECT_FALSE(waitForEventObject(event, 20));
}

TEST(EventObject, IsResetByTheWaitThatItEnds)
{
    const EventHandle event = createEventObject();
    signalEventObject(event);
    EXPECT_TRUE(waitForEventObject(event, LongMsec));
    EXPECT_FALSE(waitForEventObject(event, 0));
    signalEventObject(event);
    EXPECT_TRUE(waitForEventObject(event, 0)) << "and can be signalled again";
}

TEST(EventObject, SignalledTwiceEndsOneWait)
{
    const EventHandle event = createEventObject();
    signalEventObject(event);
    signalEventObject(event);
    EXPECT_TRUE(waitForEventObject(event, 0));
    EXPECT_FALSE(waitForEventObject(event, 0));
}

TEST(EventObject, ToleratesNullAndNegativeTimes)
{
    signalEventObject(nullptr);
    EXPECT_FALSE(waitForEventObject(nullptr, LongMsec));
    EXPECT_FALSE(waitForEventObject(createEventObject(), -1));
}

TEST(EventObject, WakesAThreadThatWaits)
{
    const EventHandle event = createEventObject();
    std::atomic<bool> woken = false;
    std::thread waiter([&] { woken = waitForEventObject(event, LongMsec); });
    signalEventObject(event);
    waiter.join();
    EXPECT_TRUE(woken);
}

#ifdef Q_OS_UNIX
TEST(EventObject, IsWaitedForOnWhenASignalInterruptsTheWait)
{
    struct sigaction before = {};
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {}; // without SA_RESTART
    ASSERT_EQ(sigaction(SIGUSR1, &nothing, &before), 0);
    const EventHandle event = createEventObject();
    const EventHandle never = createEventObject();
    std::atomic<bool> woken = false;
    std::atomic<bool> ended = false;
    std::thread waiter([&] {
        woken = waitForEventObject(event, LongMsec);
        ended = true;
    });
    for (int i = 0; i < 50 && !ended; ++i) {
        pthread_kill(waiter.native_handle(), SIGUSR1);
        waitForEventObject(never, 1);
    }
    EXPECT_FALSE(ended);
    signalEventObject(event);
    waiter.join();
    EXPECT_TRUE(woken);
    sigaction(SIGUSR1, &before, nullptr);
}
#endif

TEST(EventObject, CarriesWhatWasWrittenBeforeTheSignal)
{
    const EventHandle there = createEventObject();
    const EventHandle back = createEventObject();
    int value = 0; // deliberately not atomic: the events are what orders the accesses
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i) {
            ASSERT_TRUE(waitForEventObject(there, LongMsec));
            ++value;
            signalEventObject(back);
        }
    });
    for (int i = 0; i < 1000; ++i) {
        ++value;
        signalEventObject(there);
        ASSERT_TRUE(waitForEventObject(back, LongMsec));
    }
    other.join();
    EXPECT_EQ(value, 2000);
}

TEST(EventObject, WakesOneOfManyWaitersPerSignal)
{
    const EventHandle event = createEventObject();
    const EventHandle counted = createEventObject();
    std::atomic<int> woken = 0;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i) {
        waiters.emplace_back([&] {
            if (waitForEventObject(event, LongMsec)) {
                ++woken;
                signalEventObject(counted);
            }
        });
    }
    for (int i = 1; i <= 4; ++i) {
        signalEventObject(event);
        ASSERT_TRUE(waitForEventObject(counted, LongMsec));
        EXPECT_EQ(woken, i);
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(EventObject, IsThereInThousands)
{
    std::set<EventHandle> events;
    for (int i = 0; i < 10'000; ++i) {
        events.insert(createEventObject());
    }
    EXPECT_EQ(events.size(), 10'000U);
    EXPECT_EQ(events.count(nullptr), 0U);
    for (const EventHandle event : events) {
        signalEventObject(event);
        EXPECT_TRUE(waitForEventObject(event, 0));
    }
}

} // namespace
