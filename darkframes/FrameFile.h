// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"

#include <QString>
#include <QStringList>

/// Frames from files of any kind that this build reads.
namespace darkframes {

/// Reads a frame. Which kind of file it is says its content; camera raw files, of which there are
/// too many kinds, are known by their names, too. One thread at a time.
/// @throws FrameError "FILE: " and what is wrong with it, see darkframes/ImageFileReader.h; also
/// what nobody here reads, and what this build was made without.
Frame readFrame(const QString& fileName);

/// The files that are meant, each once, in the order of their names.
/// @param paths files; folders, of which those files are meant whose names are those of frames; or
/// patterns with "*", "?" and "[...]" in the name of the file
/// @throws FrameError "PATH: " and what is wrong: it does not exist, there is no frame in the
/// folder, no file fits to the pattern.
QStringList frameFiles(const QStringList& paths);

/// What this build reads and what it was made without, a line each: "PNG, TIFF, BMP, PGM",
/// "FITS by CFITSIO 4.2.0", "camera raw files not at all (made without LibRaw)".
QStringList readerLines();

} // namespace darkframes
