// SPDX-License-Identifier: MIT
#include "cli/EntryText.h"

#include "support/Utf8Locale.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

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
    return count == 1 ? QCoreApplication::translate("EntryText", "1 entry")
                      : QCoreApplication::translate("EntryText", "%1 entries").arg(count);
}

QString cli::sizeText(const QSize& size)
{
    return QStringLiteral("%1 %2 %3")
        .arg(size.width())
        .arg(support::environmentShowsUtf8() ? QChar(u'×') : QChar(u'x'))
        .arg(size.height());
}
