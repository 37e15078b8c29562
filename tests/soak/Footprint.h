// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// What this process holds at one moment.
struct Footprint
{
    int threads = 0;
    std::size_t residentBytes = 0;
    std::size_t heapBytes = 0; ///< in use; 0 under a sanitizer, whose allocator does not say

    /// Of the process, after the allocator has given back what is free. An event thread may outlive
    /// the closing of its camera by a moment: so this waits until the number of threads stays the
    /// same, and for a minute at most until it is down to @p expectedThreads, if that is given.
    static Footprint atRest(int expectedThreads = 0);

    /// Prints one line.
    void print(const char* moment) const;
};
