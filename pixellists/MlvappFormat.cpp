// SPDX-License-Identifier: MIT
// `mlvapp`: "x y" on each line, separated by one blank, below an optional "#FPM CAMERA" whose
// number is hexadecimal. Any other comment, and any comma, makes MLV App read for ever.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(MlvappFormat)
};

constexpr std::string_view Head = "#FPM ";

bool isHead(std::string_view line)
{
    return line.starts_with(Head) && line.size() > Head.size() &&
           line.find_first_not_of("0123456789abcdefABCDEFxX", Head.size()) == line.npos;
}

void read(PixelListInput& input)
{
    std::string_view line;
    while (input.nextLine(line)) {
        if (line.empty() || (input.lineNumber() == 1 && isHead(line))) {
            continue;
        }
        LineFields fields(line);
        ListedPixel pixel;
        const bool oneBlank = line.front() != ' ' && std::ranges::count(line, ' ') == 1 &&
                              line.find('\t') == line.npos;
        if (oneBlank && fields.takePosition(pixel) && fields.atEnd()) {
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

PixelListFormat mlvapp()
{
    return {.name = QStringLiteral("mlvapp"),
            .suffixes = {QStringLiteral("bpm"), QStringLiteral("fpm")},
            .summary = Text::tr("bad and focus pixel maps of MLV App"),
            .entry = Text::tr("x and y with one blank between them (numbers from 0 to 65535)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
