// SPDX-License-Identifier: MIT
// `rawtherapee`: "x y" on each line; what follows is ignored. A lone number on the first line is
// added to both coordinates of all. RawTherapee does not look whether a pixel lies in the image.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(RawtherapeeFormat)
};

/// The first line as a lone number, which may be negative.
std::optional<int> offsetIn(std::string_view line)
{
    LineFields fields(line);
    const bool negative = fields.take('-');
    unsigned number = 0;
    if (!fields.takeNumber(number) || !fields.atEnd()) {
        return std::nullopt;
    }
    return negative ? -static_cast<int>(number) : static_cast<int>(number);
}

bool addOffset(int offset, std::uint16_t& coordinate)
{
    const int sum = int{coordinate} + offset;
    coordinate = static_cast<std::uint16_t>(sum);
    return sum >= 0 && sum <= int{pixellists::GreatestCoordinate};
}

void read(PixelListInput& input)
{
    int offset = 0;
    std::string_view line;
    while (input.nextLine(line)) {
        if (LineFields(line).atEnd()) {
            continue;
        }
        if (input.lineNumber() == 1) {
            if (const std::optional<int> lone = offsetIn(line)) {
                offset = *lone;
                continue;
            }
        }
        // With a comma RawTherapee reads no second number, and on the first line an offset.
        LineFields fields(line);
        ListedPixel pixel;
        if (fields.takePosition(pixel) && addOffset(offset, pixel.x) &&
            addOffset(offset, pixel.y)) {
            input.add(pixel);
        } else {
            input.refuse();
        }
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    for (const ListedPixel& pixel : pixels) {
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += '\n';
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat rawtherapee()
{
    return {.name = QStringLiteral("rawtherapee"),
            .suffixes = {QStringLiteral("badpixels")},
            .summary = Text::tr(".badpixels of RawTherapee"),
            .entry = Text::tr("x and y with a blank between them (numbers from 0 to 65535)"),
            .needsSize = true,
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
