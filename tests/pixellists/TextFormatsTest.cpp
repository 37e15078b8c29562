// SPDX-License-Identifier: MIT
// What each format of lines looks like, and what its reader takes and refuses.

#include "pixellists/PixelListError.h"
#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

namespace {

const PixelListWriteOptions Large{.size = {65536, 65536}, .suffix = {}, .camera = {}};
const PixelList Two = pixelsAt({{12, 345}, {640, 2}});

PixelListWriteOptions forSuffix(const char* suffix)
{
    return {.size = {}, .suffix = QLatin1String(suffix), .camera = {}};
}

PixelList withClasses(PixelList pixels, std::initializer_list<PixelListClass> classes)
{
    auto pixel = pixels.begin();
    for (const PixelListClass listClass : classes) {
        pixel++->listClass = listClass;
    }
    return pixels;
}

} // namespace

TEST(EditorFormat, IsAUserEntryALine)
{
#ifdef Q_OS_WIN
    EXPECT_EQ(contentOf("editor", Two).bytes, QByteArray("12 345 1\r\n640 2 1\r\n"));
#else
    EXPECT_EQ(contentOf("editor", Two).bytes, QByteArray("12 345 1\n640 2 1\n"));
#endif
    EXPECT_EQ(readText("editor", "12 345 1\n640 2 1\n").pixels,
              withClasses(Two, {PixelListClass::User, PixelListClass::User}));
}

TEST(EditorFormat, ReadsTheClasses)
{
    EXPECT_EQ(readText("editor", "1 1 0\n1 1 1\n1 1 2\n1 1 255\n").pixels,
              withClasses(pixelsAt({{1, 1}, {1, 1}, {1, 1}, {1, 1}}),
                          {PixelListClass::Factory, PixelListClass::User, PixelListClass::Ignored,
                           PixelListClass::Ignored}));
    EXPECT_EQ(readText("editor", "1 1 1 what follows\n").pixels.size(), 1U);
}

TEST(EditorFormat, RefusesWhatTheEditorWouldReadAsSomethingElse)
{
    for (const char* line : {"5 6", "", "5 6 256", "5,6,1", "5 6 1,", "012 6 1", "5 00 1", "5 6 01",
                             "0x5 6 1", "x y 1"}) {
        EXPECT_TRUE(refusal("editor", QByteArray("1 2 1\n") + line + "\n3 4 1\n")
                        .startsWith(QStringLiteral("LIST, line 2: expected x, y and a class ")))
            << line;
    }
}

TEST(CsvFormat, HasAHeader)
{
    EXPECT_EQ(contentOf("csv", Two).bytes, QByteArray("x,y\n12,345\n640,2\n"));
}

TEST(CsvFormat, IsReadWithAndWithoutAHeader)
{
    for (const char* text :
         {"12,345\n640,2\n", "x,y\n12,345\n640,2\n", "\"X\", \"Y\"\r\n12, 345\r\n 640 ,\t2\r\n",
          "y,x\n345,12\n2,640\n", "column,row\n12,345\n640,2\n", "\n12,345\n\n640,2\n"}) {
        const PixelListReading reading = readText("csv", text);
        EXPECT_EQ(reading.pixels, Two) << text;
        EXPECT_TRUE(reading.notes.isEmpty()) << text;
    }
}

TEST(CsvFormat, KeepsFurtherColumnsOutAndSaysSo)
{
    PixelListReading reading =
        readText("csv", "x,y,plane,noise,class\n12,345,x0y0,1.5,new\n640,2,,,\n");
    EXPECT_EQ(reading.pixels, Two);
    EXPECT_EQ(reading.notes, QStringList(QStringLiteral("columns left out: plane, noise, class")));
    reading = readText("csv", "12,345\n640,2,7,8,9\n");
    EXPECT_EQ(reading.pixels, Two);
    EXPECT_EQ(reading.notes, QStringList(QStringLiteral("columns left out: 3 behind x and y")));
}

TEST(CsvFormat, TakesValuesFromAColumnThatIsCalledSo)
{
    for (const char* name : {"mean", "value", "Mean"}) {
        const PixelListReading reading =
            readText("csv", QByteArray("x,y,plane,") + name + "\n1,2,Gr,51.8\n3,4,Gr,\n");
        ASSERT_EQ(reading.pixels.size(), 2U);
        EXPECT_EQ(reading.pixels[0].value, 51.8F);
        EXPECT_EQ(reading.pixels[1].value, std::nullopt);
    }
    for (const char* value : {"hot", "nan", "inf", "1,2"}) {
        const QByteArray line = QByteArray("1,2,") + value;
        EXPECT_EQ(refusal("csv", "x,y,mean\n" + line + "\n").isEmpty(), line.endsWith("1,2"))
            << value;
    }
}

TEST(CsvFormat, RefusesWhatHasNoColumnsXAndY)
{
    EXPECT_EQ(refusal("csv", "a,b\n1,2\n"),
              QStringLiteral("LIST, line 1: expected a header with the columns x and y, not "
                             "\"a,b\"."));
    for (const char* line :
         {"1", "1;2", "1 2", "1,", ",2", "1,b", "1,2.5", "x,y", "1,-2", "1,65536"}) {
        EXPECT_TRUE(refusal("csv", QByteArray("3,4\n") + line + "\n")
                        .startsWith(QStringLiteral("LIST, line 2: expected x,y ")))
            << line;
    }
}

TEST(DcrawFormat, HasATimeThatMeansAlways)
{
    EXPECT_EQ(contentOf("dcraw", Two).bytes, QByteArray("12 345 0\n640 2 0\n"));
}

TEST(DcrawFormat, NeedsAllThreeNumbers)
{
    EXPECT_EQ(readText("dcraw", "12 345 0\n640 2 1268085452 \n").pixels, Two);
    for (const char* line : {"12 345", "12", "12 345 x", "12 345 0,5", "12,345,0", "a # 1 2 3"}) {
        EXPECT_TRUE(refusal("dcraw", QByteArray("1 2 0\n") + line + "\n")
                        .startsWith(QStringLiteral("LIST, line 2: expected x, y and a time")))
            << line;
    }
}

TEST(DcrawFormat, SaysHowManyTimesAreLeftOut)
{
    EXPECT_TRUE(readText("dcraw", "1 2 0\n").notes.isEmpty());
    EXPECT_EQ(readText("dcraw", "1 2 0\n3 4 1268085452\n").notes,
              QStringList(QStringLiteral("1 entry has a time, which is left out")));
    EXPECT_EQ(readText("dcraw", "1 2 7\n3 4 1268085452\n").notes,
              QStringList(QStringLiteral("2 entries have a time, which is left out")));
}

TEST(DcrawFormat, HasCommentsAnywhere)
{
    EXPECT_EQ(readText("dcraw", "# all\n12 345 0# since ever\n  # none\n640 2 0 # 1 2 3\n").pixels,
              Two);
    EXPECT_FALSE(refusal("dcraw", "12 345 # 0\n").isEmpty());
}

TEST(DcrawFormat, HasLinesOfAtMost127Bytes)
{
    const QByteArray longest = "12 345 0 #" + QByteArray(127 - 10, '-');
    EXPECT_EQ(readText("dcraw", longest + "\n640 2 0\n").pixels, Two);
    EXPECT_TRUE(
        refusal("dcraw", longest + "-\n")
            .startsWith(QStringLiteral("LIST, line 1: expected a line of at most 127 bytes")));
}

TEST(RawtherapeeFormat, IsTwoNumbersALine)
{
    EXPECT_EQ(contentOf("rawtherapee", Two, Large).bytes, QByteArray("12 345\n640 2\n"));
    EXPECT_EQ(readText("rawtherapee", "12 345\n640 2 what follows\n").pixels, Two);
}

TEST(RawtherapeeFormat, AddsALoneNumberOnTheFirstLineToAllCoordinates)
{
    EXPECT_EQ(readText("rawtherapee", "2\n10 343\n638 0\n").pixels, Two);
    EXPECT_EQ(readText("rawtherapee", "-3\n15 348\n643 5\n").pixels, Two);
    EXPECT_EQ(refusal("rawtherapee", "1 2\n5\n").isEmpty(), false);
    EXPECT_EQ(refusal("rawtherapee", "-3\n2 5\n").isEmpty(), false);
    EXPECT_EQ(refusal("rawtherapee", "3\n65533 5\n").isEmpty(), false);
}

TEST(RawtherapeeFormat, RefusesACommaWhichRawTherapeeWouldTakeForAnOffset)
{
    for (const char* line : {"12,345", "12 ,345", "12, 345"}) {
        EXPECT_FALSE(refusal("rawtherapee", line).isEmpty()) << line;
    }
}

TEST(RawtherapeeFormat, IsNeverWrittenOutsideOfTheSensor)
{
    const PixelListContent content = contentOf("rawtherapee", pixelsAt({{9, 9}, {10, 9}, {9, 10}}),
                                               {.size = {10, 10}, .suffix = {}, .camera = {}});
    EXPECT_EQ(content.bytes, QByteArray("9 9\n"));
}

TEST(SirilFormat, TellsHotFromCold)
{
    PixelList pixels = Two;
    pixels[1].defect = PixelDefect::Cold;
    EXPECT_EQ(contentOf("siril", pixels, Large).bytes, QByteArray("P 12 345 H\nP 640 2 C\n"));
    pixels[0].defect = PixelDefect::Hot;
    EXPECT_EQ(readText("siril", "P 12 345 H\nP 640 2 C\n").pixels, pixels);
    EXPECT_EQ(readText("siril", "P 12 345\nP 640 2 h\n").pixels, pixels);
    EXPECT_EQ(readText("siril", "P 12 345 Hot\nP 640 2 X\n").pixels, pixels);
}

TEST(SirilFormat, HasCommentsInTheFirstColumnOnly)
{
    EXPECT_EQ(readText("siril", "#P 1 2 H\nP 12 345 H\n").pixels.size(), 1U);
    for (const char* line : {" # comment", "P 1 # 2", "P 1 2 # hot"}) {
        EXPECT_FALSE(refusal("siril", line).isEmpty()) << line;
    }
}

TEST(SirilFormat, RefusesWhatIsNoLineOfIt)
{
    for (const char* line : {"P 1", "P", "P1 2 H", "Q 1 2 H", "1 2", "p 1 2 H", "P 1,2,H",
                             "P 1 2 3", "L", "L x 0", "L,1", "C 1,0", " P 1 2 H"}) {
        EXPECT_TRUE(
            refusal("siril", line, {.size = {9, 9}, .lenient = false})
                .startsWith(QStringLiteral("LIST, line 1: expected P x y H, P x y C, L y 0")))
            << line;
    }
}

TEST(Phd2Format, BeginsWithTwoLinesThatSayWhatItIs)
{
    EXPECT_EQ(contentOf("phd2", Two).bytes,
              QByteArray("# PHD2 Defect Map v1\n# Defect count: 2\n12 345\n640 2\n"));
    EXPECT_EQ(contentOf("phd2", {}).bytes, QByteArray("# PHD2 Defect Map v1\n# Defect count: 0\n"));
}

TEST(Phd2Format, TakesTheFirstTwoWordsAndSkipsBlankLinesAndComments)
{
    EXPECT_EQ(readText("phd2", "# any\n\n 12 345 more words\n  # none\n   \n640\t2\n").pixels, Two);
    EXPECT_FALSE(refusal("phd2", "12,345").isEmpty());
}

TEST(MlvappFormat, IsTwoNumbersWithOneBlankAndNothingElseAtAll)
{
    const QByteArray text = contentOf("mlvapp", Two).bytes;
    EXPECT_EQ(text, QByteArray("12 345\n640 2\n"));
    EXPECT_FALSE(text.contains('#'));
    EXPECT_FALSE(text.contains(','));
    EXPECT_EQ(readText("mlvapp", "12 345\n640 2\n").pixels, Two);
}

TEST(MlvappFormat, MayBeginWithTheNumberOfTheCamera)
{
    EXPECT_EQ(readText("mlvapp", "#FPM 80000285\n12 345\n640 2\n").pixels, Two);
    EXPECT_EQ(readText("mlvapp", "#FPM 8000033f\r\n12 345\r\n640 2\r\n").pixels, Two);
}

TEST(MlvappFormat, RefusesWhatItsProgramWouldReadForEver)
{
    for (const char* line : {"# comment", "#FPM 80000285", "#FPM", "1,2", "1, 2", "1  2", " 1 2",
                             "1\t2", "1 2 ", "1 2 3", "1 2#"}) {
        EXPECT_TRUE(
            refusal("mlvapp", QByteArray("5 6\n") + line + "\n")
                .startsWith(QStringLiteral("LIST, line 2: expected x and y with one blank")))
            << line;
    }
    for (const char* line : {"#FPM", "#FPM ", "#FPM camera", "#fpm 80000285", "# FPM 80000285"}) {
        EXPECT_FALSE(refusal("mlvapp", line).isEmpty()) << line;
    }
}

TEST(ImperxFormat, CountsFromOneAndIsSortedByRowThenColumn)
{
    EXPECT_EQ(contentOf("imperx", pixelsAt({{640, 2}, {12, 345}, {0, 0}, {7, 2}})).bytes,
              QByteArray("-- Hot pixel map,\n:Table,\n-- Column(X),Row(Y)\n"
                         "1,1\n8,3\n641,3\n13,346\n"));
    EXPECT_EQ(contentOf("imperx", Two, forSuffix("dpm")).bytes,
              QByteArray("-- Defect pixel map,\n:Table,\n-- Column(X),Row(Y)\n641,3\n13,346\n"));
}

TEST(ImperxFormat, IsReadBehindAnyHeader)
{
    EXPECT_EQ(readText("imperx", "-- camera,\nanything else,\n:Table,\n-- Column(X),Row(Y)\n"
                                 "13,346\n 641 , 3 \n\n")
                  .pixels,
              Two);
    EXPECT_EQ(readText("imperx", QByteArray(255, '-') + ",\n:Table,\n-- Column(X),Row(Y)\n"
                                                        "1,1\n65536,65536\n")
                  .pixels,
              pixelsAt({{0, 0}, {65535, 65535}}));
}

TEST(ImperxFormat, RefusesAnotherHeader)
{
    EXPECT_EQ(refusal("imperx", "-- camera\n:Table,\n-- Column(X),Row(Y)\n1,1\n"),
              QStringLiteral("LIST, line 1: expected a header line that ends in a comma, up to "
                             "\":Table,\", not \"-- camera\"."));
    EXPECT_TRUE(refusal("imperx", QByteArray(256, '-') + ",\n:Table,\n")
                    .contains(QStringLiteral("at most 256 bytes")));
    EXPECT_TRUE(refusal("imperx", ":Table,\n1,1\n")
                    .contains(QStringLiteral("expected -- Column(X),Row(Y), not \"1,1\"")));
    EXPECT_TRUE(
        refusal("imperx", "").startsWith(QStringLiteral("LIST, line 1: expected a header")));
    EXPECT_TRUE(
        refusal("imperx", "--,\n").startsWith(QStringLiteral("LIST, line 2: expected a header")));
}

TEST(ImperxFormat, RefusesWhatIsNoEntryOfItsTable)
{
    for (const char* line : {"0,1", "1,0", "1 1", "1,1,1", "1,1,", "65537,1", "1", "a,b"}) {
        EXPECT_TRUE(refusal("imperx", QByteArray(":Table,\n-- Column(X),Row(Y)\n") + line + "\n")
                        .startsWith(QStringLiteral("LIST, line 3: expected x,y (numbers from 1")))
            << line;
    }
}

TEST(ImperxFormat, HasNoMoreEntriesThanCamerasTake)
{
    const PixelList hot(4096);
    const PixelList defects(1024);
    EXPECT_EQ(contentOf("imperx", hot).written, 4096U);
    EXPECT_EQ(contentOf("imperx", hot, forSuffix("hpm")).written, 4096U);
    EXPECT_EQ(contentOf("imperx", defects, forSuffix("dpm")).written, 1024U);
    EXPECT_THROW(contentOf("imperx", PixelList(4097)), PixelListError);
    EXPECT_THROW(contentOf("imperx", PixelList(1025), forSuffix("dpm")), PixelListError);
}

TEST(FixpixFormat, CountsFromOne)
{
    EXPECT_EQ(contentOf("fixpix", Two).bytes, QByteArray("13 346\n641 3\n"));
    EXPECT_EQ(readText("fixpix", "13 346\n # comment\n\n641 3\n").pixels, Two);
    EXPECT_EQ(readText("fixpix", "65536 65536\n").pixels, pixelsAt({{65535, 65535}}));
}

TEST(FixpixFormat, HasRectangles)
{
    EXPECT_EQ(readText("fixpix", "2 3 4 4\n", {.size = {9, 9}, .lenient = false}).pixels,
              pixelsAt({{1, 3}, {2, 3}}));
    for (const char* line : {"0 1", "1 0", "1", "1 2 3", "1 2 3 4 5", "3 2 1 1", "1 1 3 2", "1,2",
                             "65537 1", "1 2 x"}) {
        EXPECT_TRUE(refusal("fixpix", line, {.size = {9, 9}, .lenient = false})
                        .startsWith(QStringLiteral("LIST, line 1: expected x y or x1 x2 y1 y2")))
            << line;
    }
}
