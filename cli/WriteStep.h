// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QCommandLineOption>
#include <QJsonObject>
#include <QList>

#include <span>

class CameraSession;
class Console;
class QCommandLineParser;
struct CommandContext;

/// What `write` and `detect --write` share: the guarded write with its question, and what is said
/// about it.
namespace cli {

/// --yes and --allow-empty
QList<QCommandLineOption> writeOptions();

/// Makes sure that the question can be answered and the old list be saved before anything else is
/// done.
/// @throws UsageError when it can't be answered, and --yes is missing.
/// @throws CommandError when there is no place for a backup.
void checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context);

/// Gives a notice when user entries among @p entries lie at x = @p sensorWidth, where only a
/// detection finds any. writeUserEntries() does so itself.
void noteEntriesBeside(std::span<const BadpixelEntry> entries, int sensorWidth, Console& console);

/// Replaces the user list in the open camera by the user entries among @p entries, asks before
/// unless --yes is given, and tells on standard output (not with --json) what was done. A list is
/// replaced by an empty one only with --allow-empty.
/// @return the number of entries and the backup file, for --json.
/// @throws CommandError when the answer is no, when the entries don't fit, or when writing fails.
QJsonObject writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                             const QCommandLineParser& parser, CommandContext& context);

} // namespace cli
