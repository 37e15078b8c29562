// SPDX-License-Identifier: MIT
#include "Recorder.h"
#include "camera/EventObject.h"

#include <gtest/gtest.h>

#include <bit>
#include <windows.h>

namespace {

constexpr int LongMsec = 60'000;

void signalFromLibraryThread(EventHandle event)
{
    static const auto signal = std::bit_cast<RecorderSignal>(
        GetProcAddress(GetModuleHandleW(L"Vorn_api_64.dll"), RecorderSignalName));
    signal(event);
}

struct Waiter
{
    EventHandle event;
    bool signalled = false;
};

DWORD WINAPI waitLong(void* argument)
{
    auto* const waiter = static_cast<Waiter*>(argument);
    waiter->signalled = waitForEventObject(waiter->event, LongMsec);
    return 0;
}

TEST(WindowsEventObject, IsNotSignalledAtFirst)
{
    EXPECT_FALSE(waitForEventObject(createEventObject(), 0));
}

TEST(WindowsEventObject, SetByAThreadOfTheLibraryWakesAWaitingThread)
{
    Waiter waiter = {.event = createEventObject()};
    const HANDLE thread = CreateThread(nullptr, 0, waitLong, &waiter, 0, nullptr);
    signalFromLibraryThread(waiter.event);
    ASSERT_EQ(WaitForSingleObject(thread, LongMsec), WAIT_OBJECT_0);
    CloseHandle(thread);
    EXPECT_TRUE(waiter.signalled);
}

TEST(WindowsEventObject, IsResetByTheWaitThatItEnds)
{
    const EventHandle event = createEventObject();
    signalFromLibraryThread(event);
    EXPECT_TRUE(waitForEventObject(event, LongMsec));
    EXPECT_FALSE(waitForEventObject(event, 0));
}

TEST(WindowsEventObject, SignalledTwiceEndsOneWait)
{
    const EventHandle event = createEventObject();
    signalEventObject(event);
    signalEventObject(event);
    EXPECT_TRUE(waitForEventObject(event, LongMsec));
    EXPECT_FALSE(waitForEventObject(event, 0));
}

TEST(WindowsEventObject, TimesOutAfter500MsecWhenNothingSignalsIt)
{
    const EventHandle event = createEventObject();
    // Only the lower bound is looked at: a busy machine may well take longer.
    const ULONGLONG before = GetTickCount64();
    EXPECT_FALSE(waitForEventObject(event, 500));
    EXPECT_GE(GetTickCount64() - before, 450U);
}

TEST(WindowsEventObject, ToleratesNull)
{
    signalEventObject(nullptr);
    EXPECT_FALSE(waitForEventObject(nullptr, 0));
}

} // namespace
