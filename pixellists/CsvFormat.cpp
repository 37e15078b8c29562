// SPDX-License-Identifier: MIT
// `csv`: "x,y" on each line, with or without a header. A header may name the columns in any order,
// and one with the pixels' values.

#include "pixellists/LineFields.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QByteArrayView>
#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(CsvFormat)
};

constexpr std::size_t NoColumn = SIZE_MAX;

/// Which column holds what.
struct Columns
{
    std::size_t x = 0;
    std::size_t y = 1;
    std::size_t value = NoColumn;
    QStringList others; ///< the names of those that are kept out
};

std::string_view trimmed(std::string_view text)
{
    const std::string_view unwanted = " \t\"";
    const std::size_t first = text.find_first_not_of(unwanted);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}

void split(std::string_view line, std::vector<std::string_view>& fields)
{
    fields.clear();
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find(',', begin), line.size());
        fields.push_back(trimmed(line.substr(begin, end - begin)));
        begin = end + 1;
    }
}

bool beginsLikeANumber(std::string_view field)
{
    return !field.empty() && std::string_view("0123456789+-.").find(field[0]) != field.npos;
}

/// @return whether the names are those of a list.
bool readHeader(const std::vector<std::string_view>& names, Columns& columns)
{
    columns.x = columns.y = NoColumn;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QString name =
            QString::fromUtf8(names[i].data(), static_cast<qsizetype>(names[i].size()));
        const QString lower = name.toLower();
        const auto is = [&](const QStringList& known, std::size_t column) {
            return column == NoColumn && known.contains(lower);
        };
        if (is({QStringLiteral("x"), QStringLiteral("column")}, columns.x)) {
            columns.x = i;
        } else if (is({QStringLiteral("y"), QStringLiteral("row")}, columns.y)) {
            columns.y = i;
        } else if (is({QStringLiteral("value"), QStringLiteral("mean")}, columns.value)) {
            columns.value = i;
        } else {
            columns.others.append(name);
        }
    }
    return columns.x != NoColumn && columns.y != NoColumn;
}

bool takeCoordinate(std::string_view field, std::uint16_t& coordinate)
{
    LineFields fields(field);
    unsigned number = 0;
    if (!fields.takeNumber(number) || !fields.atEnd()) {
        return false;
    }
    coordinate = static_cast<std::uint16_t>(number);
    return true;
}

bool takePixel(const std::vector<std::string_view>& fields, const Columns& columns,
               ListedPixel& pixel)
{
    if (std::max(columns.x, columns.y) >= fields.size() ||
        !takeCoordinate(fields[columns.x], pixel.x) ||
        !takeCoordinate(fields[columns.y], pixel.y)) {
        return false;
    }
    if (columns.value < fields.size() && !fields[columns.value].empty()) {
        const std::string_view text = fields[columns.value];
        bool isNumber = false;
        pixel.value =
            QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).toFloat(&isNumber);
        return isNumber && std::isfinite(*pixel.value);
    }
    return true;
}

void read(PixelListInput& input)
{
    Columns columns;
    std::string_view line;
    std::vector<std::string_view> fields;
    std::size_t mostFields = 0;
    bool first = true;
    bool hasHeader = false;
    while (input.nextLine(line)) {
        split(line, fields);
        if (fields.size() == 1 && fields.front().empty()) {
            continue;
        }
        if (std::exchange(first, false) && !beginsLikeANumber(fields.front())) {
            hasHeader = true;
            if (!readHeader(fields, columns)) {
                input.refuse(Text::tr("a header with the columns x and y"));
                columns = {};
            }
            continue;
        }
        mostFields = std::max(mostFields, fields.size());
        ListedPixel pixel;
        if (takePixel(fields, columns, pixel)) {
            input.add(pixel);
        } else {
            input.refuse();
        }
    }
    if (!columns.others.isEmpty()) {
        input.note(Text::tr("columns left out: %1").arg(columns.others.join(QStringLiteral(", "))));
    } else if (!hasHeader && mostFields > 2) {
        input.note(Text::tr("columns left out: %1 behind x and y").arg(mostFields - 2));
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& /*options*/,
           PixelListContent& content)
{
    content.bytes += "x,y\n";
    for (const ListedPixel& pixel : pixels) {
        pixellists::appendNumber(content.bytes, pixel.x);
        content.bytes += ',';
        pixellists::appendNumber(content.bytes, pixel.y);
        content.bytes += '\n';
    }
}

} // namespace

namespace pixellists::formats {

PixelListFormat csv()
{
    return {.name = QStringLiteral("csv"),
            .suffixes = {QStringLiteral("csv")},
            .summary = Text::tr("a table with the columns x and y"),
            .entry = Text::tr("x,y (numbers from 0 to 65535)"),
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
