// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QCommandLineOption>
#include <QJsonObject>

#include <span>

class CameraSession;
class QCommandLineParser;
struct CommandContext;

/// What `write` and `detect --write` share: the guarded write with its question, and what is said
/// about it.
namespace cli {

/// --yes
QCommandLineOption yesOption();

/// Makes sure that the question can be answered before anything else is done.
/// @throws UsageError when it can't, and --yes is missing.
void checkWriteOptions(const QCommandLineParser& parser, const CommandContext& context);

/// Replaces the user list in the open camera by the user entries among @p entries, asks before
/// unless --yes is given, and tells on standard output (not with --json) what was done.
/// @return the number of entries and the backup file, for --json.
/// @throws CommandError when the answer is no, when the entries don't fit, or when writing fails.
QJsonObject writeUserEntries(CameraSession& session, std::span<const BadpixelEntry> entries,
                             const QCommandLineParser& parser, CommandContext& context);

} // namespace cli
