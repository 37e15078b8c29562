// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <thread>

/// Ends the process when its first thread gets nowhere: when it has slept and computed, together,
/// for 2 seconds (8 under the thread sanitizer) more than the longest wait that the program allows
/// itself. The time in which it is kept from a processor does not count.
class HangWatch
{
public:
    HangWatch();
    ~HangWatch();

    HangWatch(const HangWatch&) = delete;
    HangWatch& operator=(const HangWatch&) = delete;

    /// The watched thread has got somewhere: at @p step, which must live for ever.
    void proceed(const char* step);

private:
    void watch();

    std::atomic<const char*> m_step = "start";
    std::atomic<unsigned> m_progress = 0;
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};
