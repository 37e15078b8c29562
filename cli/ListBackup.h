// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QDateTime>
#include <QString>

#include <span>

/// Dated list files that keep what a camera held before something was written into it.
namespace cli {

/// Where backups go: VornHotpixelEditor/backups in the person's data folder.
QString backupFolder();

/// Finds out early, before minutes of work, what would keep a backup from being saved. Makes
/// @p folder when it is missing.
/// @throws CommandError when it can't be made, or takes no file.
void checkBackupFolder(const QString& folder);

/// Saves @p entries to a new list file in @p folder, which is made when it is missing; its name
/// consists of the serial number, the time and, where that is taken, a number.
///
/// The file is whole and on the disk when it gets its name; a file that is there is never touched.
///
/// @return the file's name with its path.
/// @throws CommandError when it can't be made or written.
QString saveBackup(const QString& folder, const QString& serNo, const QDateTime& time,
                   std::span<const BadpixelEntry> entries);

} // namespace cli
