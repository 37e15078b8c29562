// SPDX-License-Identifier: MIT
// `survey`: looks at dark frames of a camera or from files, and changes nothing.

#include "cli/CameraSession.h"
#include "cli/CaptureSettings.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/DarkFrames.h"
#include "cli/ListFiles.h"
#include "cli/SeveralCameras.h"
#include "cli/SurveyOptions.h"
#include "darkframes/SurveyOutput.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <utility>

namespace {

constexpr auto CapacityOption = "capacity";
constexpr auto ReportOption = "report";

/// A camera's lists count their entries in 16 bits.
constexpr std::uint32_t GreatestCapacity = 65535;

class SurveyCommand
{
    Q_DECLARE_TR_FUNCTIONS(SurveyCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    /// The hotpixels that a camera knows, how many it can, and how it took its frames.
    struct Known
    {
        std::vector<PixelPosition> factory;
        std::vector<PixelPosition> user;
        std::optional<std::uint64_t> capacity;
        std::optional<double> exposureMsec; ///< of the frames, where a camera took them
    };

    static std::pair<DarkFrames, Known> fromCamera(const QString& name,
                                                   const CaptureSettings& capture,
                                                   const QCommandLineParser& parser,
                                                   CommandContext& context, Report& report);
    static std::optional<ListRoom> roomIn(const DarkFrames& frames, const Survey& survey,
                                          const Known& known);
};

QList<QCommandLineOption> SurveyCommand::options(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options = cli::frameOptions();
    options += cli::ruleOptions();
    options += CaptureSettings::options();
    options += {{QLatin1String(CapacityOption),
                 tr("With --frames: tell which threshold fills a list of N entries."),
                 QStringLiteral("N")},
                {QLatin1String(ReportOption), tr("Save a report with diagrams as a page of HTML."),
                 QStringLiteral("FILE")}};
    options += cli::switchOptions(switches);
    return options;
}

void SurveyCommand::run(const QStringList& values, const QCommandLineParser& parser,
                        CommandContext& context)
{
    cli::checkFrameOptions(parser);
    const bool files = cli::takesFiles(parser);
    const cli::AskedRule asked = cli::askedRule(parser, files);
    const CaptureSettings capture(parser, files);
    Known known;
    if (parser.isSet(QLatin1String(CapacityOption))) {
        if (!files) {
            throw cli::UsageError(tr("A camera says itself how many entries it can hold: "
                                     "--capacity is for --frames."));
        }
        known.capacity =
            cli::numberOf(parser, CapacityOption, tr("The capacity"), 0, GreatestCapacity);
    }
    const QString reportFile =
        cli::outputName(parser, ReportOption, QStringLiteral(".html"), context);
    if (parser.isSet(QLatin1String(ReportOption))) {
        cli::checkOutputFile(reportFile);
    }

    Report report(context);
    std::optional<DarkFrames> frames;
    if (files) {
        // A single one says nothing about noise.
        constexpr std::uint32_t LeastFrames = 2;
        frames = cli::readDarkFrames(values, parser, LeastFrames, QString(), context);
    } else {
        auto [taken, inCamera] = fromCamera(values.front(), capture, parser, context, report);
        frames = std::move(taken);
        known = std::move(inCamera);
    }
    const HotRule rule = cli::ruleFor(asked, frames->stack.info().bitsPerPixel);
    const Survey survey = Survey::of(frames->stack, frames->mosaic);
    const Findings findings = Findings::of(frames->stack, survey, rule);
    const std::optional<ListRoom> room = roomIn(*frames, survey, known);

    const QJsonObject object = darkframes::surveyObject(frames->stack, survey, findings, room);
    for (auto value = object.begin(); value != object.end(); ++value) {
        report.insert(value.key().toLatin1().constData(), value.value());
    }
    if (files) {
        report.line(frames->source);
    }
    report.line(darkframes::surveyText(frames->stack, survey, findings, room));
    report.setSummary(tr("%1 hot, %2 flickering")
                          .arg(findings.pixels.hot.size())
                          .arg(findings.pixels.flickering.size()));
    if (known.exposureMsec && findings.pixels.hot.empty()) {
        cli::reportShortExposure(*known.exposureMsec, report);
    }
    if (!reportFile.isEmpty()) {
        const auto pixels =
            darkframes::foundPixels(frames->stack, survey, findings, known.factory, known.user);
        cli::saveTextFile(reportFile, darkframes::htmlReport(survey, findings, pixels, room,
                                                             cli::reportContext(*frames, context))
                                          .toUtf8());
        report.line(tr("Saved to %1").arg(reportFile));
        report.insert("report", reportFile);
    }
}

std::pair<DarkFrames, SurveyCommand::Known>
SurveyCommand::fromCamera(const QString& name, const CaptureSettings& capture,
                          const QCommandLineParser& parser, CommandContext& context, Report& report)
{
    CameraSession session(context, cli::chooseForFrames(name, parser, context));
    capture.apply(session.camera());
    const CameraLists lists(session.camera());
    const Known known{cli::positionsOf(lists.factoryEntries(), FactoryPixel),
                      cli::positionsOf(lists.userEntries(), UserPixel),
                      static_cast<std::uint64_t>(lists.maxUserEntries()),
                      session.camera().exposure().value};
    cli::reportCamera(session, report);

    return {cli::takeDarkFrames(session, capture.skippedFrames(), context), known};
}

std::optional<ListRoom> SurveyCommand::roomIn(const DarkFrames& frames, const Survey& survey,
                                              const Known& known)
{
    if (!known.capacity) {
        return std::nullopt;
    }
    std::vector<PixelPosition> all = known.factory;
    all.insert(all.end(), known.user.begin(), known.user.end());
    return cli::listRoom(frames.stack, survey, *known.capacity, known.user.size(), std::move(all));
}

} // namespace

namespace cli::commands {

Command survey()
{
    return {.name = QStringLiteral("survey"),
            .arguments = {cli::frameArgument()},
            .summary = SurveyCommand::tr("Look at dark frames before a detection."),
            .description = SurveyCommand::tr(
                "Takes ten images with each CAMERA (a Dev number, a serial number, or \"all\"),\n"
                "whose sensor has to be covered, or all frames from files, and prints what they\n"
                "show of the sensor: statistics of the mean image and the nonuniformity of EMVA\n"
                "standard 1288 for the whole sensor and for each Bayer plane, how many hotpixels\n"
                "each threshold finds and which one fills the camera's list, clusters, and\n"
                "pixels that flicker. It changes nothing. With several cameras --report names a\n"
                "folder, in which each camera has its own."),
            .options = SurveyCommand::options,
            .run = SurveyCommand::run,
            .cameras = cli::camerasUnlessFrames};
}

} // namespace cli::commands
