// SPDX-License-Identifier: MIT
#include "cli/DetectCommand.h"

#include "cli/CameraChoice.h"
#include "cli/CameraSession.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/FindingsReport.h"
#include "cli/ListOutput.h"
#include "cli/LiveDetection.h"
#include "cli/WriteStep.h"
#include "detection/DetectionRun.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QJsonDocument>

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

/// Prints lines for people as they come, or one object for machines at the end, also when it ends
/// with an exception.
class DetectReport
{
public:
    explicit DetectReport(CommandContext& context)
        : m_context(context)
    {}

    ~DetectReport()
    {
        if (m_context.json && !m_object.isEmpty()) {
            m_context.console.result(
                QString::fromUtf8(QJsonDocument(m_object).toJson(QJsonDocument::Compact)));
        }
    }

    DetectReport(const DetectReport&) = delete;
    DetectReport& operator=(const DetectReport&) = delete;

    void line(const QString& text)
    {
        if (!m_context.json) {
            m_context.console.result(text);
        }
    }

    void insert(const char* key, const QJsonValue& value)
    {
        m_object.insert(QLatin1String(key), value);
    }

private:
    CommandContext& m_context;
    QJsonObject m_object;
};

std::size_t countOf(std::span<const BadpixelEntry> entries, Pixelclass pixelClass)
{
    return static_cast<std::size_t>(
        std::ranges::count(entries, pixelClass, &BadpixelEntry::pixelClass));
}

} // namespace

QString DetectCommand::summary() const
{
    return tr("Find the hotpixels of a camera in dark frames.");
}

QString DetectCommand::description() const
{
    return tr("Takes ten images with CAMERA (a Dev number or a serial number), whose sensor has to "
              "be covered, and finds the pixels that are brighter than the mean in all of them "
              "together. On a Bayer sensor each of the four planes has a mean of its own. What the "
              "camera's lists hold already is not reported again.\n\n"
              "A scene that is not dark, and more hotpixels than the camera can store, end the "
              "detection with status 1 and change nothing.");
}

QList<QCommandLineOption> DetectCommand::options(const std::vector<SdkSwitch>& switches) const
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
                        CommandContext& context) const
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
    const bool write = parser.isSet(QLatin1String(WriteOption));
    if (write) {
        cli::checkWriteOptions(parser, context);
    }
    const QString fileName = parser.value(QLatin1String(OutOption));
    const bool save = parser.isSet(QLatin1String(OutOption));
    if (save) {
        cli::checkOutputFile(fileName);
    }

    DetectReport report(context);
    const CameraItem chosen =
        cli::chooseCamera(camera::connectedCameras(context.sdk), values.front());
    for (const SdkSwitch& sdkSwitch : context.switches) {
        if (parser.isSet(sdkSwitch.name)) {
            sdkSwitch.apply(context.sdk, chosen.devId);
        }
    }
    CameraSession session(context, chosen);
    Camera& camera = session.camera();

    BadpixelListModel list;
    list.getBadpixelList(&camera);
    // The model is silent about what it could not read, and then everything would seem to be new.
    const CameraLists lists(camera);
    list.setMaxUserEntries(lists.maxUserEntries());
    const std::size_t inCamera = lists.factoryEntries().size() + lists.userEntries().size();
    if (static_cast<std::size_t>(list.rowCount()) != inCamera) {
        throw cli::CommandError(
            tr("The camera's lists are too long: a detection can take over 1000 entries of each."));
    }

    const bool automatic = parser.isSet(QLatin1String(AutoOption));
    if (automatic) {
        camera.setAutoConfig();
    }
    const double framesPerSecond = camera.framerate().value;
    report.line(cli::cameraText(chosen));
    report.line(tr("Sensor: %1 pixels, %2")
                    .arg(cli::sizeText({camera.imageWidth(), camera.imageHeight()}),
                         camera.colorMode() == camera::ColorModeBayer8 ? tr("raw Bayer")
                                                                       : tr("monochrome")));
    report.line(tr("Images: %1 per second, exposure %2 ms, master gain %3")
                    .arg(framesPerSecond, 0, 'f', 2)
                    .arg(camera.exposure().value, 0, 'f', 1)
                    .arg(camera.mastergain().value));
    report.insert("camera", cli::cameraObject(chosen));
    report.insert("width", camera.imageWidth());
    report.insert("height", camera.imageHeight());
    report.insert("colorMode", camera.colorMode());
    report.insert("threshold", threshold);
    report.insert("framesPerSecond", framesPerSecond);
    report.insert("exposureMsec", camera.exposure().value);
    report.insert("mastergain", camera.mastergain().value);

    const int skippedFrames = automatic ? FramesBeforeSettings : 0;
    const int images = skippedFrames + DetectionRun::FrameCount + 1;
    if (framesPerSecond > 0) {
        context.console.notice(tr("Taking %1 dark frames, about %2 seconds ...")
                                   .arg(DetectionRun::FrameCount)
                                   .arg(std::ceil(images / framesPerSecond)));
    }
    // ... the clearing is a part of the run, so what is known is counted as the run will find it.
    const bool clear = parser.isSet(QLatin1String(ClearOption));
    const std::size_t knownFactory = countOf(list.entries(), FactoryPixel);
    const std::size_t knownUser = clear ? 0 : countOf(list.entries(), UserPixel);
    report.insert("known",
                  QJsonObject{{QStringLiteral("factory"), static_cast<qint64>(knownFactory)},
                              {QStringLiteral("user"), static_cast<qint64>(knownUser)}});

    const LiveDetection::Result result =
        LiveDetection(session, list, context).run(clear, threshold, skippedFrames);
    report.insert("outcome", outcomeWord(result.outcome));
    if (result.outcome != LiveDetection::Outcome::Found) {
        report.insert("message", result.message);
        if (result.outcome == LiveDetection::Outcome::TooMany) {
            report.insert("foundWithoutLimit", result.foundWithoutLimit);
        }
        throw cli::CommandError(result.message);
    }

    const std::span<const BadpixelEntry> found = list.entries().subspan(knownFactory + knownUser);
    report.insert("found", static_cast<qint64>(found.size()));
    report.insert("pixels", cli::entryArray(found));
    report.line(tr("Already known: %1 in the factory list, %2 in the user list")
                    .arg(knownFactory)
                    .arg(knownUser));
    if (camera.colorMode() == camera::ColorModeBayer8) {
        report.line(tr("New hotpixels, more than %1 grey levels above the mean of their plane: %2")
                        .arg(threshold)
                        .arg(found.size()));
        report.line(cli::planeText(found));
        report.insert("planes", cli::planeArray(found));
    } else {
        report.line(tr("New hotpixels, more than %1 grey levels above the mean: %2")
                        .arg(threshold)
                        .arg(found.size()));
    }
    // They stand in the file or in the camera otherwise.
    if (!save && !write && !found.empty()) {
        report.line(cli::entryColumns(found));
    }

    if (!write) {
        cli::noteEntriesBeside(list.entries(), camera.imageWidth(), context.console);
    }
    if (save) {
        cli::saveOutputFile(fileName, list.entries());
        report.insert("saved", fileName);
        report.line(tr("Saved to %1: %2").arg(fileName, cli::entryCount(knownUser + found.size())));
    }
    if (write) {
        report.insert("written", cli::writeUserEntries(session, list.entries(), parser, context));
    }
}
