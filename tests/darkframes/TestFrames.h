// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/DarkStack.h"

#include <QImage>

#include <cstdint>
#include <functional>
#include <vector>

/// Frames as plain numbers, for which tests work out what must come.
struct TestFrames
{
    int width = 0;
    int height = 0;
    int bits = 8;
    std::vector<std::vector<std::uint16_t>> frames; ///< row by row

    [[nodiscard]] std::uint16_t at(std::size_t frame, int x, int y) const
    {
        return frames[frame][static_cast<std::size_t>(y * width + x)];
    }
    [[nodiscard]] QImage image(std::size_t frame) const;
    [[nodiscard]] QList<QImage> images() const;
    /// All of them, added at once.
    [[nodiscard]] DarkStack stack() const;

    /// Each value as @p value(frame, x, y) says.
    static TestFrames of(int width, int height, int bits, int frames,
                         const std::function<int(int, int, int)>& value);
    /// Any values that the depth allows, the same for the same seed.
    static TestFrames random(int width, int height, int bits, int frames, unsigned seed);
    /// Dark frames with noise, gradients and hot pixels, the same for the same seed.
    static TestFrames dark(int width, int height, int bits, int frames, unsigned seed);
};
