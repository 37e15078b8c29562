// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/EepromFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace simulator {

/// A camera's own correction: replaces each of the @p listed pixels by the rounded mean of its
/// neighbours of the same colour, left, right, above and below. Neighbours that are listed
/// themselves or lie outside the image are left out; a pixel without any other keeps its value, and
/// positions outside the image are passed over.
/// @param pixels @p height lines of @p width bytes, @p pitch bytes from line to line
/// @param bayer the next pixel of the same colour is two away instead of one
void correctPixels(std::uint8_t* pixels, std::size_t pitch, int width, int height, bool bayer,
                   const std::vector<EepromPosition>& listed);

} // namespace simulator
