// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelList.h"

#include <QByteArray>
#include <QSize>
#include <QStringList>

#include <optional>
#include <span>

/// A grey image that says of each pixel of a sensor whether it is bad: not 0.
struct Mask
{
    QSize size;
    QByteArray pixels; ///< a byte each, row by row, without anything between rows
};

/// What of a list is in a mask.
struct MaskContent
{
    Mask mask;
    std::size_t written = 0; ///< bad pixels
    QStringList losses;      ///< in numbers, what of the list it does not hold
};

namespace pixellists {

/// What a bad pixel has unless told otherwise.
constexpr std::uint8_t BadInMask = 255;

/// No mask that is written has more.
constexpr std::int64_t MostMaskBytes = std::int64_t{1} << 28;

/// The bad pixels of @p mask, row by row.
/// @param value only pixels that have it are bad
/// @throws PixelListError for more than MostPixels of them
PixelList pixelsOfMask(const Mask& mask, std::optional<std::uint8_t> value = std::nullopt);

/// The mask of @p pixels. Entries outside of @p size are left out.
/// @param value what bad pixels have, not 0
/// @throws PixelListError when @p size is empty, or has more than MostMaskBytes
MaskContent maskOf(std::span<const ListedPixel> pixels, const QSize& size,
                   std::uint8_t value = BadInMask);

} // namespace pixellists
