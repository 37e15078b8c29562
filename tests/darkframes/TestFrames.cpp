// SPDX-License-Identifier: MIT
#include "tests/darkframes/TestFrames.h"

#include <algorithm>
#include <random>

QImage TestFrames::image(std::size_t frame) const
{
    QImage image(width, height,
                 bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    for (int y = 0; y < height; ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < width; ++x) {
            if (bits == 16) {
                reinterpret_cast<quint16*>(line)[x] = at(frame, x, y);
            } else {
                line[x] = static_cast<uchar>(at(frame, x, y));
            }
        }
    }
    return image;
}

QList<QImage> TestFrames::images() const
{
    QList<QImage> images;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        images.append(image(i));
    }
    return images;
}

DarkStack TestFrames::stack() const
{
    DarkStack stack({static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                     static_cast<std::uint32_t>(bits)});
    stack.add(images());
    return stack;
}

TestFrames TestFrames::of(int width, int height, int bits, int frames,
                          const std::function<int(int, int, int)>& value)
{
    TestFrames made{width, height, bits, {}};
    for (int frame = 0; frame < frames; ++frame) {
        std::vector<std::uint16_t> values;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                values.push_back(static_cast<std::uint16_t>(value(frame, x, y)));
            }
        }
        made.frames.push_back(std::move(values));
    }
    return made;
}

TestFrames TestFrames::random(int width, int height, int bits, int frames, unsigned seed)
{
    std::mt19937 numbers(seed);
    return of(width, height, bits, frames,
              [&](int, int, int) { return static_cast<int>(numbers() >> (32U - unsigned(bits))); });
}

TestFrames TestFrames::dark(int width, int height, int bits, int frames, unsigned seed)
{
    std::mt19937 numbers(seed);
    const int scale = bits == 16 ? 256 : 1;
    std::vector<int> offsets;
    for (int i = 0; i < width * height; ++i) {
        const bool hot = numbers() % 97 == 0;
        offsets.push_back(hot ? static_cast<int>(numbers() % 200U) * scale : 0);
    }
    return of(width, height, bits, frames, [&](int, int x, int y) {
        const int noise = static_cast<int>(numbers() % static_cast<unsigned>(5 * scale));
        const int value = 10 * scale + noise + (x % 7) * scale / 2 + y * scale / 40 +
                          offsets[static_cast<std::size_t>(y * width + x)];
        return std::min(value, (1 << bits) - 1);
    });
}
