// SPDX-License-Identifier: MIT
#pragma once

#include <QIODevice>
#include <QString>

namespace darkframes {

/// Walks over the headers of a FITS file up to its first image with two axes, before CFITSIO does.
/// CFITSIO believes what they say: it divides by the size of a tile, takes memory for any number of
/// them and looks a dither seed up in a table without a look at either.
/// @param content open for reading, at its beginning; where it stands afterwards is undefined
/// @throws FrameError
/// "FILE: truncated" – the file ends within a header, or a part is said to be longer than the file
/// "FILE: damaged (a header that is no text)"
/// "FILE: damaged (%1 is not in its place)", "FILE: damaged (%1 stands twice)", "FILE: damaged (%1
/// is no number)", "FILE: damaged (%1 is out of range)" – with the keyword in question
void checkFitsHeaders(const QString& fileName, QIODevice& content);

} // namespace darkframes
