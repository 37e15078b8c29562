// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QSize>
#include <QString>

#include <span>
#include <vector>

/// The way of a list file into a camera, where nothing doubtful may pass: unlike the editor, which
/// loads whatever is in a file, every line has to be a user entry.
namespace cli {

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

} // namespace cli
