// SPDX-License-Identifier: MIT
#include "darkframes/LargeArray.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

constexpr std::size_t LargePage = std::size_t{2} << 20U;

bool isLarge(std::size_t bytes)
{
    return bytes >= 2 * LargePage;
}

} // namespace

void* darkframes::allocateLarge(std::size_t bytes)
{
    if (!isLarge(bytes)) {
        return ::operator new(bytes);
    }
    void* const memory = ::operator new (bytes, std::align_val_t{LargePage});
#ifdef __linux__
    // Where it is refused, the memory is as good, only slower.
    madvise(memory, bytes, MADV_HUGEPAGE);
#endif
    return memory;
}

void darkframes::freeLarge(void* memory, std::size_t bytes) noexcept
{
    if (isLarge(bytes)) {
        ::operator delete (memory, std::align_val_t{LargePage});
    } else {
        ::operator delete(memory);
    }
}
