#pragma once

#include <cstddef>

/// What this process holds at one moment.
struct Footprint
{
    int threads = 0;
    std::size_t residentBytes = 0;
    std::size_t heapBytes = 0; ///< in use; 0 under a sanitizer, whose allocator does not say

    /// Of the process, after the allocator has given back what is free.
    static Footprint now();

    /// Prints one line.
    void print(const char* moment) const;
};
