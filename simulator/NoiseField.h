// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace simulator {

/// Scrambles @p value: the finaliser of SplitMix64 (Steele, Lea and Flood, "Fast splittable
/// pseudorandom number generators", OOPSLA 2014). Neighbouring values give unrelated results.
[[nodiscard]] std::uint64_t scramble(std::uint64_t value);

/// A repeatable sequence of 64-bit random numbers that begins at @p seed.
class RandomSequence
{
public:
    explicit RandomSequence(std::uint64_t seed)
        : m_state(seed)
    {}

    std::uint64_t next();

    /// A whole number from 0 to @p bound - 1.
    int below(int bound);

    /// A number from 0 (included) to 1 (not included).
    double uniform();

private:
    std::uint64_t m_state;
};

} // namespace simulator

/// Gaussian noise that is drawn once and then read from any place: a frame takes each of its rows
/// from a place of its own. Immutable, any thread.
class NoiseField
{
public:
    static constexpr std::size_t Size = std::size_t{1} << 19; ///< different places to read from
    static constexpr std::size_t LongestRow = 16384;          ///< values readable from each place
    static constexpr int UnitBits = 12;
    static constexpr int Unit = 1 << UnitBits; ///< the value that stands for one standard deviation

    /// The one field of the process; made at the first call.
    static const NoiseField& instance();

    /// Size + LongestRow values of mean 0 and standard deviation Unit.
    [[nodiscard]] const std::int16_t* values() const { return m_values.data(); }

private:
    NoiseField();

    std::vector<std::int16_t> m_values;
};
