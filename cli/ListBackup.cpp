// SPDX-License-Identifier: MIT
#include "cli/ListBackup.h"

#include "cli/CommandError.h"
#include "hotpixel/BadpixelListFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <algorithm>
#include <exception>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace cli {
namespace {

constexpr int MaxFilesPerSecond = 1000;

QString tr(const char* text)
{
    return QCoreApplication::translate("ListBackup", text);
}

bool putOnDisk(QFile& file)
{
#ifdef Q_OS_WIN
    return file.flush() && _commit(file.handle()) == 0;
#else
    return file.flush() && fsync(file.handle()) == 0;
#endif
}

CommandError failure(const QString& folder, const QString& reason)
{
    return CommandError(tr("Can't save the old list in %1: %2").arg(folder, reason));
}

/// Opens a file without a name yet in @p folder.
void openIn(const QString& folder, QTemporaryFile& file)
{
    const QDir target(folder);
    if (!target.mkpath(QStringLiteral("."))) {
        throw failure(folder, tr("the folder can't be made."));
    }
    file.setFileTemplate(target.filePath(QStringLiteral(".backup-XXXXXX")));
    if (!file.open()) {
        throw failure(folder, file.errorString());
    }
}

} // namespace

QString backupFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/VornHotpixelEditor/backups");
}

void checkBackupFolder(const QString& folder)
{
    QTemporaryFile file;
    openIn(folder, file);
}

QString saveBackup(const QString& folder, const QString& serNo, const QDateTime& time,
                   std::span<const BadpixelEntry> entries)
{
    QTemporaryFile file;
    openIn(folder, file);
    QByteArray content;
    for (const BadpixelEntry& entry : entries) {
        content += QByteArray::number(entry.x) + ' ' + QByteArray::number(entry.y) + " 1\n";
    }
    if (file.write(content) != content.size() || !putOnDisk(file)) {
        throw failure(folder, file.errorString());
    }

    // What the disk holds is what counts, so it is read again.
    const std::vector<BadpixelEntry> saved = hotpixel::readListFile(file.fileName());
    if (!std::ranges::equal(saved, entries)) {
        throw failure(folder, tr("the file does not hold what was written."));
    }

    const QDir target(folder);
    QString name = serNo;
    name.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_-]")), QStringLiteral("_"));
    name += time.toString(QStringLiteral("'-user-list-'yyyyMMdd-HHmmss"));
    for (int number = 1; number <= MaxFilesPerSecond; ++number) {
        const QString suffix = number == 1 ? QString() : QStringLiteral("-%1").arg(number);
        const QString fileName = target.filePath(name + suffix + QStringLiteral(".txt"));
        // Renaming refuses to replace a file, so two programs can't take the same name.
        if (!QFileInfo::exists(fileName) && file.rename(fileName)) {
            file.setAutoRemove(false);
            return QDir::toNativeSeparators(target.absoluteFilePath(fileName));
        }
    }
    throw failure(folder, tr("no name is free."));
}

} // namespace cli
