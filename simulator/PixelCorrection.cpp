// SPDX-License-Identifier: MIT
#include "simulator/PixelCorrection.h"

#include <array>
#include <unordered_set>

namespace simulator {

void correctPixels(std::uint8_t* pixels, std::size_t pitch, int width, int height, bool bayer,
                   const std::vector<EepromPosition>& listed)
{
    const auto key = [](int x, int y) { return static_cast<std::uint32_t>(y << 16 | x); };
    std::unordered_set<std::uint32_t> keys;
    for (const EepromPosition& position : listed) {
        keys.insert(key(position.x, position.y));
    }

    const int distance = bayer ? 2 : 1;
    const std::array<std::array<int, 2>, 4> steps{
        {{-distance, 0}, {distance, 0}, {0, -distance}, {0, distance}}};
    for (const EepromPosition& position : listed) {
        if (position.x >= width || position.y >= height) {
            continue;
        }
        int sum = 0;
        int count = 0;
        for (const auto& [stepX, stepY] : steps) {
            const int x = position.x + stepX;
            const int y = position.y + stepY;
            if (x < 0 || y < 0 || x >= width || y >= height || keys.contains(key(x, y))) {
                continue;
            }
            sum += pixels[static_cast<std::size_t>(y) * pitch + static_cast<std::size_t>(x)];
            ++count;
        }
        if (count > 0) {
            pixels[position.y * pitch + position.x] =
                static_cast<std::uint8_t>((sum + count / 2) / count);
        }
    }
}

} // namespace simulator
