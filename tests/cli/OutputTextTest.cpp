// SPDX-License-Identifier: MIT
#include "cli/Console.h"
#include "cli/EntryText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

using Entries = std::vector<BadpixelEntry>;

} // namespace

TEST(EntryText, StandsInColumnsOfOneWidth)
{
    const Entries entries{{1, 2, UserPixel}, {2591, 1943, UserPixel}, {30, 4, UserPixel}};
    EXPECT_EQ(cli::entryColumns(entries), QStringLiteral("  (1, 2)        (2591, 1943)  (30, 4)"));
}

TEST(EntryText, StaysWithinALineOf79Characters)
{
    const Entries entries(12, {65535, 65535, UserPixel});
    const QStringList lines = cli::entryColumns(entries).split(u'\n');
    // Two blanks, and "(65535, 65535)" with two blanks between: 2 + 4 · 14 + 3 · 2 = 64.
    ASSERT_EQ(lines.size(), 3);
    for (const QString& line : lines) {
        EXPECT_EQ(line.size(), 64);
    }
}

TEST(EntryText, IsNothingForNoEntries)
{
    EXPECT_EQ(cli::entryColumns({}), QString());
    EXPECT_TRUE(cli::entryArray({}).isEmpty());
}

TEST(EntryText, GivesMachinesPairs)
{
    const Entries entries{{1, 2, UserPixel}, {65535, 0, FactoryPixel}};
    EXPECT_EQ(QJsonDocument(cli::entryArray(entries)).toJson(QJsonDocument::Compact),
              QByteArray("[[1,2],[65535,0]]"));
}

TEST(EntryText, CountsInWords)
{
    EXPECT_EQ(cli::entryCount(0), QStringLiteral("0 entries"));
    EXPECT_EQ(cli::entryCount(1), QStringLiteral("1 entry"));
    EXPECT_EQ(cli::entryCount(2), QStringLiteral("2 entries"));
}

TEST(FindingsReport, CountsEachBayerPlane)
{
    const Entries entries{{0, 0, UserPixel}, {2, 4, UserPixel}, {0, 1, UserPixel},
                          {1, 0, UserPixel}, {3, 2, UserPixel}, {5, 8, UserPixel},
                          {7, 7, UserPixel}};
    EXPECT_EQ(cli::planeText(entries), QStringLiteral("  even columns, even rows       2\n"
                                                      "  even columns, odd rows        1\n"
                                                      "  odd columns, even rows        3\n"
                                                      "  odd columns, odd rows         1"));
    const QJsonArray planes = cli::planeArray(entries);
    ASSERT_EQ(planes.size(), 4);
    EXPECT_EQ(QJsonDocument(planes.at(2).toObject()).toJson(QJsonDocument::Compact),
              QByteArray(R"({"found":3,"name":"odd columns, even rows",)"
                         R"("oddColumns":true,"oddRows":false})"));
}

TEST(ProgressLine, FillsTheBarStepByStep)
{
    const QString line = QStringLiteral("Frames [%1%2] %3/10");
    EXPECT_EQ(cli::progressLine(QStringLiteral("Frames"), 0, 10, 0),
              line.arg(QString(), QString(30, u'.'), QStringLiteral("0")));
    EXPECT_EQ(cli::progressLine(QStringLiteral("Frames"), 4, 10, 7),
              line.arg(QString(12, u'#'), QString(18, u'.'), QStringLiteral("4")));
    EXPECT_EQ(cli::progressLine(QStringLiteral("Frames"), 10, 10, 0),
              line.arg(QString(30, u'#'), QString(), QStringLiteral("10")));
}

TEST(ProgressLine, StaysInItsBarForMoreStepsThanExpected)
{
    EXPECT_EQ(cli::progressLine(QStringLiteral("F"), 12, 10, 0),
              QStringLiteral("F [%1] 12/10").arg(QString(30, u'#')));
}

TEST(ProgressLine, MovesAMarkThereAndBackWhenTheEndIsUnknown)
{
    const auto mark = [](int tick) {
        return cli::progressLine(QStringLiteral("F"), 0, 0, tick).indexOf(u'#') - 3;
    };
    EXPECT_EQ(mark(0), 0);
    EXPECT_EQ(mark(1), 1);
    EXPECT_EQ(mark(27), 27);
    EXPECT_EQ(mark(28), 26);
    EXPECT_EQ(mark(54), 0);
    EXPECT_EQ(cli::progressLine(QStringLiteral("F"), 0, 0, 27),
              QStringLiteral("F [%1###]").arg(QString(27, u'.')));
}

TEST(ProgressLine, FitsIntoANarrowTerminal)
{
    const QString label = QStringLiteral("Taking dark frames");
    for (int width = 10; width <= 100; ++width) {
        for (const int total : {0, 11}) {
            const QString line = cli::progressLine(label, 10, total, 3, width);
            EXPECT_LE(line.size(), width) << qPrintable(line);
            EXPECT_TRUE(line.startsWith(label.left(4))) << qPrintable(line);
            EXPECT_EQ(line.endsWith(QStringLiteral(" 10/11")), total > 0) << qPrintable(line);
        }
    }
    EXPECT_EQ(cli::progressLine(label, 4, 8, 0, 37),
              QStringLiteral("Taking dark frames [######......] 4/8"));
    EXPECT_EQ(cli::progressLine(label, 4, 8, 0, 29), QStringLiteral("Taking dark frames 4/8"))
        << "a bar of four characters shows nothing";
    EXPECT_EQ(cli::progressLine(label, 0, 0, 0, 30),
              QStringLiteral("Taking dark frames [###......]"));
}
