// SPDX-License-Identifier: MIT
#pragma once

#include "cli/PixelListFiles.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

class QCommandLineParser;
struct CommandContext;

/// Lists for commands that take them from files of any format and from cameras alike.
namespace cli {

/// --format, --size, --user and --lenient
QList<QCommandLineOption> listSourceOptions();

/// The lists that @p values name: a file where there is one of this name, and a camera otherwise.
///
/// Each camera is opened for as long as it takes to read its factory and its user list. Main
/// thread.
///
/// @throws UsageError for formats that are not known or not told, before anything is read.
/// @throws CommandError, PixelListError, FrameError, std::runtime_error for what can't be read.
std::vector<ReadList> readLists(const QStringList& values, const QCommandLineParser& parser,
                                CommandContext& context);

} // namespace cli
