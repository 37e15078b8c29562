// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListFile.h"
#include "tests/harness/AsNobody.h"
#include "tests/hostile/ChildProcess.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

using Entries = std::vector<BadpixelEntry>;

class HostileListFile : public testing::Test
{
protected:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("list.txt")); }

    void put(const QByteArray& content) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::Append));
        ASSERT_EQ(file.write(content), content.size());
    }

    /// Reads the file in a process of its own: the number of entries and the last one, or the
    /// error.
    [[nodiscard]] hostile::ChildReport read() const
    {
        return hostile::runInChild([name = path()] {
            const Entries entries = hotpixel::readListFile(name);
            const BadpixelEntry last = entries.empty() ? BadpixelEntry() : entries.back();
            return std::to_string(entries.size()) + " entries, the last " + std::to_string(last.x) +
                   ' ' + std::to_string(last.y) + ' ' + std::to_string(last.pixelClass);
        });
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

class HostileListFileOfLines : public HostileListFile, public testing::WithParamInterface<int>
{};

class HostileListFileOfOneLine : public HostileListFile, public testing::WithParamInterface<qint64>
{};

} // namespace

TEST_P(HostileListFileOfLines, TakesMemoryForItsEntriesOnly)
{
    const int lines = GetParam();
    constexpr int LinesInBlock = 10000;
    const QByteArray block = QByteArray("65535 12345 1\n").repeated(LinesInBlock);
    for (int line = 0; line < lines; line += LinesInBlock) {
        put(block);
    }
    put("7 8 1\n");
    const hostile::ChildReport report = read();
    EXPECT_TRUE(report.ended);
    EXPECT_EQ(report.text, std::to_string(lines + 1) + " entries, the last 7 8 1");
    // A growing block is there twice while it is moved, and has room for twice of what it holds.
    const auto entriesKiB =
        static_cast<std::int64_t>(static_cast<std::size_t>(lines) * sizeof(BadpixelEntry) / 1024);
    EXPECT_LT(report.grownKiB, 3 * entriesKiB + 8192 + hostile::SanitizerKiB);
    RecordProperty("grownKiB", static_cast<int>(report.grownKiB));
}

INSTANTIATE_TEST_SUITE_P(Short, HostileListFileOfLines, testing::Values(200'000));
INSTANTIATE_TEST_SUITE_P(Long, HostileListFileOfLines, testing::Values(5'000'000));

TEST_P(HostileListFileOfOneLine, TakesNoMemoryForTheLine)
{
    // A sparse file: the line holds NUL bytes behind its three numbers and takes no room.
    put("1 2 1 ");
    ASSERT_TRUE(QFile::resize(path(), GetParam()));
    put("\n7 8 1\n");
    const hostile::ChildReport report = read();
    EXPECT_TRUE(report.ended);
    EXPECT_EQ(report.text, "2 entries, the last 7 8 1");
    EXPECT_LT(report.grownKiB, 16384 + hostile::SanitizerKiB);
    RecordProperty("grownKiB", static_cast<int>(report.grownKiB));
}

INSTANTIATE_TEST_SUITE_P(Short, HostileListFileOfOneLine, testing::Values(qint64{1} << 26));
INSTANTIATE_TEST_SUITE_P(Long, HostileListFileOfOneLine, testing::Values(qint64{1} << 30));

TEST_F(HostileListFile, TakesNoMemoryForALongNumber)
{
    // 16 MiB of digits; the value is 10^16777216 − 1, of which the low bits are all ones.
    for (int block = 0; block < 16; ++block) {
        put(QByteArray(1 << 20, '9'));
    }
    put(" 3 1\n");
    const hostile::ChildReport report = read();
    EXPECT_EQ(report.text, "1 entries, the last 65535 3 1");
    EXPECT_LT(report.grownKiB, 8192 + hostile::SanitizerKiB);
}

TEST_F(HostileListFile, ThatMayNotBeReadIsAnError)
{
    put("1 2 1\n");
    ASSERT_EQ(chmod(qPrintable(folder()), 0755), 0);
    ASSERT_EQ(chmod(qPrintable(path()), 0), 0);
    const AsNobody nobody;
    const hostile::ChildReport report = read();
    EXPECT_TRUE(report.ended);
    EXPECT_EQ(report.text, "Can't open file for reading.");
}
