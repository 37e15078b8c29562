// SPDX-License-Identifier: MIT
#include "cli/SeveralCameras.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/TextTable.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr auto AllCameras = "all";

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SeveralCameras)
};

/// A camera on its way through a command.
struct Turn
{
    QString name;
    std::optional<CameraItem> camera; ///< missing when no such camera is connected
    QString error;                    ///< why it is not done; empty when it is
    QString summary = {};
};

std::vector<Turn> turnsOfAll(const QList<CameraItem>& cameras)
{
    if (cameras.isEmpty()) {
        throw cli::CommandError(Text::tr("No camera is connected."));
    }
    std::vector<Turn> turns;
    for (const CameraItem& camera : cameras) {
        turns.push_back({camera.serNo, camera, {}});
    }
    return turns;
}

std::vector<Turn> turnsOf(const QStringList& names, const QList<CameraItem>& cameras)
{
    std::vector<Turn> turns;
    for (const QString& name : names) {
        Turn turn{name, std::nullopt, {}};
        try {
            turn.camera = cli::chooseCamera(cameras, name);
        } catch (const cli::CommandError& error) {
            turn.error = QString::fromUtf8(error.what());
        }
        // One that has two names, or was named twice, has one turn.
        const bool isThere = std::ranges::any_of(turns, [&turn](const Turn& other) {
            return turn.camera ? other.camera == turn.camera : other.name == turn.name;
        });
        if (!isThere) {
            turns.push_back(std::move(turn));
        }
    }
    return turns;
}

/// Runs the command for the camera whose turn it is, and prints its line for machines.
void take(Turn& turn, const Command& command, const QStringList& rest,
          const QCommandLineParser& parser, CommandContext& context)
{
    CameraShare share{turn.camera.value_or(CameraItem()), {}, {}};
    if (context.interruption.requested()) {
        turn.error = Text::tr("Not begun.");
    }
    if (turn.error.isEmpty()) {
        CommandContext ofOne = context;
        ofOne.share = &share;
        try {
            command.run(QStringList(turn.name) + rest, parser, ofOne);
        } catch (const cli::UsageError&) {
            throw;
        } catch (const std::exception& error) {
            turn.error = QString::fromUtf8(error.what());
        }
        context.status = std::max(context.status, ofOne.status);
    }
    turn.summary = share.summary;
    if (!turn.error.isEmpty()) {
        context.console.notice(QStringLiteral("%1: %2").arg(turn.name, turn.error));
    }
    if (context.json) {
        if (turn.camera) {
            share.object.insert(QStringLiteral("camera"), cli::cameraObject(*turn.camera));
        }
        share.object.insert(QStringLiteral("name"), turn.name);
        share.object.insert(QStringLiteral("done"), turn.error.isEmpty());
        if (!turn.error.isEmpty()) {
            share.object.insert(QStringLiteral("error"), turn.error);
        }
        context.console.json(share.object);
    }
}

QString tableOf(const std::vector<Turn>& turns)
{
    std::vector<QStringList> rows{{Text::tr("Camera"), Text::tr("Model"), Text::tr("Result")}};
    for (const Turn& turn : turns) {
        const QString done = turn.summary.isEmpty() ? Text::tr("done") : turn.summary;
        rows.push_back({turn.camera ? turn.camera->serNo : turn.name,
                        turn.camera ? turn.camera->model : QStringLiteral("-"),
                        turn.error.isEmpty() ? done : turn.error});
    }
    return cli::tableText(rows);
}

} // namespace

bool cli::nameSeveral(const QStringList& names)
{
    return names.size() > 1 || names.contains(QLatin1String(AllCameras));
}

void cli::runForEach(const Command& command, const QStringList& names, const QStringList& rest,
                     const QCommandLineParser& parser, CommandContext& context)
{
    const QList<CameraItem> cameras = camera::connectedCameras(context.sdk());
    std::vector<Turn> turns =
        names.contains(QLatin1String(AllCameras)) ? turnsOfAll(cameras) : turnsOf(names, cameras);
    for (Turn& turn : turns) {
        take(turn, command, rest, parser, context);
        if (!context.json) {
            context.console.result(QString());
        }
        // Whoever reads along need not wait for the last camera. A failure is kept until the end.
        static_cast<void>(context.console.flush());
    }
    if (!context.json) {
        context.console.result(tableOf(turns));
    }
    const auto failed =
        std::ranges::count_if(turns, [](const Turn& turn) { return !turn.error.isEmpty(); });
    if (failed > 0) {
        throw CommandError(
            Text::tr("Something is wrong with %1 of %2 cameras.").arg(failed).arg(turns.size()));
    }
}

CameraItem cli::chosenCamera(CommandContext& context, const QString& name)
{
    const QList<CameraItem> cameras = camera::connectedCameras(context.sdk());
    if (context.share == nullptr) {
        return chooseCamera(cameras, name);
    }
    const CameraItem& camera = context.share->camera;
    const auto found = std::ranges::find_if(cameras, [&camera](const CameraItem& each) {
        return each.devId == camera.devId && each.serNo == camera.serNo;
    });
    if (found == cameras.end()) {
        throw CommandError(Text::tr("The camera is not connected any more."));
    }
    return *found;
}

QString cli::outputName(const QCommandLineParser& parser, const char* option, const QString& suffix,
                        const CommandContext& context)
{
    QString value = parser.value(QLatin1String(option));
    if (context.share == nullptr || !parser.isSet(QLatin1String(option))) {
        return value;
    }
    if (value.isEmpty()) {
        throw UsageError(
            Text::tr("The name of the folder for --%1 is empty.").arg(QLatin1String(option)));
    }
    if (QFileInfo::exists(value) && !QFileInfo(value).isDir()) {
        throw UsageError(Text::tr("With several cameras --%1 names a folder, and %2 is none.")
                             .arg(QLatin1String(option), value));
    }
    if (!QDir().mkpath(value)) {
        throw CommandError(Text::tr("%1: the folder can't be made.").arg(value));
    }
    return QDir(value).filePath(fileNamePart(context.share->camera.serNo) + suffix);
}

QString cli::fileNamePart(const QString& serNo)
{
    static const QRegularExpression Others(QStringLiteral("[^A-Za-z0-9_-]"));
    return QString(serNo).replace(Others, QStringLiteral("_"));
}
