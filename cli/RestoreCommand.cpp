// SPDX-License-Identifier: MIT
// `restore`: a dated copy back into the camera that it came from, guarded.

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/GuardedWrite.h"
#include "cli/ListBackups.h"
#include "cli/ListFiles.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

class RestoreCommand
{
    Q_DECLARE_TR_FUNCTIONS(RestoreCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& /*switches*/)
    {
        return cli::writeOptions();
    }
    static qsizetype cameras(const QStringList& values, const QCommandLineParser& parser);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    /// Whether the word is a file's and not a camera's name: no serial number has such characters.
    static bool isFile(const QString& word);

    static cli::ListBackup named(const QString& file);
    static cli::ListBackup newestThatDiffers(CameraSession& session);
};

bool RestoreCommand::isFile(const QString& word)
{
    return word.contains(u'.') || word.contains(u'/') || word.contains(u'\\');
}

qsizetype RestoreCommand::cameras(const QStringList& values, const QCommandLineParser& /*parser*/)
{
    return isFile(values.last()) ? values.size() - 1 : values.size();
}

void RestoreCommand::run(const QStringList& values, const QCommandLineParser& parser,
                         CommandContext& context)
{
    if (isFile(values.front())) {
        throw cli::UsageError(tr("CAMERA is missing."));
    }
    cli::checkWriteOptions(parser, context);
    const bool isNamed = values.size() > 1;
    std::optional<cli::ListBackup> backup;
    if (isNamed) {
        backup = named(values.last());
    }

    CameraSession session(context, values.front());
    Report report(context);
    report.line(cli::cameraText(session.description()));
    if (!backup) {
        backup = newestThatDiffers(session);
    } else if (!backup->isOf(session.description().serNo)) {
        throw cli::CommandError(
            tr("%1 is a copy of the camera %2, not of %3.")
                .arg(backup->fileName, backup->serNo, session.description().serNo));
    }
    // As the camera held it, with whatever may be odd about it.
    cli::NewList list;
    list.entries = backup->entries();
    const QString fileName = QDir::toNativeSeparators(backup->fileName);
    report.line(tr("Copy of %1: %2, %3")
                    .arg(backup->saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                         cli::entryCount(list.entries.size()), fileName));
    cli::replaceUserList(session, list, parser, context, report);
    report.insert("camera", cli::cameraObject(session.description()));
    report.insert("file", fileName);
}

cli::ListBackup RestoreCommand::named(const QString& file)
{
    const QString inFolder = QDir(cli::backupFolder()).filePath(file);
    const QString fileName = QFileInfo::exists(file) ? file : inFolder;
    if (!QFileInfo::exists(fileName)) {
        throw cli::CommandError(
            tr("There is no copy %1, neither here nor in %2.").arg(file, cli::backupFolder()));
    }
    std::optional<cli::ListBackup> backup = cli::ListBackup::named(fileName);
    if (!backup) {
        throw cli::CommandError(
            tr("%1 is not named like a copy that a write made; \"write\" takes any list file.")
                .arg(file));
    }
    // A damaged one is found out before the camera is opened.
    static_cast<void>(backup->entries());
    return *backup;
}

cli::ListBackup RestoreCommand::newestThatDiffers(CameraSession& session)
{
    const std::vector<cli::ListBackup> backups =
        cli::backupsOf(session.description().serNo, cli::backupFolder());
    if (backups.empty()) {
        throw cli::CommandError(
            tr("There is no copy of a list of this camera in %1.").arg(cli::backupFolder()));
    }
    const std::vector<BadpixelEntry> inCamera = CameraLists(session.camera()).userEntries();
    const auto found = std::ranges::find_if(backups, [&](const cli::ListBackup& backup) {
        return !cli::ListChange(inCamera, backup.entries()).isEmpty();
    });
    if (found == backups.end()) {
        throw cli::CommandError(
            tr("All copies of this camera's lists hold what the camera holds."));
    }
    return *found;
}

} // namespace

namespace cli::commands {

Command restore()
{
    return {.name = QStringLiteral("restore"),
            .arguments = {QStringLiteral("CAMERA..."), QStringLiteral("[FILE]")},
            .summary = RestoreCommand::tr("Write a copy back into its camera."),
            .description = RestoreCommand::tr(
                "Writes a dated copy, as \"backups\" lists them, back into the camera that it\n"
                "came from: FILE, by its name or with its path, or without one the newest copy\n"
                "of each CAMERA (a Dev number, a serial number, or \"all\") in which other\n"
                "pixels are than in the camera. A word with a dot or a slash in it is a FILE.\n\n"
                "It does so as \"write\" does: it shows what changes, asks, saves the list that\n"
                "the camera holds, reads back what it wrote. So a restore can be restored."),
            .options = RestoreCommand::options,
            .run = RestoreCommand::run,
            .cameras = RestoreCommand::cameras};
}

} // namespace cli::commands
