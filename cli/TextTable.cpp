// SPDX-License-Identifier: MIT
#include "cli/TextTable.h"

#include <algorithm>

QString cli::tableText(const std::vector<QStringList>& rows)
{
    constexpr qsizetype Gap = 2;
    std::vector<qsizetype> widths;
    for (const QStringList& row : rows) {
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(row.size())));
        for (qsizetype column = 0; column < row.size(); ++column) {
            qsizetype& width = widths[static_cast<std::size_t>(column)];
            width = std::max(width, row[column].size());
        }
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line;
        for (qsizetype column = 0; column + 1 < row.size(); ++column) {
            line += row[column].leftJustified(widths[static_cast<std::size_t>(column)] + Gap);
        }
        lines.append(line + row.back());
    }
    return lines.join(u'\n');
}
