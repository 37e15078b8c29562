// SPDX-License-Identifier: MIT
#include "cli/GuardedWrite.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/ListFiles.h"

#include <QCommandLineParser>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

constexpr int PutBackAttempts = 3;

constexpr auto YesOption = "yes";
constexpr auto AllowEmptyOption = "allow-empty";
constexpr auto DryRunOption = "dry-run";

/// @param asks whether a question follows, before which a person has to see it in any case
void reportChange(const cli::ListChange& change, const cli::NewList& list, bool asks,
                  CommandContext& context, Report& report)
{
    for (const QString& line : cli::changeLines(change, list)) {
        if (context.json && asks) {
            context.console.notice(line);
        }
        report.line(line);
    }
    report.setSummary(change.summary());
}

} // namespace

GuardedWrite::GuardedWrite(CameraLists lists, QString serNo, QString backupFolder)
    : m_lists(lists)
    , m_serNo(std::move(serNo))
    , m_backupFolder(std::move(backupFolder))
{}

void GuardedWrite::check(std::span<const BadpixelEntry> entries)
{
    m_capacity = m_lists.maxUserEntries();
    if (entries.size() > static_cast<std::size_t>(m_capacity)) {
        throw cli::CommandError(
            tr("The list has %1 user entries, but the camera can store %2 at most.")
                .arg(entries.size())
                .arg(m_capacity));
    }
    m_oldEntries = m_lists.userEntries();
    m_newEntries.assign(entries.begin(), entries.end());
}

QString GuardedWrite::write()
{
    QString backup =
        cli::saveBackup(m_backupFolder, m_serNo, QDateTime::currentDateTime(), m_oldEntries);

    const QString failure = writeAndCompare();
    if (failure.isEmpty()) {
        return backup;
    }
    const QString putBackFailure = putBack();
    throw cli::CommandError(
        putBackFailure.isEmpty()
            ? tr("%1 The camera holds the old list, which is also in %2.").arg(failure, backup)
            : tr("%1 The old list could not be put back (%2); it is in %3.")
                  .arg(failure, putBackFailure, backup));
}

QString GuardedWrite::writeAndCompare() const
{
    try {
        m_lists.setUserEntries(m_newEntries);
        if (m_lists.userEntries() != m_newEntries) {
            return tr("The camera did not store the list as it was written.");
        }
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

QString GuardedWrite::putBack() const
{
    QString failure;
    for (int attempt = 0; attempt < PutBackAttempts; ++attempt) {
        try {
            // A write that was refused as a whole needs no second one.
            if (m_lists.userEntries() == m_oldEntries) {
                return {};
            }
        } catch (const std::runtime_error& error) {
            failure = QString::fromUtf8(error.what());
        }
        try {
            m_lists.setUserEntries(m_oldEntries);
            if (m_lists.userEntries() == m_oldEntries) {
                return {};
            }
            failure = tr("the camera did not store it");
        } catch (const std::runtime_error& error) {
            failure = QString::fromUtf8(error.what());
        }
    }
    return failure;
}

QList<QCommandLineOption> cli::writeOptions()
{
    return {
        {QLatin1String(YesOption),
         GuardedWrite::tr("Write into the camera without asking before.")},
        {QLatin1String(AllowEmptyOption),
         GuardedWrite::tr("Wipe the user list in the camera when the new one is empty.")},
        {QLatin1String(DryRunOption),
         GuardedWrite::tr("Show what would change in the camera, and write nothing.")},
    };
}

bool cli::isDryRun(const QCommandLineParser& parser)
{
    return parser.isSet(QLatin1String(DryRunOption));
}

void cli::checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context)
{
    if (isDryRun(parser)) {
        return;
    }
    if (!parser.isSet(QLatin1String(YesOption)) && !context.console.canAsk()) {
        throw UsageError(GuardedWrite::tr(
            "There is no terminal to ask whether to overwrite the camera's list; use --yes."));
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
            GuardedWrite::tr(
                "Note: %1 at x = %2, behind the sensor's last column, as a detection lists them.")
                .arg(entryCount(static_cast<std::size_t>(beside)))
                .arg(sensorWidth));
    }
}

void cli::writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                           const QCommandLineParser& parser, CommandContext& context,
                           Report& report)
{
    const Camera& camera = session.camera();
    const SensorEntries wanted =
        userEntriesOf(entries, {camera.imageWidth(), camera.imageHeight()});
    noteEntriesBeside(entries, camera.imageWidth(), context.console);
    NewList list = withoutRepetitions(wanted.entries, CameraLists(camera).factoryEntries());
    list.beside = wanted.beside;
    replaceUserList(session, list, parser, context, report);
}

void cli::replaceUserList(CameraSession& session, const NewList& list,
                          const QCommandLineParser& parser, CommandContext& context, Report& report)
{
    GuardedWrite guarded(CameraLists(session.camera()), session.description().serNo,
                         backupFolder());
    guarded.check(list.entries);
    const bool asks = !isDryRun(parser) && !parser.isSet(QLatin1String(YesOption));
    const ListChange change(guarded.oldEntries(), list.entries);
    reportChange(change, list, asks, context, report);

    const QString replaced = entryCount(guarded.oldEntries().size());
    const QString written = entryCount(list.entries.size());
    if (list.entries.empty() && !guarded.oldEntries().empty() &&
        !parser.isSet(QLatin1String(AllowEmptyOption))) {
        throw CommandError(
            GuardedWrite::tr("The new list is empty; use --allow-empty to wipe the user list in "
                             "the camera (%1).")
                .arg(replaced));
    }
    report.insert("changes", changeObject(change, list));
    if (isDryRun(parser)) {
        report.line(GuardedWrite::tr("Nothing was written."));
        return;
    }
    if (asks && !context.console.confirm(
                    GuardedWrite::tr("Replace the user list in the camera (%1) by the new one "
                                     "(%2)?")
                        .arg(replaced, written),
                    context.interruption)) {
        session.checkInterruption();
        throw CommandError(GuardedWrite::tr("Nothing was written."));
    }
    // From here on the end has to wait until the camera holds one of the two lists for certain.
    session.checkInterruption();
    const QString backup = [&] {
        const ProgressBar progress(context.console, GuardedWrite::tr("Writing into the camera"));
        return guarded.write();
    }();
    report.line(GuardedWrite::tr("Written into the camera and read back: %1 of at most %2")
                    .arg(written)
                    .arg(guarded.capacity()));
    report.line(GuardedWrite::tr("The list before (%1) is saved in %2").arg(replaced, backup));
    report.insert(
        "written",
        QJsonObject{{QStringLiteral("entries"), static_cast<qint64>(list.entries.size())},
                    {QStringLiteral("besideSensor"), list.beside},
                    {QStringLiteral("replaced"), static_cast<qint64>(guarded.oldEntries().size())},
                    {QStringLiteral("backup"), backup}});
}
