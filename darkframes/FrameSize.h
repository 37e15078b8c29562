// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

/// What a file says about its size is checked against the bytes that it has before memory is taken
/// for it.
namespace darkframes {

/// Columns and rows of lists have 16 bits.
constexpr std::uint64_t MostColumns = 65536;
constexpr std::uint64_t MostPixels = std::uint64_t{1} << 28U;

/// No byte of a deflate stream stands for more bytes than this.
constexpr std::uint64_t DeflateRatio = 1032;
/// The same of the other compressions, on the safe side of all of them.
constexpr std::uint64_t CompressionRatio = 4096;

/// @param width, height as the file says; any value
/// @param bytesPerPixel of the image in memory or in the file, whichever is less
/// @param fileBytes how many bytes of the file may belong to the image
/// @param ratio how many bytes of an image one byte of the file may stand for; 1 without
/// compression
/// @throws FrameError "FILE: says that it has %1 × %2 pixels" and why that can't be
void checkClaimedSize(const QString& fileName, std::int64_t width, std::int64_t height,
                      std::uint64_t bytesPerPixel, std::uint64_t fileBytes, std::uint64_t ratio);

} // namespace darkframes
