// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The camera's image buffers: size in pixels and depth.
struct ImageInfo
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bitsPerPixel = 0;
};
