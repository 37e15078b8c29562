// SPDX-License-Identifier: MIT
// `mask`: an image of the sensor's size, which is not 0 where a pixel is bad. Here are its bytes;
// image files are read and written by who has a library for them.

#include "pixellists/Mask.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

#include <algorithm>

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(MaskFormat)
};

namespace pixellists {
namespace formats {

PixelListFormat mask()
{
    return {.name = QStringLiteral("mask"),
            .suffixes = {QStringLiteral("png"), QStringLiteral("fits"), QStringLiteral("fit"),
                         QStringLiteral("fts")},
            .summary = Text::tr("a grey image (PNG; FITS to be read), not 0 where a pixel is bad"),
            .entry = {},
            .needsSize = true};
}

} // namespace formats

PixelList pixelsOfMask(const Mask& mask, std::optional<std::uint8_t> value)
{
    PixelList pixels;
    const char* byte = mask.pixels.constData();
    for (int y = 0; y < mask.size.height(); ++y) {
        for (int x = 0; x < mask.size.width(); ++x, ++byte) {
            const auto grey = static_cast<std::uint8_t>(*byte);
            if (value ? grey != *value : grey == 0) {
                continue;
            }
            if (pixels.size() == MostPixels) {
                throw PixelListError(
                    Text::tr("more than %1 pixels are bad in the mask.").arg(MostPixels));
            }
            pixels.push_back(
                {.x = static_cast<std::uint16_t>(x), .y = static_cast<std::uint16_t>(y)});
        }
    }
    return pixels;
}

MaskContent maskOf(std::span<const ListedPixel> pixels, const QSize& size, std::uint8_t value)
{
    if (size.isEmpty()) {
        throw PixelListError(Text::tr("mask: this format needs the sensor's size (--size)."));
    }
    if (qint64{size.width()} * size.height() > MostMaskBytes) {
        throw PixelListError(Text::tr("mask: an image has %1 pixels at most.").arg(MostMaskBytes));
    }
    MaskContent content;
    const PixelList inside = pixelsOnSensor(pixels, size, content.losses);
    countLosses(inside, formats::mask(), content.losses);
    content.mask = {size, QByteArray(qsizetype{size.width()} * size.height(), '\0')};
    for (const ListedPixel& pixel : inside) {
        char& byte = content.mask.pixels[qsizetype{pixel.y} * size.width() + pixel.x];
        content.written += byte == 0 ? 1 : 0;
        byte = static_cast<char>(value);
    }
    if (content.written < inside.size()) {
        content.losses.append(
            Text::tr("%1 listed more than once").arg(inside.size() - content.written));
    }
    return content;
}

} // namespace pixellists
