// SPDX-License-Identifier: MIT
// `detect`: finds hotpixels in dark frames of a camera or from files.

#include "cli/CameraSession.h"
#include "cli/CaptureSettings.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/DarkFrames.h"
#include "cli/EntryText.h"
#include "cli/ExactDetection.h"
#include "cli/GuardedWrite.h"
#include "cli/ListFiles.h"
#include "cli/LiveDetection.h"
#include "cli/PixelListFiles.h"
#include "cli/SeveralCameras.h"
#include "cli/SurveyOptions.h"
#include "detection/DetectionRun.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr auto ClearOption = "clear";
constexpr auto OutOption = "out";
constexpr auto WriteOption = "write";
constexpr auto LikeEditorOption = "like-editor";
constexpr auto FlickeringOption = "flickering";
constexpr auto ReportOption = "report";
constexpr auto CsvOption = "csv";
constexpr auto SaveFramesOption = "save-frames";

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
        cli::AskedRule rule;
        CaptureSettings capture;
        bool files;
        bool likeEditor;
        bool flickering;
        bool clear;
        bool write;
        bool save;
        QString fileName;              ///< to save the list to
        const PixelListFormat* format; ///< which it gets
        QString csvFile;               ///< and others; empty for none
        QString reportFile;
        QString frameFolder;
    };

    /// What the camera's lists hold that the run will find again.
    struct Known
    {
        std::vector<PixelPosition> factory;
        std::vector<PixelPosition> user;
    };

    static Settings settingsOf(const QCommandLineParser& parser, const CommandContext& context);
    static void checkTogether(const Settings& settings);

    static void detectInFiles(const QStringList& values, const Settings& settings,
                              const QCommandLineParser& parser, CommandContext& context);
    static void detectWithCamera(const QString& name, const Settings& settings,
                                 const QCommandLineParser& parser, CommandContext& context);

    static void readLists(Camera& camera, BadpixelListModel& list);
    static Known knownIn(const BadpixelListModel& list, bool clear);
    static void run(CameraSession& session, BadpixelListModel& list, const Settings& settings,
                    const Known& known, PixelValues& means, CommandContext& context,
                    Report& report);
    static LiveDetection::Result findIn(const DarkFrames& frames, BadpixelListModel& list,
                                        const Settings& settings, const Known& known,
                                        PixelValues& means, const CommandContext& context,
                                        Report& report);

    static void reportResult(const LiveDetection::Result& result, Report& report);
    static void reportFound(bool isBayer, std::span<const BadpixelEntry> found, const HotRule& rule,
                            const Settings& settings, Report& report);
    static void saveList(const Settings& settings, std::span<const BadpixelEntry> entries,
                         std::size_t count, const ListWriting& writing, Report& report);
};

QList<QCommandLineOption> DetectCommand::options(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options = cli::frameOptions();
    options += cli::ruleOptions();
    options += CaptureSettings::options();
    options += {
        {QLatin1String(FlickeringOption),
         tr("Add the pixels that are hot in at least one image, but not in the mean.")},
        {QLatin1String(LikeEditorOption),
         tr("Find what the editor finds: its way over the image takes the first pixel of a row for "
            "one behind the row before, too, and ends before the image does.")},
        {QLatin1String(ClearOption),
         tr("Start without the user entries that the camera holds; the camera itself keeps them "
            "unless --write is given.")},
        {QLatin1String(OutOption),
         tr("Save the user entries, known and new, to the list file FILE."),
         QStringLiteral("FILE")},
        cli::outputFormatOption(),
        {QLatin1String(CsvOption),
         tr("Save what was found, and what the frames say about it, as a table."),
         QStringLiteral("FILE")},
        {QLatin1String(ReportOption), tr("Save a report with diagrams as a page of HTML."),
         QStringLiteral("FILE")},
        {QLatin1String(SaveFramesOption),
         tr("Save the images that are used as PNG files to an empty folder."),
         QStringLiteral("DIR")},
        {QLatin1String(WriteOption),
         tr("Write the user entries, known and new, into the camera, as the command write does.")}};
    options += cli::writeOptions();
    options += cli::switchOptions(switches);
    return options;
}

void DetectCommand::run(const QStringList& values, const QCommandLineParser& parser,
                        CommandContext& context)
{
    const Settings settings = settingsOf(parser, context);
    if (settings.files) {
        detectInFiles(values, settings, parser, context);
    } else {
        detectWithCamera(values.front(), settings, parser, context);
    }
}

DetectCommand::Settings DetectCommand::settingsOf(const QCommandLineParser& parser,
                                                  const CommandContext& context)
{
    cli::checkFrameOptions(parser);
    Settings settings{
        .rule = cli::askedRule(parser, cli::takesFiles(parser)),
        .capture = CaptureSettings(parser, cli::takesFiles(parser)),
        .files = cli::takesFiles(parser),
        .likeEditor = parser.isSet(QLatin1String(LikeEditorOption)),
        .flickering = parser.isSet(QLatin1String(FlickeringOption)),
        .clear = parser.isSet(QLatin1String(ClearOption)),
        .write = parser.isSet(QLatin1String(WriteOption)),
        .save = parser.isSet(QLatin1String(OutOption)),
        .fileName = cli::outputName(parser, OutOption, cli::outputSuffix(parser), context),
        .format = &cli::outputFormat(
            cli::outputName(parser, OutOption, cli::outputSuffix(parser), context), parser),
        .csvFile = cli::outputName(parser, CsvOption, QStringLiteral(".csv"), context),
        .reportFile = cli::outputName(parser, ReportOption, QStringLiteral(".html"), context),
        .frameFolder = cli::outputName(parser, SaveFramesOption, {}, context)};
    checkTogether(settings);
    if (settings.write) {
        cli::checkWriteOptions(parser, context);
    } else if (cli::isDryRun(parser)) {
        throw cli::UsageError(tr("--dry-run shows what --write would do, which is missing."));
    }
    if (settings.save) {
        cli::checkListOutput(settings.fileName, *settings.format);
    }
    for (const auto& [option, fileName] :
         {std::pair(CsvOption, settings.csvFile), {ReportOption, settings.reportFile}}) {
        if (parser.isSet(QLatin1String(option))) {
            cli::checkOutputFile(fileName);
        }
    }
    if (parser.isSet(QLatin1String(SaveFramesOption))) {
        cli::makeFrameFolder(settings.frameFolder);
    }
    return settings;
}

void DetectCommand::checkTogether(const Settings& settings)
{
    if (settings.files && (settings.clear || settings.write)) {
        throw cli::UsageError(tr("--clear, --auto and --write are for a camera, and --frames takes "
                                 "none."));
    }
    if (!settings.likeEditor) {
        return;
    }
    if (settings.rule.sigma || settings.flickering) {
        throw cli::UsageError(
            tr("The editor knows no --sigma and no --flickering: --like-editor goes without."));
    }
    // Positions that are no pixels have no values to show.
    if (!settings.csvFile.isEmpty() || !settings.reportFile.isEmpty()) {
        throw cli::UsageError(tr("--csv and --report show pixels of the sensor, and --like-editor "
                                 "finds others, too."));
    }
}

void DetectCommand::detectInFiles(const QStringList& values, const Settings& settings,
                                  const QCommandLineParser& parser, CommandContext& context)
{
    Report report(context);
    const DarkFrames frames = cli::readDarkFrames(values, parser, 1, settings.frameFolder, context);
    const HotRule rule = cli::ruleFor(settings.rule, frames.stack.info().bitsPerPixel);
    cli::reportFiles(frames, report);
    cli::reportRule(rule, report);

    ListWriting writing{.size = {static_cast<int>(frames.stack.info().width),
                                 static_cast<int>(frames.stack.info().height)}};
    BadpixelListModel list;
    list.setMaxUserEntries(std::numeric_limits<int>::max());
    if (settings.likeEditor) {
        cli::detectLikeEditor(frames, static_cast<int>(rule.threshold), list);
    } else {
        reportResult(findIn(frames, list, settings, {}, writing.values, context, report), report);
    }
    report.insert("outcome", outcomeWord(LiveDetection::Outcome::Found));
    reportFound(frames.mosaic.isBayer(), list.entries(), rule, settings, report);
    cli::noteEntriesBeside(list.entries(), static_cast<int>(frames.stack.info().width),
                           context.console);
    saveList(settings, list.entries(), list.entries().size(), writing, report);
}

void DetectCommand::detectWithCamera(const QString& name, const Settings& settings,
                                     const QCommandLineParser& parser, CommandContext& context)
{
    Report report(context);
    CameraSession session(context, cli::chooseForFrames(name, parser, context));
    BadpixelListModel list;
    readLists(session.camera(), list);
    settings.capture.apply(session.camera());
    constexpr std::uint32_t CameraBits = 8;
    const HotRule rule = cli::ruleFor(settings.rule, CameraBits);
    cli::reportCamera(session, report);
    cli::reportRule(rule, report);

    // The run itself clears the list, so what is known is counted as it will find it.
    const Known known = knownIn(list, settings.clear);
    ListWriting writing{.size = {session.camera().imageWidth(), session.camera().imageHeight()},
                        .camera = session.description().model};
    run(session, list, settings, known, writing.values, context, report);
    const std::size_t before = known.factory.size() + known.user.size();
    const std::span<const BadpixelEntry> found = list.entries().subspan(before);
    report.line(tr("Already known: %1 in the factory list, %2 in the user list")
                    .arg(known.factory.size())
                    .arg(known.user.size()));
    reportFound(session.camera().colorMode() == camera::ColorModeBayer8, found, rule, settings,
                report);
    if (found.empty()) {
        cli::reportShortExposure(session.camera().exposure().value, report);
    }

    if (!settings.write) {
        cli::noteEntriesBeside(list.entries(), session.camera().imageWidth(), context.console);
    }
    saveList(settings, list.entries(), known.user.size() + found.size(), writing, report);
    if (settings.write) {
        cli::writeUserEntries(session, list.entries(), parser, context, report);
    }
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

DetectCommand::Known DetectCommand::knownIn(const BadpixelListModel& list, bool clear)
{
    return {cli::positionsOf(list.entries(), FactoryPixel),
            clear ? std::vector<PixelPosition>() : cli::positionsOf(list.entries(), UserPixel)};
}

void DetectCommand::run(CameraSession& session, BadpixelListModel& list, const Settings& settings,
                        const Known& known, PixelValues& means, CommandContext& context,
                        Report& report)
{
    const int skippedFrames = settings.capture.skippedFrames();
    const int images = skippedFrames + DetectionRun::FrameCount + 1;
    const double framesPerSecond = session.camera().framerate().value;
    if (framesPerSecond > 0) {
        context.console.notice(tr("Taking %1 dark frames, about %2 seconds ...")
                                   .arg(DetectionRun::FrameCount)
                                   .arg(std::ceil(images / framesPerSecond)));
    }
    report.insert(
        "known", QJsonObject{{QStringLiteral("factory"), static_cast<qint64>(known.factory.size())},
                             {QStringLiteral("user"), static_cast<qint64>(known.user.size())}});

    LiveDetection detection(session, list, context);
    if (!settings.frameFolder.isEmpty()) {
        detection.setFrameWatch([&settings](const QVector<QImage>& frames) {
            cli::saveFrames(frames, settings.frameFolder);
        });
    }
    LiveDetection::Result result;
    if (settings.likeEditor) {
        const HotRule rule = cli::ruleFor(settings.rule, 8);
        result = detection.run(settings.clear, static_cast<int>(rule.threshold), skippedFrames);
    } else {
        QVector<QImage> frames;
        result = detection.takeFrames(frames, skippedFrames);
        if (result.outcome == LiveDetection::Outcome::Found) {
            if (settings.clear) {
                list.clearUserBadpixelList();
            }
            result = findIn(cli::darkFramesOf(session, frames), list, settings, known, means,
                            context, report);
        }
    }
    report.insert("outcome", outcomeWord(result.outcome));
    reportResult(result, report);
}

LiveDetection::Result DetectCommand::findIn(const DarkFrames& frames, BadpixelListModel& list,
                                            const Settings& settings, const Known& known,
                                            PixelValues& means, const CommandContext& context,
                                            Report& report)
{
    const HotRule rule = cli::ruleFor(settings.rule, frames.stack.info().bitsPerPixel);
    const cli::ExactDetection detection(frames, rule, settings.flickering);
    LiveDetection::Result result = cli::addFound(detection.found, list);
    report.insert("flickering", static_cast<qint64>(detection.findings.pixels.flickering.size()));
    // What is too much for a camera is worth a look, too.
    const std::vector<FoundPixel> pixels = darkframes::foundPixels(
        frames.stack, detection.survey, detection.findings, known.factory, known.user);
    for (const FoundPixel& pixel : pixels) {
        means.insert_or_assign({pixel.position.x, pixel.position.y},
                               static_cast<float>(pixel.mean));
    }
    if (!settings.csvFile.isEmpty()) {
        cli::saveTextFile(settings.csvFile, darkframes::foundPixelsCsv(pixels));
        report.insert("csv", settings.csvFile);
    }
    if (!settings.reportFile.isEmpty()) {
        const QString page =
            darkframes::htmlReport(detection.survey, detection.findings, pixels, std::nullopt,
                                   cli::reportContext(frames, context));
        cli::saveTextFile(settings.reportFile, page.toUtf8());
        report.insert("report", settings.reportFile);
    }
    return result;
}

void DetectCommand::reportResult(const LiveDetection::Result& result, Report& report)
{
    if (result.outcome == LiveDetection::Outcome::Found) {
        return;
    }
    report.insert("message", result.message);
    if (result.outcome == LiveDetection::Outcome::TooMany) {
        report.insert("foundWithoutLimit", result.foundWithoutLimit);
    }
    throw cli::CommandError(result.message);
}

void DetectCommand::reportFound(bool isBayer, std::span<const BadpixelEntry> found,
                                const HotRule& rule, const Settings& settings, Report& report)
{
    report.insert("found", static_cast<qint64>(found.size()));
    report.setSummary(tr("%1 new").arg(found.size()));
    report.insert("pixels", cli::entryArray(found));
    report.line(tr("New hotpixels, %1: %2")
                    .arg(cli::ruleText(rule, isBayer), QString::number(found.size())));
    if (isBayer) {
        report.line(cli::planeText(found));
        report.insert("planes", cli::planeArray(found));
    }
    // They stand in the file or in the camera otherwise.
    if (!settings.save && !settings.write && !found.empty()) {
        report.line(cli::entryColumns(found));
    }
    for (const QString& file : {settings.csvFile, settings.reportFile}) {
        if (!file.isEmpty()) {
            report.line(tr("Saved to %1").arg(file));
        }
    }
}

void DetectCommand::saveList(const Settings& settings, std::span<const BadpixelEntry> entries,
                             std::size_t count, const ListWriting& writing, Report& report)
{
    if (!settings.save) {
        return;
    }
    const QString account =
        cli::saveUserEntries(settings.fileName, *settings.format, entries, writing, report);
    report.line(tr("Saved to %1: %2").arg(settings.fileName, cli::entryCount(count)));
    if (!account.isEmpty()) {
        report.line(account);
    }
}

} // namespace

namespace cli::commands {

Command detect()
{
    return {.name = QStringLiteral("detect"),
            .arguments = {cli::frameArgument()},
            .summary = DetectCommand::tr("Find hotpixels in dark frames."),
            .description = DetectCommand::tr(
                "Takes ten images with each CAMERA (a Dev number, a serial number, or \"all\"),\n"
                "whose sensor has to be covered, or all frames from files, and finds the pixels\n"
                "that are brighter than the mean in all of them together. On a Bayer sensor each\n"
                "of the four planes has a mean of its own. What the camera's lists hold already\n"
                "is not reported again. With several cameras the options that name a file name a\n"
                "folder, in which each camera has its own.\n\n"
                "A scene that is not dark, and more hotpixels than the camera can store, end\n"
                "the detection with status 1 and change nothing."),
            .options = DetectCommand::options,
            .run = DetectCommand::run,
            .cameras = cli::camerasUnlessFrames};
}

} // namespace cli::commands
