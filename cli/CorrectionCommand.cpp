// SPDX-License-Identifier: MIT
// `correction`: switches a camera's own hotpixel correction, and proves that it works.

#include "cli/CameraSession.h"
#include "cli/CaptureSettings.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/Correction.h"
#include "cli/DarkFrames.h"
#include "cli/ListedPixels.h"
#include "cli/LiveDetection.h"
#include "cli/SeveralCameras.h"
#include "cli/SurveyOptions.h"
#include "cli/TextTable.h"

#include <QCommandLineParser>
#include <QJsonArray>

#include <algorithm>

namespace {

class CorrectionCommand
{
    Q_DECLARE_TR_FUNCTIONS(CorrectionCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    /// The same listed pixels with the correction off and on.
    struct Proof
    {
        std::vector<cli::ListedPixel> off;
        std::vector<cli::ListedPixel> on;

        [[nodiscard]] auto hot() const
        {
            return std::ranges::count(off, cli::ListedState::Hot, &cli::ListedPixel::state);
        }
        /// How many are hot both times.
        [[nodiscard]] int stillHot() const;
    };

    static void switchTo(bool on, const QString& name, const QCommandLineParser& parser,
                         CommandContext& context);
    static void test(const QString& name, const QCommandLineParser& parser,
                     CommandContext& context);
    static Proof take(CameraSession& session, const CaptureSettings& capture,
                      const cli::AskedRule& asked, CommandContext& context, Report& report);
    static void report(const Proof& proof, Report& report);
};

QList<QCommandLineOption> CorrectionCommand::options(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options = cli::ruleOptions();
    options += CaptureSettings::options();
    options += cli::switchOptions(switches);
    return options;
}

void CorrectionCommand::run(const QStringList& values, const QCommandLineParser& parser,
                            CommandContext& context)
{
    const QString& what = values.last();
    if (what == QLatin1String("test")) {
        test(values.front(), parser, context);
    } else if (what == QLatin1String("on") || what == QLatin1String("off")) {
        switchTo(what == QLatin1String("on"), values.front(), parser, context);
    } else {
        throw cli::UsageError(
            tr("\"%1\" is nothing that can be done with the correction: on, off or test is.")
                .arg(what));
    }
}

void CorrectionCommand::switchTo(bool on, const QString& name, const QCommandLineParser& parser,
                                 CommandContext& context)
{
    for (const QCommandLineOption& option : cli::ruleOptions() + CaptureSettings::options()) {
        if (parser.isSet(option)) {
            throw cli::UsageError(
                tr("--%1 is for \"test\", which takes images.").arg(option.names().first()));
        }
    }
    Report report(context);
    CameraSession session(context, cli::chooseForFrames(name, parser, context));
    Correction correction(session, context.console);
    correction.set(on);
    correction.keep();
    report.insert("camera", cli::cameraObject(session.description()));
    report.insert("correction", on);
    report.line(cli::cameraText(session.description()));
    report.line(on ? tr("The correction is on.") : tr("The correction is off."));
    report.setSummary(on ? tr("on") : tr("off"));
}

void CorrectionCommand::test(const QString& name, const QCommandLineParser& parser,
                             CommandContext& context)
{
    const cli::AskedRule asked = cli::askedRule(parser, false);
    const CaptureSettings capture(parser, false);
    Report report(context);
    CameraSession session(context, cli::chooseForFrames(name, parser, context));
    const Proof proof = take(session, capture, asked, context, report);
    CorrectionCommand::report(proof, report);

    if (proof.off.empty()) {
        throw cli::CommandError(tr("The lists are empty: there is nothing to correct."));
    }
    if (proof.hot() == 0) {
        cli::reportShortExposure(session.camera().exposure().value, report);
        throw cli::CommandError(
            tr("No listed pixel is hot with the correction off, so this proves nothing."));
    }
    if (const int stillHot = proof.stillHot(); stillHot > 0) {
        throw cli::CommandError(tr("The camera does not correct %1 of %2 hot listed pixels.")
                                    .arg(stillHot)
                                    .arg(proof.hot()));
    }
    report.line(tr("The camera corrects what is in its lists."));
}

CorrectionCommand::Proof CorrectionCommand::take(CameraSession& session,
                                                 const CaptureSettings& capture,
                                                 const cli::AskedRule& asked,
                                                 CommandContext& context, Report& report)
{
    Correction correction(session, context.console);
    const cli::CameraListsRead lists = cli::CameraListsRead::of(session.camera());
    capture.apply(session.camera());
    cli::reportCamera(session, report);
    const auto listed = [&](int skippedFrames) {
        const DarkFrames frames = cli::takeDarkFrames(session, skippedFrames, context);
        const HotRule rule = cli::ruleFor(asked, frames.stack.info().bitsPerPixel);
        const Survey survey = Survey::of(frames.stack, frames.mosaic);
        return cli::listedPixels(lists, frames, Findings::of(frames.stack, survey, rule));
    };
    Proof proof;
    proof.off = listed(capture.skippedFrames());
    correction.set(true);
    proof.on = listed(LiveDetection::FramesBeforeSettings);
    correction.set(false);
    return proof;
}

int CorrectionCommand::Proof::stillHot() const
{
    int count = 0;
    for (std::size_t i = 0; i < off.size(); ++i) {
        const bool both =
            off[i].state == cli::ListedState::Hot && on[i].state == cli::ListedState::Hot;
        count += both ? 1 : 0;
    }
    return count;
}

void CorrectionCommand::report(const Proof& proof, Report& report)
{
    std::vector<QStringList> rows{{tr("x"), tr("y"), tr("list"), tr("off"), tr("on")}};
    QJsonArray array;
    const auto value = [](const std::optional<double>& mean) {
        return mean ? QJsonValue(*mean) : QJsonValue();
    };
    for (std::size_t i = 0; i < proof.off.size(); ++i) {
        const BadpixelEntry& entry = proof.off[i].entry;
        rows.push_back({QString::number(entry.x), QString::number(entry.y), cli::listName(entry),
                        cli::meanText(proof.off[i].mean), cli::meanText(proof.on[i].mean)});
        array.append(QJsonObject{{QStringLiteral("x"), entry.x},
                                 {QStringLiteral("y"), entry.y},
                                 {QStringLiteral("list"), cli::listName(entry)},
                                 {QStringLiteral("off"), value(proof.off[i].mean)},
                                 {QStringLiteral("on"), value(proof.on[i].mean)}});
    }
    if (!proof.off.empty()) {
        report.line(cli::tableText(rows));
    }
    report.line(tr("Hot with the correction off: %1 of %2 listed pixels; of these also with it on: "
                   "%3")
                    .arg(proof.hot())
                    .arg(proof.off.size())
                    .arg(proof.stillHot()));
    report.insert("listed", array);
    report.insert("hot", static_cast<qint64>(proof.hot()));
    report.insert("stillHot", proof.stillHot());
    report.setSummary(tr("%1 hot, all corrected").arg(proof.hot()));
}

} // namespace

namespace cli::commands {

Command correction()
{
    return {.name = QStringLiteral("correction"),
            .arguments = {QStringLiteral("CAMERA..."), QStringLiteral("on|off|test")},
            .summary = CorrectionCommand::tr("Switch or test the camera's correction."),
            .description = CorrectionCommand::tr(
                "Switches the correction with which each CAMERA (a Dev number, a serial number,\n"
                "or \"all\") replaces the pixels of its lists on or off. A camera does not say\n"
                "which it is, and every opening switches it off, also that by any other command\n"
                "and by the editor: what has been switched on stays so until then.\n\n"
                "With \"test\", and a covered sensor, it takes ten images with the correction\n"
                "off and ten with it on, prints the mean of each listed pixel in both, and\n"
                "leaves the correction off, as it was found. The exit status is 1 when a hot\n"
                "one is not corrected, and when none is hot, which proves nothing."),
            .options = CorrectionCommand::options,
            .run = CorrectionCommand::run,
            .cameras = cli::allButTheLastAreCameras};
}

} // namespace cli::commands
