// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ConnectedCameras.h"
#include "camera/SdkExtras.h"
#include "darkframes/DarkStack.h"
#include "darkframes/HtmlReport.h"
#include "darkframes/Mosaic.h"

#include <QCommandLineOption>
#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <utility>
#include <vector>

class CameraSession;
class QCommandLineParser;
class Report;
struct CommandContext;

/// Dark frames, added up, and what there is to say about where they come from.
struct DarkFrames
{
    DarkStack stack;
    Mosaic mosaic;
    QString source; ///< one line: a camera, or which files
    QString title;  ///< the same in fewer words
    /// Names and values for a report.
    std::vector<std::pair<QString, QString>> facts;
};

/// Dark frames for commands that take them from a camera or from files.
namespace cli {

/// What the argument of such a command is called: a camera, or files behind --frames.
QString frameArgument();

/// --frames, --bayer and --mono
QList<QCommandLineOption> frameOptions();

/// Whether the values name files.
[[nodiscard]] bool takesFiles(const QCommandLineParser& parser);

/// Which of the values name cameras: all of them, or none that name files.
qsizetype camerasUnlessFrames(const QStringList& values, const QCommandLineParser& parser);

/// @throws UsageError when the options do not go together: both kinds of sensor, a kind of sensor
/// that a camera says itself.
void checkFrameOptions(const QCommandLineParser& parser);

/// The switches of the SDK, as options of a command that takes frames.
QList<QCommandLineOption> switchOptions(const std::vector<SdkSwitch>& switches);

/// The camera that @p name names, after the switches that were given have been applied to it.
/// @throws CommandError when there is none, or more than one.
CameraItem chooseForFrames(const QString& name, const QCommandLineParser& parser,
                           CommandContext& context);

/// Makes the folder that frames are saved to.
/// @throws CommandError when it can't be made or has something in it.
void makeFrameFolder(const QString& folder);

/// Reads frames from files and adds them up.
/// @param values files, folders or patterns
/// @param least how many there have to be
/// @param saveFolder where each of them is saved, too; none when empty
/// @throws FrameError, CommandError for whatever is wrong with them, and when the end was asked
/// for.
DarkFrames readDarkFrames(const QStringList& values, const QCommandLineParser& parser,
                          std::uint32_t least, const QString& saveFolder, CommandContext& context);

/// Adds up frames that an open camera has sent.
/// @param frames of its size, 8 bits
DarkFrames darkFramesOf(CameraSession& session, const QVector<QImage>& frames);

/// Takes ten dark frames with an open camera; runs the event loop meanwhile.
/// @param skippedFrames images that come first and are not used
/// @throws CommandError why there are none.
DarkFrames takeDarkFrames(CameraSession& session, int skippedFrames, CommandContext& context);

/// Saves the frames of a camera.
void saveFrames(const QVector<QImage>& frames, const QString& folder);

/// What was set and sent: the lines and keys that detections of cameras begin with.
void reportCamera(CameraSession& session, Report& report);
/// The same for files.
void reportFiles(const DarkFrames& frames, Report& report);

/// Saves @p content; an existing file is replaced only as a whole.
/// @throws CommandError with the file's name and the reason.
void saveTextFile(const QString& fileName, const QByteArray& content);

/// What a report of these frames says beside what was found.
ReportContext reportContext(const DarkFrames& frames, const CommandContext& context);

} // namespace cli
