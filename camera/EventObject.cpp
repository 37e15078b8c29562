// SPDX-License-Identifier: MIT
#include "camera/EventObject.h"

#include <algorithm>

#ifdef _WIN32

#include <windows.h>

EventHandle createEventObject()
{
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

bool waitForEventObject(EventHandle event, int msec)
{
    return event != nullptr &&
           WaitForSingleObject(event, static_cast<DWORD>(std::max(msec, 0))) == WAIT_OBJECT_0;
}

void signalEventObject(EventHandle event)
{
    if (event != nullptr) {
        SetEvent(event);
    }
}

#else

#include <atomic>
#include <cerrno>
#include <ctime>
#include <new>
#include <semaphore.h>

namespace {

// A semaphore that never counts beyond one: `signalled` says that a post is under way to a waiter,
// and further signals are then the same signal. A semaphore needs no file descriptor and no lock,
// and its wait is a cancellation point that leaves it as it was.
struct EventObject
{
    sem_t semaphore = {};
    std::atomic<bool> signalled = false;
    EventObject* next = nullptr;
};

// Nothing is ever taken out. The list keeps every object reachable for a leak checker.
std::atomic<EventObject*> s_allEventObjects = nullptr;

timespec deadlineIn(int msec)
{
    constexpr long NsecPerMsec = 1'000'000;
    constexpr long NsecPerSec = 1'000'000'000;
    timespec deadline = {};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += msec / 1000;
    deadline.tv_nsec += (msec % 1000) * NsecPerMsec;
    if (deadline.tv_nsec >= NsecPerSec) {
        deadline.tv_nsec -= NsecPerSec;
        ++deadline.tv_sec;
    }
    return deadline;
}

} // namespace

EventHandle createEventObject()
{
    auto* const object = new (std::nothrow) EventObject;
    if (object == nullptr || sem_init(&object->semaphore, 0, 0) != 0) {
        delete object;
        return nullptr;
    }
    object->next = s_allEventObjects.load(std::memory_order_relaxed);
    while (!s_allEventObjects.compare_exchange_weak(object->next, object)) {
    }
    return object;
}

bool waitForEventObject(EventHandle event, int msec)
{
    auto* const object = static_cast<EventObject*>(event);
    if (object == nullptr) {
        return false;
    }
    const timespec deadline = deadlineIn(std::max(msec, 0));
    while (sem_clockwait(&object->semaphore, CLOCK_MONOTONIC, &deadline) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    object->signalled.exchange(false);
    return true;
}

void signalEventObject(EventHandle event)
{
    auto* const object = static_cast<EventObject*>(event);
    if (object != nullptr && !object->signalled.exchange(true)) {
        sem_post(&object->semaphore);
    }
}

#endif
