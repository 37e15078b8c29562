// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListModel.h"

#include "hotpixel/ListFull.h"
#include "tests/hotpixel/PrintEntry.h"

#include <QFile>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <stdexcept>
#include <string>
#include <vector>

using Entries = std::vector<BadpixelEntry>;

namespace {

class HotpixelList : public testing::Test
{
protected:
    HotpixelList() { m_model.setMaxUserEntries(1000); }

    /// Puts @p entries into the list, of any class, in the way only a list file can.
    void load(const Entries& entries)
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (const BadpixelEntry& entry : entries) {
            file.write(QStringLiteral("%1 %2 %3\n")
                           .arg(entry.x)
                           .arg(entry.y)
                           .arg(entry.pixelClass)
                           .toUtf8());
        }
        file.close();
        m_model.loadFromFile(path());
    }

    [[nodiscard]] QString path() const { return m_folder.filePath("list.txt"); }

    [[nodiscard]] Entries entries() const
    {
        return {m_model.entries().begin(), m_model.entries().end()};
    }

    [[nodiscard]] QVariant cell(int row, int column, int role = Qt::DisplayRole) const
    {
        return m_model.data(m_model.index(row, column), role);
    }

    bool set(int row, int column, const QVariant& value)
    {
        return m_model.setData(m_model.index(row, column), value);
    }

    /// Every announcement of the model so far, in order, each with its rows.
    [[nodiscard]] QStringList takeAnnouncements() { return std::exchange(m_announcements, {}); }

    void record()
    {
        const auto rows = [this](const char* what) {
            return [this, what](const QModelIndex& parent, int first, int last) {
                EXPECT_FALSE(parent.isValid());
                m_announcements << QStringLiteral("%1 %2-%3").arg(what).arg(first).arg(last);
            };
        };
        const auto plain = [this](const char* what) {
            return [this, what] { m_announcements << QString::fromLatin1(what); };
        };
        QObject::connect(&m_model, &QAbstractItemModel::rowsAboutToBeInserted, rows("inserting"));
        QObject::connect(&m_model, &QAbstractItemModel::rowsInserted, rows("inserted"));
        QObject::connect(&m_model, &QAbstractItemModel::rowsAboutToBeRemoved, rows("removing"));
        QObject::connect(&m_model, &QAbstractItemModel::rowsRemoved, rows("removed"));
        QObject::connect(&m_model, &QAbstractItemModel::layoutAboutToBeChanged,
                         plain("layout changing"));
        QObject::connect(&m_model, &QAbstractItemModel::layoutChanged, plain("layout changed"));
        QObject::connect(&m_model, &QAbstractItemModel::modelReset, plain("reset"));
        QObject::connect(
            &m_model, &QAbstractItemModel::dataChanged,
            [this](const QModelIndex& first, const QModelIndex& last) {
                EXPECT_EQ(first, last);
                m_announcements
                    << QStringLiteral("changed %1,%2").arg(first.row()).arg(first.column());
            });
        QObject::connect(&m_model, &BadpixelListModel::pixelAdded, [this](int count) {
            m_announcements << QStringLiteral("added %1").arg(count);
        });
    }

    template <typename Call>
    [[nodiscard]] static std::string errorOf(Call call)
    {
        try {
            call();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }

    [[nodiscard]] std::string additionError(int x, int y)
    {
        return errorOf([&] { m_model.addBadpixel({x, y}); });
    }

    BadpixelListModel m_model;

private:
    QTemporaryDir m_folder;
    QStringList m_announcements;
};

/// A point with the tolerance of a search.
struct Search
{
    QPoint position;
    int tolerance;
};

/// What findBadpixel() is to find: the obvious way.
int firstRowNear(const Entries& entries, const Search& search)
{
    for (std::size_t row = 0; row < entries.size(); ++row) {
        const long long x = entries[row].x;
        const long long y = entries[row].y;
        const long long tolerance = search.tolerance;
        if (search.position.x() - tolerance < x && x < search.position.x() + tolerance &&
            search.position.y() - tolerance < y && y < search.position.y() + tolerance) {
            return static_cast<int>(row);
        }
    }
    return -1;
}

} // namespace

TEST_F(HotpixelList, HasItsSignalAndSlotsInTheirOrder)
{
    const QMetaObject* meta = m_model.metaObject();
    const QByteArrayList expected = {
        "pixelAdded(int)",         "getBadpixelList(Camera*)", "writeBadpixelList(Camera*)",
        "clearUserBadpixelList()", "clearBadpixelList()",      "saveAsFile(QString)",
        "loadFromFile(QString)",   "sort(int,Qt::SortOrder)"};
    QByteArrayList methods;
    for (int method = meta->methodOffset(); method < meta->methodCount(); ++method) {
        methods << meta->method(method).methodSignature();
    }
    EXPECT_EQ(methods, expected);
    EXPECT_EQ(meta->method(meta->methodOffset()).methodType(), QMetaMethod::Signal);
    EXPECT_EQ(meta->method(meta->methodOffset() + 1).methodType(), QMetaMethod::Slot);
    EXPECT_STREQ(meta->className(), "BadpixelListModel");
}

TEST(FreshHotpixelList, IsEmptyAndLimitedByTheCamera)
{
    const BadpixelListModel model;
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 3);
    EXPECT_EQ(model.maxUserEntries(), 0);
    EXPECT_EQ(model.factoryCount(), 0);
    EXPECT_TRUE(model.limitByCamera());
}

TEST(FreshHotpixelList, RefusesEveryAddition)
{
    BadpixelListModel model;
    try {
        model.addBadpixel({1, 2});
        FAIL() << "the addition was accepted";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Can't add more than 0 hotpixel entries.");
    }
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(HotpixelList, CountsItsRowsBelowAnyIndex)
{
    load({{1, 2, 1}});
    EXPECT_EQ(m_model.rowCount(m_model.index(0, 0)), 1);
    EXPECT_EQ(m_model.columnCount(m_model.index(0, 0)), 3);
}

TEST_F(HotpixelList, ShowsPositionsAsIntegers)
{
    load({{65535, 7, 1}});
    for (const int role : {Qt::DisplayRole, Qt::EditRole}) {
        EXPECT_EQ(cell(0, 0, role), QVariant(65535));
        EXPECT_EQ(cell(0, 1, role), QVariant(7));
    }
}

TEST_F(HotpixelList, ShowsItsOwnWordsForTheClasses)
{
    load({{1, 1, 0}, {1, 1, 1}, {1, 1, 2}, {1, 1, 3}, {1, 1, 255}});
    const QStringList words = {"ignore", "user", "factory", "factory", "factory"};
    for (int row = 0; row < words.size(); ++row) {
        EXPECT_EQ(cell(row, 2), QVariant(words.at(row)));
        EXPECT_EQ(cell(row, 2, Qt::EditRole), QVariant(words.at(row)));
    }
}

TEST_F(HotpixelList, ShowsNothingInOtherRoles)
{
    load({{1, 2, 1}});
    for (const int role : {Qt::DecorationRole, Qt::ToolTipRole, Qt::TextAlignmentRole,
                           Qt::CheckStateRole, Qt::UserRole}) {
        EXPECT_FALSE(cell(0, 0, role).isValid()) << role;
    }
}

TEST_F(HotpixelList, ShowsNothingOutsideTheTable)
{
    load({{1, 2, 1}, {3, 4, 1}});
    const QModelIndex lastCell = m_model.index(1, 2);
    EXPECT_TRUE(m_model.data(lastCell).isValid());
    m_model.removeRows(1, 1);
    EXPECT_FALSE(m_model.data(lastCell).isValid());
    EXPECT_FALSE(m_model.data(QModelIndex()).isValid());
    EXPECT_FALSE(m_model.data(m_model.index(0, 3)).isValid());
}

TEST_F(HotpixelList, HasTranslatedHeadersAboveItsColumns)
{
    EXPECT_EQ(m_model.headerData(0, Qt::Horizontal, Qt::DisplayRole), QVariant("x"));
    EXPECT_EQ(m_model.headerData(1, Qt::Horizontal, Qt::DisplayRole), QVariant("y"));
    EXPECT_EQ(m_model.headerData(2, Qt::Horizontal, Qt::DisplayRole), QVariant("class"));
    EXPECT_FALSE(m_model.headerData(3, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_FALSE(m_model.headerData(-1, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_FALSE(m_model.headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
}

TEST_F(HotpixelList, NumbersItsRowsFromZero)
{
    EXPECT_EQ(m_model.headerData(4, Qt::Vertical, Qt::DisplayRole), QVariant(4));
    EXPECT_EQ(m_model.headerData(0, Qt::Vertical, Qt::DisplayRole), QVariant(0));
    EXPECT_FALSE(m_model.headerData(4, Qt::Vertical, Qt::ToolTipRole).isValid());
}

TEST_F(HotpixelList, ReportsNoCellAsEditable)
{
    load({{1, 2, 1}});
    EXPECT_EQ(m_model.flags(m_model.index(0, 2)).toInt(), 33);
    EXPECT_EQ(m_model.flags(m_model.index(0, 0)).toInt(), 33);
    EXPECT_EQ(m_model.flags(QModelIndex()).toInt(), 33);
}

TEST_F(HotpixelList, TakesACoordinateByItsLow16Bits)
{
    load({{1, 2, 1}});
    EXPECT_TRUE(set(0, 0, 70000));
    EXPECT_TRUE(set(0, 1, QStringLiteral("-1")));
    EXPECT_EQ(entries(), (Entries{{4464, 65535, 1}}));
}

TEST_F(HotpixelList, RefusesACoordinateThatIsNoInteger)
{
    load({{1, 2, 1}});
    record();
    EXPECT_FALSE(set(0, 0, QStringLiteral("abc")));
    EXPECT_FALSE(set(0, 1, QStringLiteral("1.5")));
    EXPECT_FALSE(set(0, 1, QVariant()));
    EXPECT_EQ(entries(), (Entries{{1, 2, 1}}));
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, TakesTheWordFactoryAsClassZeroThatReadsIgnore)
{
    load({{1, 2, 1}, {1, 2, 2}});
    EXPECT_TRUE(set(0, 2, QStringLiteral("factory")));
    EXPECT_TRUE(set(1, 2, QStringLiteral("factory")));
    EXPECT_EQ(entries(), (Entries{{1, 2, 0}, {1, 2, 0}}));
    EXPECT_EQ(cell(0, 2), QVariant("ignore"));
}

TEST_F(HotpixelList, TakesAnyOtherWordWithoutEffect)
{
    const Entries before = {{1, 1, 0}, {1, 1, 1}, {1, 1, 2}};
    load(before);
    record();
    for (const char* word : {"user", "ignore", "Factory", "factory ", ""}) {
        for (int row = 0; row < 3; ++row) {
            EXPECT_TRUE(set(row, 2, QString::fromLatin1(word))) << word;
        }
    }
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(takeAnnouncements().count(), 15);
}

TEST_F(HotpixelList, AnnouncesTheCellThatWasSet)
{
    load({{1, 2, 1}, {3, 4, 1}});
    record();
    EXPECT_TRUE(set(1, 0, 9));
    EXPECT_TRUE(set(0, 2, QStringLiteral("user")));
    EXPECT_EQ(takeAnnouncements(), (QStringList{"changed 1,0", "changed 0,2"}));
}

TEST_F(HotpixelList, SetsACellInAnyRole)
{
    load({{1, 2, 1}});
    EXPECT_TRUE(m_model.setData(m_model.index(0, 0), 9, Qt::ToolTipRole));
    EXPECT_EQ(entries(), (Entries{{9, 2, 1}}));
}

TEST_F(HotpixelList, SetsNothingOutsideTheTable)
{
    load({{1, 2, 1}, {3, 4, 1}});
    const QModelIndex gone = m_model.index(1, 0);
    m_model.removeRows(1, 1);
    EXPECT_FALSE(m_model.setData(gone, 9));
    EXPECT_FALSE(m_model.setData(QModelIndex(), 9));
    EXPECT_EQ(entries(), (Entries{{1, 2, 1}}));
}

TEST_F(HotpixelList, InsertsUserEntriesAtTheOrigin)
{
    load({{1, 2, 0}, {3, 4, 0}});
    record();
    EXPECT_TRUE(m_model.insertRows(1, 2));
    EXPECT_EQ(entries(), (Entries{{1, 2, 0}, {0, 0, 1}, {0, 0, 1}, {3, 4, 0}}));
    EXPECT_EQ(takeAnnouncements(), (QStringList{"inserting 1-2", "inserted 1-2"}));
}

TEST_F(HotpixelList, InsertsRowsBeyondEveryLimit)
{
    m_model.setMaxUserEntries(0);
    EXPECT_TRUE(m_model.insertRows(0, 6000));
    EXPECT_EQ(m_model.rowCount(), 6000);
}

TEST_F(HotpixelList, InsertsNothingForACountBelowOne)
{
    record();
    EXPECT_TRUE(m_model.insertRows(0, 0));
    EXPECT_TRUE(m_model.insertRows(0, -3));
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, RemovesRowsOfEveryClass)
{
    load({{1, 1, 0}, {2, 2, 1}, {3, 3, 2}, {4, 4, 1}});
    record();
    EXPECT_TRUE(m_model.removeRows(1, 2));
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {4, 4, 1}}));
    EXPECT_EQ(takeAnnouncements(), (QStringList{"removing 1-2", "removed 1-2"}));
}

TEST_F(HotpixelList, RemovesOnlyTheRowsThatThereAre)
{
    load({{1, 1, 1}, {2, 2, 1}});
    record();
    EXPECT_TRUE(m_model.removeRows(1, 5));
    EXPECT_EQ(entries(), (Entries{{1, 1, 1}}));
    EXPECT_EQ(takeAnnouncements(), (QStringList{"removing 1-5", "removed 1-5"}));
}

TEST_F(HotpixelList, RemovesNothingForACountBelowOne)
{
    load({{1, 1, 1}});
    EXPECT_TRUE(m_model.removeRows(0, 0));
    EXPECT_TRUE(m_model.removeRows(0, -1));
    EXPECT_EQ(m_model.rowCount(), 1);
}

TEST_F(HotpixelList, GivesACopyOfAnEntry)
{
    load({{1, 2, 0}, {3, 4, 2}});
    EXPECT_EQ(m_model.badpixelAt(1), (BadpixelEntry{3, 4, 2}));
    EXPECT_EQ(m_model.badpixelAt(2), BadpixelEntry{});
    EXPECT_EQ(m_model.badpixelAt(-1), BadpixelEntry{});
}

TEST_F(HotpixelList, FindsNothingWhenEmpty)
{
    EXPECT_FALSE(m_model.findBadpixel({0, 0}, 5).isValid());
}

TEST_F(HotpixelList, FindsTheFirstEntryStrictlyWithinTheTolerance)
{
    const Entries entries = {{10, 10, 0}, {12, 10, 1}, {10, 13, 2}, {0, 0, 1}, {65535, 65535, 1}};
    load(entries);
    const std::vector<Search> searches = {{{10, 10}, 1},
                                          {{10, 10}, 0},
                                          {{10, 10}, -1},
                                          {{11, 10}, 1},
                                          {{11, 10}, 2},
                                          {{12, 10}, 1},
                                          {{12, 10}, 2},
                                          {{13, 10}, 2},
                                          {{13, 11}, 2},
                                          {{10, 12}, 2},
                                          {{8, 8}, 3},
                                          {{7, 10}, 3},
                                          {{-1, -1}, 1},
                                          {{-1, -1}, 2},
                                          {{65536, 65536}, 2},
                                          {{65536, 65536}, 1},
                                          {{30, 30}, 1000},
                                          {{INT_MAX, 0}, INT_MAX},
                                          {{INT_MIN, INT_MIN}, INT_MAX}};
    for (const Search& search : searches) {
        const QModelIndex found = m_model.findBadpixel(search.position, search.tolerance);
        EXPECT_EQ(found.row(), firstRowNear(entries, search))
            << search.position.x() << ' ' << search.position.y() << ' ' << search.tolerance;
        EXPECT_EQ(found.column(), found.isValid() ? 0 : -1);
    }
}

TEST_F(HotpixelList, AddsAUserEntryAtItsEnd)
{
    load({{1, 1, 0}});
    record();
    EXPECT_TRUE(m_model.addBadpixel({5, 6}));
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {5, 6, 1}}));
    EXPECT_EQ(takeAnnouncements(), (QStringList{"inserting 1-1", "inserted 1-1", "added 1"}));
}

TEST_F(HotpixelList, AddsThePositionsLow16Bits)
{
    EXPECT_TRUE(m_model.addBadpixel({70000, -1}));
    EXPECT_EQ(entries(), (Entries{{4464, 65535, 1}}));
    EXPECT_FALSE(m_model.addBadpixel({4464, 65535})) << "it is the same position now";
}

TEST_F(HotpixelList, AddsNoFactoryOrUserEntryTwice)
{
    load({{10, 20, 0}, {11, 20, 1}});
    record();
    EXPECT_FALSE(m_model.addBadpixel({10, 20}));
    EXPECT_FALSE(m_model.addBadpixel({11, 20}));
    EXPECT_EQ(m_model.rowCount(), 2);
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, AddsAUserEntryBesideAnIgnoredOne)
{
    load({{10, 20, 2}, {10, 21, 3}});
    EXPECT_TRUE(m_model.addBadpixel({10, 20}));
    EXPECT_TRUE(m_model.addBadpixel({10, 21}));
    EXPECT_FALSE(m_model.addBadpixel({10, 20}));
    EXPECT_EQ(entries(), (Entries{{10, 20, 2}, {10, 21, 3}, {10, 20, 1}, {10, 21, 1}}));
}

TEST_F(HotpixelList, AddsOnlyAsManyAsTheCameraStores)
{
    m_model.setMaxUserEntries(3);
    m_model.setFactoryCount(5);
    load(Entries(7, {1, 1, 0}));
    EXPECT_TRUE(m_model.addBadpixel({2, 2})) << "7 entries, 5 of the factory's";
    EXPECT_EQ(additionError(3, 3), "Can't add more than 3 hotpixel entries.");
    EXPECT_EQ(m_model.rowCount(), 8);
}

TEST_F(HotpixelList, ReportsTheLimitBeforeTheDuplicate)
{
    m_model.setMaxUserEntries(1);
    EXPECT_TRUE(m_model.addBadpixel({2, 2}));
    EXPECT_EQ(additionError(2, 2), "Can't add more than 1 hotpixel entries.");
}

TEST_F(HotpixelList, CountsIgnoredEntriesAgainstTheLimit)
{
    m_model.setMaxUserEntries(2);
    load({{1, 1, 2}, {2, 2, 2}});
    EXPECT_EQ(additionError(3, 3), "Can't add more than 2 hotpixel entries.");
}

TEST_F(HotpixelList, TakesAnyFactoryCountIntoTheLimit)
{
    m_model.setMaxUserEntries(INT_MAX);
    m_model.setFactoryCount(INT_MIN);
    EXPECT_EQ(additionError(3, 3), "Can't add more than 2147483647 hotpixel entries.");
    m_model.setMaxUserEntries(0);
    m_model.setFactoryCount(1001);
    EXPECT_TRUE(m_model.addBadpixel({3, 3}));
}

TEST_F(HotpixelList, AddsUpTo5000EntriesWithoutTheCamerasLimit)
{
    m_model.setLimitByCamera(false);
    m_model.setMaxUserEntries(0);
    load(Entries(4999, {1, 1, 0}));
    EXPECT_TRUE(m_model.addBadpixel({2, 2}));
    EXPECT_EQ(m_model.rowCount(), 5000);
}

TEST_F(HotpixelList, TellsItsLimitToWhoeverAddsBeyondIt)
{
    const auto full = [this] {
        try {
            m_model.addBadpixel({3, 3});
        } catch (const ListFull& error) {
            return std::pair(error.limit(), error.count());
        }
        return std::pair(-1, std::int64_t{-1});
    };
    m_model.setMaxUserEntries(3);
    m_model.setFactoryCount(2);
    load(Entries(6, {1, 1, 0}));
    EXPECT_EQ(full(), std::pair(3, std::int64_t{4}));
    m_model.setFactoryCount(INT_MIN);
    EXPECT_EQ(full(), std::pair(3, std::int64_t{6} - INT_MIN));

    m_model.setLimitByCamera(false);
    load(Entries(4998, {1, 1, 0}));
    EXPECT_EQ(full(), std::pair(5000, std::int64_t{5004})) << "not the limit that the text names";
}

TEST_F(HotpixelList, NamesTheCamerasLimitAlsoForThatOf5000)
{
    m_model.setLimitByCamera(false);
    m_model.setMaxUserEntries(77);
    load(Entries(5000, {1, 1, 0}));
    EXPECT_EQ(additionError(2, 2), "Can't add more than 77 hotpixel entries.");
    EXPECT_EQ(m_model.rowCount(), 5000);
}

TEST_F(HotpixelList, KnowsItsDuplicatesAfterEveryKindOfChange)
{
    const auto refused = [this](int x, int y) { return !m_model.addBadpixel({x, y}); };
    EXPECT_TRUE(m_model.addBadpixel({1, 1}));
    EXPECT_TRUE(refused(1, 1));

    m_model.removeRows(0, 1);
    EXPECT_TRUE(m_model.addBadpixel({1, 1})) << "removed";

    set(0, 0, 2);
    EXPECT_TRUE(refused(2, 1)) << "moved there";
    EXPECT_TRUE(m_model.addBadpixel({1, 1})) << "moved away";

    set(1, 2, QStringLiteral("factory"));
    m_model.clearUserBadpixelList();
    EXPECT_TRUE(refused(1, 1)) << "a factory entry now";
    EXPECT_TRUE(m_model.addBadpixel({2, 1})) << "cleared as a user entry";

    m_model.insertRows(0, 2);
    EXPECT_TRUE(refused(0, 0)) << "inserted";
    m_model.removeRows(0, 1);
    EXPECT_TRUE(refused(0, 0)) << "inserted twice, removed once";
    m_model.removeRows(0, 1);
    EXPECT_TRUE(m_model.addBadpixel({0, 0})) << "removed twice";

    load({{7, 7, 0}, {8, 8, 2}});
    EXPECT_TRUE(refused(7, 7)) << "loaded";
    EXPECT_TRUE(m_model.addBadpixel({8, 8})) << "loaded as ignored";
    set(m_model.rowCount() - 2, 2, QStringLiteral("factory"));
    m_model.removeUserBadpixel(m_model.rowCount() - 1);
    EXPECT_TRUE(refused(8, 8)) << "ignored before, a factory entry now";

    m_model.sort(1, Qt::DescendingOrder);
    EXPECT_TRUE(refused(7, 7)) << "sorted";

    m_model.clearBadpixelList();
    EXPECT_TRUE(m_model.addBadpixel({7, 7})) << "all cleared";
}

TEST_F(HotpixelList, RemovesASingleUserEntryOnly)
{
    load({{1, 1, 0}, {2, 2, 1}, {3, 3, 2}});
    EXPECT_FALSE(m_model.removeUserBadpixel(0));
    EXPECT_FALSE(m_model.removeUserBadpixel(2));
    EXPECT_FALSE(m_model.removeUserBadpixel(3));
    EXPECT_FALSE(m_model.removeUserBadpixel(-1));
    EXPECT_EQ(m_model.rowCount(), 3);
    EXPECT_TRUE(m_model.removeUserBadpixel(1));
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {3, 3, 2}}));
}

TEST_F(HotpixelList, ClearsUserEntriesOneRowAtATime)
{
    load({{1, 1, 1}, {2, 2, 0}, {3, 3, 1}, {4, 4, 1}, {5, 5, 2}, {6, 6, 1}});
    record();
    m_model.clearUserBadpixelList();
    EXPECT_EQ(entries(), (Entries{{2, 2, 0}, {5, 5, 2}}));
    EXPECT_EQ(takeAnnouncements(),
              (QStringList{"removing 0-0", "removed 0-0", "removing 1-1", "removed 1-1",
                           "removing 1-1", "removed 1-1", "removing 2-2", "removed 2-2"}));
}

TEST_F(HotpixelList, ShowsTheRemainingEntriesWhileItClears)
{
    load({{1, 1, 0}, {2, 2, 1}, {3, 3, 2}, {4, 4, 1}, {5, 5, 0}});
    QStringList seen;
    QObject::connect(&m_model, &QAbstractItemModel::rowsRemoved, [&] {
        QStringList rows;
        for (int row = 0; row < m_model.rowCount(); ++row) {
            rows << cell(row, 0).toString();
        }
        seen << rows.join(' ');
    });
    m_model.clearUserBadpixelList();
    EXPECT_EQ(seen, (QStringList{"1 3 4 5", "1 3 5"}));
}

TEST_F(HotpixelList, ClearsAMillionUserEntriesInOneWalk)
{
    // Behind 1,000 factory entries; with a move of the list for each removal this would not end.
    Entries many(1000, {1, 1, 0});
    many.insert(many.end(), 1000000, {2, 2, 1});
    load(many);
    m_model.clearUserBadpixelList();
    EXPECT_EQ(m_model.rowCount(), 1000);
}

TEST_F(HotpixelList, ClearsEverythingAtOnce)
{
    load({{1, 1, 0}, {2, 2, 1}, {3, 3, 2}});
    record();
    m_model.clearBadpixelList();
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(takeAnnouncements(), (QStringList{"removing 0-2", "removed 0-2"}));
}

TEST_F(HotpixelList, ClearsNothingSilently)
{
    record();
    m_model.clearBadpixelList();
    m_model.clearUserBadpixelList();
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, IsNotSortedWhenEmpty)
{
    record();
    m_model.sort(0, Qt::AscendingOrder);
    m_model.sort(99, Qt::AscendingOrder);
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, SortsByX)
{
    load({{300, 1, 1}, {1, 2, 1}, {20, 3, 1}});
    m_model.sort(0, Qt::AscendingOrder);
    EXPECT_EQ(entries(), (Entries{{1, 2, 1}, {20, 3, 1}, {300, 1, 1}}));
    m_model.sort(0, Qt::DescendingOrder);
    EXPECT_EQ(entries(), (Entries{{300, 1, 1}, {20, 3, 1}, {1, 2, 1}}));
}

TEST_F(HotpixelList, SortsByY)
{
    load({{1, 300, 1}, {2, 1, 1}, {3, 20, 1}});
    m_model.sort(1, Qt::AscendingOrder);
    EXPECT_EQ(entries(), (Entries{{2, 1, 1}, {3, 20, 1}, {1, 300, 1}}));
    m_model.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(entries(), (Entries{{1, 300, 1}, {3, 20, 1}, {2, 1, 1}}));
}

TEST_F(HotpixelList, SortsByTheClassValueNotByItsWord)
{
    load({{1, 1, 2}, {2, 2, 1}, {3, 3, 0}});
    m_model.sort(2, Qt::AscendingOrder);
    EXPECT_EQ(entries(), (Entries{{3, 3, 0}, {2, 2, 1}, {1, 1, 2}}));
    m_model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(entries(), (Entries{{1, 1, 2}, {2, 2, 1}, {3, 3, 0}}));
}

TEST_F(HotpixelList, AnnouncesASortAsALayoutThatHasChanged)
{
    load({{2, 1, 1}, {1, 2, 1}});
    record();
    m_model.sort(0, Qt::AscendingOrder);
    EXPECT_EQ(takeAnnouncements(), QStringList{"layout changed"});
}

TEST_F(HotpixelList, SortsByNoColumnThatDoesNotExist)
{
    load({{2, 1, 1}, {1, 2, 1}});
    const Entries before = entries();
    record();
    for (const int column : {-1, 3, 4}) {
        EXPECT_EQ(errorOf([&] { m_model.sort(column, Qt::AscendingOrder); }), "Sort Error");
    }
    EXPECT_EQ(errorOf([&] { m_model.sort(0, std::bit_cast<Qt::SortOrder>(2)); }), "Sort Error");
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(takeAnnouncements(), QStringList{});
}

TEST_F(HotpixelList, SortsASingleEntryByAnyColumn)
{
    load({{2, 1, 1}});
    record();
    m_model.sort(3, Qt::AscendingOrder);
    EXPECT_EQ(takeAnnouncements(), QStringList{"layout changed"});
}

TEST_F(HotpixelList, LeavesEqualEntriesInTheOrderOfItsSortingAlgorithm)
{
    // By hand, for five equal keys: the middle one goes to the end as the pivot (0 1 4 3 2), low
    // and high swap 0 with 3 and 1 with 4 (3 4 1 0 2), and the pivot goes back to low (3 4 2 0 1).
    for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        m_model.clearBadpixelList();
        load({{5, 0, 1}, {5, 1, 1}, {5, 2, 1}, {5, 3, 1}, {5, 4, 1}});
        m_model.sort(0, order);
        EXPECT_EQ(entries(), (Entries{{5, 3, 1}, {5, 4, 1}, {5, 2, 1}, {5, 0, 1}, {5, 1, 1}}))
            << order;
    }
}

TEST_F(HotpixelList, LoadsBehindTheFactoryAndIgnoredEntries)
{
    load({{1, 1, 0}, {2, 2, 1}, {3, 3, 2}});
    load({{4, 4, 1}});
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {3, 3, 2}, {4, 4, 1}}));
}

TEST_F(HotpixelList, AnnouncesLoadedEntriesAsALayoutThatHasChanged)
{
    load({{1, 1, 0}, {2, 2, 1}});
    record();
    load({{4, 4, 1}, {5, 5, 1}});
    EXPECT_EQ(takeAnnouncements(), (QStringList{"removing 1-1", "removed 1-1", "layout changed"}));
}

TEST_F(HotpixelList, LoadsBeyondEveryLimitAndWithDuplicates)
{
    m_model.setMaxUserEntries(0);
    load(Entries(5001, {1, 1, 1}));
    EXPECT_EQ(m_model.rowCount(), 5001);
}

TEST_F(HotpixelList, IsSavedAndLoadedWithTheSameUserEntries)
{
    load({{2, 2, 1}, {1, 1, 0}, {3, 3, 1}});
    m_model.saveAsFile(path());
    m_model.loadFromFile(path());
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {2, 2, 1}, {3, 3, 1}}));
}

TEST_F(HotpixelList, LosesItsUserEntriesWhenTheFileIsMissing)
{
    load({{1, 1, 0}, {2, 2, 1}});
    EXPECT_EQ(errorOf([&] { m_model.loadFromFile(path() + "missing"); }),
              "Can't open file for reading.");
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}}));
}

TEST_F(HotpixelList, IsKeptWhenItCantBeSaved)
{
    load({{1, 1, 0}, {2, 2, 1}});
    EXPECT_EQ(errorOf([&] { m_model.saveAsFile(path() + "/below"); }),
              "Can't open file for writing.");
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}, {2, 2, 1}}));
}
