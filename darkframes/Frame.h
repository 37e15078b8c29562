// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ImageInfo.h"
#include "darkframes/Mosaic.h"

#include <QImage>

#include <optional>

/// One dark frame as it was read.
struct Frame
{
    /// Format_Grayscale8 or Format_Grayscale16, each pixel with exactly the value that was read.
    QImage image;
    /// The colour filters; nothing when the file does not say.
    std::optional<Mosaic> mosaic;
};

namespace darkframes {

/// Size and depth (8 or 16) of the image of a frame.
inline ImageInfo imageInfo(const QImage& image)
{
    return {static_cast<std::uint32_t>(image.width()), static_cast<std::uint32_t>(image.height()),
            image.format() == QImage::Format_Grayscale16 ? 16U : 8U};
}

} // namespace darkframes
