// SPDX-License-Identifier: MIT
// `fixpix`: a bad pixel file of IRAF. "x y" is a pixel and "x1 x2 y1 y2" a rectangle, both from 1.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

#include <array>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FixpixFormat)
};

constexpr unsigned First = 1; ///< column and row

/// @return whether the line is an entry.
bool takeEntry(std::string_view line, PixelListInput& input)
{
    LineFields fields(line);
    std::array<unsigned, 4> numbers{};
    std::size_t count = 0;
    while (!fields.atEnd()) {
        if (count == numbers.size() ||
            !fields.takeNumber(numbers[count], First, pixellists::GreatestCoordinate + First)) {
            return false;
        }
        ++count;
    }
    const auto [a, b, c, d] = numbers;
    if (count == 2) {
        input.add({.x = static_cast<std::uint16_t>(a - First),
                   .y = static_cast<std::uint16_t>(b - First)});
        return true;
    }
    if (count < 4 || a > b || c > d) {
        return false;
    }
    input.addRectangle(a - First, b - First, c - First, d - First);
    return true;
}

void read(PixelListInput& input)
{
    std::string_view line;
    while (input.nextLine(line)) {
        LineFields fields(line);
        if (fields.atEnd() || fields.take('#')) {
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
        pixellists::appendNumber(content.bytes, pixel.x + First);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y + First);
        content.bytes += '\n';
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat fixpix()
{
    return {.name = QStringLiteral("fixpix"),
            .suffixes = {},
            .summary = Text::tr("bad pixel file of IRAF's fixpix"),
            .entry = Text::tr("x y or x1 x2 y1 y2 (numbers from 1 to 65536)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
