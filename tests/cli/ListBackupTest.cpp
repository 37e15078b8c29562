// SPDX-License-Identifier: MIT
#include "cli/Command.h"
#include "cli/ListFiles.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QDateTime Time(QDate(2026, 3, 9), QTime(7, 5, 2));
const std::vector<BadpixelEntry> Entries{{1, 2, UserPixel}, {65535, 0, UserPixel}};

QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

} // namespace

TEST(ListBackup, IsAListFileNamedAfterCameraAndTime)
{
    const QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("a/b"));
    const QString fileName = cli::saveBackup(folder, QStringLiteral("4102700502"), Time, Entries);
    EXPECT_EQ(fileName, folder + QStringLiteral("/4102700502-user-list-20260309-070502.txt"));
    EXPECT_EQ(contentOf(fileName), QByteArray("1 2 1\n65535 0 1\n"));
}

TEST(ListBackup, NeverTouchesAFileThatIsThere)
{
    const QTemporaryDir home;
    const QString first = cli::saveBackup(home.path(), QStringLiteral("7"), Time, Entries);
    const QString second = cli::saveBackup(home.path(), QStringLiteral("7"), Time, {});
    const QString third = cli::saveBackup(home.path(), QStringLiteral("7"), Time, Entries);
    EXPECT_EQ(contentOf(first), QByteArray("1 2 1\n65535 0 1\n"));
    EXPECT_EQ(second, home.filePath(QStringLiteral("7-user-list-20260309-070502-2.txt")));
    EXPECT_EQ(contentOf(second), QByteArray());
    EXPECT_EQ(third, home.filePath(QStringLiteral("7-user-list-20260309-070502-3.txt")));
}

TEST(ListBackup, KeepsPathsOutOfASerialNumber)
{
    const QTemporaryDir home;
    const QString fileName = cli::saveBackup(home.path(), QStringLiteral("../x y"), Time, {});
    EXPECT_EQ(fileName, home.filePath(QStringLiteral("___x_y-user-list-20260309-070502.txt")));
}

TEST(ListBackup, LeavesNothingElseInItsFolder)
{
    const QTemporaryDir home;
    cli::saveBackup(home.path(), QStringLiteral("7"), Time, Entries);
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST(ListBackup, SaysWhyItCantBeSaved)
{
    const QTemporaryDir home;
    QFile inTheWay(home.filePath(QStringLiteral("file")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_THROW(cli::saveBackup(inTheWay.fileName(), QStringLiteral("7"), Time, Entries),
                 cli::CommandError);
    EXPECT_THROW(cli::saveBackup(inTheWay.fileName() + QStringLiteral("/sub"), QStringLiteral("7"),
                                 Time, Entries),
                 cli::CommandError);
}

TEST(ListBackup, StandsInThePersonsDataFolder)
{
    EXPECT_EQ(cli::backupFolder(),
              QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                  QStringLiteral("/VornHotpixelEditor/backups"));
}
