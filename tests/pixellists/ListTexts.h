// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

/// Lists as texts, in formats that are called by their names.

/// What the format makes of a file "LIST" with this text.
PixelListReading readText(const char* format, const QByteArray& text,
                          const PixelListReadOptions& options = {});

/// How it refuses the text; empty when it does not.
QString refusal(const char* format, const QByteArray& text,
                const PixelListReadOptions& options = {});

/// What the format makes of a list.
PixelListContent contentOf(const char* format, const PixelList& pixels,
                           const PixelListWriteOptions& options = {});

/// The pixels at these places, about which nothing else is known.
PixelList pixelsAt(std::initializer_list<std::pair<int, int>> places);

/// @p count pixels at random places on a sensor of @p size, some of them more than once, with what
/// a format keeps of them.
PixelList randomPixels(std::uint32_t seed, std::size_t count, const QSize& size,
                       const PixelListFormat& format);

/// For messages of tests.
void PrintTo(const ListedPixel& pixel, std::ostream* stream);
