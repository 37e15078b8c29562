// SPDX-License-Identifier: MIT
#include "cli/EntryText.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <algorithm>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(EntryText)
};

constexpr qsizetype LineWidth = 79;
constexpr qsizetype Indent = 2;
constexpr qsizetype Gap = 2;

} // namespace

QString cli::entryColumns(std::span<const BadpixelEntry> entries)
{
    QStringList cells;
    qsizetype width = 0;
    for (const BadpixelEntry& entry : entries) {
        cells.append(QStringLiteral("(%1, %2)").arg(entry.x).arg(entry.y));
        width = std::max(width, cells.last().size());
    }
    const qsizetype perLine = std::max<qsizetype>(1, (LineWidth - Indent + Gap) / (width + Gap));

    QStringList lines;
    for (qsizetype first = 0; first < cells.size(); first += perLine) {
        QString line(Indent, u' ');
        for (const QString& cell : cells.mid(first, perLine)) {
            line += cell.leftJustified(width + Gap);
        }
        while (line.endsWith(u' ')) {
            line.chop(1);
        }
        lines.append(line);
    }
    return lines.join(u'\n');
}

QJsonArray cli::entryArray(std::span<const BadpixelEntry> entries)
{
    QJsonArray array;
    for (const BadpixelEntry& entry : entries) {
        array.append(QJsonArray{entry.x, entry.y});
    }
    return array;
}

QString cli::entryCount(std::size_t count)
{
    return count == 1 ? Text::tr("1 entry") : Text::tr("%1 entries").arg(count);
}

QString cli::sizeText(const QSize& size)
{
    return QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
}

const char* cli::BayerPlane::name() const
{
    static constexpr std::array Names{QT_TRANSLATE_NOOP("EntryText", "even columns, even rows"),
                                      QT_TRANSLATE_NOOP("EntryText", "even columns, odd rows"),
                                      QT_TRANSLATE_NOOP("EntryText", "odd columns, even rows"),
                                      QT_TRANSLATE_NOOP("EntryText", "odd columns, odd rows")};
    const std::size_t index = (oddColumns ? 2U : 0U) + (oddRows ? 1U : 0U);
    return Names[index];
}

QString cli::BayerPlane::title() const
{
    return Text::tr(name());
}

std::array<cli::BayerPlane, 4> cli::foundPerPlane(std::span<const BadpixelEntry> entries)
{
    std::array<BayerPlane, 4> planes{{{false, false}, {false, true}, {true, false}, {true, true}}};
    for (BayerPlane& plane : planes) {
        plane.found = static_cast<std::size_t>(
            std::ranges::count_if(entries, [&plane](const BadpixelEntry& entry) {
                return (entry.x % 2 != 0) == plane.oddColumns &&
                       (entry.y % 2 != 0) == plane.oddRows;
            }));
    }
    return planes;
}

QString cli::planeText(std::span<const BadpixelEntry> entries)
{
    constexpr qsizetype NameWidth = 26;
    constexpr int NumberWidth = 5;
    QStringList lines;
    for (const BayerPlane& plane : foundPerPlane(entries)) {
        lines.append(QStringLiteral("  %1%2")
                         .arg(plane.title().leftJustified(NameWidth))
                         .arg(plane.found, NumberWidth));
    }
    return lines.join(u'\n');
}

QJsonArray cli::planeArray(std::span<const BadpixelEntry> entries)
{
    QJsonArray array;
    for (const BayerPlane& plane : foundPerPlane(entries)) {
        array.append(QJsonObject{{QStringLiteral("oddColumns"), plane.oddColumns},
                                 {QStringLiteral("oddRows"), plane.oddRows},
                                 {QStringLiteral("name"), QLatin1String(plane.name())},
                                 {QStringLiteral("found"), static_cast<qint64>(plane.found)}});
    }
    return array;
}
