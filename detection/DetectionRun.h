// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QVector>

class BadpixelListModel;
class HotpixelDetector;

/// Collects dark frames, refuses those that are plainly not dark, and merges the hotpixels that
/// a HotpixelDetector finds into a list. It needs no window; GUI thread.
///
/// start(), then addFrame() for each live image until it returns Ready, then evaluate().
class DetectionRun : public QObject
{
    Q_OBJECT

public:
    static constexpr int FrameCount = 10;       ///< frames of a run
    static constexpr int ProgressStep = 10;     ///< percent for each frame
    static constexpr int MaxBrightBytes = 5000; ///< of a dark frame
    static constexpr int BrightLevel = 100;     ///< bytes above it are bright

    /// What addFrame() made of an image.
    enum class Step {
        Idle,      ///< nothing: no run is collecting
        Collected, ///< kept it
        Ready,     ///< all frames were there already and the run is not collecting any more; the
                   ///< image was not used and evaluate() is to be called
        NotDark    ///< the run is over and its frames are dropped
    };

    /// @param list the list that hotpixels go into; borrowed.
    explicit DetectionRun(BadpixelListModel& list, QObject* parent = nullptr);

    /// Whether frames are being collected.
    [[nodiscard]] bool isRunning() const { return m_running; }

    /// Of the current or last run, in grey levels.
    [[nodiscard]] int threshold() const { return m_threshold; }

    /// Deep copies of the images collected so far. A failed evaluation may leave them behind; then
    /// the next run evaluates them again with the first image that arrives.
    [[nodiscard]] const QVector<QImage>& frames() const { return m_frames; }

    /// Starts to collect. @param clear removes the list's user entries first.
    void start(bool clear, int threshold);

    /// Stops collecting and drops the frames.
    void cancel();

    /// Takes the next live image.
    Step addFrame(const QImage& image);

    /// Finds the hotpixels of the collected frames and adds those to the list that it does not hold
    /// yet, as long as the camera can store them; then drops the frames.
    ///
    /// When that fails, the hotpixels are only counted (foundWithoutLimit()) and the reason is
    /// reported (failed()).
    /// @param colorMode the camera's colour mode, 6 or 11.
    /// @throws std::exception when counting them fails as well; the frames stay and finished() is
    ///         not emitted.
    void evaluate(int colorMode);

    /// Whether at most MaxBrightBytes of the image's bytes, padding included, are above
    /// BrightLevel.
    [[nodiscard]] static bool isDark(const QImage& image);

signals:
    /// After each collected frame, 10 … 100.
    void progressed(int percent);

    /// The detector has finished; after a failure it runs, and finishes, once more.
    void detectionFinished();

    /// The evaluation fails because the camera can't store what was found; comes before
    /// foundWithoutLimit() and failed(), also where counting fails and they don't come.
    /// @param text what failed() says
    void listFull(const QString& text);

    /// How many hotpixels the frames hold, none of which was taken over.
    void foundWithoutLimit(int count);

    /// Why the evaluation failed.
    void failed(const QString& text);

    /// The evaluation is over, successful or not.
    void finished();

private:
    void stopCollecting();
    void mergeHotpixels(HotpixelDetector& detector);

    BadpixelListModel& m_list;
    bool m_running = false;
    int m_threshold = 25;
    QVector<QImage> m_frames;
};
