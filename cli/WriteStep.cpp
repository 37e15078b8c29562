// SPDX-License-Identifier: MIT
#include "cli/WriteStep.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/GuardedWrite.h"
#include "cli/ListBackup.h"
#include "cli/ProgressBar.h"
#include "cli/UserListFile.h"

#include <QCommandLineParser>

namespace {

constexpr auto YesOption = "yes";

QString tr(const char* text)
{
    return QCoreApplication::translate("WriteStep", text);
}

} // namespace

QCommandLineOption cli::yesOption()
{
    return {QLatin1String(YesOption), tr("Write into the camera without asking before.")};
}

void cli::checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context)
{
    if (!parser.isSet(QLatin1String(YesOption)) && !context.console.canAsk()) {
        throw UsageError(
            tr("There is no terminal to ask whether to overwrite the camera's list; use --yes."));
    }
}

QJsonObject cli::writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                                  const QCommandLineParser& parser, CommandContext& context)
{
    Camera& camera = session.camera();
    const SensorEntries wanted =
        userEntriesOf(entries, {camera.imageWidth(), camera.imageHeight()});
    if (wanted.beside > 0) {
        context.console.notice(
            tr("Note: %1 at x = %2, behind the sensor's last column, as a detection lists them.")
                .arg(entryCount(static_cast<std::size_t>(wanted.beside)))
                .arg(camera.imageWidth()));
    }

    GuardedWrite guarded(CameraLists(context.sdk, camera.handle()), session.description().serNo,
                         backupFolder());
    guarded.check(wanted.entries);
    const QString replaced = entryCount(guarded.oldEntries().size());
    const QString written = entryCount(wanted.entries.size());
    if (!parser.isSet(QLatin1String(YesOption)) &&
        !context.console.confirm(tr("Replace the user list in the camera (%1) by the new one (%2)?")
                                     .arg(replaced, written),
                                 context.interruption)) {
        session.checkInterruption();
        throw CommandError(tr("Nothing was written."));
    }
    // From here on the end has to wait until the camera holds one of the two lists for certain.
    session.checkInterruption();
    const QString backup = [&] {
        const ProgressBar progress(context.console, tr("Writing into the camera"));
        return guarded.write();
    }();
    if (!context.json) {
        context.console.result(tr("Written into the camera and read back: %1 of at most %2")
                                   .arg(written)
                                   .arg(guarded.capacity()));
        context.console.result(tr("The list before (%1) is saved in %2").arg(replaced, backup));
    }
    return {{QStringLiteral("entries"), static_cast<qint64>(wanted.entries.size())},
            {QStringLiteral("besideSensor"), wanted.beside},
            {QStringLiteral("replaced"), static_cast<qint64>(guarded.oldEntries().size())},
            {QStringLiteral("backup"), backup}};
}
