// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/HotPixelSearch.h"

#include <QImage>

#include <array>
#include <cstdint>
#include <map>
#include <vector>

/// A covered sensor whose every pixel has a known mean and a known noise, so that what a search
/// finds can be held against the truth. It is made of whole numbers only: the same seed gives the
/// same frames on every machine.
class SimulatedDefects
{
public:
    static constexpr int Frames = 10;

    /// @param width, height 64 pixels at least
    SimulatedDefects(std::uint32_t width, std::uint32_t height, std::uint32_t seed,
                     std::uint32_t threshold);

    /// The next frame, Format_Grayscale8.
    QImage takeFrame();

    /// What a pixel shows in the mean of very many frames, and how far it scatters from frame to
    /// frame, in grey levels, rounding and saturation included.
    struct Truth
    {
        double mean = 0;
        double deviation = 0;
    };
    [[nodiscard]] Truth truth(std::uint32_t x, std::uint32_t y) const;

    /// The pixels that are not like most.
    [[nodiscard]] std::vector<PixelPosition> defects() const;

private:
    void placeDefects(std::uint32_t threshold);
    void setDefect(std::int64_t x, std::int64_t y, int level256);
    [[nodiscard]] int baseLevel(std::uint32_t x, std::uint32_t y) const;
    std::uint32_t random();

    std::uint32_t m_width;
    std::uint32_t m_height;
    std::uint64_t m_state;
    std::map<std::pair<std::uint16_t, std::uint16_t>, int> m_defects; ///< (y, x) to level × 256
    std::map<int, Truth> m_truths;                                    ///< by level × 256
};
