// SPDX-License-Identifier: MIT
#include "tests/soak/Footprint.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <thread>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Sanitized = true;
#else
constexpr bool Sanitized = false;
#endif

int threadCount()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

} // namespace

Footprint Footprint::atRest(int expectedThreads)
{
    constexpr int TickMsec = 10;
    constexpr int QuietMsec =
        1500; // three times as long as an event thread takes to notice its end
    constexpr int PatienceMsec = 60'000;
    Footprint footprint;
    footprint.threads = threadCount();
    int quietMsec = 0;
    for (int msec = 0; msec < PatienceMsec; msec += TickMsec) {
        if (quietMsec >= QuietMsec &&
            (expectedThreads == 0 || footprint.threads <= expectedThreads)) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(TickMsec));
        const int threads = threadCount();
        quietMsec = threads == footprint.threads ? quietMsec + TickMsec : 0;
        footprint.threads = threads;
    }
    if (!Sanitized) {
        malloc_trim(0);
        footprint.heapBytes = mallinfo2().uordblks;
    }
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    footprint.residentBytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return footprint;
}

void Footprint::print(const char* moment) const
{
    std::printf("%s: %d threads, %zu KiB resident, %zu KiB of the heap in use\n", moment, threads,
                residentBytes / 1024, heapBytes / 1024);
    std::fflush(stdout);
}
