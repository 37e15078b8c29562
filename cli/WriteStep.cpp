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

#include <algorithm>

namespace {

constexpr auto YesOption = "yes";
constexpr auto AllowEmptyOption = "allow-empty";

QString tr(const char* text)
{
    return QCoreApplication::translate("WriteStep", text);
}

} // namespace

QList<QCommandLineOption> cli::writeOptions()
{
    return {
        {QLatin1String(YesOption), tr("Write into the camera without asking before.")},
        {QLatin1String(AllowEmptyOption),
         tr("Wipe the user list in the camera when the new one is empty.")},
    };
}

void cli::checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context)
{
    if (!parser.isSet(QLatin1String(YesOption)) && !context.console.canAsk()) {
        throw UsageError(
            tr("There is no terminal to ask whether to overwrite the camera's list; use --yes."));
    }
    checkBackupFolder(backupFolder());
}

void cli::noteEntriesBeside(std::span<const BadpixelEntry> entries, int sensorWidth,
                            Console& console)
{
    const auto beside = std::ranges::count_if(entries, [sensorWidth](const BadpixelEntry& entry) {
        return entry.pixelClass == UserPixel && entry.x == sensorWidth;
    });
    if (beside > 0) {
        console.notice(
            tr("Note: %1 at x = %2, behind the sensor's last column, as a detection lists them.")
                .arg(entryCount(static_cast<std::size_t>(beside)))
                .arg(sensorWidth));
    }
}

QJsonObject cli::writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                                  const QCommandLineParser& parser, CommandContext& context)
{
    Camera& camera = session.camera();
    const SensorEntries wanted =
        userEntriesOf(entries, {camera.imageWidth(), camera.imageHeight()});
    noteEntriesBeside(entries, camera.imageWidth(), context.console);
    GuardedWrite guarded(CameraLists(camera), session.description().serNo, backupFolder());
    guarded.check(wanted.entries);
    const QString replaced = entryCount(guarded.oldEntries().size());
    const QString written = entryCount(wanted.entries.size());
    if (wanted.entries.empty() && !guarded.oldEntries().empty() &&
        !parser.isSet(QLatin1String(AllowEmptyOption))) {
        throw CommandError(tr("The new list is empty; use --allow-empty to wipe the user list in "
                              "the camera (%1).")
                               .arg(replaced));
    }
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
