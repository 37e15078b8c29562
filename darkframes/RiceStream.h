// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace darkframes {

/// Whether a Rice-compressed tile is as long as the pixels that it stands for. CFITSIO looks for
/// the end of a code beyond the end of the tile otherwise.
///
/// The stream, as the FITS standard (4.0, section 10.4.1) describes it: the first pixel as it is;
/// then a block after the other, of each a number of 3, 4 or 5 bits (for pixels of 1, 2 or 4
/// bytes), which less one is the count of low bits of each difference. -1 stands for a block
/// without differences, the largest for differences as they are; otherwise each difference is a
/// number of zeros, a one and its low bits.
/// @param pixels that the tile has
/// @param pixelBytes 1, 2 or 4
/// @param blockPixels how many pixels a block has, at least 1
bool isWholeRiceStream(std::span<const std::uint8_t> packed, std::int64_t pixels, int pixelBytes,
                       std::int64_t blockPixels);

} // namespace darkframes
