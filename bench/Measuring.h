// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

/// What the benchmarks measure with.
namespace bench {

/// Seconds that @p call takes; what it returns counts as used.
template <typename Call>
double secondsOf(Call&& call)
{
    const auto start = std::chrono::steady_clock::now();
    if constexpr (std::is_void_v<decltype(call())>) {
        call();
    } else {
        benchmark::DoNotOptimize(call());
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times of one kind, measured in turn with those of other kinds so that all see the same machine.
class Times
{
public:
    /// Measures once more and gives these seconds.
    template <typename Call>
    double add(Call&& call)
    {
        m_seconds.push_back(secondsOf(std::forward<Call>(call)));
        return m_seconds.back();
    }

    /// The median.
    [[nodiscard]] double seconds() const
    {
        std::vector<double> sorted = m_seconds;
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }

    [[nodiscard]] double milliseconds() const { return seconds() * 1e3; }

private:
    std::vector<double> m_seconds;
};

/// Does nothing but read each byte of @p frames once: words of 64 bits, of which the compiler makes
/// vector code.
inline std::uint64_t sumOfWords(const QList<QImage>& frames)
{
    std::uint64_t sum = 0;
    for (const QImage& frame : frames) {
        const auto* words = reinterpret_cast<const std::uint64_t*>(frame.constBits());
        const auto count = static_cast<std::size_t>(frame.sizeInBytes()) / sizeof *words;
        for (std::size_t i = 0; i < count; ++i) {
            sum += words[i];
        }
    }
    return sum;
}

} // namespace bench
