// SPDX-License-Identifier: MIT
// `convert`, `diff` and `merge`, and the other commands' lists in other formats.

#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "hotpixel/BadpixelListFile.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

/// What a run of the companion left behind.
struct Outcome
{
    int status = -1;
    QByteArray out;
    QByteArray err;

    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

/// The companion amid files of its own, with two small cameras: S1 has the Dev number 1, S2 has 2.
/// @p arguments are separated by blanks; DIR is the folder, in what is printed as well.
class ListCommands : public testing::Test
{
protected:
    ListCommands()
    {
        for (const char* serial : {"S1", "S2"}) {
            CameraDescription camera;
            camera.serial = QLatin1String(serial);
            camera.model = QStringLiteral("Small");
            camera.devId = static_cast<std::uint32_t>(m_bus.cameras.size()) + 1;
            camera.width = 64;
            camera.height = 48;
            m_bus.cameras.push_back(camera);
        }
        m_bus.speed = 40;
        m_bus.eepromFolder = path("eeprom");
    }

    [[nodiscard]] QString path(const char* name) const
    {
        return m_folder.filePath(QLatin1String(name));
    }

    Outcome run(QString arguments)
    {
        arguments.replace(QStringLiteral("DIR"), m_folder.path());
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion(
            [this]() -> std::unique_ptr<CameraSdk> {
                ++m_sdks;
                return std::make_unique<SimulatedCameraSdk>(m_bus);
            },
            {}, recorded.console(), interruption);
        Outcome outcome;
        outcome.status =
            companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' '));
        outcome.out = recorded.out().replace(m_folder.path().toUtf8(), "DIR");
        outcome.err = recorded.err().replace(m_folder.path().toUtf8(), "DIR");
        return outcome;
    }

    void write(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    [[nodiscard]] QByteArray contentOf(const char* name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    }

    /// The lists of a camera as the command `read` tells them.
    QJsonObject listsOf(const char* camera)
    {
        return run(QStringLiteral("read %1 --json").arg(QLatin1String(camera))).json();
    }

    QTemporaryDir m_folder;
    BusDescription m_bus;
    int m_sdks = 0;
};

} // namespace

TEST_F(ListCommands, ConvertSaysInNumbersWhatIsLostAndEndsWithTheAccount)
{
    write("in.txt", "0 5 1\n7 0 0\n12 345 1\n64 1 1\n");
    const Outcome outcome = run(QStringLiteral("convert DIR/in.txt DIR/out.json --size 64x400"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(outcome.out, "DIR/in.txt: editor, 4 entries\n"
                           "DIR/out.json: kstars\n"
                           "  1 outside 64 × 400 left out\n"
                           "  1 factory entry has no class in this format\n"
                           "  x = 0: 1 entry that KStars never corrects\n"
                           "  y = 0: 1 entry that KStars never corrects\n"
                           "4 read, 3 written\n");
    EXPECT_EQ(outcome.err, QByteArray());
    const QJsonObject map = QJsonDocument::fromJson(contentOf("out.json")).object();
    EXPECT_EQ(map[QStringLiteral("hot")].toArray().size(), 3);
    EXPECT_EQ(m_sdks, 0);
}

TEST_F(ListCommands, ConvertTellsMachinesTheSame)
{
    write("in.csv", "x,y,plane\n1,2,Gr\nbad\n3,4,Gr\n");
    const Outcome outcome =
        run(QStringLiteral("convert DIR/in.csv DIR/out.txt --size 3x9 --lenient --json"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.json(),
              QJsonDocument::fromJson(
                  R"({"in":{"name":"DIR/in.csv","source":"csv","entries":2,"badLines":1,
                            "notes":["columns left out: plane"]},
                      "out":{"name":"DIR/out.txt","format":"editor","written":1,
                             "losses":["1 outside 3 × 9 left out"]}})")
                  .object());
    EXPECT_EQ(outcome.err, QByteArray("DIR/in.csv, line 3: expected x,y (numbers from 0 to 65535), "
                                      "not \"bad\".\n"));
}

TEST_F(ListCommands, ConvertTakesTheFormatFromTheNameWhereThatIsClear)
{
    write("in.txt", "1 2 1\n");
    EXPECT_EQ(run(QStringLiteral("convert DIR/in.txt DIR/out.lst --size 9x9")).status, 0);
    EXPECT_EQ(contentOf("out.lst"), QByteArray("P 1 2 H\n"));
    Outcome outcome = run(QStringLiteral("convert DIR/in.txt DIR/out.badpixels"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err,
              QByteArray("vorn-hotpixel: DIR/out.badpixels may be a list of dcraw or rawtherapee; "
                         "--to says which. See \"vorn-hotpixel convert --help\".\n"));
    outcome = run(QStringLiteral("convert DIR/in.txt DIR/out.badpixels --to dcraw"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(contentOf("out.badpixels"), QByteArray("1 2 0\n"));
    outcome = run(QStringLiteral("convert DIR/out.badpixels DIR/back.csv"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.err.contains("--from says which."));
    outcome = run(QStringLiteral("convert DIR/in.txt DIR/out"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(
        outcome.err.contains("The name DIR/out does not say what format the list has; --to does."));
    EXPECT_FALSE(QFile::exists(path("out")));
    outcome = run(QStringLiteral("convert DIR/in.txt DIR/out --to nothing"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(
        outcome.err.contains("There is no format \"nothing\"; there are editor, csv, dcraw, "));
}

// What is told outweighs the name.
TEST_F(ListCommands, ConvertTakesTheFormatThatItIsTold)
{
    write("map.txt", "# PHD2 Defect Map v1\n# Defect count: 1\n1 2\n");
    EXPECT_EQ(run(QStringLiteral("convert DIR/map.txt DIR/out.txt --from phd2 --to fixpix")).status,
              0);
    EXPECT_EQ(contentOf("out.txt"), QByteArray("2 3\n"));
}

TEST_F(ListCommands, ConvertLeavesTheOldFileWhenSomethingIsWrong)
{
    write("good.txt", "1 2 1\n");
    write("bad.txt", "1 2 1\n3 4\n");
    write("many.csv", QByteArray("1,1\n").repeated(1025));
    const struct
    {
        const char* arguments;
        int status;
        const char* error;
    } cases[] = {
        {"DIR/bad.txt DIR/old.csv", 1,
         "DIR/bad.txt, line 2: expected x, y and a class (numbers without leading zeros), not \"3 "
         "4\"."},
        {"DIR/none.txt DIR/old.csv", 1, "Can't open file for reading. (DIR/none.txt: "},
        {"DIR/none.png DIR/old.csv", 1, "Can't open file for reading. (DIR/none.png: "},
        {"DIR/eeprom.txt DIR/old.csv", 1, "is a folder, not a list file."},
        {"DIR/good.txt DIR/old.csv --to siril", 2, "A list of siril can't be written without the"},
        {"DIR/good.txt DIR/old.csv --to mask", 2, "A list of mask can't be written without the"},
        {"DIR/good.txt DIR/old.fits --size 9x9", 2, "masks are written as PNG files only."},
        {"DIR/many.csv DIR/old.dpm", 1, "imperx: 1025 entries, and a defect pixel map takes 1024"},
        {"DIR/good.txt DIR/old.csv --size 9", 2, "The size has to be a width and a height"},
        {"DIR/good.txt DIR/old.csv --size 0x9", 2, "The size has to be"},
        {"DIR/good.txt DIR/old.csv --size 65537x9", 2, "The size has to be"},
        {"DIR/good.txt DIR/old.csv --offset 1", 2, "The offset has to be two whole numbers"},
        {"DIR/good.txt DIR/old.csv --offset 1,b", 2, "The offset has to be two whole numbers"},
        {"DIR/good.txt DIR/old.csv --value 3", 2, "Only masks have a --value."},
        {"DIR/good.txt DIR/old.png --size 9x9 --value 256", 2, "The value has to be"},
        {"DIR/good.txt DIR/old.png --size 9x9 --value 0", 2, "The value has to be"},
        {"DIR/good.txt", 2, "OUT is missing."},
        {"DIR/good.txt DIR/old.csv DIR/more", 2, "is too much."},
        {"DIR/good.txt DIR/no/such.csv", 1, "there is no such folder."},
    };
    QDir(m_folder.path()).mkdir(QStringLiteral("eeprom.txt"));
    for (const auto& [arguments, status, error] : cases) {
        for (const char* name : {"old.csv", "old.fits", "old.dpm", "old.png"}) {
            write(name, "what was there");
        }
        const Outcome outcome = run(QStringLiteral("convert ") + QLatin1String(arguments));
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_TRUE(outcome.err.contains(error)) << arguments << '\n' << outcome.err.constData();
        EXPECT_EQ(outcome.err.count('\n'), 1) << arguments;
        for (const char* name : {"old.csv", "old.fits", "old.dpm", "old.png"}) {
            EXPECT_EQ(contentOf(name), QByteArray("what was there")) << arguments;
        }
    }
}

TEST_F(ListCommands, ConvertMovesPixels)
{
    write("in.csv", "10,20\n0,5\n");
    const Outcome outcome = run(QStringLiteral("convert DIR/in.csv DIR/out.txt --offset -8,3"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_TRUE(outcome.out.endsWith("DIR/out.txt: editor\n"
                                     "  1 outside the sensor after the offset left out\n"
                                     "2 read, 1 written\n"))
        << outcome.out.constData();
    EXPECT_EQ(contentOf("out.txt").trimmed(), QByteArray("2 23 1"));
}

TEST_F(ListCommands, ConvertMayReplaceTheListItself)
{
    write("list.csv", "10,20\n");
    EXPECT_EQ(run(QStringLiteral("convert DIR/list.csv DIR/list.csv --offset 1,1")).status, 0);
    EXPECT_EQ(contentOf("list.csv"), QByteArray("x,y\n11,21\n"));
}

TEST_F(ListCommands, ConvertMakesMasksAndReadsThem)
{
    write("in.csv", "3,4\n63,47\n3,4\n64,0\n");
    Outcome outcome = run(QStringLiteral("convert DIR/in.csv DIR/mask.png --size 64x48"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_TRUE(outcome.out.endsWith("DIR/mask.png: mask\n"
                                     "  1 outside 64 × 48 left out\n"
                                     "  1 listed more than once\n"
                                     "4 read, 2 written\n"))
        << outcome.out.constData();
    const QImage mask(path("mask.png"));
    ASSERT_EQ(mask.size(), QSize(64, 48));
    ASSERT_EQ(mask.format(), QImage::Format_Grayscale8);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool bad = (x == 3 && y == 4) || (x == 63 && y == 47);
            EXPECT_EQ(mask.constScanLine(y)[x], bad ? 255 : 0);
        }
    }
    // It says how large the sensor is.
    outcome = run(QStringLiteral("convert DIR/mask.png DIR/back.lst"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(contentOf("back.lst"), QByteArray("P 3 4 H\nP 63 47 H\n"));
}

TEST_F(ListCommands, ConvertKnowsOneValueOfAMask)
{
    for (const auto format : {QImage::Format_Grayscale8, QImage::Format_Grayscale16}) {
        QImage image(8, 2, format);
        image.fill(0);
        const auto set = [&image](int x, int y, quint16 value) {
            if (image.format() == QImage::Format_Grayscale16) {
                reinterpret_cast<quint16*>(image.scanLine(y))[x] = value;
            } else {
                image.scanLine(y)[x] = static_cast<uchar>(value);
            }
        };
        set(1, 0, 4);
        set(2, 1, 200);
        ASSERT_TRUE(image.save(path("mask.png")));
        EXPECT_EQ(run(QStringLiteral("convert DIR/mask.png DIR/all.csv")).status, 0);
        EXPECT_EQ(contentOf("all.csv"), QByteArray("x,y\n1,0\n2,1\n"));
        EXPECT_EQ(run(QStringLiteral("convert DIR/mask.png DIR/some.csv --value 4")).status, 0);
        EXPECT_EQ(contentOf("some.csv"), QByteArray("x,y\n1,0\n"));
    }
    EXPECT_EQ(run(QStringLiteral("convert DIR/some.csv DIR/m.png --size 8x2 --value 9")).status, 0);
    EXPECT_EQ(QImage(path("m.png")).constScanLine(0)[1], 9);
}

TEST_F(ListCommands, ConvertReadsMasksFromFits)
{
    QByteArray fits;
    for (const char* card : {"SIMPLE  =                    T", "BITPIX  =                    8",
                             "NAXIS   =                    2", "NAXIS1  =                    3",
                             "NAXIS2  =                    2", "END"}) {
        fits += QByteArray(card).leftJustified(80);
    }
    constexpr qsizetype Block = 2880;
    fits = fits.leftJustified(Block) + QByteArray("\0\1\0\0\0\2", 6) + QByteArray(Block - 6, '\0');
    write("mask.fits", fits);
    const Outcome outcome = run(QStringLiteral("convert DIR/mask.fits DIR/out.csv"));
    if (outcome.err.contains("without CFITSIO")) {
        GTEST_SKIP() << outcome.err.constData();
    }
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(contentOf("out.csv"), QByteArray("x,y\n1,0\n2,1\n"));
}

TEST_F(ListCommands, ConvertTakesNoColourImageForAMask)
{
    QImage image(8, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(path("photo.png")));
    const Outcome outcome = run(QStringLiteral("convert DIR/photo.png DIR/out.csv"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.startsWith("vorn-hotpixel: DIR/photo.png: "))
        << outcome.err.constData();
    EXPECT_FALSE(QFile::exists(path("out.csv")));
}

TEST_F(ListCommands, ConvertMakesTheListFilesThatTheEditorMakes)
{
    std::mt19937 random(1);
    std::vector<BadpixelEntry> entries;
    QByteArray text;
    for (int i = 0; i < 500; ++i) {
        const BadpixelEntry entry{static_cast<std::uint16_t>(random()),
                                  static_cast<std::uint16_t>(random()), UserPixel};
        entries.push_back(entry);
        text += QByteArray::number(entry.x) + ',' + QByteArray::number(entry.y) + '\n';
    }
    write("in.csv", text);
    EXPECT_EQ(run(QStringLiteral("convert DIR/in.csv DIR/out.txt")).status, 0);
    EXPECT_EQ(contentOf("out.txt"), hotpixel::listFileContent(entries));
    EXPECT_EQ(hotpixel::readListFile(path("out.txt")), entries);
}

TEST_F(ListCommands, DiffEndsWithStatus0ForTheSamePixels)
{
    write("a.txt", "1 2 1\n3 4 1\n");
    write("b.csv", "3,4\n1,2\n");
    const Outcome outcome = run(QStringLiteral("diff DIR/a.txt DIR/b.csv"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(outcome.out, QByteArray("DIR/a.txt: editor, 2 entries\n"
                                      "DIR/b.csv: csv, 2 entries\n"
                                      "In both: 2\n"));
    EXPECT_EQ(m_sdks, 0);
}

TEST_F(ListCommands, DiffEndsWithStatus1AndShowsWhatIsAddedRemovedAndChanged)
{
    write("a.txt", "1 2 1\n3 4 1\n9 9 1\n8 8 1\n");
    write("b.txt", "3 4 0\n1 2 1\n5 6 1\n");
    const Outcome outcome = run(QStringLiteral("diff DIR/a.txt DIR/b.txt"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, QByteArray());
    EXPECT_EQ(outcome.out, QByteArray("DIR/a.txt: editor, 4 entries\n"
                                      "DIR/b.txt: editor, 3 entries\n"
                                      "Added: 1\n"
                                      "  (5, 6)\n"
                                      "Removed: 2\n"
                                      "  (9, 9)  (8, 8)\n"
                                      "Class changed: 1\n"
                                      "  (3, 4) from user to factory\n"
                                      "In both: 2\n"));
    const QJsonObject json = run(QStringLiteral("diff DIR/a.txt DIR/b.txt --json")).json();
    EXPECT_EQ(json[QStringLiteral("same")], false);
    EXPECT_EQ(json[QStringLiteral("added")], (QJsonArray{QJsonArray{5, 6}}));
    EXPECT_EQ(json[QStringLiteral("removed")], (QJsonArray{QJsonArray{9, 9}, QJsonArray{8, 8}}));
    EXPECT_EQ(json[QStringLiteral("changed")],
              (QJsonArray{QJsonObject{{QStringLiteral("x"), 3},
                                      {QStringLiteral("y"), 4},
                                      {QStringLiteral("before"), QStringLiteral("user")},
                                      {QStringLiteral("after"), QStringLiteral("factory")}}}));
    EXPECT_EQ(json[QStringLiteral("both")], 2);
}

TEST_F(ListCommands, DiffEndsWithStatus2AndOneLineForTrouble)
{
    write("a.txt", "1 2 1\n");
    write("bad.txt", "1 2\n");
    for (const char* arguments :
         {"DIR/a.txt DIR/none.txt", "DIR/a.txt DIR/bad.txt", "DIR/a.txt", "DIR/a.txt 9",
          "DIR/a.txt DIR/a.txt --tolerance x", "DIR/a.txt DIR/a.txt --tolerance 101",
          "DIR/a.txt DIR/a.txt --format nothing", "DIR/a.txt DIR/a.txt --no-option",
          "DIR/a.txt DIR/a.txt --format csv",
          "DIR/a.txt DIR/a.txt --format editor --format editor --format csv"}) {
        const Outcome outcome = run(QStringLiteral("diff ") + QLatin1String(arguments));
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.out, QByteArray()) << arguments;
        EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.constData();
    }
    EXPECT_EQ(run(QStringLiteral("diff DIR/a.txt DIR/bad.txt --lenient")).status, 1);
}

TEST_F(ListCommands, DiffThatCantBePrintedIsTrouble)
{
    std::FILE* full = std::fopen("/dev/full", "w");
    if (full == nullptr) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    write("a.csv", "1,2\n");
    write("b.csv", "1,3\n");
    std::FILE* err = std::tmpfile();
    for (const char* other : {"a.csv", "b.csv"}) {
        Console console(stdin, full, err);
        Interruption interruption;
        Companion companion([]() -> std::unique_ptr<CameraSdk> { return nullptr; }, {}, console,
                            interruption);
        EXPECT_EQ(companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("diff"),
                                 path("a.csv"), path(other)}),
                  2)
            << other;
    }
    std::fclose(full);
    std::fclose(err);
}

TEST_F(ListCommands, DiffTakesPixelsThatLieNearForTheSame)
{
    write("a.csv", "10,10\n20,20\n");
    write("b.csv", "12,11\n20,20\n");
    EXPECT_EQ(run(QStringLiteral("diff DIR/a.csv DIR/b.csv --tolerance 1")).status, 1);
    const Outcome outcome = run(QStringLiteral("diff DIR/a.csv DIR/b.csv --tolerance 2"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.endsWith("In both: 2, 1 of them beside each other\n"));
}

TEST_F(ListCommands, DiffTakesAFormatForAllFilesOrOneForEach)
{
    write("a", "1 2\n");
    write("b.csv", "1,2\n");
    write("c", "1 2 extra\n");
    EXPECT_EQ(run(QStringLiteral("diff DIR/a DIR/c")).status, 2);
    EXPECT_EQ(run(QStringLiteral("diff DIR/a DIR/c --format phd2")).status, 0);
    EXPECT_EQ(run(QStringLiteral("diff DIR/a DIR/b.csv --format phd2 --format csv")).status, 0);
    EXPECT_EQ(run(QStringLiteral("diff DIR/c DIR/b.csv --format phd2 --format csv")).status, 0);
}

TEST_F(ListCommands, DiffMakesPixelsOfRowsWhereTheSizeIsTold)
{
    write("a.lst", "L 1 0\n");
    write("b.csv", "0,1\n1,1\n2,1\n");
    EXPECT_EQ(run(QStringLiteral("diff DIR/a.lst DIR/b.csv --size 3x2")).status, 0);
    EXPECT_EQ(run(QStringLiteral("diff DIR/a.lst DIR/b.csv")).status, 2);
}

TEST_F(ListCommands, DiffComparesCamerasWithFilesAndWithEachOther)
{
    Outcome outcome = run(QStringLiteral("diff S1 1"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_TRUE(outcome.out.startsWith("S1: Small, SerNo S1, Dev 1, 9 entries\n"))
        << outcome.out.constData();
    EXPECT_EQ(run(QStringLiteral("diff S1 S2")).status, 1);

    // The list file of the user list lacks the factory entries.
    ASSERT_EQ(run(QStringLiteral("read S1 --out DIR/user.txt")).status, 0);
    outcome = run(QStringLiteral("diff S1 DIR/user.txt --json"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.json()[QStringLiteral("removed")], listsOf("S1")[QStringLiteral("factory")]);
    EXPECT_EQ(outcome.json()[QStringLiteral("both")], 3);
    EXPECT_EQ(run(QStringLiteral("diff S1 DIR/user.txt --user")).status, 0);

    const QJsonArray first = listsOf("S1")[QStringLiteral("factory")].toArray()[0].toArray();
    write("one.txt",
          QStringLiteral("%1 %2 1\n").arg(first[0].toInt()).arg(first[1].toInt()).toLatin1());
    outcome = run(QStringLiteral("diff DIR/one.txt S1 --json"));
    EXPECT_EQ(outcome.json()[QStringLiteral("changed")].toArray().size(), 1);
    EXPECT_EQ(outcome.json()[QStringLiteral("added")].toArray().size(), 8);

    outcome = run(QStringLiteral("diff S1 S9"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, QByteArray("vorn-hotpixel: There is no file \"S9\", and no camera with "
                                      "this Dev number or serial number is connected.\n"));
}

TEST_F(ListCommands, MergePutsListsTogetherAndEndsWithTheAccount)
{
    write("a.txt", "1 2 1\n3 4 1\n");
    write("b.csv", "3,4\n5,6\n");
    const Outcome outcome = run(QStringLiteral("merge DIR/a.txt DIR/b.csv --out DIR/all.txt"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(outcome.out, QByteArray("DIR/a.txt: editor, 2 entries\n"
                                      "DIR/b.csv: csv, 2 entries\n"
                                      "Pixels of at least 1 list: 3\n"
                                      "DIR/all.txt: editor\n"
                                      "4 read, 3 written\n"));
    EXPECT_EQ(
        hotpixel::readListFile(path("all.txt")),
        (std::vector<BadpixelEntry>{{1, 2, UserPixel}, {3, 4, UserPixel}, {5, 6, UserPixel}}));
}

TEST_F(ListCommands, MergeKeepsWhatEnoughListsHave)
{
    write("a.csv", "1,2\n3,4\n");
    write("b.csv", "3,4\n5,6\n");
    write("c.csv", "3,4\n1,2\n");
    Outcome outcome =
        run(QStringLiteral("merge DIR/a.csv DIR/b.csv DIR/c.csv --vote 2 --out DIR/two.csv"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains("Pixels of at least 2 lists: 2\n"));
    EXPECT_TRUE(outcome.out.endsWith("6 read, 2 written\n"));
    EXPECT_EQ(contentOf("two.csv"), QByteArray("x,y\n1,2\n3,4\n"));
    outcome = run(QStringLiteral("merge DIR/a.csv DIR/b.csv DIR/c.csv --vote 3 --out DIR/three.csv"
                                 " --json"));
    EXPECT_EQ(contentOf("three.csv"), QByteArray("x,y\n3,4\n"));
    EXPECT_EQ(outcome.json()[QStringLiteral("pixels")], 1);
    EXPECT_EQ(outcome.json()[QStringLiteral("lists")].toArray().size(), 3);
}

TEST_F(ListCommands, MergeRefusesWhatMakesNoSenseBeforeItSaves)
{
    write("a.csv", "1,2\n");
    write("out.csv", "what was there");
    for (const char* arguments : {"DIR/a.csv --out DIR/out.csv", "DIR/a.csv DIR/a.csv",
                                  "DIR/a.csv DIR/a.csv --out DIR/out.csv --vote 0",
                                  "DIR/a.csv DIR/a.csv --out DIR/out.csv --vote 3",
                                  "DIR/a.csv DIR/a.csv --out DIR/out.csv --to siril",
                                  "DIR/a.csv DIR/a.csv --out DIR/out.badpixels"}) {
        const Outcome outcome = run(QStringLiteral("merge ") + QLatin1String(arguments));
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.err.count('\n'), 1) << arguments;
    }
    EXPECT_EQ(run(QStringLiteral("merge DIR/a.csv DIR/none.csv --out DIR/out.csv")).status, 1);
    EXPECT_EQ(contentOf("out.csv"), QByteArray("what was there"));
}

TEST_F(ListCommands, MergeWritesTheFormatThatItReadUnlessTheNameSaysAnother)
{
    write("a.badpixels", "1 2 0\n");
    const QString merge = QStringLiteral("merge DIR/a.badpixels DIR/a.badpixels --format dcraw ");
    EXPECT_EQ(run(merge + QStringLiteral("--out DIR/b.badpixels")).status, 0);
    EXPECT_EQ(contentOf("b.badpixels"), QByteArray("1 2 0\n"));
    EXPECT_EQ(run(merge + QStringLiteral("--out DIR/b.csv")).status, 0);
    EXPECT_EQ(contentOf("b.csv"), QByteArray("x,y\n1,2\n"));
    EXPECT_EQ(run(merge + QStringLiteral("--out DIR/b.csv --to phd2")).status, 0);
    EXPECT_TRUE(contentOf("b.csv").startsWith("# PHD2"));
}

TEST_F(ListCommands, MergeOfCamerasKnowsTheSizeOfTheSensor)
{
    const Outcome outcome = run(QStringLiteral("merge S1 S2 --out DIR/both.png"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(QImage(path("both.png")).size(), QSize(64, 48));
    EXPECT_TRUE(outcome.out.contains("  12 factory entries have no class in this format\n"))
        << outcome.out.constData();
}

TEST_F(ListCommands, ReadSavesTheUserListInAnyFormat)
{
    const QJsonArray user = listsOf("S1")[QStringLiteral("user")].toArray();
    QByteArray expected = "x,y\n";
    for (const QJsonValue& place : user) {
        expected += QByteArray::number(place[0].toInt()) + ',' +
                    QByteArray::number(place[1].toInt()) + '\n';
    }
    Outcome outcome = run(QStringLiteral("read S1 --out DIR/user.csv"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_EQ(contentOf("user.csv"), expected);
    EXPECT_TRUE(outcome.out.endsWith("DIR/user.csv: csv\nUser list saved to DIR/user.csv\n"
                                     "3 read, 3 written\n"))
        << outcome.out.constData();
    EXPECT_EQ(run(QStringLiteral("read S1 --out DIR/user --format csv")).status, 0);
    EXPECT_EQ(contentOf("user"), expected);
    // The size is the camera's, and so is the name.
    EXPECT_EQ(run(QStringLiteral("read S1 --out DIR/user.lst")).status, 0);
    EXPECT_EQ(contentOf("user.lst").count("P "), 3);
    EXPECT_EQ(run(QStringLiteral("read S1 --out DIR/user.json")).status, 0);
    EXPECT_TRUE(contentOf("user.json").contains("\"camera\": \"Small\""));
    outcome = run(QStringLiteral("read S1 --out DIR/user.csv --json"));
    EXPECT_EQ(outcome.json()[QStringLiteral("list")].toObject()[QStringLiteral("written")], 3);
    EXPECT_EQ(run(QStringLiteral("read S1 --format csv")).status, 2);
    EXPECT_EQ(run(QStringLiteral("read S1 --out DIR/user.badpixels")).status, 2);
}

TEST_F(ListCommands, ReadSavesOtherNamesAsTheListFilesOfThisProgram)
{
    ASSERT_EQ(run(QStringLiteral("read S1 --out DIR/user.txt")).status, 0);
    for (const char* name : {"user", "user.list"}) {
        const Outcome outcome = run(QStringLiteral("read S1 --out DIR/") + QLatin1String(name));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(contentOf(name), contentOf("user.txt"));
        EXPECT_FALSE(outcome.out.contains("read, "));
    }
}

TEST_F(ListCommands, ReadNamesTheFilesOfSeveralCamerasAsTheFormatHasIt)
{
    EXPECT_EQ(run(QStringLiteral("read all --out DIR/tables --format csv")).status, 0);
    EXPECT_EQ(run(QStringLiteral("read all --out DIR/lists")).status, 0);
    for (const char* name : {"tables/S1.csv", "tables/S2.csv", "lists/S1.txt", "lists/S2.txt"}) {
        EXPECT_TRUE(QFile::exists(path(name))) << name;
    }
    EXPECT_TRUE(contentOf("tables/S2.csv").startsWith("x,y\n"));
}

TEST_F(ListCommands, DetectSavesTheListInAnyFormatWithTheValuesThatItFound)
{
    QImage frame(20, 10, QImage::Format_Grayscale8);
    frame.fill(10);
    frame.scanLine(2)[5] = 90;
    ASSERT_TRUE(frame.save(path("dark.png")));
    const Outcome outcome =
        run(QStringLiteral("detect --frames DIR/dark.png --mono --out DIR/found.json"));
    EXPECT_EQ(outcome.status, 0) << outcome.err.constData();
    EXPECT_TRUE(outcome.out.endsWith("DIR/found.json: kstars\nSaved to DIR/found.json: 1 entry\n"
                                     "1 read, 1 written\n"))
        << outcome.out.constData();
    EXPECT_TRUE(contentOf("found.json").contains("{\"x\": 5, \"y\": 2, \"value\": 90}"))
        << contentOf("found.json").constData();
    EXPECT_EQ(
        run(QStringLiteral("detect --frames DIR/dark.png --mono --out DIR/found --format siril"))
            .status,
        0);
    EXPECT_EQ(contentOf("found"), QByteArray("P 5 2 H\n"));
}

TEST_F(ListCommands, DetectedTablesBecomeMapsWithTheirValues)
{
    QImage frame(20, 10, QImage::Format_Grayscale8);
    frame.fill(10);
    frame.scanLine(2)[5] = 90;
    ASSERT_TRUE(frame.save(path("dark.png")));
    ASSERT_EQ(run(QStringLiteral("detect --frames DIR/dark.png --mono --csv DIR/found.csv")).status,
              0);
    const Outcome outcome = run(QStringLiteral("convert DIR/found.csv DIR/found.json"));
    EXPECT_TRUE(outcome.out.contains("columns left out: plane, temporalNoise, greatest, class\n"))
        << outcome.out.constData();
    EXPECT_TRUE(contentOf("found.json").contains("{\"x\": 5, \"y\": 2, \"value\": 90}"));
}

TEST_F(ListCommands, WriteTakesAListOfAnyFormat)
{
    const auto userList = [this] { return listsOf("S1")[QStringLiteral("user")].toArray(); };
    const QJsonArray two{QJsonArray{1, 2}, QJsonArray{3, 4}};
    qputenv("XDG_DATA_HOME", path("data").toLocal8Bit());
    write("list.csv", "x,y\n1,2\n3,4\n");
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list.csv --yes")).status, 0);
    EXPECT_EQ(userList(), two);
    write("list.lst", "C 7 0\n");
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list.lst --yes")).status, 1);
    EXPECT_EQ(userList(), two);
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list.lst --yes --size 64x48")).status, 0);
    EXPECT_EQ(userList().size(), 48);
    write("list", "1 2 0\n3 4 0\n");
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list --yes --format dcraw")).status, 0);
    EXPECT_EQ(userList(), two);
    // Without a word it is a list file of this program, of which each line has to be a user entry.
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list --yes")).status, 1);
    write("cold.lst", "P 1 2 H\nP 3 4 C\n");
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/cold.lst --yes")).err,
              QByteArray("DIR/cold.lst: cold pixels become user entries like hot ones: 1\n"));
    write("bad.csv", "1,2\nbad\n");
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/bad.csv --yes")).status, 1);
    EXPECT_EQ(run(QStringLiteral("write S1 DIR/list.badpixels --yes")).status, 2);
    EXPECT_EQ(userList(), two);
}
