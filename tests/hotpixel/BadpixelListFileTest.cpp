// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListFile.h"

#include "tests/hotpixel/PrintEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#ifdef Q_OS_UNIX
#include "tests/harness/AsNobody.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

using namespace std::string_literals;

namespace {

using Entries = std::vector<BadpixelEntry>;

class ListFile : public testing::Test
{
protected:
    [[nodiscard]] QString path(const QString& name = "list.txt") const
    {
        return m_folder.filePath(name);
    }

    void put(const QByteArray& content) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    [[nodiscard]] static QByteArray contentOf(const QString& filename)
    {
        QFile file(filename);
        return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : "missing";
    }

    [[nodiscard]] Entries read(const QByteArray& content) const
    {
        put(content);
        return hotpixel::readListFile(path());
    }

    /// What the text stream itself makes of the file.
    [[nodiscard]] Entries readByTextStream() const
    {
        Entries entries;
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
        QTextStream stream(&file);
        while (!stream.atEnd()) {
            QString line = stream.readLine();
            QTextStream fields(&line);
            unsigned x = 0xFFFFFFFF;
            unsigned y = 0xFFFFFFFF;
            unsigned pixelClass = 0xFFFFFFFF;
            fields >> x >> y >> pixelClass;
            entries.push_back({static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
                               static_cast<std::uint8_t>(pixelClass)});
        }
        return entries;
    }

    /// The text of the error that @p call throws.
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

    [[nodiscard]] std::string readError(const QString& filename) const
    {
        return errorOf([&] { static_cast<void>(hotpixel::readListFile(filename)); });
    }

    [[nodiscard]] std::string checkError(const QString& filename) const
    {
        return errorOf([&] { hotpixel::checkListFile(filename); });
    }

    [[nodiscard]] std::string writeError(const QString& filename, const Entries& entries) const
    {
        return errorOf([&] { hotpixel::writeListFile(filename, entries); });
    }

private:
    QTemporaryDir m_folder;
};

const Entries TwoUserEntries = {{12, 345, UserPixel}, {640, 2, UserPixel}};

} // namespace

TEST_F(ListFile, HoldsOneUserEntryPerLine)
{
    hotpixel::writeListFile(path(), TwoUserEntries);
    EXPECT_EQ(contentOf(path()), "12 345 1\n640 2 1\n");
}

TEST_F(ListFile, LeavesOutFactoryAndIgnoredEntries)
{
    const Entries entries = {{1, 1, FactoryPixel},
                             {2, 2, UserPixel},
                             {3, 3, IgnorePixel},
                             {4, 4, 255},
                             {5, 5, UserPixel}};
    hotpixel::writeListFile(path(), entries);
    EXPECT_EQ(contentOf(path()), "2 2 1\n5 5 1\n");
}

TEST_F(ListFile, IsEmptyForFactoryEntriesOnly)
{
    hotpixel::writeListFile(path(), Entries{{1, 1, FactoryPixel}, {2, 2, FactoryPixel}});
    EXPECT_EQ(contentOf(path()), "");
}

TEST_F(ListFile, HoldsTheGreatestCoordinates)
{
    hotpixel::writeListFile(path(), Entries{{65535, 65535, UserPixel}, {0, 0, UserPixel}});
    EXPECT_EQ(contentOf(path()), "65535 65535 1\n0 0 1\n");
}

TEST_F(ListFile, WritingReplacesALongerFile)
{
    put(QByteArray("9 9 1\n").repeated(1000));
    hotpixel::writeListFile(path(), TwoUserEntries);
    EXPECT_EQ(contentOf(path()), "12 345 1\n640 2 1\n");
}

TEST_F(ListFile, WritingLeavesNoOtherFileBehind)
{
    hotpixel::writeListFile(path(), TwoUserEntries);
    hotpixel::writeListFile(path(), TwoUserEntries);
    EXPECT_EQ(QFileInfo(path()).dir().entryList(QDir::Files | QDir::Hidden),
              QStringList{"list.txt"});
}

TEST_F(ListFile, CantBeWrittenIntoAMissingFolder)
{
    EXPECT_EQ(writeError(path("missing/list.txt"), TwoUserEntries), "Can't open file for writing.");
}

TEST_F(ListFile, CantBeWrittenOverAFolder)
{
    EXPECT_EQ(writeError(path("."), TwoUserEntries), "Can't open file for writing.");
    EXPECT_EQ(writeError(QString(), TwoUserEntries), "Can't open file for writing.");
}

TEST_F(ListFile, CantBeOpenedForWritingUnderANameThatNoFileCanHave)
{
    EXPECT_EQ(writeError(path(QString(256, u'n')), TwoUserEntries), "Can't open file for writing.");
}

TEST_F(ListFile, IsReplacedUnderTheLongestNameThatAFileCanHave)
{
    // The name of a temporary file beside it would be too long.
    const QString longest = path(QString(255, u'n'));
    for (const Entries& entries : {TwoUserEntries, Entries{{7, 8, UserPixel}}}) {
        EXPECT_EQ(writeError(longest, entries), "no error");
        EXPECT_EQ(hotpixel::readListFile(longest), entries);
    }
    EXPECT_EQ(QFileInfo(longest).dir().entryList(QDir::Files | QDir::Hidden),
              QStringList{QString(255, u'n')});
}

TEST_F(ListFile, CantBeReadWhenMissing)
{
    EXPECT_EQ(readError(path()), "Can't open file for reading.");
    EXPECT_EQ(readError(QString()), "Can't open file for reading.");
}

TEST_F(ListFile, CantBeReadFromAFolder)
{
    EXPECT_EQ(readError(path(".")), "Can't open file for reading.");
}

TEST_F(ListFile, ReadsWhatWasWritten)
{
    hotpixel::writeListFile(path(), TwoUserEntries);
    EXPECT_EQ(hotpixel::readListFile(path()), TwoUserEntries);
}

TEST_F(ListFile, HasNoEntriesWhenEmpty)
{
    EXPECT_EQ(read(""), Entries{});
}

struct LineCase
{
    const char* name;
    std::string content;
    Entries entries;
};

void PrintTo(const LineCase& line, std::ostream* out)
{
    *out << line.name;
}

class ListFileLine : public ListFile, public testing::WithParamInterface<LineCase>
{};

TEST_P(ListFileLine, IsReadAsTheTextStreamReadsIt)
{
    EXPECT_EQ(read(QByteArray::fromStdString(GetParam().content)), GetParam().entries);
    EXPECT_EQ(readByTextStream(), GetParam().entries);
}

INSTANTIATE_TEST_SUITE_P(
    , ListFileLine,
    testing::Values(
        LineCase{"AMissingClassIsZero", "5 6\n", {{5, 6, 0}}},
        LineCase{"AMissingRowIsZero", "5\n", {{5, 0, 0}}},
        LineCase{"AnEmptyLineIsAnEntry", "\n", {{0, 0, 0}}},
        LineCase{"EveryEmptyLineIsAnEntry", "\n\n\n", {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}},
        LineCase{"ABlankLineIsAnEntry", "  \t \n", {{0, 0, 0}}},
        LineCase{"OnlyTheLow16BitsOfX", "70000 3 1\n", {{4464, 3, 1}}},
        LineCase{"OnlyTheLow16BitsOfY", "3 65536 1\n", {{3, 0, 1}}},
        LineCase{"OnlyTheLow8BitsOfTheClass", "3 4 257\n", {{3, 4, 1}}},
        LineCase{"TheClassAsItStands",
                 "1 1 0\n1 1 2\n1 1 3\n1 1 255\n",
                 {{1, 1, 0}, {1, 1, 2}, {1, 1, 3}, {1, 1, 255}}},
        LineCase{"EqualLinesAreEqualEntries", "1 2 1\n1 2 1\n", {{1, 2, 1}, {1, 2, 1}}},
        LineCase{"AFinalLineWithoutLineEnd", "1 2 1\n3 4 1", {{1, 2, 1}, {3, 4, 1}}},
        LineCase{"AFinalLineThatEndsInADigitPrefix", "1 2 0", {{1, 2, 0}}},
        LineCase{"AnyBlanksAndTabs", " \t 1\t\t2   1\n", {{1, 2, 1}}},
        LineCase{"FormFeedsAndNoBreakSpacesAreBlanks", "1\f2\xC2\xA0"s + "1\n", {{1, 2, 1}}},
        LineCase{"TheRestOfTheLineIsIgnored", "1 2 1 99 text\n3 4 1\n", {{1, 2, 1}, {3, 4, 1}}},
        LineCase{"CrLfLineEnds", "1 2 1\r\n3 4 1\r\n", {{1, 2, 1}, {3, 4, 1}}},
        LineCase{"ALoneCarriageReturnIsNothing", "1\r2 3 1\n", {{12, 3, 1}}},
        LineCase{"ACarriageReturnAloneIsALine", "\r", {{0, 0, 0}}},
        LineCase{"NoNumberIsZeroAndStopsTheLine", "a 2 1\n", {{0, 0, 0}}},
        LineCase{"NoNumberInTheMiddleStopsTheLine", "5 a 1\n", {{5, 0, 0}}},
        LineCase{"ACommaStopsTheLine", "1,2,1\n", {{1, 0, 0}}},
        LineCase{"AFractionStopsTheLine", "1.5 2 1\n", {{1, 0, 0}}},
        LineCase{"AnExponentStopsTheLine", "1e5 2 1\n", {{1, 0, 0}}},
        LineCase{"NegativeNumbersWrapAround", "-5 -1 -1\n", {{65531, 65535, 255}}},
        LineCase{"APlusSignIsTaken", "+5 +6 +1\n", {{5, 6, 1}}},
        LineCase{"ASignEndsANumber", "5-3 1\n", {{5, 65533, 1}}},
        LineCase{"ASignAloneIsZero", "- 5 1\n", {{0, 5, 1}}},
        LineCase{"TheFirstOfTwoSignsIsZero", "--5 5 1\n", {{0, 65531, 5}}},
        LineCase{"HexadecimalWithItsPrefix", "0x10 0XfF 0x1\n", {{16, 255, 1}}},
        LineCase{"AHexadecimalPrefixAloneIsZero", "0x 5 1\n", {{0, 5, 1}}},
        LineCase{"HexadecimalEndsBeforeAnyOtherLetter", "0x1g 5 1\n", {{1, 0, 0}}},
        LineCase{"BinaryWithItsPrefix", "0b101 0B11 1\n", {{5, 3, 1}}},
        LineCase{"BinaryEndsBeforeTheDigit2", "0b12 1\n", {{1, 2, 1}}},
        LineCase{"ABinaryPrefixAloneStopsTheLine", "0b2 5 1\n", {{0, 0, 0}}},
        LineCase{"OctalWithALeadingZero", "010 0777 01\n", {{8, 511, 1}}},
        LineCase{"OctalEndsBeforeTheDigit9", "079 5\n", {{7, 9, 5}}},
        LineCase{"DecimalWithALeadingZeroBefore8", "08 09 1\n", {{8, 9, 1}}},
        LineCase{"ASignBeforeALeadingZeroIsDecimal", "-010 +010 1\n", {{65526, 10, 1}}},
        LineCase{"OverlongNumbersWrapAround",
                 "18446744073709551617 65537000000000000000000 1\n",
                 {{1, 0, 1}}},
        LineCase{"ANegativeThatWrapsKeepsItsSign",
                 "-9223372036854775809 -18446744073709551615 1\n",
                 {{1, 65535, 1}}},
        LineCase{"DigitsOfOtherScripts", "\u0661\u0662 \u0967 1\n", {{12, 1, 1}}},
        LineCase{"DigitsOfOtherScriptsAreNotOctal", "0\u0661 5 1\n", {{0, 0, 0}}},
        LineCase{"DigitsOfOtherScriptsBehindAZero", "0\u0669 5 1\n", {{9, 5, 1}}},
        LineCase{"OtherLettersStopTheLine", "\u00E4 1 1\n2 3 1\n", {{0, 0, 0}, {2, 3, 1}}},
        LineCase{"BytesThatAreNoUtf8StopTheLine", "\xFF\xC3 1 1\n2 3 1\n", {{0, 0, 0}, {2, 3, 1}}},
        LineCase{"NulBytesStopTheLine", "1 2\0 1\n3 4 1\n"s, {{1, 2, 0}, {3, 4, 1}}},
        LineCase{"AByteOrderMarkIsNoCharacter",
                 "\xEF\xBB\xBF"
                 "1 2 1\n",
                 {{1, 2, 1}}},
        LineCase{"AByteOrderMarkAloneIsALine", "\xEF\xBB\xBF", {{0, 0, 0}}},
        LineCase{"Utf16LittleEndian",
                 "\xFF\xFE"
                 "1\0 \0"
                 "2\0 \0"
                 "1\0\r\0\n\0"s,
                 {{1, 2, 1}}},
        LineCase{"Utf16BigEndian",
                 "\xFE\xFF\0"
                 "1\0 \0"
                 "2\0 \0"
                 "1\0\n"s,
                 {{1, 2, 1}}},
        LineCase{"Utf32LittleEndian",
                 "\xFF\xFE\0\0"
                 "1\0\0\0 \0\0\0"
                 "2\0\0\0 \0\0\0"
                 "1\0\0\0\n\0\0\0"s,
                 {{1, 2, 1}}},
        LineCase{"Utf16WithoutAMarkStopsEachLine",
                 "1\0 \0"
                 "2\0\n\0"s,
                 {{1, 0, 0}, {0, 0, 0}}}),
    [](const auto& line) { return std::string(line.param.name); });

TEST_F(ListFile, IsReadAsTheTextStreamReadsItForRandomText)
{
    const std::vector<QByteArray> pieces = {"0",
                                            "1",
                                            "2",
                                            "7",
                                            "8",
                                            "9",
                                            "65536",
                                            "99999999999999999999",
                                            "-9223372036854775808",
                                            " ",
                                            " ",
                                            " ",
                                            "\t",
                                            "\n",
                                            "\n",
                                            "\r\n",
                                            "\r",
                                            "-",
                                            "+",
                                            "x",
                                            "0x",
                                            "0X1f",
                                            "b",
                                            "0b",
                                            "0b1",
                                            "f",
                                            "A",
                                            "e",
                                            ".",
                                            ",",
                                            "#",
                                            "\"",
                                            "\u00A0",
                                            "\u0660",
                                            "\u0669",
                                            "\u2028",
                                            "\u0085",
                                            "\v",
                                            "\f",
                                            "\xC3",
                                            "\xFF",
                                            QByteArray(1, '\0'),
                                            "\U0001D7D8"};
    std::mt19937 random(20261120); // NOLINT(bugprone-random-generator-seed): repeatable
    std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(0, 60);
    for (int round = 0; round < 2000; ++round) {
        QByteArray content;
        for (int count = length(random); count > 0; --count) {
            content += pieces[piece(random)];
        }
        // Carriage returns behind the last line end are a line of their own or not, depending on
        // where the text stream's buffer ends.
        content += random() % 2 == 0 ? "1\n" : "1";
        const Entries entries = read(content);
        ASSERT_EQ(entries, readByTextStream()) << content.toPercentEncoding(" ").toStdString();
    }
}

TEST_F(ListFile, IsReadAcrossTheEdgesOfItsBuffer)
{
    // 65,521 lines of 7 bytes: line ends, numbers and characters of two bytes lie across the edges
    // of every block size that is a power of two.
    QByteArray content;
    Entries expected;
    for (int line = 0; line < 65521; ++line) {
        content += "12\u00A0"
                   "3\r\n";
        expected.push_back({12, 3, 0});
    }
    EXPECT_EQ(read(content), expected);
    EXPECT_EQ(readByTextStream(), expected);
}

TEST_F(ListFile, NeedsNoMemoryForALongLine)
{
    // 64 MiB of NUL bytes behind the three numbers, as a sparse file. No reader that keeps the line
    // could do with the memory that is allowed here.
    put("1 2 1 ");
    QFile file(path());
    ASSERT_TRUE(file.resize(0x4000000));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("\n3 4 1\n");
    file.close();
    EXPECT_EQ(hotpixel::readListFile(path()), (Entries{{1, 2, 1}, {3, 4, 1}}));
}

#ifdef Q_OS_UNIX
TEST_F(ListFile, CantBeReadFromAPipeOrADevice)
{
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    EXPECT_EQ(readError(path("pipe")), "Can't open file for reading.");
    EXPECT_EQ(readError("/dev/zero"), "Can't open file for reading.");
}

TEST_F(ListFile, CantBeWrittenIntoAPipe)
{
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    EXPECT_EQ(writeError(path("pipe"), TwoUserEntries), "Can't open file for writing.");
}

TEST_F(ListFile, CantBeReadWithoutPermission)
{
    put("1 2 1\n");
    ASSERT_EQ(chmod(qPrintable(path(".")), 0777), 0);
    ASSERT_EQ(chmod(qPrintable(path()), 0), 0);
    const AsNobody nobody;
    EXPECT_EQ(readError(path()), "Can't open file for reading.");
}

TEST_F(ListFile, CantBeWrittenWithoutPermission)
{
    put("1 2 1\n");
    ASSERT_EQ(chmod(qPrintable(path(".")), 0777), 0);
    ASSERT_EQ(chmod(qPrintable(path()), 0444), 0);
    const AsNobody nobody;
    EXPECT_EQ(writeError(path(), TwoUserEntries), "Can't open file for writing.");
    EXPECT_EQ(contentOf(path()), "1 2 1\n");
}

TEST_F(ListFile, IsWrittenInPlaceWhereNoOtherFileCanBeMade)
{
    ASSERT_EQ(chmod(qPrintable(path(".")), 0755), 0);
    ASSERT_TRUE(QDir(path(".")).mkdir("folder"));
    const QString list = path("folder/list.txt");
    hotpixel::writeListFile(list, Entries{{9, 9, UserPixel}});
    ASSERT_EQ(chmod(qPrintable(list), 0666), 0);
    ASSERT_EQ(chmod(qPrintable(path("folder")), 0555), 0);
    {
        const AsNobody nobody;
        EXPECT_EQ(writeError(list, TwoUserEntries), "no error");
        EXPECT_EQ(contentOf(list), "12 345 1\n640 2 1\n");
        EXPECT_EQ(writeError(list, Entries{{7, 8, UserPixel}}), "no error");
        EXPECT_EQ(contentOf(list), "7 8 1\n") << "the end of a longer list is left";
        EXPECT_EQ(writeError(list, {}), "no error");
        EXPECT_EQ(contentOf(list), "");
        EXPECT_EQ(writeError(path("folder/new.txt"), TwoUserEntries),
                  "Can't open file for writing.");
    }
    ASSERT_EQ(chmod(qPrintable(path("folder")), 0755), 0);
}

TEST_F(ListFile, IsKnownBeforeToBeOneThatCantBeWritten)
{
    put("9 9 1\n");
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    ASSERT_TRUE(QDir(path(".")).mkdir("closed"));
    ASSERT_EQ(chmod(qPrintable(path(".")), 0777), 0);
    ASSERT_EQ(chmod(qPrintable(path()), 0444), 0);
    ASSERT_EQ(chmod(qPrintable(path("closed")), 0555), 0);
    {
        const AsNobody nobody;
        for (const QString& name :
             {QString(), path("."), path("pipe"), path(), path("missing/list"), path("closed/list"),
              path(QString(256, u'n'))}) {
            EXPECT_EQ(checkError(name), "Can't open file for writing.") << qPrintable(name);
            EXPECT_EQ(writeError(name, TwoUserEntries), "Can't open file for writing.")
                << qPrintable(name);
        }
    }
    EXPECT_EQ(contentOf(path()), "9 9 1\n");
}

TEST_F(ListFile, IsAsBeforeWhenItIsKnownToBeOneThatCanBeWritten)
{
    put("9 9 1\n");
    ASSERT_TRUE(QFile::link(path("target.txt"), path("link.txt")));
    for (const QString& name : {path(), path("new.txt"), path("link.txt"), QString("/dev/null")}) {
        EXPECT_EQ(checkError(name), "no error") << qPrintable(name);
    }
    EXPECT_EQ(contentOf(path()), "9 9 1\n");
    EXPECT_EQ(QDir(path(".")).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
              (QStringList{"link.txt", "list.txt"}));
}

TEST_F(ListFile, SaysThatADeviceIsFull)
{
    if (!QFile::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    EXPECT_EQ(writeError("/dev/full", TwoUserEntries), "Can't write file.");
    EXPECT_EQ(writeError("/dev/null", TwoUserEntries), "no error");
    EXPECT_FALSE(QFileInfo("/dev/full").isFile()) << "the device was replaced by a file";
}

TEST_F(ListFile, WritingKeepsASymbolicLink)
{
    put("9 9 1\n");
    ASSERT_TRUE(QFile::link(path(), path("link.txt")));
    hotpixel::writeListFile(path("link.txt"), TwoUserEntries);
    EXPECT_TRUE(QFileInfo(path("link.txt")).isSymLink());
    EXPECT_EQ(contentOf(path()), "12 345 1\n640 2 1\n");
}

TEST_F(ListFile, WritingKeepsTheFilesPermissions)
{
    put("9 9 1\n");
    ASSERT_EQ(chmod(qPrintable(path()), 0640), 0);
    hotpixel::writeListFile(path(), TwoUserEntries);
    struct stat status = {};
    ASSERT_EQ(stat(qPrintable(path()), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(ListFile, AFullDiskLeavesTheOldFileAsItWas)
{
    put("9 9 1\n");
    // The limit of file sizes stands in for the disk: writing fails half-way in the same manner.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    rlimit limited = unlimited;
    limited.rlim_cur = 50000;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const std::string large = writeError(path(), Entries(20000, {12, 345, UserPixel}));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &unlimited), 0);

    EXPECT_EQ(large, "Can't write file.");
    EXPECT_EQ(contentOf(path()), "9 9 1\n");
    EXPECT_EQ(QFileInfo(path()).dir().entryList(QDir::Files | QDir::Hidden),
              QStringList{"list.txt"});
}
#endif
