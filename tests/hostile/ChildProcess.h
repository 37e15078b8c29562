// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace hostile {

/// What a piece of work did in a process of its own.
struct ChildReport
{
    std::string text;          ///< what the work returned, or the text of what it threw
    std::int64_t grownKiB = 0; ///< greatest resident memory meanwhile, less that at the beginning
    bool ended = false;        ///< whether the process came to its end
};

/// Runs @p work in a fork of this process.
ChildReport runInChild(const std::function<std::string()>& work);

/// How much more memory the sanitizers take: they keep what is freed for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::int64_t SanitizerKiB = 384 * 1024;
#else
constexpr std::int64_t SanitizerKiB = 0;
#endif

} // namespace hostile
