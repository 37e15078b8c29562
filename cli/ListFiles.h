// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QDateTime>
#include <QSize>
#include <QString>

#include <span>
#include <vector>

class QFile;

/// List files on their ways into a camera and out of it.
namespace cli {

// Into a camera, where nothing doubtful may pass: unlike the editor, which loads whatever is in a
// file, every line has to be a user entry.

/// Opens a list file, of any kind.
/// @throws CommandError naming the file: it can't be opened, or is no file.
void openListFile(const QString& fileName, QFile& file);

/// Reads a list file: x, y and the class 1 on each line, in decimal without leading zeros (to the
/// editor 012 is octal), with blanks or tabs between them; what follows behind another blank is
/// ignored.
///
/// @throws CommandError naming the file, and the line where there is one: it can't be opened, is no
///         file, is too large to be a list, or holds a line that is no user entry.
std::vector<BadpixelEntry> readUserListFile(const QString& fileName);

/// The user entries of a list, checked against a sensor.
struct SensorEntries
{
    std::vector<BadpixelEntry> entries; ///< the user entries in their order
    int beside = 0;                     ///< how many of them lie at x = width
};

/// Picks the user entries out of @p entries.
///
/// Those in the column behind the last one stay: a detection lists such positions, and what it
/// found goes into the camera as it is.
///
/// @throws CommandError for any other entry outside a sensor of @p sensor pixels.
SensorEntries userEntriesOf(std::span<const BadpixelEntry> entries, const QSize& sensor);

// The list file that a command saves.

/// Finds out early, before minutes of work, what would keep a file from being saved.
/// @throws UsageError when @p fileName is empty.
/// @throws CommandError when it is a folder, its folder does not exist, or it can't be written or
///         made.
void checkOutputFile(const QString& fileName);

/// Saves @p content with hotpixel::writeFile().
/// @throws CommandError with the file's name and the reason.
void saveOutputFile(const QString& fileName, const QByteArray& content);

/// Saves the user entries among @p entries with hotpixel::writeListFile().
/// @throws CommandError with the file's name and the reason.
void saveOutputFile(const QString& fileName, std::span<const BadpixelEntry> entries);

// Dated list files that keep what a camera held before something was written into it.

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
