// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QByteArray>
#include <QString>

#include <span>
#include <vector>

class QIODevice;

/// The text file of a hotpixel list: one entry per line, x, y and class in decimal.
namespace hotpixel {

/// What the file of @p entries holds: the user entries in their order, "x y 1" and a line end each
/// (CR LF on Windows); all others are left out.
[[nodiscard]] QByteArray listFileContent(std::span<const BadpixelEntry> entries);

/// Writes @p content to a file.
///
/// An existing file is replaced only when the new one is complete, so a failure leaves it as it
/// was. A file that can't be replaced is written in place, be it that no other one can be made in
/// its folder or that the new one can't take its name (a mount point, somebody else's file in a
/// sticky folder, on Windows one that is open elsewhere): a full disk leaves it as it was, a
/// program killed meanwhile does not. Devices are written in place as well.
///
/// @throws std::runtime_error "Can't open file for writing." when @p filename can't be made or
///         written to, or is a folder or a pipe.
/// @throws std::runtime_error "Can't write file." when the disk is full or fails.
void writeFile(const QString& filename, const QByteArray& content);

/// Writes listFileContent() with writeFile().
void writeListFile(const QString& filename, std::span<const BadpixelEntry> entries);

/// Finds out whether writeFile() could begin; the file is as before. One that is not there is
/// made and removed again, since only that tells whether there can be one of its name.
/// @throws std::runtime_error "Can't open file for writing."
void checkListFile(const QString& filename);

/// Reads the entries of a list; each line gives one, whatever is in it.
///
/// A line is read as QTextStream reads three unsigned integers from it: white space separates them
/// and may be missing where a character can't continue a number; a prefix 0x, 0b or 0 chooses the
/// base; a sign is taken; a number that overflows wraps around; where no number begins, this field
/// and all that follow are 0; the rest of the line is ignored. The entry takes the low 16, 16 and 8
/// bits. A byte order mark tells UTF-16 and UTF-32; all else is UTF-8. Carriage returns are
/// ignored. A last line needs no line end. Content that has no characters is one empty line.
///
/// Takes memory for the entries only, however long the lines are. An error of @p device, which must
/// be open for reading and not in text mode, ends the list.
std::vector<BadpixelEntry> readList(QIODevice& device);

/// Reads a list file with readList().
///
/// @throws std::runtime_error "Can't open file for reading." when @p filename is missing,
///         unreadable, or no regular file.
std::vector<BadpixelEntry> readListFile(const QString& filename);

} // namespace hotpixel
