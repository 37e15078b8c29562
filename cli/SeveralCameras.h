// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ConnectedCameras.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QCommandLineParser;
struct Command;
struct CommandContext;

/// One of several cameras that a command works through, and what it leaves behind for the table or
/// the line at the end.
struct CameraShare
{
    CameraItem camera;
    QString summary;    ///< a few words
    QJsonObject object; ///< the results for machines
};

/// A command runs for one camera at a time. What is different when it was given several is here.
namespace cli {

/// Whether the names stand for more than one camera, or may do so ("all").
[[nodiscard]] bool nameSeveral(const QStringList& names);

/// Runs @p command for each camera that is named, one after the other; each one only once. Goes on
/// after one that fails, unless the end was asked for. For people a table of all cameras ends it;
/// for machines there is an object on one line for each camera, to which "name", "done" and,
/// unless that is true, "error" are added.
/// @param names of cameras, or "all"
/// @param rest the values behind the names
/// @throws UsageError of the command, which no other camera would make better.
/// @throws CommandError when it failed for one camera at least, or when there are none.
void runForEach(const Command& command, const QStringList& names, const QStringList& rest,
                const QCommandLineParser& parser, CommandContext& context);

/// The camera that @p name names, or the one of several that it is the turn of.
/// @throws CommandError when it is not connected, or @p name is ambiguous.
[[nodiscard]] CameraItem chosenCamera(CommandContext& context, const QString& name);

/// The file that the value of @p option names; with several cameras the value is a folder, which is
/// made when it is missing, and the file in it is called after the camera's serial number.
/// @param suffix of that file, with its dot; empty for a folder of each camera's own
/// @return the value of the option as it is for a single camera; empty when it was not given.
/// @throws UsageError when the folder is a file or has no name.
/// @throws CommandError when it can't be made.
[[nodiscard]] QString outputName(const QCommandLineParser& parser, const char* option,
                                 const QString& suffix, const CommandContext& context);

/// A serial number as part of a file's name.
[[nodiscard]] QString fileNamePart(const QString& serNo);

} // namespace cli
