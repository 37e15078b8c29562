// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>

namespace view {

/// Whether a picture of @p size can be written into the memory of @p image without a copy of it.
[[nodiscard]] bool isReusable(const QImage& image, const QSize& size);

/// What QImage::convertToFormat() gives for QImage::Format_RGB32, never sharing memory with @p
/// image, and in the memory of @p memory where that fits: most of the time of a large frame would
/// go into fetching new memory. @p memory is null afterwards. Null for a null image and where there
/// is no memory.
[[nodiscard]] QImage toRgb32(const QImage& image, QImage& memory);

} // namespace view
