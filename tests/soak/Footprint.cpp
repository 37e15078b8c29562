#include "tests/soak/Footprint.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Sanitized = true;
#else
constexpr bool Sanitized = false;
#endif

} // namespace

Footprint Footprint::now()
{
    Footprint footprint;
    if (!Sanitized) {
        malloc_trim(0);
        footprint.heapBytes = mallinfo2().uordblks;
    }
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    footprint.threads = static_cast<int>(std::distance(begin(tasks), end(tasks)));
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
