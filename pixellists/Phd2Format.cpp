// SPDX-License-Identifier: MIT
// `phd2`: two lines of comment, then "x y" on each line. PHD2 takes the first two words of a line,
// and skips blank lines and those that begin with #.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Phd2Format)
};

void read(PixelListInput& input)
{
    std::string_view line;
    while (input.nextLine(line)) {
        LineFields fields(line);
        if (fields.atEnd() || LineFields(line).take('#')) {
            continue;
        }
        ListedPixel pixel;
        if (fields.takePosition(pixel) && !fields.take(',')) {
            input.add(pixel);
        } else {
            input.refuse();
        }
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    content.bytes += "# PHD2 Defect Map v1\n# Defect count: ";
    content.bytes += QByteArray::number(static_cast<qulonglong>(pixels.size()));
    content.bytes += '\n';
    for (const ListedPixel& pixel : pixels) {
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += '\n';
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat phd2()
{
    return {.name = QStringLiteral("phd2"),
            .suffixes = {},
            .summary = Text::tr("defect map of PHD2"),
            .entry = Text::tr("x and y with a blank between them (numbers from 0 to 65535)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
