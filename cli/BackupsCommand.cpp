// SPDX-License-Identifier: MIT
// `backups`: the dated copies of lists that were replaced.

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/ListBackups.h"
#include "cli/ListChange.h"
#include "cli/ListFiles.h"
#include "cli/SeveralCameras.h"
#include "cli/TextTable.h"
#include "hotpixel/CameraLists.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>

#include <algorithm>

namespace {

using Entries = std::vector<BadpixelEntry>;

class BackupsCommand
{
    Q_DECLARE_TR_FUNCTIONS(BackupsCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& /*switches*/)
    {
        return {};
    }
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    static void listAll(CommandContext& context);
    static void listOf(const QString& name, CommandContext& context);
    static bool isConnected(const QString& name, CommandContext& context);

    /// @param inCamera to be compared with, where it is known
    static void report(const std::vector<cli::ListBackup>& backups, const Entries* inCamera,
                       Report& report);
};

void BackupsCommand::run(const QStringList& values, const QCommandLineParser& /*parser*/,
                         CommandContext& context)
{
    if (values.isEmpty()) {
        listAll(context);
    } else {
        listOf(values.front(), context);
    }
}

void BackupsCommand::listAll(CommandContext& context)
{
    Report report(context);
    BackupsCommand::report(cli::backupsIn(cli::backupFolder()), nullptr, report);
}

void BackupsCommand::listOf(const QString& name, CommandContext& context)
{
    Report report(context);
    // The copies of a camera are worth a look also when it has gone.
    if (const auto backups = cli::backupsOf(name, cli::backupFolder());
        !backups.empty() && !isConnected(name, context)) {
        report.line(tr("SerNo %1, not connected").arg(name));
        BackupsCommand::report(backups, nullptr, report);
        return;
    }
    CameraSession session(context, name);
    const Entries inCamera = CameraLists(session.camera()).userEntries();
    report.insert("camera", cli::cameraObject(session.description()));
    report.line(cli::cameraText(session.description()));
    BackupsCommand::report(cli::backupsOf(session.description().serNo, cli::backupFolder()),
                           &inCamera, report);
}

bool BackupsCommand::isConnected(const QString& name, CommandContext& context)
{
    return std::ranges::any_of(
        camera::connectedCameras(context.sdk()), [&name](const CameraItem& camera) {
            return camera.serNo == name || QString::number(camera.devId) == name;
        });
}

void BackupsCommand::report(const std::vector<cli::ListBackup>& backups, const Entries* inCamera,
                            Report& report)
{
    std::vector<QStringList> rows{
        {tr("Saved"), tr("SerNo"), tr("Entries"), tr("Restoring it"), tr("File")}};
    QJsonArray array;
    for (const cli::ListBackup& backup : backups) {
        QJsonObject object{{QStringLiteral("file"), QDir::toNativeSeparators(backup.fileName)},
                           {QStringLiteral("serNo"), backup.serNo},
                           {QStringLiteral("saved"), backup.saved.toString(Qt::ISODate)}};
        QString count = QStringLiteral("-");
        QString change = QStringLiteral("-");
        try {
            const Entries entries = backup.entries();
            count = QString::number(entries.size());
            object.insert(QStringLiteral("entries"), static_cast<qint64>(entries.size()));
            if (inCamera != nullptr) {
                const cli::ListChange difference(*inCamera, entries);
                change = difference.summary();
                object.insert(QStringLiteral("added"),
                              static_cast<qint64>(difference.added.size()));
                object.insert(QStringLiteral("removed"),
                              static_cast<qint64>(difference.removed.size()));
            }
        } catch (const cli::CommandError& error) {
            change = tr("damaged");
            object.insert(QStringLiteral("error"), QString::fromUtf8(error.what()));
        }
        rows.push_back({backup.saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), backup.serNo,
                        count, change, QFileInfo(backup.fileName).fileName()});
        array.append(object);
    }
    report.insert("folder", QDir::toNativeSeparators(cli::backupFolder()));
    report.insert("backups", array);
    report.setSummary(tr("%1 copies").arg(backups.size()));
    report.line(backups.empty() ? tr("There are no copies in %1.").arg(cli::backupFolder())
                                : cli::tableText(rows));
}

} // namespace

namespace cli::commands {

Command backups()
{
    return {.name = QStringLiteral("backups"),
            .arguments = {QStringLiteral("[CAMERA...]")},
            .summary = BackupsCommand::tr("List the copies made before each write."),
            .description = BackupsCommand::tr(
                "Lists the dated copies of user lists that every write saves before it replaces\n"
                "one, the newest first: all of them, or those of each CAMERA (a Dev number, a\n"
                "serial number, or \"all\") with what restoring one of them would add to the\n"
                "camera's list and remove from it."),
            .options = BackupsCommand::options,
            .run = BackupsCommand::run,
            .cameras = cli::allAreCameras};
}

} // namespace cli::commands
