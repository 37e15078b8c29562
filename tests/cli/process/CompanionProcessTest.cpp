// SPDX-License-Identifier: MIT
#include "cli/EntryText.h"
#include "hotpixel/BadpixelListFile.h"
#include "tests/cli/process/CompanionFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

#include <csignal>

namespace {

using Entries = std::vector<BadpixelEntry>;

const Entries ThreeEntries{{1, 2, UserPixel}, {63, 47, UserPixel}, {64, 5, UserPixel}};
constexpr auto ThreeLines = "1 2 1\n63 47 1\n64 5 1\n";

/// Its only line, without the line end and the program's name.
QByteArray errorLine(const Finished& finished)
{
    EXPECT_EQ(finished.err.count('\n'), 1) << finished.err.constData();
    EXPECT_TRUE(finished.err.startsWith("vorn-hotpixel-demo: ")) << finished.err.constData();
    return finished.err.mid(finished.err.indexOf(' ') + 1).trimmed();
}

QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(fileName);
    return file.readAll();
}

Entries entriesOf(const QJsonArray& array)
{
    Entries entries;
    for (const QJsonValue& pair : array) {
        entries.push_back({static_cast<std::uint16_t>(pair.toArray().at(0).toInt()),
                           static_cast<std::uint16_t>(pair.toArray().at(1).toInt()), UserPixel});
    }
    return entries;
}

} // namespace

TEST(CompanionProcess, ListsTheCameras)
{
    const CompanionFixture fixture(
        "[camera1]\nserial=111\nmodel=One\ncamId=7\ndevId=5\n"
        "[camera2]\nserial=22222\nmodel=Second\ncamId=8\ndevId=16\nheldElsewhere=true\n");
    const Finished text = fixture.run(QStringLiteral("cameras"));
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, QByteArray("Cam  Dev  Model   SerNo  Status\n"
                                   "7    5    One     111    free\n"
                                   "8    16   Second  22222  in use\n"));
    EXPECT_EQ(text.err, QByteArray());

    const QJsonArray cameras = fixture.run(QStringLiteral("cameras --json"))
                                   .json()
                                   .value(QStringLiteral("cameras"))
                                   .toArray();
    ASSERT_EQ(cameras.size(), 2);
    EXPECT_EQ(cameras[1].toObject(),
              (QJsonObject{{QStringLiteral("cam"), 8},
                           {QStringLiteral("dev"), 16},
                           {QStringLiteral("model"), QStringLiteral("Second")},
                           {QStringLiteral("serNo"), QStringLiteral("22222")},
                           {QStringLiteral("status"), QStringLiteral("in use")}}));
}

TEST(CompanionProcess, ListsNoCamerasWithANotice)
{
    const CompanionFixture fixture("[camera1]\nplugged=false\n");
    const Finished text = fixture.run(QStringLiteral("cameras"));
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, QByteArray());
    EXPECT_EQ(text.err, QByteArray("No camera is connected.\n"));
    EXPECT_EQ(fixture.run(QStringLiteral("cameras --json")).out, QByteArray("{\"cameras\":[]}\n"));
}

TEST(CompanionProcess, NamesACameraByItsDevNumberOrItsSerialNumber)
{
    const CompanionFixture fixture(
        "[camera1]\nserial=1000\ndevId=7\n[camera2]\nserial=7\ndevId=1000\n"
        "[camera3]\nserial=S3\ndevId=3\n");
    const QByteArray byDev = fixture.run(QStringLiteral("read 3")).out;
    EXPECT_TRUE(byDev.contains("SerNo S3, Dev 3"));
    EXPECT_EQ(fixture.run(QStringLiteral("read S3")).out, byDev);

    const Finished both = fixture.run(QStringLiteral("read 1000"));
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(errorLine(both), QByteArray("\"1000\" is the Dev number of one camera and the serial "
                                          "number of another."));
}

TEST(CompanionProcess, FailsWithOneLineForACameraThatCantBeOpened)
{
    const CompanionFixture fixture(smallCamera("[camera2]\nserial=S2\nheldElsewhere=true\n"
                                               "[camera3]\nserial=S3\nplugged=false\n"));
    const QString list = fixture.write(QStringLiteral("list.txt"), ThreeLines);
    for (const char* command : {"read", "detect", "write --yes"}) {
        const QString arguments =
            QLatin1String(command) + QLatin1String(" CAMERA") +
            QLatin1String(command == std::string_view("write --yes") ? " %1" : "");
        for (const char* camera : {"9", "S", "S3"}) {
            const Finished missing = fixture.run(
                QString(arguments).replace(QLatin1String("CAMERA"), QLatin1String(camera)), list);
            EXPECT_EQ(missing.status, 1);
            EXPECT_EQ(missing.out, QByteArray());
            EXPECT_EQ(errorLine(missing),
                      QByteArray("No camera with the Dev number or serial number \"") + camera +
                          "\" is connected.");
        }
        const Finished used = fixture.run(
            QString(arguments).replace(QLatin1String("CAMERA"), QLatin1String("S2")), list);
        EXPECT_EQ(used.status, 1);
        EXPECT_EQ(errorLine(used),
                  QByteArray("The camera (Simulated, SerNo S2, Dev 2) is in use by "
                             "another program."));
    }
}

TEST(CompanionProcess, FindsACameraInUseThatItsOtherCopyHasOpen)
{
    const CompanionFixture fixture(smallCamera().replace("speed=40", "speed=0.05"));
    const std::unique_ptr<QProcess> first =
        fixture.start({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--cover")});
    ASSERT_TRUE(CompanionFixture::waitForError(*first, "Taking 10 dark frames"));
    const Finished second = fixture.run(QStringLiteral("read 1"));
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(errorLine(second),
              QByteArray("The camera (Small, SerNo S1, Dev 1) is in use by another program."));
    EXPECT_TRUE(fixture.run(QStringLiteral("cameras")).out.contains("in use"));
    first->terminate();
    EXPECT_EQ(CompanionFixture::finish(*first).status, 1);
}

TEST(CompanionProcess, ReadsBothLists)
{
    const CompanionFixture fixture(smallCamera());
    const QString saved = fixture.file(QStringLiteral("saved.txt"));
    const Finished text = fixture.run(QStringLiteral("read S1 --out %1"), saved);
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.err, QByteArray());
    const Entries user = fixture.eeprom(QStringLiteral("S1"));
    ASSERT_EQ(user.size(), 3);
    EXPECT_EQ(hotpixel::readListFile(saved), user);
    const QList<QByteArray> lines = text.out.split('\n');
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[0], QByteArray("Small, SerNo S1, Dev 1"));
    EXPECT_EQ(lines[1], QByteArray("Factory list: 2 entries"));
    EXPECT_EQ(lines[3], QByteArray("User list: 3 entries, at most 16"));
    for (const BadpixelEntry& entry : user) {
        EXPECT_TRUE(
            lines[4].contains(QStringLiteral("(%1, %2)").arg(entry.x).arg(entry.y).toLatin1()));
    }
    EXPECT_EQ(lines[5], QByteArray("User list saved to ") + saved.toLocal8Bit());

    const QJsonObject json = fixture.run(QStringLiteral("read S1 --json")).json();
    EXPECT_EQ(entriesOf(json[QStringLiteral("user")].toArray()), user);
    EXPECT_EQ(json[QStringLiteral("factory")].toArray().size(), 2);
    EXPECT_EQ(json[QStringLiteral("capacity")].toInt(), 16);
}

TEST(CompanionProcess, WritesAListThatTheNextProcessReadsBack)
{
    const CompanionFixture fixture(smallCamera());
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    const Finished written = fixture.run(QStringLiteral("write 1 %1 --yes"),
                                         fixture.write(QStringLiteral("list.txt"), ThreeLines));
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err,
              QByteArray("Note: 1 entry at x = 64, behind the sensor's last column, as "
                         "a detection lists them.\n"));
    EXPECT_EQ(
        entriesOf(
            fixture.run(QStringLiteral("read 1 --json")).json()[QStringLiteral("user")].toArray()),
        ThreeEntries);
    const QStringList backups = fixture.backups();
    ASSERT_EQ(backups.size(), 1);
    EXPECT_EQ(hotpixel::readListFile(backups.front()), before);
    EXPECT_EQ(written.out, "Small, SerNo S1, Dev 1\n"
                           "Added: 3 entries\n"
                           "  (1, 2)    (63, 47)  (64, 5)\n"
                           "Removed: 3 entries\n" +
                               cli::entryColumns(before).toLatin1() +
                               "\nWritten into the camera and read back: 3 entries of at most 16\n"
                               "The list before (3 entries) is saved in " +
                               backups.front().toLocal8Bit() + '\n');
}

TEST(CompanionProcess, TellsMachinesWhatItWrote)
{
    const CompanionFixture fixture(smallCamera());
    const QString empty = fixture.write(QStringLiteral("empty.txt"), "");
    const QJsonObject json =
        fixture.run(QStringLiteral("write 1 %1 --yes --allow-empty --json"), empty).json();
    const QJsonObject written = json[QStringLiteral("written")].toObject();
    EXPECT_EQ(json[QStringLiteral("file")].toString(), empty);
    EXPECT_EQ(written[QStringLiteral("entries")].toInt(-1), 0);
    EXPECT_EQ(written[QStringLiteral("replaced")].toInt(-1), 3);
    EXPECT_EQ(fixture.backups(), QStringList(written[QStringLiteral("backup")].toString()));
    EXPECT_TRUE(fixture.eeprom(QStringLiteral("S1")).empty());
}

TEST(CompanionProcess, WritesNothingThatIsNotAListForThisCamera)
{
    const CompanionFixture fixture(smallCamera());
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    QByteArray tooLong;
    for (int x = 1; x <= 17; ++x) {
        tooLong += QByteArray::number(x) + " 1 1\n";
    }
    const struct
    {
        QString name;
        QByteArray content;
        QByteArray message;
    } cases[] = {
        {QStringLiteral("long"), tooLong,
         "The list has 17 user entries, but the camera can store 16 at most."},
        {QStringLiteral("right"), "1 1 1\n65 1 1\n",
         "The entry (65, 1) lies outside the sensor of 64 × 48 pixels."},
        {QStringLiteral("below"), "1 48 1\n",
         "The entry (1, 48) lies outside the sensor of 64 × 48 pixels."},
        {QStringLiteral("class"), "1 1 1\n5 5 0\n",
         "%1, line 2: this is no user entry (x, y and the class 1)."},
        {QStringLiteral("zero"), "1 1 1\n012 3 1\n",
         "%1, line 2: 012 has a leading zero, with which the editor reads it as octal."},
        {QStringLiteral("words"), "Dear diary,\n",
         "%1, line 1: this is no user entry (x, y and the class 1)."},
    };
    for (const auto& [name, content, message] : cases) {
        const QString list = fixture.write(name, content);
        const Finished refused = fixture.run(QStringLiteral("write 1 %1 --yes --json"), list);
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.out, QByteArray());
        EXPECT_EQ(errorLine(refused), QByteArray(message).replace("%1", list.toLocal8Bit()));
    }
    EXPECT_EQ(errorLine(fixture.run(QStringLiteral("write 1 %1 --yes"),
                                    fixture.file(QStringLiteral("eeprom")))),
              fixture.file(QStringLiteral("eeprom")).toLocal8Bit() +
                  " is a folder, not a list file.");
    const QString missing = fixture.file(QStringLiteral("missing.txt"));
    EXPECT_TRUE(errorLine(fixture.run(QStringLiteral("write 1 %1 --yes"), missing))
                    .startsWith("Can't open file for reading. (" + missing.toLocal8Bit()));
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
    EXPECT_TRUE(fixture.backups().isEmpty());
}

TEST(CompanionProcess, WipesAListOnlyWhenItIsToldTo)
{
    const CompanionFixture fixture(smallCamera());
    fixture.run(QStringLiteral("read 1"));
    // No pixel is brighter than the mean by 255.
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    const QString empty = fixture.write(QStringLiteral("empty.txt"), "");
    const QByteArray message = "The new list is empty; use --allow-empty to wipe the user list in "
                               "the camera (3 entries).";

    const Finished written = fixture.run(QStringLiteral("write 1 %1 --yes --json"), empty);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.out, QByteArray());
    EXPECT_EQ(errorLine(written), message);
    const Finished detected = fixture.run(
        QStringLiteral("detect 1 --cover --clear --threshold 255 --write --yes --json"));
    EXPECT_EQ(detected.status, 1);
    EXPECT_TRUE(detected.err.endsWith(message + '\n')) << detected.err.constData();
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
    EXPECT_TRUE(fixture.backups().isEmpty());

    EXPECT_EQ(fixture
                  .run(QStringLiteral("detect 1 --cover --clear --threshold 255 --write --yes "
                                      "--allow-empty"))
                  .status,
              0);
    EXPECT_TRUE(fixture.eeprom(QStringLiteral("S1")).empty());
    EXPECT_EQ(fixture.backups().size(), 1);
    // There is nothing left that could be wiped.
    EXPECT_EQ(fixture.run(QStringLiteral("write 1 %1 --yes"), empty).status, 0);
}

TEST(CompanionProcess, RefusesToOverwriteWithoutAQuestionOrYes)
{
    const CompanionFixture fixture(smallCamera());
    const Finished refused = fixture.run(QStringLiteral("write 1 %1"),
                                         fixture.write(QStringLiteral("list.txt"), ThreeLines));
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(errorLine(refused).contains("use --yes"));
    EXPECT_FALSE(QFileInfo::exists(fixture.file(QStringLiteral("eeprom"))));
}

TEST(CompanionProcess, WritesNothingWhenTheOldListCantBeSaved)
{
    const CompanionFixture fixture(smallCamera());
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    fixture.write(QStringLiteral("data"), "in the way of the folder of this name");
    const Finished refused = fixture.run(QStringLiteral("write 1 %1 --yes --json"),
                                         fixture.write(QStringLiteral("list.txt"), "1 2 1\n"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(errorLine(refused).startsWith("Can't save the old list in "));
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
}

TEST(CompanionProcess, LeavesTheOldFileWhenTheResultCantBeSaved)
{
    const CompanionFixture fixture(smallCamera());
    const Finished folder =
        fixture.run(QStringLiteral("read 1 --out %1"), fixture.file(QStringLiteral(".")));
    EXPECT_EQ(folder.status, 1);
    EXPECT_TRUE(errorLine(folder).endsWith(": it is a folder."));

    const Finished nowhere = fixture.run(QStringLiteral("read 1 --out %1"),
                                         fixture.file(QStringLiteral("no/where.txt")));
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_TRUE(errorLine(nowhere).endsWith(": there is no such folder."));

    if (QFileInfo::exists(QStringLiteral("/dev/full"))) {
        const Finished full = fixture.run(QStringLiteral("read 1 --out /dev/full"));
        EXPECT_EQ(full.status, 1);
        EXPECT_TRUE(errorLine(full).startsWith("Can't save to /dev/full: "));
        EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile());
    }
}

TEST(CompanionProcess, FindsOutBeforeTheFramesThatTheResultCantBeSaved)
{
    const CompanionFixture fixture(smallCamera());
    const QString longName = fixture.file(QString(256, u'n'));
    const Finished tooLong =
        fixture.run(QStringLiteral("detect 1 --cover --clear --json --out %1"), longName);
    EXPECT_EQ(tooLong.status, 1);
    EXPECT_EQ(tooLong.out, QByteArray());
    EXPECT_EQ(errorLine(tooLong),
              "Can't save to " + longName.toLocal8Bit() + ": Can't open file for writing.");
    EXPECT_FALSE(QFileInfo::exists(fixture.file(QStringLiteral("eeprom"))))
        << "a camera was opened";

    const QString list = fixture.write(QStringLiteral("list.txt"), "9 9 1\n");
    EXPECT_EQ(fixture.run(QStringLiteral("detect 7 --out %1"), list).status, 1);
    EXPECT_EQ(contentOf(list), QByteArray("9 9 1\n")) << "looking changed the file";
    const QString missing = fixture.file(QStringLiteral("missing.txt"));
    EXPECT_EQ(fixture.run(QStringLiteral("detect 7 --out %1"), missing).status, 1);
    EXPECT_FALSE(QFileInfo::exists(missing)) << "looking made a file";
}

TEST(CompanionProcess, NotesEntriesBehindTheSensorWithAndWithoutAFile)
{
    const CompanionFixture fixture(smallCamera());
    ASSERT_EQ(fixture
                  .run(QStringLiteral("write 1 %1 --yes"),
                       fixture.write(QStringLiteral("list.txt"), "1 2 1\n64 5 1\n"))
                  .status,
              0);
    const QByteArray note =
        "Note: 1 entry at x = 64, behind the sensor's last column, as a detection lists them.\n";
    const QString list = fixture.file(QStringLiteral("out.txt"));
    for (const char* options : {"", " --json", " --out %1", " --out %1 --write --yes"}) {
        const Finished finished = fixture.run(
            QStringLiteral("detect 1 --cover --threshold 255") + QLatin1String(options), list);
        EXPECT_EQ(finished.status, 0) << finished.err.constData();
        EXPECT_EQ(finished.err.count(note), 1) << options << finished.err.constData();
    }
    EXPECT_FALSE(fixture.run(QStringLiteral("detect 1 --cover --clear --threshold 255"))
                     .err.contains("Note"));
}

TEST(CompanionProcess, DetectsUnderTheLensCapAndSavesAndWrites)
{
    const CompanionFixture fixture(smallCamera());
    const QString list = fixture.file(QStringLiteral("list.txt"));
    const Finished found =
        fixture.run(QStringLiteral("detect 1 --cover --auto --clear --out %1 --write --yes"), list);
    EXPECT_EQ(found.status, 0) << found.err.constData();
    const Entries saved = hotpixel::readListFile(list);
    EXPECT_FALSE(saved.empty());
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), saved);
    EXPECT_EQ(fixture.backups().size(), 1);
    EXPECT_TRUE(found.out.contains("Sensor: 64 × 48 pixels, raw Bayer\n"));
    EXPECT_TRUE(found.out.contains("Already known: 2 in the factory list, 0 in the user list\n"));
    EXPECT_TRUE(found.out.contains("odd columns, odd rows"));

    // Everything is known by now.
    const QJsonObject again = fixture.run(QStringLiteral("detect 1 --cover --auto --json")).json();
    EXPECT_EQ(again[QStringLiteral("outcome")].toString(), QStringLiteral("found"));
    EXPECT_EQ(again[QStringLiteral("found")].toInt(-1), 0);
    EXPECT_EQ(again[QStringLiteral("known")].toObject()[QStringLiteral("user")].toInt(),
              static_cast<int>(saved.size()));
}

TEST(CompanionProcess, RefusesASceneThatIsNotDark)
{
    const CompanionFixture fixture(
        "[bus]\nspeed=40\n[camera1]\nserial=S1\nwidth=320\nheight=240\n");
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    const QString list = fixture.write(QStringLiteral("list.txt"), "1 2 1\n");
    const Finished bright =
        fixture.run(QStringLiteral("detect 1 --auto --clear --json --out %1 --write --yes"), list);
    EXPECT_EQ(bright.status, 1);
    EXPECT_EQ(bright.json()[QStringLiteral("outcome")].toString(), QStringLiteral("not-dark"));
    EXPECT_TRUE(bright.err.endsWith("vorn-hotpixel-demo: Too many Hotpixel have been found. Please "
                                    "make sure that the sensor is completely obscured.\n"));
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
    EXPECT_EQ(contentOf(list), QByteArray("1 2 1\n"));
}

TEST(CompanionProcess, TakesNothingOverWhenTheCameraCantStoreIt)
{
    const CompanionFixture fixture(smallCamera().replace("userCapacity=16", "userCapacity=4"));
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    const QString list = fixture.write(QStringLiteral("list.txt"), "1 2 1\n");
    const Finished full =
        fixture.run(QStringLiteral("detect 1 --cover --auto --json --out %1 --write --yes"), list);
    EXPECT_EQ(full.status, 1);
    const QJsonObject json = full.json();
    const int there = json[QStringLiteral("foundWithoutLimit")].toInt();
    EXPECT_EQ(json[QStringLiteral("outcome")].toString(), QStringLiteral("too-many"));
    EXPECT_GT(there, 4);
    EXPECT_TRUE(full.err.endsWith("vorn-hotpixel-demo: Can't add more than 4 hotpixel entries. The "
                                  "frames hold " +
                                  QByteArray::number(there) +
                                  " hotpixels; none was taken over.\n"));
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
    EXPECT_EQ(contentOf(list), QByteArray("1 2 1\n"));
}

TEST(CompanionProcess, ReadsAndSavesAListThatIsLongerThanTheEditorShowsButRefusesToDetectWithIt)
{
    const CompanionFixture fixture(smallCamera()
                                       .replace("userCapacity=16", "userCapacity=5000")
                                       .replace("factoryEntries=2", "factoryEntries=0"));
    QByteArray lines;
    for (int i = 0; i < 1500; ++i) {
        lines += QByteArray::number(i % 64) + ' ' + QByteArray::number(i / 64) + " 1\n";
    }
    const QString list = fixture.write(QStringLiteral("list.txt"), lines);
    EXPECT_EQ(fixture.run(QStringLiteral("write 1 %1 --yes"), list).status, 0);
    const QString back = fixture.file(QStringLiteral("back.txt"));
    EXPECT_EQ(fixture.run(QStringLiteral("read 1 --json --out %1"), back).status, 0);
    EXPECT_EQ(contentOf(back), lines);
    const Finished refused = fixture.run(QStringLiteral("detect 1 --cover"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(errorLine(refused),
              QByteArray("The camera's lists are too long: a detection can take "
                         "over 1000 entries of each."));
    EXPECT_EQ(fixture
                  .run(QStringLiteral("write 1 %1 --yes"),
                       fixture.write(QStringLiteral("short.txt"), "1 2 1\n"))
                  .status,
              0);
    EXPECT_EQ(contentOf(fixture.backups().last()), lines);
}

TEST(CompanionProcess, KnowsTheLensCapInTheDemoOnlyForDetection)
{
    const CompanionFixture fixture(smallCamera());
    EXPECT_TRUE(fixture.run(QStringLiteral("detect --help")).out.contains("--cover"));
    EXPECT_FALSE(fixture.run(QStringLiteral("read --help")).out.contains("--cover"));
}

TEST(CompanionProcess, PassesOnWhatTheCameraHasToSayAboutItsFirmware)
{
    const CompanionFixture fixture(smallCamera("firmwareUpload=true\nfirmwareUploadMsec=2000\n"));
    const Finished first = fixture.run(QStringLiteral("read 1"));
    EXPECT_EQ(first.status, 0);
    EXPECT_TRUE(first.err.startsWith("Upload of new firmware required. (approx. "))
        << first.err.constData();
    EXPECT_EQ(fixture.run(QStringLiteral("read 1")).err, QByteArray());
}

TEST(CompanionProcess, SaysNothingOfASettingsFileThatIsNotThereButOfOneThatIsWrong)
{
    const CompanionFixture fixture(smallCamera());
    EXPECT_EQ(fixture.run(QStringLiteral("read 1")).err, QByteArray());
    fixture.write(QStringLiteral("VornHotpixelEditor.ini"), "[nonsense]\nnothing=7\n");
    const Finished wrong = fixture.run(QStringLiteral("read 1"));
    EXPECT_EQ(wrong.status, 0);
    EXPECT_EQ(wrong.err.count('\n'), 1) << wrong.err.constData();
}

#ifdef Q_OS_LINUX

TEST(CompanionProcess, HasNoWidgetsInIt)
{
    const CompanionFixture fixture(smallCamera().replace("speed=40", "speed=0.05"));
    const std::unique_ptr<QProcess> process =
        fixture.start({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--cover")});
    ASSERT_TRUE(CompanionFixture::waitForError(*process, "Taking 10 dark frames"));
    const QByteArray mapped = contentOf(QStringLiteral("/proc/%1/maps").arg(process->processId()));
    EXPECT_TRUE(mapped.contains("libQt6Core")) << mapped.constData();
    EXPECT_FALSE(mapped.contains("libQt6Widgets")) << mapped.constData();
    process->terminate();
    EXPECT_EQ(CompanionFixture::finish(*process).status, 1);
}

#endif

#ifdef Q_OS_UNIX

TEST(CompanionProcess, WritesAnXForTheTimesSignWhereTheLocaleHasNone)
{
    CompanionFixture fixture(smallCamera());
    const QString outside = fixture.write(QStringLiteral("list.txt"), "1 48 1\n");
    for (const char* locale : {"C", "POSIX"}) {
        fixture.setVariable(QStringLiteral("LC_ALL"), QLatin1String(locale));
        EXPECT_TRUE(fixture.run(QStringLiteral("detect 1 --cover"))
                        .out.contains("Sensor: 64 x 48 pixels, raw Bayer\n"));
        EXPECT_EQ(errorLine(fixture.run(QStringLiteral("write 1 %1 --yes --json"), outside)),
                  QByteArray("The entry (1, 48) lies outside the sensor of 64 x 48 pixels."));
    }
    // One that is not installed says by its name what the terminal shows.
    for (const char* locale : {"C.UTF-8", "xx_XX.utf8"}) {
        fixture.setVariable(QStringLiteral("LC_ALL"), QLatin1String(locale));
        EXPECT_TRUE(fixture.run(QStringLiteral("detect 1 --cover"))
                        .out.contains("Sensor: 64 × 48 pixels, raw Bayer\n"))
            << locale;
    }
}

TEST(CompanionProcess, NeedsAHomeThatCanBeWrittenForBackupsOnly)
{
    CompanionFixture fixture(smallCamera());
    const QString list = fixture.write(QStringLiteral("list.txt"), "1 2 1\n");
    const QString out = fixture.file(QStringLiteral("out.txt"));
    // Not even root can make a folder here.
    fixture.setVariable(QStringLiteral("HOME"), QStringLiteral("/dev/null/home"));
    fixture.setVariable(QStringLiteral("XDG_DATA_HOME"), {});
    fixture.setVariable(QStringLiteral("VORN_SIMULATED_EEPROMS"), {});
    for (const char* arguments : {"cameras", "read 1", "read 1 --out %1", "--help", "--version"}) {
        const Finished finished = fixture.run(QLatin1String(arguments), out);
        EXPECT_EQ(finished.status, 0) << arguments;
        EXPECT_EQ(finished.err, QByteArray()) << arguments;
    }
    const Finished detected = fixture.run(QStringLiteral("detect 1 --cover --out %1"), out);
    EXPECT_EQ(detected.status, 0);
    EXPECT_EQ(detected.err.count('\n'), 1) << detected.err.constData();

    const QByteArray message = "Can't save the old list in /dev/null/home/.local/share/"
                               "VornHotpixelEditor/backups: the folder can't be made.";
    const Finished written = fixture.run(QStringLiteral("write 1 %1 --yes"), list);
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(errorLine(written), message);
    const Finished notTaken = fixture.run(QStringLiteral("detect 1 --cover --write --yes"));
    EXPECT_EQ(notTaken.status, 1);
    EXPECT_EQ(errorLine(notTaken), message) << "the frames were taken in vain";
    EXPECT_EQ(notTaken.out, QByteArray());
}

TEST(CompanionProcess, ClosesTheCameraWhenItIsInterrupted)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const CompanionFixture fixture(smallCamera().replace("speed=40", "speed=0.05"));
        fixture.run(QStringLiteral("read 1"));
        const Entries before = fixture.eeprom(QStringLiteral("S1"));
        const std::unique_ptr<QProcess> process = fixture.start(
            QStringLiteral("detect 1 --cover --clear --write --yes --json").split(u' '));
        ASSERT_TRUE(CompanionFixture::waitForError(*process, "Taking 10 dark frames"));
        ASSERT_EQ(kill(static_cast<pid_t>(process->processId()), number), 0);
        const Finished finished = CompanionFixture::finish(*process);
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.json()[QStringLiteral("outcome")].toString(),
                  QStringLiteral("interrupted"));
        EXPECT_TRUE(finished.err.endsWith("vorn-hotpixel-demo: Interrupted.\n"));
        EXPECT_EQ(fixture.run(QStringLiteral("read 1")).status, 0);
        EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
    }
}

#endif

TEST(CompanionProcess, SaysNothingOfItsOwnWithoutALocale)
{
    constexpr auto Variable = "LC_ALL";
    const QByteArray before = qgetenv(Variable);
    qputenv(Variable, "C");
    const CompanionFixture fixture(smallCamera());
    const Finished finished = fixture.run(QStringLiteral("read 1"));
    before.isNull() ? qunsetenv(Variable) : qputenv(Variable, before);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.err, QByteArray());
}
