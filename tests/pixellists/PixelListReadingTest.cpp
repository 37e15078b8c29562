// SPDX-License-Identifier: MIT
// What holds for the readers of all formats.

#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

TEST(ReadingAList, NamesTheFileTheLineAndWhatWasExpected)
{
    EXPECT_EQ(refusal("phd2", "1 2\n# none\nthree 4\n5 6\n"),
              QStringLiteral("LIST, line 3: expected x and y with a blank between them (numbers "
                             "from 0 to 65535), not \"three 4\"."));
}

TEST(ReadingAList, QuotesNoMoreThanTheBeginningOfALineAndOnlyWhatCanBePrinted)
{
    EXPECT_TRUE(
        refusal("phd2", "a\tb\x1b[31m\xc3\xa4\n").endsWith(QStringLiteral("not \"a?b?[31m??\".")));
    EXPECT_TRUE(refusal("phd2", QByteArray(50, 'x'))
                    .endsWith(u'"' + QString(40, u'x') + QStringLiteral("...\".")));
}

TEST(ReadingAList, LeavesBadLinesOutAndShowsTheFirstTenOfThemWhenItIsLenient)
{
    QByteArray text = "1 2\n";
    for (int i = 0; i < 12; ++i) {
        text += "bad " + QByteArray::number(i) + "\n";
    }
    text += "3 4\n";
    const PixelListReading reading = readText("phd2", text, {.size = {}, .lenient = true});
    EXPECT_EQ(reading.pixels, pixelsAt({{1, 2}, {3, 4}}));
    EXPECT_EQ(reading.badLines, 12U);
    ASSERT_EQ(reading.firstBadLines.size(), 10);
    EXPECT_TRUE(reading.firstBadLines.first().startsWith(QStringLiteral("LIST, line 2: ")));
    EXPECT_TRUE(reading.firstBadLines.last().contains(QStringLiteral("line 11: ")));
}

TEST(ReadingAList, TakesLinesFromAnySystemAndALastOneWithoutAnEnd)
{
    for (const char* text : {"1 2\n3 4\n", "1 2\r\n3 4\r\n", "1 2\n3 4", "1 2\r\n3 4\r",
                             "\xef\xbb\xbf"
                             "1 2\n3 4\n",
                             " 1\t 2 \n\n3   4\n\n"}) {
        EXPECT_EQ(readText("phd2", text).pixels, pixelsAt({{1, 2}, {3, 4}})) << text;
    }
}

TEST(ReadingAList, OfNoLinesGivesNoPixels)
{
    for (const char* format :
         {"editor", "csv", "dcraw", "rawtherapee", "siril", "phd2", "mlvapp", "fixpix"}) {
        EXPECT_TRUE(readText(format, "").pixels.empty()) << format;
    }
}

TEST(ReadingAList, RefusesALineThatIsTooLongAsAWhole)
{
    const QByteArray longest = "1 2 " + QByteArray(pixellists::LongestLine - 4, 'x');
    EXPECT_EQ(readText("phd2", longest + "\n3 4\n").pixels, pixelsAt({{1, 2}, {3, 4}}));
    EXPECT_EQ(readText("phd2", longest + "\r\n3 4").pixels, pixelsAt({{1, 2}, {3, 4}}));
    EXPECT_TRUE(refusal("phd2", longest + "x\n")
                    .startsWith(QStringLiteral("LIST, line 1: expected a line of at most 4096 "
                                               "bytes, not \"1 2 xxx")));
    // The tail of one is no line of its own.
    for (const qsizetype length : {4097, 4098, 4100, 4101, 4102, 4103, 8202, 8203, 100000}) {
        const QByteArray text = QByteArray(length - 4, 'x') + " 7 8\n3 4\n";
        const PixelListReading reading = readText("phd2", text, {.size = {}, .lenient = true});
        EXPECT_EQ(reading.pixels, pixelsAt({{3, 4}})) << length;
        EXPECT_EQ(reading.badLines, 1U) << length;
    }
}

TEST(ReadingAList, RefusesNulBytesAndSignsAndFractions)
{
    for (const QByteArray& line :
         {QByteArray("1 2\0", 4), QByteArray("\0", 1), QByteArray("+1 2"), QByteArray("-1 2"),
          QByteArray("1.0 2"), QByteArray("0x1 2"), QByteArray("1 65536"),
          QByteArray("99999999999999999999 1"), QByteArray("1"), QByteArray("1e3 2")}) {
        EXPECT_FALSE(refusal("phd2", line).isEmpty()) << line.constData();
    }
    EXPECT_EQ(readText("phd2", "0 65535").pixels, pixelsAt({{0, 65535}}));
}

TEST(ReadingAList, StopsAtASaneNumberOfEntriesBeforeItTakesMemoryForThem)
{
    const PixelListReadOptions huge{.size = {65536, 65536}, .lenient = true};
    EXPECT_EQ(refusal("fixpix", "1 65536 1 65536\n", huge),
              QStringLiteral("LIST: has more than 16000000 entries."));
    EXPECT_EQ(refusal("fixpix", "1 4001 1 4000\n", huge),
              QStringLiteral("LIST: has more than 16000000 entries."));
    EXPECT_EQ(refusal("fixpix", "1 4000 1 4000\n5 5\n", huge),
              QStringLiteral("LIST: has more than 16000000 entries."));
}

TEST(ReadingAList, MakesPixelsOfRowsColumnsAndRectanglesWhereTheSizeIsKnown)
{
    const PixelListReadOptions small{.size = {3, 2}, .lenient = false};
    EXPECT_EQ(readText("siril", "L 1 0\n", small).pixels, pixelsAt({{0, 1}, {1, 1}, {2, 1}}));
    EXPECT_EQ(readText("siril", "C 2 0\n", small).pixels, pixelsAt({{2, 0}, {2, 1}}));
    EXPECT_EQ(readText("fixpix", "2 3 1 2\n", small).pixels,
              pixelsAt({{1, 0}, {2, 0}, {1, 1}, {2, 1}}));
    for (const char* text : {"C 0 0\n", "L 0 0\n"}) {
        EXPECT_EQ(refusal("siril", text),
                  QStringLiteral("LIST, line 1: rows, columns and rectangles need the sensor's "
                                 "size (--size)."));
        EXPECT_FALSE(refusal("siril", text, {.size = {}, .lenient = true}).isEmpty());
    }
    EXPECT_FALSE(refusal("fixpix", "1 1 1 1\n").isEmpty());
}

TEST(ReadingAList, CountsWhatOfRowsColumnsAndRectanglesLiesBesideTheSensor)
{
    const PixelListReadOptions small{.size = {3, 2}, .lenient = false};
    const QString text =
        QStringLiteral("%1 of rows, columns and rectangles lie outside 3 × 2: left out");
    PixelListReading reading = readText("fixpix", "3 5 2 3\n", small);
    EXPECT_EQ(reading.pixels, pixelsAt({{2, 1}}));
    EXPECT_EQ(reading.notes, QStringList(text.arg(5)));
    reading = readText("siril", "L 2 0\nC 65535 0\nC 0 0\n", small);
    EXPECT_EQ(reading.pixels, pixelsAt({{0, 0}, {0, 1}}));
    EXPECT_EQ(reading.notes, QStringList(text.arg(3 + 2)));
}
