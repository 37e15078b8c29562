// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// What is wrong with a listed pixel, where a list says so.
enum class PixelDefect : std::uint8_t { Unknown, Hot, Cold };

/// Which list an entry is of, where a list says so.
enum class PixelListClass : std::uint8_t { None, Factory, User, Ignored };

/// One entry of a list of bad pixels: x then y, from 0, from the top left of the sensor.
struct ListedPixel
{
    std::uint16_t x = 0;
    std::uint16_t y = 0;
    PixelDefect defect = PixelDefect::Unknown;
    PixelListClass listClass = PixelListClass::None;
    std::optional<float> value = {}; ///< the pixel's own in dark frames, in grey levels

    friend bool operator==(const ListedPixel&, const ListedPixel&) = default;
};

/// A list of bad pixels in the order of its file, which may name a pixel more than once.
using PixelList = std::vector<ListedPixel>;

namespace pixellists {

/// No list has more entries.
constexpr std::size_t MostPixels = 16'000'000;

/// Coordinates have 16 bits.
constexpr unsigned GreatestCoordinate = 65535;

} // namespace pixellists
