// SPDX-License-Identifier: MIT
#include "pixellists/PixelListWriting.h"

#include "pixellists/PixelListError.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <utility>

namespace pixellists {
namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(PixelListWriting)
};

QString sizeText(const QSize& size)
{
    return QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
}

/// Adds one of the two texts, unless there are none to tell of.
void tell(std::ptrdiff_t count, const QString& one, const QString& many, QStringList& losses)
{
    if (count > 0) {
        losses.append(count == 1 ? one : many.arg(count));
    }
}

} // namespace

PixelListContent pixelListContent(std::span<const ListedPixel> pixels,
                                  const PixelListFormat& format,
                                  const PixelListWriteOptions& options)
{
    if (format.needsSize && options.size.isEmpty()) {
        throw PixelListError(Text::tr("%1: this format needs the sensor's size (--size), since "
                                      "nothing outside of it may be written.")
                                 .arg(format.name));
    }
    PixelListContent content;
    const PixelList inside = pixelsOnSensor(pixels, options.size, content.losses);
    content.written = inside.size();
    countLosses(inside, format, content.losses);
    format.write(inside, options, content);
    return content;
}

PixelList pixelsOnSensor(std::span<const ListedPixel> pixels, const QSize& size,
                         QStringList& losses)
{
    PixelList inside;
    inside.reserve(pixels.size());
    std::ranges::copy_if(pixels, std::back_inserter(inside), [&size](const ListedPixel& pixel) {
        return size.isEmpty() || (pixel.x < size.width() && pixel.y < size.height());
    });
    if (inside.size() < pixels.size()) {
        losses.append(Text::tr("%1 outside %2 left out")
                          .arg(QString::number(pixels.size() - inside.size()), sizeText(size)));
    }
    return inside;
}

void countLosses(std::span<const ListedPixel> pixels, const PixelListFormat& format,
                 QStringList& losses)
{
    if (!format.keepsClasses) {
        tell(std::ranges::count(pixels, PixelListClass::Factory, &ListedPixel::listClass),
             Text::tr("1 factory entry has no class in this format"),
             Text::tr("%1 factory entries have no class in this format"), losses);
        tell(std::ranges::count(pixels, PixelListClass::Ignored, &ListedPixel::listClass),
             Text::tr("1 ignored entry has no class in this format"),
             Text::tr("%1 ignored entries have no class in this format"), losses);
    }
    if (!format.keepsDefects) {
        tell(std::ranges::count(pixels, PixelDefect::Cold, &ListedPixel::defect),
             Text::tr("1 cold pixel can't be told from hot ones in this format"),
             Text::tr("%1 cold pixels can't be told from hot ones in this format"), losses);
    }
    if (!format.keepsValues) {
        tell(std::ranges::count_if(
                 pixels, [](const ListedPixel& pixel) { return pixel.value.has_value(); }),
             Text::tr("1 value has no place in this format"),
             Text::tr("%1 values have no place in this format"), losses);
    }
}

void movePixels(PixelList& pixels, const QPoint& offset, QStringList& losses)
{
    const auto leaves = [](qint64 coordinate) {
        return coordinate < 0 || coordinate > qint64{GreatestCoordinate};
    };
    const std::size_t before = pixels.size();
    PixelList moved;
    moved.reserve(before);
    for (ListedPixel pixel : pixels) {
        const qint64 x = qint64{pixel.x} + offset.x();
        const qint64 y = qint64{pixel.y} + offset.y();
        if (leaves(x) || leaves(y)) {
            continue;
        }
        pixel.x = static_cast<std::uint16_t>(x);
        pixel.y = static_cast<std::uint16_t>(y);
        moved.push_back(pixel);
    }
    pixels = std::move(moved);
    const std::size_t left = before - pixels.size();
    if (left > 0) {
        losses.append(Text::tr("%1 outside the sensor after the offset left out").arg(left));
    }
}

void appendNumber(QByteArray& text, unsigned number)
{
    std::array<char, 10> digits{};
    const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    text.append(digits.data(), end - digits.data());
}

} // namespace pixellists
