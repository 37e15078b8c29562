// SPDX-License-Identifier: MIT
#include "simulator/NoiseField.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace simulator {

std::uint64_t scramble(std::uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31);
}

std::uint64_t RandomSequence::next()
{
    m_state += 0x9e3779b97f4a7c15U;
    return scramble(m_state);
}

int RandomSequence::below(int bound)
{
    return static_cast<int>(next() % static_cast<std::uint64_t>(bound));
}

double RandomSequence::uniform()
{
    return static_cast<double>(next() >> 11) * 0x1p-53;
}

} // namespace simulator

const NoiseField& NoiseField::instance()
{
    static const NoiseField field;
    return field;
}

NoiseField::NoiseField()
    : m_values(Size + LongestRow)
{
    // The transform of Box and Muller, "A note on the generation of random normal deviates",
    // Annals of Mathematical Statistics 29 (1958): two independent deviates from two uniform ones.
    simulator::RandomSequence random(0x566f726e);
    const double Widest = 7.9;
    const auto value = [=](double deviate) {
        return static_cast<std::int16_t>(
            std::lround(std::clamp(deviate, -Widest, Widest) * double{Unit}));
    };
    for (std::size_t i = 0; i < Size; i += 2) {
        const double radius = std::sqrt(-2.0 * std::log(1.0 - random.uniform()));
        const double angle = 2.0 * std::numbers::pi * random.uniform();
        m_values[i] = value(radius * std::cos(angle));
        m_values[i + 1] = value(radius * std::sin(angle));
    }
    std::copy_n(m_values.begin(), LongestRow, m_values.begin() + Size);
}
