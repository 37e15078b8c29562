// SPDX-License-Identifier: MIT
// `siril`: "P x y H" is a hot pixel and "P x y C" a cold one, "L y 0" a row and "C x 0" a column. A
// missing letter is hot, any other one cold. # begins a comment in the first column only. Siril
// does not look whether a pixel lies in the image.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SirilFormat)
};

bool isLetter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool takeDefect(LineFields& fields, PixelDefect& defect)
{
    const std::string_view word = fields.takeWord();
    defect = word.empty() || word.front() == 'H' ? PixelDefect::Hot : PixelDefect::Cold;
    return word.empty() || isLetter(word.front());
}

/// @return whether the line is an entry.
bool takeEntry(std::string_view line, PixelListInput& input)
{
    const char kind = line.front();
    LineFields fields(line.substr(1));
    if (line.size() < 2 || (line[1] != ' ' && line[1] != '\t')) {
        return false;
    }
    if (kind == 'P') {
        ListedPixel pixel;
        if (!fields.takePosition(pixel) || !takeDefect(fields, pixel.defect)) {
            return false;
        }
        input.add(pixel);
        return true;
    }
    unsigned number = 0;
    if ((kind != 'L' && kind != 'C') || !fields.takeNumber(number) || fields.take(',')) {
        return false;
    }
    if (kind == 'L') {
        input.addRow(number);
    } else {
        input.addColumn(number);
    }
    return true;
}

void read(PixelListInput& input)
{
    std::string_view line;
    while (input.nextLine(line)) {
        if (LineFields(line).atEnd() || line.front() == '#') {
            continue;
        }
        if (!takeEntry(line, input)) {
            input.refuse();
        }
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    for (const ListedPixel& pixel : pixels) {
        content.bytes += "P ";
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += pixel.defect == PixelDefect::Cold ? " C\n" : " H\n";
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat siril()
{
    return {.name = QStringLiteral("siril"),
            .suffixes = {QStringLiteral("lst")},
            .summary = Text::tr("cosmetic correction of Siril"),
            .entry = Text::tr("P x y H, P x y C, L y 0 or C x 0 (numbers from 0 to 65535)"),
            .keepsDefects = true,
            .needsSize = true,
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
