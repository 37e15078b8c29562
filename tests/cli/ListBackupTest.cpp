// SPDX-License-Identifier: MIT
#include "cli/Command.h"
#include "cli/ListFiles.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>

#ifdef VORN_WATCHED_DISK
#include <cerrno>
#include <unistd.h>

namespace {

/// What happens to the file that is put on the disk: the linker puts the function below into the
/// place of fsync() for this program.
std::function<int(int)> s_onSync;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" int __real_fsync(int descriptor);
extern "C" int __wrap_fsync(int descriptor);

int __wrap_fsync(int descriptor)
{
    return s_onSync ? s_onSync(descriptor) : __real_fsync(descriptor);
}
// NOLINTEND(bugprone-reserved-identifier)
#endif

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

#ifdef VORN_WATCHED_DISK

/// The text of what saving in @p folder throws while @p onSync stands for the disk.
static QString errorWith(const QString& folder, const std::function<int(int)>& onSync)
{
    s_onSync = onSync;
    QString error;
    try {
        cli::saveBackup(folder, QStringLiteral("7"), Time, Entries);
    } catch (const cli::CommandError& thrown) {
        error = QString::fromUtf8(thrown.what());
    }
    s_onSync = nullptr;
    return error;
}

TEST(ListBackup, IsOnTheDiskBeforeItHasItsName)
{
    const QTemporaryDir home;
    QStringList namesThen{QStringLiteral("never put on the disk")};
    const QString error = errorWith(home.path(), [&](int descriptor) {
        namesThen = QDir(home.path()).entryList(QDir::Files);
        return __real_fsync(descriptor);
    });
    EXPECT_EQ(error, QString());
    EXPECT_EQ(namesThen, QStringList());
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files).size(), 1);
}

TEST(ListBackup, FailsWhenTheDiskFails)
{
    const QTemporaryDir home;
    const QString error = errorWith(home.path(), [](int /*descriptor*/) {
        errno = EIO;
        return -1;
    });
    EXPECT_TRUE(error.startsWith(QStringLiteral("Can't save the old list in ")))
        << qPrintable(error);
    EXPECT_TRUE(QDir(home.path()).isEmpty(QDir::Files | QDir::Hidden));
}

TEST(ListBackup, FailsWhenTheFileDoesNotHoldWhatWasWritten)
{
    const QTemporaryDir home;
    const QString error =
        errorWith(home.path(), [](int descriptor) { return ftruncate(descriptor, 6); });
    EXPECT_TRUE(error.endsWith(QStringLiteral("the file does not hold what was written.")))
        << qPrintable(error);
    EXPECT_TRUE(QDir(home.path()).isEmpty(QDir::Files | QDir::Hidden));
}

#endif

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
