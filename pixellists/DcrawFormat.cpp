// SPDX-License-Identifier: MIT
// `dcraw`: "x y time" on each line, where # begins a comment anywhere. dcraw and LibRaw read lines
// of 127 bytes at most and skip silently what is no entry. The time, in seconds since 1970, is when
// the pixel died; 0 is always.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(DcrawFormat)
};

constexpr std::size_t LongestLine = 127;

void read(PixelListInput& input)
{
    std::size_t withTime = 0;
    std::string_view line;
    input.setLongestLine(LongestLine);
    while (input.nextLine(line)) {
        LineFields fields(line.substr(0, line.find('#')));
        if (fields.atEnd()) {
            continue;
        }
        ListedPixel pixel;
        unsigned time = 0;
        if (fields.takePosition(pixel) && fields.takeNumber(time, 0, INT32_MAX) &&
            !fields.take(',')) {
            withTime += time > 0 ? 1 : 0;
            input.add(pixel);
        } else {
            input.refuse();
        }
    }
    if (withTime > 0) {
        input.note(withTime == 1
                       ? Text::tr("1 entry has a time, which is left out")
                       : Text::tr("%1 entries have a time, which is left out").arg(withTime));
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    for (const ListedPixel& pixel : pixels) {
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += " 0\n";
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat dcraw()
{
    return {.name = QStringLiteral("dcraw"),
            .suffixes = {QStringLiteral("badpixels")},
            .summary = Text::tr(".badpixels of dcraw and LibRaw"),
            .entry = Text::tr("x, y and a time (numbers)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
