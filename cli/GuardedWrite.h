// SPDX-License-Identifier: MIT
#pragma once

#include "cli/ListChange.h"
#include "hotpixel/BadpixelEntry.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineOption>
#include <QCoreApplication>
#include <QList>
#include <QString>

#include <span>
#include <vector>

class CameraSession;
class Console;
class QCommandLineParser;
class Report;
struct CommandContext;

/// Replaces the user list in a camera's EEPROM so that no list is lost.
///
/// Whatever fails, the camera holds the old list or the new one as far as it still answers, and
/// once it may hold the new one, the backup file holds the old one. First check(), then write().
/// Main thread.
class GuardedWrite
{
    Q_DECLARE_TR_FUNCTIONS(GuardedWrite)

public:
    /// @param lists of the open camera
    /// @param serNo the camera's serial number, for the name of the backup
    /// @param backupFolder where the backup goes; made when it is missing
    GuardedWrite(CameraLists lists, QString serNo, QString backupFolder);

    /// Reads the list that is to be replaced, and finds out whether @p entries fit into the camera.
    /// @throws std::runtime_error when they don't, or when the camera does not say; nothing is
    ///         changed then.
    void check(std::span<const BadpixelEntry> entries);

    /// The list that check() found in the camera.
    [[nodiscard]] const std::vector<BadpixelEntry>& oldEntries() const { return m_oldEntries; }

    /// How many entries the camera can hold, as check() found.
    [[nodiscard]] int capacity() const { return m_capacity; }

    /// Saves the old list to a dated file, writes the entries that check() was given, reads them
    /// back and compares; puts the old list back when they differ.
    ///
    /// @return the backup file's name.
    /// @throws cli::CommandError what failed, which list the camera holds, and where the old one
    ///         is.
    QString write();

private:
    [[nodiscard]] QString writeAndCompare() const;
    [[nodiscard]] QString putBack() const;

    CameraLists m_lists;
    QString m_serNo;
    QString m_backupFolder;
    int m_capacity = 0;
    std::vector<BadpixelEntry> m_newEntries;
    std::vector<BadpixelEntry> m_oldEntries;
};

// What `write`, `detect --write` and `restore` share: the guarded write with what it changes and
// its question, and what is said about it.

namespace cli {

/// --yes, --allow-empty and --dry-run
QList<QCommandLineOption> writeOptions();

/// Whether nothing is to be written, only shown.
[[nodiscard]] bool isDryRun(const QCommandLineParser& parser);

/// Makes sure that the question can be answered and the old list be saved before anything else is
/// done. A dry run needs neither.
/// @throws UsageError when it can't be answered, and --yes is missing.
/// @throws CommandError when there is no place for a backup.
void checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context);

/// Gives a notice when user entries among @p entries lie at x = @p sensorWidth, where only a
/// detection finds any. writeUserEntries() does so itself.
void noteEntriesBeside(std::span<const BadpixelEntry> entries, int sensorWidth, Console& console);

/// Replaces the user list in the open camera by @p list. Reports what that changes, to machines as
/// "changes", where a dry run ends; asks unless --yes is given, and reports what was done, to
/// machines as "written". A list is replaced by an empty one only with --allow-empty.
/// @throws CommandError when the answer is no, when the entries don't fit, or when writing fails.
void replaceUserList(CameraSession& session, const NewList& list, const QCommandLineParser& parser,
                     CommandContext& context, Report& report);

/// The same with the user entries among @p entries, each of them once and without those that the
/// camera's factory list holds.
/// @throws CommandError also for an entry outside the sensor.
void writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                      const QCommandLineParser& parser, CommandContext& context, Report& report);

} // namespace cli
