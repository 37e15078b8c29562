// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelListFormat.h"

#include <QByteArray>
#include <QPoint>
#include <QStringList>

#include <cstddef>
#include <span>

/// What a file of a list is to hold.
struct PixelListContent
{
    QByteArray bytes;
    std::size_t written = 0; ///< entries
    QStringList losses;      ///< in numbers, what of the list it does not hold
};

namespace pixellists {

/// Makes the content of a file of a list. Nothing is written, so what is lost can be said before.
///
/// Entries outside of @c size are left out, where that is told.
///
/// @param format not of images
/// @throws PixelListError when the format needs a size and there is none, or it can't hold so many
///         entries.
PixelListContent pixelListContent(std::span<const ListedPixel> pixels,
                                  const PixelListFormat& format,
                                  const PixelListWriteOptions& options);

/// Those of @p pixels that lie on a sensor of @p size, all of them where it is empty; how many do
/// not becomes a loss.
PixelList pixelsOnSensor(std::span<const ListedPixel> pixels, const QSize& size,
                         QStringList& losses);

/// Counts what an entry of @p format has no place for.
void countLosses(std::span<const ListedPixel> pixels, const PixelListFormat& format,
                 QStringList& losses);

/// Moves all pixels by @p offset; how many leave the range of coordinates, and so the list, becomes
/// a loss.
void movePixels(PixelList& pixels, const QPoint& offset, QStringList& losses);

/// Appends @p number in decimal.
void appendNumber(QByteArray& text, unsigned number);

} // namespace pixellists
