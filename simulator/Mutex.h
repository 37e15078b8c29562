// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/ThreadAnnotations.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

/// std::mutex, known to Clang's analysis of what is touched with which mutex held.
class VORN_CAPABILITY("mutex") Mutex
{
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

private:
    friend class MutexLock;
    std::mutex m_mutex;
};

/// Holds a mutex as long as it lives, but for the time between unlock() and lock() and while it
/// waits. Conditions are tested by the caller, in a loop: the analysis does not look into the
/// predicates of the standard's waits.
class VORN_SCOPED_CAPABILITY MutexLock
{
public:
    explicit MutexLock(Mutex& mutex) VORN_ACQUIRE(mutex)
        : m_lock(mutex.m_mutex)
    {}
    ~MutexLock() VORN_RELEASE() {} // not defaulted: the annotation belongs to a body
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    void unlock() VORN_RELEASE() { m_lock.unlock(); }
    void lock() VORN_ACQUIRE() { m_lock.lock(); }

    /// Gives the mutex up until @p changed is notified, or without a reason.
    void wait(std::condition_variable& changed) { changed.wait(m_lock); }

    /// The same, at most until @p due. @return whether it is later than that
    template <typename Clock, typename Duration>
    bool waitUntil(std::condition_variable& changed,
                   const std::chrono::time_point<Clock, Duration>& due)
    {
        return changed.wait_until(m_lock, due) == std::cv_status::timeout;
    }

private:
    std::unique_lock<std::mutex> m_lock;
};
