// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QString>

#include <span>

/// The list file that a command saves.
namespace cli {

/// Finds out early, before minutes of work, what would keep a file from being saved.
/// @throws UsageError when @p fileName is empty.
/// @throws CommandError when it is a folder, its folder does not exist, or it can't be written or
///         made.
void checkOutputFile(const QString& fileName);

/// Saves the user entries among @p entries; an existing file is replaced only as a whole.
/// @throws CommandError with the file's name and the reason; the old file is as it was.
void saveOutputFile(const QString& fileName, std::span<const BadpixelEntry> entries);

} // namespace cli
