// SPDX-License-Identifier: MIT
#include "cli/ListBackups.h"

#include "cli/Command.h"
#include "cli/ListFiles.h"
#include "cli/SeveralCameras.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ListBackups)
};

/// Each line of a copy has an end, so one without it has lost something.
void checkLastLine(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0) {
        return;
    }
    file.seek(file.size() - 1);
    if (file.read(1) != "\n") {
        throw cli::CommandError(
            Text::tr("%1 is damaged: its last line is not complete.").arg(fileName));
    }
}

} // namespace

namespace cli {

std::optional<ListBackup> ListBackup::named(const QString& fileName)
{
    static const QRegularExpression Name(
        QStringLiteral("^(.*)-user-list-(\\d{8}-\\d{6})(?:-(\\d{1,4}))?\\.txt$"));
    const QRegularExpressionMatch match = Name.match(QFileInfo(fileName).fileName());
    const QDateTime saved =
        QDateTime::fromString(match.captured(2), QStringLiteral("yyyyMMdd-HHmmss"));
    if (!match.hasMatch() || !saved.isValid()) {
        return std::nullopt;
    }
    const QString number = match.captured(3);
    return ListBackup{fileName, match.captured(1), saved, number.isEmpty() ? 1 : number.toInt()};
}

bool ListBackup::isOf(const QString& cameraSerNo) const
{
    return serNo == fileNamePart(cameraSerNo);
}

std::vector<BadpixelEntry> ListBackup::entries() const
{
    std::vector<BadpixelEntry> entries = readUserListFile(fileName);
    checkLastLine(fileName);
    return entries;
}

std::vector<ListBackup> backupsIn(const QString& folder)
{
    std::vector<ListBackup> backups;
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files)) {
        if (auto backup = ListBackup::named(dir.filePath(name))) {
            backups.push_back(std::move(*backup));
        }
    }
    std::ranges::sort(backups, [](const ListBackup& a, const ListBackup& b) {
        return std::tie(a.saved, a.number, a.serNo) > std::tie(b.saved, b.number, b.serNo);
    });
    return backups;
}

std::vector<ListBackup> backupsOf(const QString& serNo, const QString& folder)
{
    std::vector<ListBackup> backups = backupsIn(folder);
    std::erase_if(backups, [&serNo](const ListBackup& backup) { return !backup.isOf(serNo); });
    return backups;
}

} // namespace cli
