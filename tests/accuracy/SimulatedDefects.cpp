// SPDX-License-Identifier: MIT
#include "tests/accuracy/SimulatedDefects.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int One = 256; ///< a grey level

/// What the ordinary pixels of the four places in a pattern of 2 × 2 show.
constexpr std::array<int, 4> BaseLevels{10 * One + 70, 11 * One + 130, 9 * One + 200,
                                        12 * One + 20};

/// Noise is the sum of four numbers below 256, less its mean, times a factor.
constexpr int MostNoise = 4 * 255;

/// Brighter pixels are noisier.
int noiseFactor(int level256)
{
    return 2 + level256 / (32 * One);
}

int shown(int level256, int noise)
{
    const int value = level256 + noiseFactor(level256) * (2 * noise - MostNoise) / 2;
    return std::clamp((value + One / 2) >> 8, 0, 255);
}

/// How many of the 2³² draws give each noise.
std::array<double, MostNoise + 1> noiseWays()
{
    std::array<double, MostNoise + 1> ways{1};
    for (int draw = 0; draw < 4; ++draw) {
        std::array<double, MostNoise + 1> more{};
        for (std::size_t sum = 0; sum < ways.size(); ++sum) {
            for (std::size_t number = 0; number < 256 && sum + number < more.size(); ++number) {
                more[sum + number] += ways[sum];
            }
        }
        ways = more;
    }
    return ways;
}

SimulatedDefects::Truth truthOf(int level256)
{
    static const auto Ways = noiseWays();
    double mean = 0;
    double square = 0;
    for (std::size_t noise = 0; noise < Ways.size(); ++noise) {
        const double share = Ways[noise] / 4294967296.0;
        const double value = shown(level256, static_cast<int>(noise));
        mean += share * value;
        square += share * value * value;
    }
    return {mean, std::sqrt(std::max(0.0, square - mean * mean))};
}

} // namespace

SimulatedDefects::SimulatedDefects(std::uint32_t width, std::uint32_t height, std::uint32_t seed,
                                   std::uint32_t threshold)
    : m_width(width)
    , m_height(height)
    , m_state(0x9E3779B97F4A7C15U ^ seed)
{
    placeDefects(threshold);
    for (const auto& [position, level] : m_defects) {
        m_truths.try_emplace(level, truthOf(level));
    }
    for (const int level : BaseLevels) {
        m_truths.try_emplace(level, truthOf(level));
    }
}

std::uint32_t SimulatedDefects::random()
{
    // Marsaglia's xorshift, with the multiplication that Vigna adds.
    m_state ^= m_state >> 12U;
    m_state ^= m_state << 25U;
    m_state ^= m_state >> 27U;
    return static_cast<std::uint32_t>(m_state * 0x2545F4914F6CDD1DU >> 32U);
}

int SimulatedDefects::baseLevel(std::uint32_t x, std::uint32_t y) const
{
    return BaseLevels[2 * (x % 2) + y % 2];
}

void SimulatedDefects::setDefect(std::int64_t x, std::int64_t y, int level256)
{
    if (x >= 0 && y >= 0 && x < m_width && y < m_height) {
        m_defects[{static_cast<std::uint16_t>(y), static_cast<std::uint16_t>(x)}] = level256;
    }
}

void SimulatedDefects::placeDefects(std::uint32_t threshold)
{
    const auto limit = static_cast<int>(threshold + 10);
    const auto anywhere = [this](int level) {
        setDefect(random() % m_width, random() % m_height, level);
    };
    constexpr int EachKind = 400;
    for (int i = 0; i < EachKind; ++i) {
        // Near the limit, far above it up to saturation, and far below.
        anywhere((limit - 10) * One + static_cast<int>(random() % (25 * One)));
        anywhere(limit * One + static_cast<int>(random() % (260 * One)));
        anywhere(15 * One + static_cast<int>(random() % static_cast<unsigned>((limit - 20) * One)));
        // On whole levels, where cutting to whole numbers decides.
        anywhere((limit - 2 + static_cast<int>(random() % 6)) * One);
    }
    const int bright = (limit + 60) * One;
    const std::int64_t right = m_width - 1;
    const std::int64_t bottom = m_height - 1;
    constexpr std::int64_t Apart = 37;
    for (std::int64_t x = 0; x <= right; x += Apart) {
        setDefect(x, 0, bright);
        setDefect(x, bottom, bright);
        setDefect(x, bottom - 1, bright);
    }
    for (std::int64_t y = 0; y <= bottom; y += Apart) {
        setDefect(0, y, bright);
        setDefect(right, y, bright);
        setDefect(1, y, bright);
        setDefect(right - 1, y, bright);
    }
    for (const std::int64_t x : {std::int64_t{0}, right}) {
        setDefect(x, 0, bright);
        setDefect(x, bottom, bright);
    }
    constexpr int Clusters = 20;
    for (int i = 0; i < Clusters; ++i) {
        const std::int64_t x = random() % m_width;
        const std::int64_t y = random() % m_height;
        // Neighbours of any colour, or of the same colour only.
        const int step = 1 + i % 2;
        for (const int dx : {0, step, 2 * step}) {
            for (const int dy : {0, step}) {
                setDefect(x + dx, y + dy, bright);
            }
        }
    }
}

QImage SimulatedDefects::takeFrame()
{
    QImage frame(static_cast<int>(m_width), static_cast<int>(m_height), QImage::Format_Grayscale8);
    const auto numberOf = [](std::uint32_t draw) {
        return static_cast<int>((draw & 255U) + (draw >> 8U & 255U) + (draw >> 16U & 255U) +
                                (draw >> 24U));
    };
    for (std::uint32_t y = 0; y < m_height; ++y) {
        uchar* line = frame.scanLine(static_cast<int>(y));
        for (std::uint32_t x = 0; x < m_width; ++x) {
            line[x] = static_cast<uchar>(shown(baseLevel(x, y), numberOf(random())));
        }
    }
    for (const auto& [position, level] : m_defects) {
        frame.scanLine(position.first)[position.second] =
            static_cast<uchar>(shown(level, numberOf(random())));
    }
    return frame;
}

SimulatedDefects::Truth SimulatedDefects::truth(std::uint32_t x, std::uint32_t y) const
{
    const auto found =
        m_defects.find({static_cast<std::uint16_t>(y), static_cast<std::uint16_t>(x)});
    return m_truths.at(found == m_defects.end() ? baseLevel(x, y) : found->second);
}

std::vector<PixelPosition> SimulatedDefects::defects() const
{
    std::vector<PixelPosition> positions;
    for (const auto& [position, level] : m_defects) {
        positions.push_back({position.second, position.first});
    }
    return positions;
}
