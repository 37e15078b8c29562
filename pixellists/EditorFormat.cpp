// SPDX-License-Identifier: MIT
// `editor`: this program's own list files, "x y class" on each line.

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
    Q_DECLARE_TR_FUNCTIONS(EditorFormat)
};

#ifdef Q_OS_WIN
constexpr auto LineEnd = " 1\r\n";
#else
constexpr auto LineEnd = " 1\n";
#endif

PixelListClass classOf(unsigned number)
{
    switch (number) {
    case 0:
        return PixelListClass::Factory;
    case 1:
        return PixelListClass::User;
    default:
        return PixelListClass::Ignored;
    }
}

/// The editor itself takes 012 for the octal 10.
bool hasLeadingZero(std::string_view word)
{
    return word.size() > 1 && word.front() == '0';
}

void read(PixelListInput& input)
{
    std::string_view line;
    while (input.nextLine(line)) {
        LineFields words(line);
        LineFields fields(line);
        ListedPixel pixel;
        unsigned pixelClass = 0;
        bool octal = false;
        for (int i = 0; i < 3; ++i) {
            octal = hasLeadingZero(words.takeWord()) || octal;
        }
        if (octal || !fields.takePosition(pixel) || !fields.takeNumber(pixelClass, 0, UINT8_MAX) ||
            fields.take(',')) {
            input.refuse();
            continue;
        }
        pixel.listClass = classOf(pixelClass);
        input.add(pixel);
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    std::size_t others = 0;
    for (const ListedPixel& pixel : pixels) {
        if (pixel.listClass == PixelListClass::Factory ||
            pixel.listClass == PixelListClass::Ignored) {
            ++others;
            continue;
        }
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ' ';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += LineEnd;
    }
    content.written -= others;
    if (others > 0) {
        content.losses.append(
            (others == 1 ? Text::tr("%1 factory or ignored entry left out, since list files hold "
                                    "user entries only")
                         : Text::tr("%1 factory and ignored entries left out, since list files "
                                    "hold user entries only"))
                .arg(others));
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat editor()
{
    return {.name = QStringLiteral("editor"),
            .suffixes = {QStringLiteral("txt")},
            .summary = Text::tr("the list files of this program"),
            .entry = Text::tr("x, y and a class (numbers without leading zeros)"),
            .keepsClasses = true,
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
