// SPDX-License-Identifier: MIT
#include "cli/DarkFrames.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/Interruption.h"
#include "cli/LiveDetection.h"
#include "cli/SeveralCameras.h"
#include "darkframes/FrameFile.h"
#include "darkframes/FrameFolder.h"
#include "darkframes/FrameStacker.h"
#include "hotpixel/BadpixelListModel.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <utility>

namespace {

constexpr auto FramesOption = "frames";
constexpr auto BayerOption = "bayer";
constexpr auto MonoOption = "mono";

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(DarkFrames)
};

std::optional<Mosaic> toldMosaic(const QCommandLineParser& parser)
{
    if (parser.isSet(QLatin1String(BayerOption))) {
        return Mosaic::bayer();
    }
    return parser.isSet(QLatin1String(MonoOption)) ? std::optional(Mosaic::mono()) : std::nullopt;
}

QString mosaicText(const Mosaic& mosaic)
{
    if (!mosaic.isBayer()) {
        return Text::tr("monochrome");
    }
    return mosaic.colours().isEmpty() ? Text::tr("raw Bayer")
                                      : Text::tr("raw Bayer, %1").arg(mosaic.colours());
}

QString sensorText(const ImageInfo& info, const Mosaic& mosaic)
{
    return Text::tr("%1 pixels of %2 bits, %3")
        .arg(cli::sizeText({static_cast<int>(info.width), static_cast<int>(info.height)}))
        .arg(info.bitsPerPixel)
        .arg(mosaicText(mosaic));
}

/// Which files they are, however many.
QString filesText(const QStringList& files)
{
    if (files.size() == 1) {
        return files.first();
    }
    return Text::tr("%1 files, %2 to %3")
        .arg(QString::number(files.size()), files.first(), files.last());
}

} // namespace

namespace cli {

QString frameArgument()
{
    return QStringLiteral("CAMERA...|--frames PATH...");
}

QList<QCommandLineOption> frameOptions()
{
    return {{QLatin1String(FramesOption),
             Text::tr("Take dark frames from files instead of a camera: each PATH is a file, a "
                      "folder, or a pattern such as \"dark*.fits\".")},
            {QLatin1String(BayerOption),
             Text::tr("The files are of a sensor with a Bayer pattern, where they don't say.")},
            {QLatin1String(MonoOption),
             Text::tr("The files are of a monochrome sensor, where they don't say.")}};
}

bool takesFiles(const QCommandLineParser& parser)
{
    return parser.isSet(QLatin1String(FramesOption));
}

qsizetype camerasUnlessFrames(const QStringList& values, const QCommandLineParser& parser)
{
    return takesFiles(parser) ? 0 : values.size();
}

void checkFrameOptions(const QCommandLineParser& parser)
{
    if (parser.isSet(QLatin1String(BayerOption)) && parser.isSet(QLatin1String(MonoOption))) {
        throw UsageError(Text::tr("--bayer and --mono contradict each other."));
    }
    if (takesFiles(parser)) {
        return;
    }
    if (toldMosaic(parser)) {
        throw UsageError(Text::tr("A camera says itself what sensor it has: --bayer and --mono are "
                                  "for --frames."));
    }
}

QList<QCommandLineOption> switchOptions(const std::vector<SdkSwitch>& switches)
{
    QList<QCommandLineOption> options;
    for (const SdkSwitch& sdkSwitch : switches) {
        options.append(QCommandLineOption(sdkSwitch.name, sdkSwitch.description));
    }
    return options;
}

CameraItem chooseForFrames(const QString& name, const QCommandLineParser& parser,
                           CommandContext& context)
{
    CameraItem chosen = chosenCamera(context, name);
    for (const SdkSwitch& sdkSwitch : context.switches) {
        if (parser.isSet(sdkSwitch.name)) {
            sdkSwitch.apply(context.sdk(), chosen.devId);
        }
    }
    return chosen;
}

void makeFrameFolder(const QString& folder)
{
    if (folder.isEmpty()) {
        throw UsageError(Text::tr("The name of the folder for the frames is empty."));
    }
    if (!QDir().mkpath(folder)) {
        throw CommandError(Text::tr("%1: the folder can't be made.").arg(folder));
    }
    // What is played back from a folder is everything in it.
    if (!QDir(folder).isEmpty()) {
        throw CommandError(Text::tr("%1: the folder is not empty.").arg(folder));
    }
}

DarkFrames readDarkFrames(const QStringList& values, const QCommandLineParser& parser,
                          std::uint32_t least, const QString& saveFolder, CommandContext& context)
{
    const QStringList files = darkframes::frameFiles(values);
    FrameStacker stacker(toldMosaic(parser));
    ProgressBar progress(context.console, Text::tr("Reading frames"),
                         static_cast<int>(files.size()));
    for (const QString& file : files) {
        if (context.interruption.requested()) {
            throw CommandError(Text::tr("Interrupted."));
        }
        Frame frame = darkframes::readFrame(file);
        if (!saveFolder.isEmpty()) {
            darkframes::saveFrame(
                frame.image,
                QDir(saveFolder).filePath(darkframes::frameFileName(stacker.frameCount())));
        }
        stacker.add(file, std::move(frame));
        if (!stacker.mosaic()) {
            throw CommandError(Text::tr("%1: doesn't say whether its sensor has colour filters; "
                                        "--bayer or --mono does.")
                                   .arg(file));
        }
        progress.setDone(static_cast<int>(stacker.frameCount()));
    }
    const Mosaic mosaic = *stacker.mosaic();
    DarkFrames frames{stacker.finish(least),
                      mosaic,
                      filesText(files),
                      files.size() == 1 ? files.first() : Text::tr("%1 files").arg(files.size()),
                      {}};
    frames.facts = {{Text::tr("frames"), frames.source},
                    {Text::tr("sensor"), sensorText(frames.stack.info(), mosaic)}};
    return frames;
}

DarkFrames darkFramesOf(CameraSession& session, const QVector<QImage>& frames)
{
    const Camera& camera = session.camera();
    const CameraItem& item = session.description();
    const Mosaic mosaic =
        camera.colorMode() == camera::ColorModeBayer8 ? Mosaic::bayer() : Mosaic::mono();
    const ImageInfo info{static_cast<std::uint32_t>(frames.front().width()),
                         static_cast<std::uint32_t>(frames.front().height()), 8};
    // The bytes are the values, whatever palette the camera's images have.
    QList<QImage> greys;
    for (const QImage& frame : frames) {
        greys.append(QImage(frame.constBits(), frame.width(), frame.height(), frame.bytesPerLine(),
                            QImage::Format_Grayscale8));
    }
    DarkFrames result{DarkStack(info), mosaic, cameraText(item), cameraText(item), {}};
    result.stack.add(greys);
    result.facts = {
        {Text::tr("camera"), item.model},
        {Text::tr("serial number"), item.serNo},
        {Text::tr("sensor"), sensorText(info, mosaic)},
        {Text::tr("frames"), QString::number(frames.size())},
        {Text::tr("exposure"), Text::tr("%1 ms").arg(camera.exposure().value, 0, 'f', 1)},
        {Text::tr("gain"), QString::number(camera.mastergain().value)},
        {Text::tr("rate"), Text::tr("%1 per second").arg(camera.framerate().value, 0, 'f', 2)}};
    return result;
}

DarkFrames takeDarkFrames(CameraSession& session, int skippedFrames, CommandContext& context)
{
    BadpixelListModel list;
    QVector<QImage> images;
    const LiveDetection::Result taken =
        LiveDetection(session, list, context).takeFrames(images, skippedFrames);
    if (taken.outcome != LiveDetection::Outcome::Found) {
        throw CommandError(taken.message);
    }
    return darkFramesOf(session, images);
}

void saveFrames(const QVector<QImage>& frames, const QString& folder)
{
    for (qsizetype i = 0; i < frames.size(); ++i) {
        const QString name = darkframes::frameFileName(static_cast<std::uint32_t>(i));
        darkframes::saveFrame(frames[i], QDir(folder).filePath(name));
    }
}

void reportCamera(CameraSession& session, Report& report)
{
    const Camera& camera = session.camera();
    report.line(cameraText(session.description()));
    report.line(Text::tr("Sensor: %1 pixels, %2")
                    .arg(sizeText({camera.imageWidth(), camera.imageHeight()}),
                         camera.colorMode() == camera::ColorModeBayer8 ? Text::tr("raw Bayer")
                                                                       : Text::tr("monochrome")));
    report.line(Text::tr("Images: %1 per second, exposure %2 ms, master gain %3")
                    .arg(camera.framerate().value, 0, 'f', 2)
                    .arg(camera.exposure().value, 0, 'f', 1)
                    .arg(camera.mastergain().value));
    report.insert("camera", cameraObject(session.description()));
    report.insert("width", camera.imageWidth());
    report.insert("height", camera.imageHeight());
    report.insert("colorMode", camera.colorMode());
    report.insert("framesPerSecond", camera.framerate().value);
    report.insert("exposureMsec", camera.exposure().value);
    report.insert("mastergain", camera.mastergain().value);
}

void reportFiles(const DarkFrames& frames, Report& report)
{
    const ImageInfo& info = frames.stack.info();
    report.line(Text::tr("Frames: %1").arg(frames.source));
    report.line(Text::tr("Sensor: %1").arg(sensorText(info, frames.mosaic)));
    report.insert("frames", static_cast<qint64>(frames.stack.frameCount()));
    report.insert("width", static_cast<qint64>(info.width));
    report.insert("height", static_cast<qint64>(info.height));
    report.insert("bits", static_cast<qint64>(info.bitsPerPixel));
    report.insert("colorMode",
                  frames.mosaic.isBayer() ? camera::ColorModeBayer8 : camera::ColorModeMono8);
}

void saveTextFile(const QString& fileName, const QByteArray& content)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commit()) {
        throw CommandError(QStringLiteral("%1: %2").arg(fileName, file.errorString()));
    }
}

ReportContext reportContext(const DarkFrames& frames, const CommandContext& context)
{
    ReportContext report;
    report.title = Text::tr("Dark frames of %1").arg(frames.title);
    report.facts = frames.facts;
    report.facts.emplace_back(Text::tr("date"), QDateTime::currentDateTime().toString(
                                                    QStringLiteral("yyyy-MM-dd HH:mm")));
    report.command = context.commandLine;
    report.program = QStringLiteral("vorn-hotpixel ") + QCoreApplication::applicationVersion();
    return report;
}

} // namespace cli
