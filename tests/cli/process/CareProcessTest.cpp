// SPDX-License-Identifier: MIT
// Looking after cameras, with processes that are killed and with many cameras in one call.

#include "hotpixel/BadpixelListFile.h"
#include "tests/cli/process/CompanionFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

using Entries = std::vector<BadpixelEntry>;

constexpr int Cameras = 40;

Entries listOf(std::uint16_t x, std::size_t count)
{
    Entries entries;
    for (std::size_t i = 0; i < count; ++i) {
        entries.push_back({static_cast<std::uint16_t>((x + i / 48) % 64),
                           static_cast<std::uint16_t>(i % 48), UserPixel});
    }
    return entries;
}

/// Forty small cameras C01 to C40 in which nothing is hot; the seventh is in use.
QByteArray fortyCameras()
{
    QByteArray text = "[bus]\nspeed=100\n";
    for (int i = 1; i <= Cameras; ++i) {
        const QByteArray number = QByteArray::number(i).rightJustified(2, '0');
        text += "[camera" + number + "]\nserial=C" + number +
                "\nmodel=Small\nwidth=64\nheight=48\nhotPixels=0\nfactoryEntries=0\n"
                "userEntries=0\n" +
                (i == 7 ? "heldElsewhere=true\n" : "");
    }
    return text;
}

std::vector<QJsonObject> objectsOf(const QByteArray& out)
{
    std::vector<QJsonObject> objects;
    for (const QByteArray& line : out.trimmed().split('\n')) {
        QJsonParseError error;
        objects.push_back(QJsonDocument::fromJson(line, &error).object());
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
    }
    return objects;
}

} // namespace

TEST(FortyCameras, AreCheckedInOneCall)
{
    const CompanionFixture fixture(fortyCameras());
    const Finished checked = fixture.run(QStringLiteral("check all --cover --json"));
    EXPECT_EQ(checked.status, 1);
    const std::vector<QJsonObject> lines = objectsOf(checked.out);
    ASSERT_EQ(lines.size(), Cameras);
    for (int i = 0; i < Cameras; ++i) {
        const QJsonObject& line = lines[static_cast<std::size_t>(i)];
        EXPECT_EQ(line[QStringLiteral("name")].toString(),
                  QStringLiteral("C%1").arg(i + 1, 2, 10, QLatin1Char('0')));
        EXPECT_EQ(line[QStringLiteral("done")].toBool(), i != 6)
            << line[QStringLiteral("error")].toString().toStdString();
        EXPECT_EQ(line[QStringLiteral("needsWork")].toBool(true), i == 6);
    }
    EXPECT_EQ(checked.err, QByteArray("C07: The camera (Small, SerNo C07, Dev 7) is in use by "
                                      "another program.\n"
                                      "vorn-hotpixel-demo: Something is wrong with 1 of 40 "
                                      "cameras.\n"));
}

// Whenever a restore is killed, the camera has the old list or the new one, and the one that it
// does not have is in a copy that the next restore takes. The moment of the kill follows the moment
// of the write.
TEST(KilledRestore, LosesNeitherOfTheLists)
{
    constexpr int Kills = 60;
    const CompanionFixture fixture(smallCamera()
                                       .replace("userCapacity=16", "userCapacity=1000")
                                       .replace("factoryEntries=2", "factoryEntries=0"));
    const QString list = fixture.file(QStringLiteral("list.txt"));
    const Entries first = listOf(1, 900);
    const Entries second = listOf(30, 40);
    for (const Entries& entries : {first, second}) {
        hotpixel::writeListFile(list, entries);
        ASSERT_EQ(fixture.run(QStringLiteral("write 1 %1 --yes"), list).status, 0);
    }
    // The copy of what the camera had as it was new would only be in the way.
    for (const QString& backup : fixture.backups()) {
        if (hotpixel::readListFile(backup).size() == 3) {
            ASSERT_TRUE(QFile::remove(backup));
        }
    }

    std::mt19937 random(20261121);
    double momentMsec = 50;
    int killed = 0;
    int restored = 0;
    Entries before = second;
    for (int round = 0; round < Kills; ++round) {
        const Entries& other = before == first ? second : first;
        const std::unique_ptr<QProcess> process = fixture.start(
            {QStringLiteral("restore"), QStringLiteral("1"), QStringLiteral("--yes")});
        const double jitter = std::uniform_real_distribution<double>(0.5, 1.5)(random);
        process->waitForFinished(static_cast<int>(momentMsec * jitter));
        process->kill();
        process->waitForFinished(-1);
        if (process->exitStatus() == QProcess::CrashExit) {
            ++killed;
        } else {
            ASSERT_EQ(process->exitCode(), 0) << process->readAllStandardError().constData();
        }
        const Entries after = fixture.eeprom(QStringLiteral("S1"));
        ASSERT_TRUE(after == first || after == second) << "round " << round;
        ASSERT_TRUE(after == before || after == other);
        restored += after == other ? 1 : 0;
        momentMsec = std::max(1.0, momentMsec * (after == other ? 0.9 : 1.1));
        before = after;
        const Entries& missing = after == first ? second : first;
        const QStringList backups = fixture.backups();
        ASSERT_TRUE(std::ranges::any_of(backups,
                                        [&missing](const QString& backup) {
                                            return hotpixel::readListFile(backup) == missing;
                                        }))
            << "round " << round;
    }
    const Entries last = before;
    const Finished finished = fixture.run(QStringLiteral("restore 1 --yes"));
    EXPECT_EQ(finished.status, 0) << finished.err.constData();
    EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), last == first ? second : first);
    std::printf("%d restores killed: %d had written, %d had not\n", killed, restored,
                Kills - restored);
    EXPECT_GT(killed, Kills * 8 / 10);
    EXPECT_GT(restored, Kills / 10);
    EXPECT_LT(restored, Kills * 9 / 10);
}

// They write nothing, so there is nothing that a kill could break; and the camera can be opened
// again, also when its correction was on.
TEST(KilledCheck, LeavesTheListAndTheCamera)
{
    constexpr int Kills = 12;
    const CompanionFixture fixture(smallCamera());
    fixture.run(QStringLiteral("read 1"));
    const Entries before = fixture.eeprom(QStringLiteral("S1"));
    std::mt19937 random(20261122);
    const QList<QStringList> calls{
        {QStringLiteral("check"), QStringLiteral("1"), QStringLiteral("--cover")},
        {QStringLiteral("correction"), QStringLiteral("1"), QStringLiteral("test"),
         QStringLiteral("--cover")},
        {QStringLiteral("restore"), QStringLiteral("1"), QStringLiteral("--dry-run")},
        {QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--cover"),
         QStringLiteral("--auto"), QStringLiteral("--write"), QStringLiteral("--dry-run")}};
    for (int round = 0; round < Kills; ++round) {
        const std::unique_ptr<QProcess> process = fixture.start(calls[round % calls.size()]);
        process->waitForFinished(std::uniform_int_distribution(20, 1200)(random));
        process->kill();
        process->waitForFinished(-1);
        EXPECT_EQ(fixture.eeprom(QStringLiteral("S1")), before);
        EXPECT_TRUE(fixture.backups().isEmpty());
        const Finished read = fixture.run(QStringLiteral("read 1"));
        EXPECT_EQ(read.status, 0) << read.err.constData();
    }
}
