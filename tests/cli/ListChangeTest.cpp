// SPDX-License-Identifier: MIT
#include "cli/ListChange.h"

#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

using Entries = std::vector<BadpixelEntry>;

} // namespace

TEST(NewList, HasEachPixelOnceWhereItComesFirst)
{
    const cli::NewList list =
        cli::withoutRepetitions(Entries{{5, 5}, {1, 2}, {5, 5}, {2, 1}, {5, 5}}, Entries{});
    EXPECT_EQ(list.entries, (Entries{{5, 5}, {1, 2}, {2, 1}}));
    EXPECT_EQ(list.duplicates, 2);
    EXPECT_EQ(list.inFactoryList, 0);
}

// (256, 1) and (1, 256), (0, 1) and (1, 0) are pixels of their own.
TEST(NewList, MixesUpNoCoordinates)
{
    const Entries entries{{256, 1}, {1, 256}, {0, 1}, {1, 0}};
    EXPECT_EQ(cli::withoutRepetitions(entries, Entries{{1, 1}}).entries, entries);
}

TEST(NewList, LeavesOutWhatTheFactoryListHas)
{
    const cli::NewList list = cli::withoutRepetitions(
        Entries{{1, 1}, {2, 2}, {1, 1}}, Entries{{1, 1, FactoryPixel}, {9, 9, FactoryPixel}});
    EXPECT_EQ(list.entries, (Entries{{2, 2}}));
    EXPECT_EQ(list.duplicates, 0);
    EXPECT_EQ(list.inFactoryList, 2);
}

TEST(ListChange, IsWhatOnlyOneOfTheListsHolds)
{
    const cli::ListChange change(Entries{{1, 1}, {2, 2}, {3, 3}, {3, 3}},
                                 Entries{{4, 4}, {2, 2}, {5, 5}, {4, 4}});
    EXPECT_EQ(change.added, (Entries{{4, 4}, {5, 5}}));
    EXPECT_EQ(change.removed, (Entries{{1, 1}, {3, 3}}));
    EXPECT_EQ(change.summary(), QStringLiteral("2 added, 2 removed"));
}

TEST(ListChange, IsNoneForAnotherOrder)
{
    const cli::ListChange change(Entries{{1, 1}, {2, 2}}, Entries{{2, 2}, {1, 1}, {1, 1}});
    EXPECT_TRUE(change.isEmpty());
    EXPECT_EQ(change.summary(), QStringLiteral("the same"));
    EXPECT_EQ(cli::changeLines(change, {}),
              QStringList(QStringLiteral("No pixel is added or removed.")));
}

TEST(ListChange, IsShownToPeople)
{
    cli::NewList list;
    list.duplicates = 2;
    list.inFactoryList = 1;
    EXPECT_EQ(cli::changeLines(cli::ListChange(Entries{{7, 8}}, Entries{{1, 2}, {30, 4}}), list)
                  .join(u'\n'),
              QStringLiteral("Left out, since the list has them twice: 2 entries\n"
                             "Left out, since the factory list has them: 1 entry\n"
                             "Added: 2 entries\n"
                             "  (1, 2)   (30, 4)\n"
                             "Removed: 1 entry\n"
                             "  (7, 8)"));
    EXPECT_EQ(cli::changeLines(cli::ListChange(Entries{}, Entries{{1, 2}}), {}).last(),
              QStringLiteral("Removed: 0 entries"));
}

TEST(ListChange, ShowsTheBeginningOfALongList)
{
    Entries entries;
    for (std::uint16_t i = 0; i < 1000; ++i) {
        entries.push_back({i, 1});
    }
    const QStringList lines = cli::changeLines(cli::ListChange(Entries{}, entries), {});
    EXPECT_LT(lines.size(), 20);
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("  and 952 more"));
    EXPECT_EQ(cli::changeObject(cli::ListChange(Entries{}, entries), {})[QStringLiteral("added")]
                  .toArray()
                  .size(),
              1000);
}
