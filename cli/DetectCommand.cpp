// SPDX-License-Identifier: MIT
// `detect`: takes dark frames with a camera and finds its hotpixels.

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/GuardedWrite.h"
#include "cli/ListFiles.h"
#include "cli/LiveDetection.h"
#include "detection/DetectionRun.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr auto ThresholdOption = "threshold";
constexpr auto ClearOption = "clear";
constexpr auto AutoOption = "auto";
constexpr auto OutOption = "out";
constexpr auto WriteOption = "write";

constexpr int LeastThreshold = 5;
constexpr int GreatestThreshold = 255;
constexpr int DefaultThreshold = 40;

/// After the settings changed, one image may be waiting and one being exposed that don't have them.
constexpr int FramesBeforeSettings = 2;

QString outcomeWord(LiveDetection::Outcome outcome)
{
    switch (outcome) {
    case LiveDetection::Outcome::Found:
        return QStringLiteral("found");
    case LiveDetection::Outcome::NotDark:
        return QStringLiteral("not-dark");
    case LiveDetection::Outcome::TooMany:
        return QStringLiteral("too-many");
    case LiveDetection::Outcome::Unplugged:
        return QStringLiteral("unplugged");
    case LiveDetection::Outcome::NoFrames:
        return QStringLiteral("no-frames");
    case LiveDetection::Outcome::Interrupted:
        return QStringLiteral("interrupted");
    case LiveDetection::Outcome::Failed:
        break;
    }
    return QStringLiteral("failed");
}

std::size_t countOf(std::span<const BadpixelEntry> entries, Pixelclass pixelClass)
{
    return static_cast<std::size_t>(
        std::ranges::count(entries, pixelClass, &BadpixelEntry::pixelClass));
}

class DetectCommand
{
    Q_DECLARE_TR_FUNCTIONS(DetectCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    /// What the options say.
    struct Settings
    {
        int threshold;
        bool clear;
        bool automatic;
        bool write;
        bool save;
        QString fileName; ///< to save to
    };

    /// What the camera's lists hold that the run will find again.
    struct Known
    {
        std::size_t factory;
        std::size_t user;
    };

    static Settings settingsOf(const QCommandLineParser& parser, const CommandContext& context);
    static void readLists(Camera& camera, BadpixelListModel& list);
    static void reportSettings(CameraSession& session, const Settings& settings, Report& report);
    static Known takeFrames(CameraSession& session, BadpixelListModel& list,
                            const Settings& settings, CommandContext& context, Report& report);
    static void reportFound(const Camera& camera, std::span<const BadpixelEntry> found,
                            const Known& known, const Settings& settings, Report& report);
};

QList<QCommandLineOption> DetectCommand::options(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options{
        {QLatin1String(ThresholdOption),
         tr("How many grey levels above the mean a hotpixel is, from %1 to %2 (%3 unless told).")
             .arg(LeastThreshold)
             .arg(GreatestThreshold)
             .arg(DefaultThreshold),
         QStringLiteral("N"), QString::number(DefaultThreshold)},
        {QLatin1String(ClearOption),
         tr("Start without the user entries that the camera holds; the camera itself keeps them "
            "unless --write is given.")},
        {QLatin1String(AutoOption),
         tr("Set the camera to its longest exposure at one image per second and a gain of 50 "
            "before. The first %1 images are not used then, since they may have been taken with "
            "the settings before.")
             .arg(FramesBeforeSettings)},
        {QLatin1String(OutOption),
         tr("Save the user entries, known and new, to the list file FILE."),
         QStringLiteral("FILE")},
        {QLatin1String(WriteOption),
         tr("Write the user entries, known and new, into the camera, as the command write does.")}};
    options += cli::writeOptions();
    for (const SdkSwitch& sdkSwitch : switches) {
        options.append(QCommandLineOption(sdkSwitch.name, sdkSwitch.description));
    }
    return options;
}

void DetectCommand::run(const QStringList& values, const QCommandLineParser& parser,
                        CommandContext& context)
{
    const Settings settings = settingsOf(parser, context);
    Report report(context.console, context.json);
    const CameraItem chosen =
        cli::chooseCamera(camera::connectedCameras(context.sdk()), values.front());
    for (const SdkSwitch& sdkSwitch : context.switches) {
        if (parser.isSet(sdkSwitch.name)) {
            sdkSwitch.apply(context.sdk(), chosen.devId);
        }
    }

    CameraSession session(context, chosen);
    BadpixelListModel list;
    readLists(session.camera(), list);
    if (settings.automatic) {
        session.camera().setAutoConfig();
    }
    reportSettings(session, settings, report);

    const Known known = takeFrames(session, list, settings, context, report);
    const std::span<const BadpixelEntry> found = list.entries().subspan(known.factory + known.user);
    reportFound(session.camera(), found, known, settings, report);

    if (!settings.write) {
        cli::noteEntriesBeside(list.entries(), session.camera().imageWidth(), context.console);
    }
    if (settings.save) {
        cli::saveOutputFile(settings.fileName, list.entries());
        report.insert("saved", settings.fileName);
        report.line(tr("Saved to %1: %2")
                        .arg(settings.fileName, cli::entryCount(known.user + found.size())));
    }
    if (settings.write) {
        cli::writeUserEntries(session, list.entries(), parser, context, report);
    }
}

DetectCommand::Settings DetectCommand::settingsOf(const QCommandLineParser& parser,
                                                  const CommandContext& context)
{
    bool isNumber = false;
    const QString thresholdText = parser.value(QLatin1String(ThresholdOption));
    const int threshold = thresholdText.toInt(&isNumber);
    if (!isNumber || threshold < LeastThreshold || threshold > GreatestThreshold) {
        throw cli::UsageError(tr("The threshold has to be a number from %1 to %2, not \"%3\".")
                                  .arg(LeastThreshold)
                                  .arg(GreatestThreshold)
                                  .arg(thresholdText));
    }
    Settings settings{.threshold = threshold,
                      .clear = parser.isSet(QLatin1String(ClearOption)),
                      .automatic = parser.isSet(QLatin1String(AutoOption)),
                      .write = parser.isSet(QLatin1String(WriteOption)),
                      .save = parser.isSet(QLatin1String(OutOption)),
                      .fileName = parser.value(QLatin1String(OutOption))};
    if (settings.write) {
        cli::checkWriteOptions(parser, context);
    }
    if (settings.save) {
        cli::checkOutputFile(settings.fileName);
    }
    return settings;
}

void DetectCommand::readLists(Camera& camera, BadpixelListModel& list)
{
    list.getBadpixelList(&camera);
    // The model is silent about what it could not read, and then everything would seem to be new.
    const CameraLists lists(camera);
    list.setMaxUserEntries(lists.maxUserEntries());
    const std::size_t inCamera = lists.factoryEntries().size() + lists.userEntries().size();
    if (static_cast<std::size_t>(list.rowCount()) != inCamera) {
        throw cli::CommandError(
            tr("The camera's lists are too long: a detection can take over 1000 entries of each."));
    }
}

void DetectCommand::reportSettings(CameraSession& session, const Settings& settings, Report& report)
{
    const Camera& camera = session.camera();
    report.line(cli::cameraText(session.description()));
    report.line(tr("Sensor: %1 pixels, %2")
                    .arg(cli::sizeText({camera.imageWidth(), camera.imageHeight()}),
                         camera.colorMode() == camera::ColorModeBayer8 ? tr("raw Bayer")
                                                                       : tr("monochrome")));
    report.line(tr("Images: %1 per second, exposure %2 ms, master gain %3")
                    .arg(camera.framerate().value, 0, 'f', 2)
                    .arg(camera.exposure().value, 0, 'f', 1)
                    .arg(camera.mastergain().value));
    report.insert("camera", cli::cameraObject(session.description()));
    report.insert("width", camera.imageWidth());
    report.insert("height", camera.imageHeight());
    report.insert("colorMode", camera.colorMode());
    report.insert("threshold", settings.threshold);
    report.insert("framesPerSecond", camera.framerate().value);
    report.insert("exposureMsec", camera.exposure().value);
    report.insert("mastergain", camera.mastergain().value);
}

DetectCommand::Known DetectCommand::takeFrames(CameraSession& session, BadpixelListModel& list,
                                               const Settings& settings, CommandContext& context,
                                               Report& report)
{
    const int skippedFrames = settings.automatic ? FramesBeforeSettings : 0;
    const int images = skippedFrames + DetectionRun::FrameCount + 1;
    const double framesPerSecond = session.camera().framerate().value;
    if (framesPerSecond > 0) {
        context.console.notice(tr("Taking %1 dark frames, about %2 seconds ...")
                                   .arg(DetectionRun::FrameCount)
                                   .arg(std::ceil(images / framesPerSecond)));
    }
    // The run itself clears the list, so what is known is counted as it will find it.
    const Known known{countOf(list.entries(), FactoryPixel),
                      settings.clear ? 0 : countOf(list.entries(), UserPixel)};
    report.insert("known",
                  QJsonObject{{QStringLiteral("factory"), static_cast<qint64>(known.factory)},
                              {QStringLiteral("user"), static_cast<qint64>(known.user)}});

    const LiveDetection::Result result =
        LiveDetection(session, list, context)
            .run(settings.clear, settings.threshold, skippedFrames);
    report.insert("outcome", outcomeWord(result.outcome));
    if (result.outcome != LiveDetection::Outcome::Found) {
        report.insert("message", result.message);
        if (result.outcome == LiveDetection::Outcome::TooMany) {
            report.insert("foundWithoutLimit", result.foundWithoutLimit);
        }
        throw cli::CommandError(result.message);
    }
    return known;
}

void DetectCommand::reportFound(const Camera& camera, std::span<const BadpixelEntry> found,
                                const Known& known, const Settings& settings, Report& report)
{
    report.insert("found", static_cast<qint64>(found.size()));
    report.insert("pixels", cli::entryArray(found));
    report.line(tr("Already known: %1 in the factory list, %2 in the user list")
                    .arg(known.factory)
                    .arg(known.user));
    if (camera.colorMode() == camera::ColorModeBayer8) {
        report.line(tr("New hotpixels, more than %1 grey levels above the mean of their plane: %2")
                        .arg(settings.threshold)
                        .arg(found.size()));
        report.line(cli::planeText(found));
        report.insert("planes", cli::planeArray(found));
    } else {
        report.line(tr("New hotpixels, more than %1 grey levels above the mean: %2")
                        .arg(settings.threshold)
                        .arg(found.size()));
    }
    // They stand in the file or in the camera otherwise.
    if (!settings.save && !settings.write && !found.empty()) {
        report.line(cli::entryColumns(found));
    }
}

} // namespace

namespace cli::commands {

Command detect()
{
    return {.name = QStringLiteral("detect"),
            .arguments = {QStringLiteral("CAMERA")},
            .summary = DetectCommand::tr("Find the hotpixels of a camera in dark frames."),
            .description = DetectCommand::tr(
                "Takes ten images with CAMERA (a Dev number or a serial number), whose sensor\n"
                "has to be covered, and finds the pixels that are brighter than the mean in all\n"
                "of them together. On a Bayer sensor each of the four planes has a mean of its\n"
                "own. What the camera's lists hold already is not reported again.\n\n"
                "A scene that is not dark, and more hotpixels than the camera can store, end\n"
                "the detection with status 1 and change nothing."),
            .options = DetectCommand::options,
            .run = DetectCommand::run};
}

} // namespace cli::commands
