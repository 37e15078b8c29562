// SPDX-License-Identifier: MIT
#include "cli/FindingsReport.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <algorithm>

namespace cli {

QString BayerPlane::name() const
{
    static constexpr std::array Names{
        QT_TRANSLATE_NOOP("FindingsReport", "even columns, even rows"),
        QT_TRANSLATE_NOOP("FindingsReport", "even columns, odd rows"),
        QT_TRANSLATE_NOOP("FindingsReport", "odd columns, even rows"),
        QT_TRANSLATE_NOOP("FindingsReport", "odd columns, odd rows")};
    const std::size_t index = (oddColumns ? 2U : 0U) + (oddRows ? 1U : 0U);
    return QCoreApplication::translate("FindingsReport", Names[index]);
}

std::array<BayerPlane, 4> foundPerPlane(std::span<const BadpixelEntry> entries)
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

QString planeText(std::span<const BadpixelEntry> entries)
{
    constexpr qsizetype NameWidth = 26;
    constexpr int NumberWidth = 5;
    QStringList lines;
    for (const BayerPlane& plane : foundPerPlane(entries)) {
        lines.append(QStringLiteral("  %1%2")
                         .arg(plane.name().leftJustified(NameWidth))
                         .arg(plane.found, NumberWidth));
    }
    return lines.join(u'\n');
}

QJsonArray planeArray(std::span<const BadpixelEntry> entries)
{
    QJsonArray array;
    for (const BayerPlane& plane : foundPerPlane(entries)) {
        array.append(QJsonObject{{QStringLiteral("oddColumns"), plane.oddColumns},
                                 {QStringLiteral("oddRows"), plane.oddRows},
                                 {QStringLiteral("name"), plane.name()},
                                 {QStringLiteral("found"), static_cast<qint64>(plane.found)}});
    }
    return array;
}

} // namespace cli
