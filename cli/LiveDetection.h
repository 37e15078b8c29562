// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QString>
#include <QVector>

#include <chrono>
#include <functional>
#include <utility>

class BadpixelListModel;
class CameraSession;
struct CommandContext;

/// Drives a DetectionRun over the live images of an open camera, and ends it when no images come.
/// Main thread.
class LiveDetection
{
    Q_DECLARE_TR_FUNCTIONS(LiveDetection)

public:
    /// Images that may still come from before a setting or a switch, behind those that waited: one
    /// that is on its way and one that is being exposed.
    static constexpr int FramesBeforeSettings = 2;

    enum class Outcome {
        Found,       ///< the list holds what was found; so it does when that is nothing
        NotDark,     ///< a frame is too bright for a covered sensor
        TooMany,     ///< the camera can't store what was found; the list is as it was
        Unplugged,   ///< the camera has gone
        NoFrames,    ///< the camera stopped to deliver images
        Interrupted, ///< the end was asked for
        Failed       ///< the detector refused the frames; the list is as it was
    };

    struct Result
    {
        Outcome outcome = Outcome::Found;
        QString message;           ///< one line why it stopped; empty for Found
        int foundWithoutLimit = 0; ///< for TooMany: how many there are, as far as they were counted
    };

    /// @param list the hotpixels that are known; gets those that are found
    LiveDetection(CameraSession& session, BadpixelListModel& list, CommandContext& context);

    /// How long the camera may be silent at least (10 seconds at first); it may be so for five
    /// frames in any case.
    void setLeastPatience(std::chrono::milliseconds patience) { m_leastPatience = patience; }

    /// Gets the ten frames when they are complete, before they are evaluated.
    using FrameWatch = std::function<void(const QVector<QImage>&)>;
    void setFrameWatch(FrameWatch watch) { m_frameWatch = std::move(watch); }

    /// Only takes the frames, for who evaluates them; runs the event loop meanwhile. The outcome is
    /// Found when they are complete.
    /// @param frames gets copies of them
    /// @param skippedFrames images that come first and are not used; nor are those that waited for
    ///        the event loop
    Result takeFrames(QVector<QImage>& frames, int skippedFrames);

    /// Takes the frames and finds the hotpixels; runs the event loop meanwhile.
    /// @param clear removes the list's user entries first
    /// @param threshold in grey levels above the mean
    /// @param skippedFrames as for takeFrames()
    Result run(bool clear, int threshold, int skippedFrames);

private:
    Result take(class DetectionRun& run, int skippedFrames);
    Result evaluate(class DetectionRun& run);

    CameraSession& m_session;
    BadpixelListModel& m_list;
    CommandContext& m_context;
    FrameWatch m_frameWatch = [](const QVector<QImage>&) {};
    std::chrono::milliseconds m_leastPatience{10'000};
};
