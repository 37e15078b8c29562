// SPDX-License-Identifier: MIT
#include "cli/LiveDetection.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "detection/DetectionRun.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/ListFull.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <exception>

namespace {

constexpr double PatienceFrames = 5; ///< how long the camera may be silent

std::chrono::milliseconds patience(double framesPerSecond, std::chrono::milliseconds least)
{
    if (framesPerSecond <= 0) {
        return least;
    }
    const std::chrono::duration<double, std::milli> frames(1000.0 * PatienceFrames /
                                                           framesPerSecond);
    return std::max(least, std::chrono::duration_cast<std::chrono::milliseconds>(frames));
}

} // namespace

LiveDetection::LiveDetection(CameraSession& session, BadpixelListModel& list,
                             CommandContext& context)
    : m_session(session)
    , m_list(list)
    , m_context(context)
{}

LiveDetection::Result LiveDetection::run(bool clear, int threshold, int skippedFrames)
{
    DetectionRun run(m_list);
    run.start(clear, threshold);
    Result taken = take(run, skippedFrames);
    if (taken.outcome != Outcome::Found) {
        return taken;
    }
    m_frameWatch(run.frames());
    return evaluate(run);
}

LiveDetection::Result LiveDetection::takeFrames(QVector<QImage>& frames, int skippedFrames)
{
    DetectionRun run(m_list);
    constexpr int NoThreshold = 0;
    run.start(false, NoThreshold);
    Result taken = take(run, skippedFrames);
    if (taken.outcome == Outcome::Found) {
        frames = run.frames();
        m_frameWatch(frames);
    }
    return taken;
}

LiveDetection::Result LiveDetection::take(DetectionRun& run, int skippedFrames)
{
    if (m_context.interruption.requested()) {
        return {Outcome::Interrupted, tr("Interrupted.")};
    }
    Camera& camera = m_session.camera();
    // One image more than the run keeps: it tells that the run is complete.
    ProgressBar progress(m_context.console, tr("Taking dark frames"),
                         skippedFrames + DetectionRun::FrameCount + 1);
    QEventLoop loop;
    Result result;
    const auto stop = [&](Outcome outcome, const QString& message) {
        result = {outcome, message};
        loop.quit();
    };

    QTimer silence;
    silence.setSingleShot(true);
    silence.setInterval(patience(camera.framerate().value, m_leastPatience));
    int images = 0;
    bool dropsImages = true;
    // All connections end with the loop.
    QObject::connect(&camera, &Camera::newImage, &loop, [&](const QImage& image) {
        if (image.isNull() || dropsImages) {
            return;
        }
        silence.start();
        progress.setDone(++images);
        if (images <= skippedFrames) {
            return;
        }
        switch (run.addFrame(image)) {
        case DetectionRun::Step::Ready:
            loop.quit();
            break;
        case DetectionRun::Step::NotDark:
            stop(Outcome::NotDark, tr("Too many Hotpixel have been found. Please make sure that "
                                      "the sensor is completely obscured."));
            break;
        case DetectionRun::Step::Idle:
        case DetectionRun::Step::Collected:
            break;
        }
    });
    QObject::connect(&camera, &Camera::cameraRemoved, &loop,
                     [&] { stop(Outcome::Unplugged, tr("The camera was unplugged.")); });
    QObject::connect(&silence, &QTimer::timeout, &loop, [&] {
        stop(Outcome::NoFrames,
             tr("The camera sent no image for %1 seconds (images so far: %2, failed: %3).")
                 .arg(silence.interval() / 1000)
                 .arg(images)
                 .arg(camera.failedCount()));
    });
    QObject::connect(&m_context.interruption, &Interruption::interrupted, &loop,
                     [&] { stop(Outcome::Interrupted, tr("Interrupted.")); });
    QCoreApplication::processEvents(); // the images that have waited are from before
    if (result.outcome == Outcome::Found) {
        dropsImages = false;
        silence.start();
        loop.exec();
    }
    return result;
}

LiveDetection::Result LiveDetection::evaluate(DetectionRun& run)
{
    const ProgressBar progress(m_context.console, tr("Looking for hotpixels"));
    QString cameraFull; ///< what the list says about it, when it is
    Result result;
    QObject::connect(&run, &DetectionRun::listFull,
                     [&cameraFull](const QString& text) { cameraFull = text; });
    QObject::connect(&run, &DetectionRun::foundWithoutLimit,
                     [&result](int count) { result.foundWithoutLimit = count; });
    QObject::connect(&run, &DetectionRun::failed, [&](const QString& text) {
        if (cameraFull.isEmpty()) {
            result.outcome = Outcome::Failed;
            result.message = text;
        } else {
            result.outcome = Outcome::TooMany;
            result.message = tr("%1 The frames hold %2 hotpixels; none was taken over.")
                                 .arg(cameraFull)
                                 .arg(result.foundWithoutLimit);
        }
    });
    try {
        run.evaluate(m_session.camera().colorMode());
    } catch (const ListFull& error) {
        // Counting them failed, too: the list that counts is full at its own limit.
        result.outcome = Outcome::TooMany;
        result.foundWithoutLimit = error.limit();
        result.message = tr("%1 The frames hold more than %2 hotpixels; none was taken over.")
                             .arg(cameraFull)
                             .arg(error.limit());
    } catch (const std::exception& error) {
        result.outcome = Outcome::Failed;
        result.message = QString::fromUtf8(error.what());
    }
    return result;
}
