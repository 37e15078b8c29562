// SPDX-License-Identifier: MIT
#include "cli/ListChange.h"

#include "cli/EntryText.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>
#include <utility>

namespace {

/// Of a longer list nobody reads more before a question.
constexpr std::size_t ShownEntries = 48;

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ListChange)
};

using Pixels = std::set<std::pair<std::uint16_t, std::uint16_t>>;

Pixels pixelsOf(std::span<const BadpixelEntry> entries)
{
    Pixels pixels;
    for (const BadpixelEntry& entry : entries) {
        pixels.insert({entry.x, entry.y});
    }
    return pixels;
}

/// Those of @p entries that @p others do not hold, each once.
std::vector<BadpixelEntry> missingIn(std::span<const BadpixelEntry> others,
                                     std::span<const BadpixelEntry> entries)
{
    Pixels known = pixelsOf(others);
    std::vector<BadpixelEntry> missing;
    for (const BadpixelEntry& entry : entries) {
        if (known.insert({entry.x, entry.y}).second) {
            missing.push_back(entry);
        }
    }
    return missing;
}

QStringList listLines(const QString& title, const std::vector<BadpixelEntry>& entries)
{
    QStringList lines{title.arg(cli::entryCount(entries.size()))};
    if (entries.empty()) {
        return lines;
    }
    const std::size_t shown = std::min(entries.size(), ShownEntries);
    lines += cli::entryColumns(std::span(entries).first(shown)).split(u'\n');
    if (shown < entries.size()) {
        lines.append(Text::tr("  and %1 more").arg(entries.size() - shown));
    }
    return lines;
}

} // namespace

namespace cli {

NewList withoutRepetitions(std::span<const BadpixelEntry> entries,
                           std::span<const BadpixelEntry> factory)
{
    const Pixels inFactoryList = pixelsOf(factory);
    Pixels taken;
    NewList list;
    for (const BadpixelEntry& entry : entries) {
        if (inFactoryList.contains({entry.x, entry.y})) {
            ++list.inFactoryList;
        } else if (!taken.insert({entry.x, entry.y}).second) {
            ++list.duplicates;
        } else {
            list.entries.push_back(entry);
        }
    }
    return list;
}

ListChange::ListChange(std::span<const BadpixelEntry> before, std::span<const BadpixelEntry> after)
    : added(missingIn(before, after))
    , removed(missingIn(after, before))
{}

QString ListChange::summary() const
{
    return isEmpty() ? Text::tr("the same")
                     : Text::tr("%1 added, %2 removed").arg(added.size()).arg(removed.size());
}

QStringList changeLines(const ListChange& change, const NewList& list)
{
    QStringList lines;
    if (list.duplicates > 0) {
        lines.append(Text::tr("Left out, since the list has them twice: %1")
                         .arg(entryCount(static_cast<std::size_t>(list.duplicates))));
    }
    if (list.inFactoryList > 0) {
        lines.append(Text::tr("Left out, since the factory list has them: %1")
                         .arg(entryCount(static_cast<std::size_t>(list.inFactoryList))));
    }
    if (change.isEmpty()) {
        lines.append(Text::tr("No pixel is added or removed."));
        return lines;
    }
    lines += listLines(Text::tr("Added: %1"), change.added);
    lines += listLines(Text::tr("Removed: %1"), change.removed);
    return lines;
}

QJsonObject changeObject(const ListChange& change, const NewList& list)
{
    return {{QStringLiteral("added"), entryArray(change.added)},
            {QStringLiteral("removed"), entryArray(change.removed)},
            {QStringLiteral("duplicates"), list.duplicates},
            {QStringLiteral("inFactoryList"), list.inFactoryList}};
}

} // namespace cli
