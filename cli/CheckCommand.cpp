// SPDX-License-Identifier: MIT
// `check`: whether the list in a camera is still right.

#include "cli/CameraSession.h"
#include "cli/CaptureSettings.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/Correction.h"
#include "cli/DarkFrames.h"
#include "cli/EntryText.h"
#include "cli/ListFiles.h"
#include "cli/ListedPixels.h"
#include "cli/SeveralCameras.h"
#include "cli/SurveyOptions.h"
#include "cli/TextTable.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <set>

namespace {

constexpr auto ReportOption = "report";

class CheckCommand
{
    Q_DECLARE_TR_FUNCTIONS(CheckCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    /// What the frames say about the lists.
    struct Verdict
    {
        std::vector<cli::ListedPixel> listed;
        std::vector<BadpixelEntry> notHot; ///< of the user list; nobody can change the other one
        std::vector<BadpixelEntry> fresh;  ///< hot, and in no list

        Verdict(const cli::CameraListsRead& lists, const DarkFrames& frames,
                const Findings& findings);

        [[nodiscard]] bool needsWork() const { return !notHot.empty() || !fresh.empty(); }
        [[nodiscard]] auto count(cli::ListedState state) const
        {
            return std::ranges::count(listed, state, &cli::ListedPixel::state);
        }
    };

    static void report(const Verdict& verdict, const HotRule& rule, bool isBayer, Report& report);
    static void savePage(const QString& fileName, const cli::CameraListsRead& lists,
                         const DarkFrames& frames, const Survey& survey, const Findings& findings,
                         const CommandContext& context, Report& report);
};

QList<QCommandLineOption> CheckCommand::options(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options = cli::ruleOptions();
    options += CaptureSettings::options();
    options.append({QLatin1String(ReportOption),
                    tr("Save a report with diagrams and with the list on the map as a page of "
                       "HTML."),
                    QStringLiteral("FILE")});
    options += cli::switchOptions(switches);
    return options;
}

void CheckCommand::run(const QStringList& values, const QCommandLineParser& parser,
                       CommandContext& context)
{
    const cli::AskedRule asked = cli::askedRule(parser, false);
    const CaptureSettings capture(parser, false);
    const QString reportFile =
        cli::outputName(parser, ReportOption, QStringLiteral(".html"), context);
    if (parser.isSet(QLatin1String(ReportOption))) {
        cli::checkOutputFile(reportFile);
    }

    Report report(context);
    CameraSession session(context, cli::chooseForFrames(values.front(), parser, context));
    // It is off, so the frames show the sensor as it is.
    const Correction correction(session, context.console);
    const cli::CameraListsRead lists = cli::CameraListsRead::of(session.camera());
    capture.apply(session.camera());
    cli::reportCamera(session, report);

    const DarkFrames frames = cli::takeDarkFrames(session, capture.skippedFrames(), context);
    const HotRule rule = cli::ruleFor(asked, frames.stack.info().bitsPerPixel);
    const Survey survey = Survey::of(frames.stack, frames.mosaic);
    const Findings findings = Findings::of(frames.stack, survey, rule);
    const Verdict verdict(lists, frames, findings);
    CheckCommand::report(verdict, rule, frames.mosaic.isBayer(), report);
    if (findings.pixels.hot.empty()) {
        cli::reportShortExposure(session.camera().exposure().value, report);
    }
    if (!reportFile.isEmpty()) {
        savePage(reportFile, lists, frames, survey, findings, context, report);
    }
    if (verdict.needsWork()) {
        throw cli::CommandError(tr("The list needs work: %1 not hot any more, %2 new.")
                                    .arg(verdict.notHot.size())
                                    .arg(verdict.fresh.size()));
    }
    report.line(tr("The list is right."));
}

CheckCommand::Verdict::Verdict(const cli::CameraListsRead& lists, const DarkFrames& frames,
                               const Findings& findings)
    : listed(cli::listedPixels(lists, frames, findings))
{
    std::set<PixelPosition> known;
    for (const cli::ListedPixel& pixel : listed) {
        known.insert({pixel.entry.x, pixel.entry.y});
        if (pixel.state == cli::ListedState::NotHot && pixel.entry.pixelClass == UserPixel) {
            notHot.push_back(pixel.entry);
        }
    }
    for (const PixelPosition& position : findings.pixels.hot) {
        if (!known.contains(position)) {
            fresh.push_back({position.x, position.y, UserPixel});
        }
    }
}

void CheckCommand::report(const Verdict& verdict, const HotRule& rule, bool isBayer, Report& report)
{
    std::vector<QStringList> rows{{tr("x"), tr("y"), tr("list"), tr("mean"), tr("state")}};
    QJsonArray array;
    for (const cli::ListedPixel& pixel : verdict.listed) {
        const QString list = cli::listName(pixel.entry);
        rows.push_back({QString::number(pixel.entry.x), QString::number(pixel.entry.y), list,
                        cli::meanText(pixel.mean), cli::stateText(pixel.state)});
        array.append(QJsonObject{
            {QStringLiteral("x"), pixel.entry.x},
            {QStringLiteral("y"), pixel.entry.y},
            {QStringLiteral("list"), list},
            {QStringLiteral("mean"), pixel.mean ? QJsonValue(*pixel.mean) : QJsonValue()},
            {QStringLiteral("state"), QLatin1String(cli::stateName(pixel.state))}});
    }
    cli::reportRule(rule, report);
    report.insert("listed", array);
    report.insert("notHot", cli::entryArray(verdict.notHot));
    report.insert("new", cli::entryArray(verdict.fresh));
    report.insert("needsWork", verdict.needsWork());
    report.setSummary(tr("right, %1 listed").arg(verdict.listed.size()));

    if (!verdict.listed.empty()) {
        report.line(cli::tableText(rows));
    }
    report.line(tr("Hot is %1.").arg(cli::ruleText(rule, isBayer)));
    report.line(tr("Listed: %1, of which hot %2, flickering %3, not hot any more %4, outside the "
                   "sensor %5")
                    .arg(verdict.listed.size())
                    .arg(verdict.count(cli::ListedState::Hot))
                    .arg(verdict.count(cli::ListedState::Flickering))
                    .arg(verdict.count(cli::ListedState::NotHot))
                    .arg(verdict.count(cli::ListedState::Outside)));
    report.line(tr("New, hot and in no list: %1").arg(verdict.fresh.size()));
    if (!verdict.fresh.empty()) {
        report.line(cli::entryColumns(verdict.fresh));
    }
}

void CheckCommand::savePage(const QString& fileName, const cli::CameraListsRead& lists,
                            const DarkFrames& frames, const Survey& survey,
                            const Findings& findings, const CommandContext& context, Report& report)
{
    const std::vector<PixelPosition> factory = cli::positionsOf(lists.factory, FactoryPixel);
    const std::vector<PixelPosition> user = cli::positionsOf(lists.user, UserPixel);
    std::vector<PixelPosition> listed = factory;
    listed.insert(listed.end(), user.begin(), user.end());
    std::vector<FoundPixel> pixels =
        darkframes::foundPixels(frames.stack, survey, findings, factory, user);
    for (FoundPixel& pixel : darkframes::pixelsNotFound(frames.stack, survey, findings, listed)) {
        pixels.push_back(std::move(pixel));
    }
    const ListRoom room =
        cli::listRoom(frames.stack, survey, static_cast<std::uint64_t>(lists.capacity),
                      lists.user.size(), std::move(listed));
    const QString page =
        darkframes::htmlReport(survey, findings, pixels, room, cli::reportContext(frames, context));
    cli::saveTextFile(fileName, page.toUtf8());
    report.line(tr("Saved to %1").arg(fileName));
    report.insert("report", fileName);
}

} // namespace

namespace cli::commands {

Command check()
{
    return {.name = QStringLiteral("check"),
            .arguments = {QStringLiteral("CAMERA...")},
            .summary = CheckCommand::tr("Check whether the list is still right."),
            .description = CheckCommand::tr(
                "Takes ten images with each CAMERA (a Dev number, a serial number, or \"all\"),\n"
                "whose sensor has to be covered, and says of each pixel in its lists whether it\n"
                "is still hot, and which hot pixels are in no list. It changes nothing; the\n"
                "camera's correction is off meanwhile, as after every opening.\n\n"
                "The exit status is 1 when the list needs work: when a pixel of the user list\n"
                "is not hot any more, or a new one is hot. Exposure, gain and threshold should\n"
                "be those that the list was made with. With several cameras --report names a\n"
                "folder, in which each camera has its own."),
            .options = CheckCommand::options,
            .run = CheckCommand::run,
            .cameras = cli::allAreCameras};
}

} // namespace cli::commands
