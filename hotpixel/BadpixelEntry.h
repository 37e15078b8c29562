// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The class value of a hotpixel entry. The table shows other words for them (behaviour.md:
/// class-words): BadpixelListModel::data().
enum Pixelclass : std::uint8_t {
    FactoryPixel = 0, ///< from the camera's factory list
    UserPixel = 1,    ///< the only class that is written to the camera and to the list file
    IgnorePixel = 2   ///< and every greater value: only from a loaded list file
};

/// One hotpixel: its position in the sensor image, in pixels, and its class.
struct BadpixelEntry
{
    std::uint16_t x = 0;
    std::uint16_t y = 0;
    std::uint8_t pixelClass = UserPixel;

    friend bool operator==(const BadpixelEntry&, const BadpixelEntry&) = default;
};
