// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace darkframes {

/// Whether the file begins as one that was packed with gzip does.
bool isGzipFile(const QString& fileName);

/// The content of a file that was packed with gzip, in memory. Takes as much memory as the file
/// says that its content has, and only if the file is large enough to be true.
/// @throws FrameError "FILE: " and what is wrong: it can't be opened, is truncated or damaged.
QByteArray unpackGzipFile(const QString& fileName);

/// Whether @p packed is a gzip stream that is undamaged, ends in it and holds no more than
/// @p mostBytes. Takes that much memory.
bool isWholeGzipStream(const QByteArray& packed, qsizetype mostBytes);

} // namespace darkframes
