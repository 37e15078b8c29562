// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListFile.h"
#include "tests/cli/process/CompanionFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

using Entries = std::vector<BadpixelEntry>;

constexpr int Kills = 200;

Entries listOf(std::uint16_t x, std::size_t count)
{
    Entries entries;
    for (std::size_t i = 0; i < count; ++i) {
        entries.push_back({static_cast<std::uint16_t>((x + i / 48) % 64),
                           static_cast<std::uint16_t>(i % 48), UserPixel});
    }
    return entries;
}

} // namespace

// Whenever a writer is killed, the camera has the old list or the new one, the next process can
// open it and read it, and every backup is whole. The moment of the kill follows the moment of the
// write: later after a kill that came too early, earlier after one that came too late.
TEST(KilledWriter, LeavesTheOldOrTheNewList)
{
    const CompanionFixture fixture(smallCamera()
                                       .replace("userCapacity=16", "userCapacity=1000")
                                       .replace("factoryEntries=2", "factoryEntries=0"));
    const QString fileName = fixture.file(QStringLiteral("list.txt"));
    fixture.run(QStringLiteral("read 1"));
    Entries inCamera = fixture.eeprom(QStringLiteral("S1"));
    std::vector<Entries> everInCamera{inCamera};

    std::mt19937 random(20260309);
    double momentMsec = 50;
    int killed = 0;
    int wroteBefore = 0;
    for (int round = 0; round < Kills; ++round) {
        // Of one entry up to all that there is room for, and never the list of before.
        const Entries wanted = listOf(static_cast<std::uint16_t>(round % 64), 1 + random() % 1000);
        hotpixel::writeListFile(fileName, wanted);
        const std::unique_ptr<QProcess> process = fixture.start(
            {QStringLiteral("write"), QStringLiteral("1"), fileName, QStringLiteral("--yes")});
        const double jitter = std::uniform_real_distribution<double>(0.5, 1.5)(random);
        process->waitForFinished(static_cast<int>(momentMsec * jitter));
        process->kill();
        process->waitForFinished(-1);
        if (process->exitStatus() == QProcess::CrashExit) {
            ++killed;
        } else {
            // What a killed one left behind keeps nobody from the camera.
            ASSERT_EQ(process->exitCode(), 0) << process->readAllStandardError().constData();
        }

        const Entries after = fixture.eeprom(QStringLiteral("S1"));
        ASSERT_TRUE(after == inCamera || after == wanted) << "round " << round;
        const bool wrote = after == wanted;
        wroteBefore += wrote ? 1 : 0;
        momentMsec = std::max(1.0, momentMsec * (wrote ? 0.9 : 1.1));
        inCamera = after;
        everInCamera.push_back(after);

        if (round % 20 == 19) {
            const QString back = fixture.file(QStringLiteral("back.txt"));
            const Finished read = fixture.run(QStringLiteral("read 1 --out %1"), back);
            EXPECT_EQ(read.status, 0) << read.err.constData();
            EXPECT_EQ(hotpixel::readListFile(back), inCamera);
        }
    }

    const QStringList backups = fixture.backups();
    for (const QString& backup : backups) {
        EXPECT_TRUE(std::ranges::find(everInCamera, hotpixel::readListFile(backup)) !=
                    everInCamera.end())
            << qPrintable(backup);
    }
    EXPECT_GE(backups.size(), wroteBefore);
    std::printf("%d writers killed: %d had written, %d had not; %d whole backups\n", killed,
                wroteBefore, Kills - wroteBefore, static_cast<int>(backups.size()));
    // Otherwise the kills missed the write.
    EXPECT_GT(killed, Kills * 9 / 10);
    EXPECT_GT(wroteBefore, Kills / 10);
    EXPECT_LT(wroteBefore, Kills * 9 / 10);
}
