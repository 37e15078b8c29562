// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListFile.h"
#include "tests/harness/AsNobody.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Entries = std::vector<BadpixelEntry>;

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "missing";
}

void put(const QString& name, const QByteArray& content)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
}

std::string saveError(const QString& name, std::size_t count)
{
    try {
        hotpixel::writeListFile(name, Entries(count, {12, 345, UserPixel}));
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

/// A disk of 256 KiB with a list file on it.
class SmallDisk : public testing::Test
{
protected:
    void SetUp() override
    {
        if (mount("tmpfs", qPrintable(m_folder.path()), "tmpfs", 0, "size=256k") != 0) {
            GTEST_SKIP() << "only root may mount a disk";
        }
        m_mounted = true;
        put(list(), "9 9 1\n");
    }
    ~SmallDisk() override
    {
        if (m_mounted) {
            umount(qPrintable(m_folder.path()));
        }
    }

    [[nodiscard]] QString list() const { return m_folder.filePath(QStringLiteral("list.txt")); }
    [[nodiscard]] QString filling() const { return m_folder.filePath(QStringLiteral("filling")); }

    void fill() const
    {
        QFile file(filling());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (file.write(QByteArray(4096, 'x')) > 0) {
        }
    }

    void expectTheOldFileOnly() const
    {
        EXPECT_EQ(contentOf(list()), "9 9 1\n");
        EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden),
                  QStringList{QStringLiteral("list.txt")});
    }

    bool m_mounted = false;
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(SmallDisk, ThatFillsUpWhileSavingKeepsTheOldFile)
{
    EXPECT_EQ(saveError(list(), 100'000), "Can't write file.");
    expectTheOldFileOnly();
    EXPECT_EQ(saveError(list(), 10'000), "no error") << "the room was not given back";
}

TEST_F(SmallDisk, ThatIsFullToTheLastByteKeepsTheOldFile)
{
    fill();
    EXPECT_EQ(saveError(list(), 10'000), "Can't write file.");
    ASSERT_TRUE(QFile::remove(filling()));
    expectTheOldFileOnly();
}

TEST_F(SmallDisk, ThatIsFullKeepsTheOldFileInAFolderThatTakesNoOther)
{
    // More than a page, so that a longer list needs room.
    const Entries old(1000, {9, 9, UserPixel});
    hotpixel::writeListFile(list(), old);
    fill();
    ASSERT_EQ(chmod(qPrintable(list()), 0666), 0);
    ASSERT_EQ(chmod(qPrintable(m_folder.path()), 0555), 0);
    const AsNobody nobody;
    for (const unsigned count : {10'000U, 1'200U}) {
        EXPECT_EQ(saveError(list(), count), "Can't write file.") << count;
        EXPECT_EQ(hotpixel::readListFile(list()), old) << count;
    }
    EXPECT_EQ(saveError(list(), 100), "no error") << "a shorter list needs no room";
    EXPECT_EQ(hotpixel::readListFile(list()), Entries(100, {12, 345, UserPixel}));
    EXPECT_EQ(saveError(list(), 300), "no error") << "a longer list had room";
    EXPECT_EQ(hotpixel::readListFile(list()), Entries(300, {12, 345, UserPixel}));
}

TEST_F(SmallDisk, ThatBecameReadOnlyKeepsTheOldFile)
{
    if (mount("none", qPrintable(m_folder.path()), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
        GTEST_SKIP() << "a disk can't be made read-only here";
    }
    EXPECT_EQ(saveError(list(), 10), "Can't open file for writing.");
    expectTheOldFileOnly();
}

TEST(Saving, ToADriveThatWasRemovedSaysSo)
{
    QTemporaryDir drive;
    const QString list = drive.filePath(QStringLiteral("list.txt"));
    ASSERT_EQ(saveError(list, 10), "no error");
    ASSERT_TRUE(drive.remove());
    EXPECT_EQ(saveError(list, 10), "Can't open file for writing.");
    EXPECT_FALSE(QFile::exists(drive.path())) << "a folder was made in the drive's place";
}

TEST(Saving, OverAFileThatMayNotBeWrittenKeepsIt)
{
    const QTemporaryDir folder;
    const QString list = folder.filePath(QStringLiteral("list.txt"));
    put(list, "9 9 1\n");
    ASSERT_EQ(chmod(qPrintable(folder.path()), 0777), 0);
    ASSERT_EQ(chmod(qPrintable(list), 0444), 0);
    const AsNobody nobody;
    EXPECT_EQ(saveError(list, 10), "Can't open file for writing.");
    EXPECT_EQ(contentOf(list), "9 9 1\n");
}

TEST(Saving, OverAFileThatIsAMountPointWritesInPlace)
{
    const QTemporaryDir folder;
    const QString mounted = folder.filePath(QStringLiteral("mounted.txt"));
    const QString list = folder.filePath(QStringLiteral("list.txt"));
    put(mounted, "9 9 1\n9 9 1\n");
    put(list, "");
    if (mount(qPrintable(mounted), qPrintable(list), nullptr, MS_BIND, nullptr) != 0) {
        GTEST_SKIP() << "only root may mount a file";
    }
    EXPECT_EQ(saveError(list, 3), "no error");
    EXPECT_EQ(contentOf(mounted), "12 345 1\n12 345 1\n12 345 1\n");
    EXPECT_EQ(saveError(list, 1), "no error");
    EXPECT_EQ(contentOf(mounted), "12 345 1\n") << "the end of a longer list is left";
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{QStringLiteral("list.txt"), QStringLiteral("mounted.txt")}));
    ASSERT_EQ(umount(qPrintable(list)), 0);
}

TEST(Saving, OverSomebodyElsesFileInAStickyFolderWritesInPlace)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can be two people";
    }
    const QTemporaryDir folder;
    const QString list = folder.filePath(QStringLiteral("list.txt"));
    put(list, "9 9 1\n9 9 1\n");
    ASSERT_EQ(chmod(qPrintable(folder.path()), 01777), 0);
    ASSERT_EQ(chmod(qPrintable(list), 0666), 0);
    const AsNobody nobody;
    EXPECT_EQ(saveError(list, 3), "no error");
    EXPECT_EQ(contentOf(list), "12 345 1\n12 345 1\n12 345 1\n");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("list.txt")});
}
