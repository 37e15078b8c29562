// SPDX-License-Identifier: MIT
// `imperx`: header lines that end in a comma, ":Table,", "-- Column(X),Row(Y)", and then "x,y" from
// 1, sorted by y, then x. A hot pixel map (.hpm) takes 4096 entries at most, a defect pixel map
// (.dpm) 1024, and older cameras take fewer.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>

#include <algorithm>
#include <tuple>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ImperxFormat)
};

constexpr std::size_t LongestHeaderLine = 256;
constexpr std::string_view TableLine = ":Table,";
constexpr std::string_view ColumnsLine = "-- Column(X),Row(Y)";
constexpr unsigned First = 1; ///< column and row
constexpr std::size_t MostHotPixels = 4096;
constexpr std::size_t MostDefectPixels = 1024;

QString headerLine()
{
    return Text::tr("a header line that ends in a comma, up to \":Table,\"");
}

/// Reads up to the columns' names.
void readHeader(PixelListInput& input)
{
    std::string_view line;
    bool inTable = false;
    input.setLongestLine(LongestHeaderLine);
    while (input.nextLine(line)) {
        if (inTable) {
            if (line != ColumnsLine) {
                input.refuse(QLatin1String(ColumnsLine.data(), ColumnsLine.size()));
            }
            return;
        }
        inTable = line == TableLine;
        if (!line.ends_with(',')) {
            input.refuse(headerLine());
        }
    }
    input.refuseAt(input.lineNumber() + 1, headerLine(), {});
}

void read(PixelListInput& input)
{
    readHeader(input);
    std::string_view line;
    while (input.nextLine(line)) {
        LineFields fields(line);
        if (fields.atEnd()) {
            continue;
        }
        unsigned x = 0;
        unsigned y = 0;
        constexpr unsigned Last = pixellists::GreatestCoordinate + First;
        if (fields.takeNumber(x, First, Last) && fields.take(',') &&
            fields.takeNumber(y, First, Last) && fields.atEnd()) {
            input.add({.x = static_cast<std::uint16_t>(x - First),
                       .y = static_cast<std::uint16_t>(y - First)});
        } else {
            input.refuse();
        }
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& options,
           PixelListContent& content)
{
    const bool defects = options.suffix == QLatin1String("dpm");
    const std::size_t most = defects ? MostDefectPixels : MostHotPixels;
    if (pixels.size() > most) {
        throw PixelListError((defects ? Text::tr("imperx: %1 entries, and a defect pixel map takes "
                                                 "%2 at most.")
                                      : Text::tr("imperx: %1 entries, and a hot pixel map takes "
                                                 "%2 at most."))
                                 .arg(pixels.size())
                                 .arg(most));
    }
    PixelList sorted(pixels.begin(), pixels.end());
    std::ranges::stable_sort(sorted, {},
                             [](const ListedPixel& pixel) { return std::tuple(pixel.y, pixel.x); });
    content.bytes += defects ? "-- Defect pixel map,\n" : "-- Hot pixel map,\n";
    content.bytes.append(TableLine.data(), TableLine.size()).append('\n');
    content.bytes.append(ColumnsLine.data(), ColumnsLine.size()).append('\n');
    for (const ListedPixel& pixel : sorted) {
        pixellists::appendNumber(content.bytes, pixel.x + First);
        content.bytes += ',';
        pixellists::appendNumber(content.bytes, pixel.y + First);
        content.bytes += '\n';
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat imperx()
{
    return {.name = QStringLiteral("imperx"),
            .suffixes = {QStringLiteral("hpm"), QStringLiteral("dpm")},
            .summary = Text::tr("hot and defect pixel maps of Imperx cameras"),
            .entry = Text::tr("x,y (numbers from 1 to 65536)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
