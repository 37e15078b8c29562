// SPDX-License-Identifier: MIT
#include "detection/DetectionRun.h"

#include "hotpixel/BadpixelListModel.h"
#include "tests/detection/Frames.h"
#include "tests/detection/ReferenceDetection.h"

#include <QSignalSpy>
#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using Step = DetectionRun::Step;

namespace {

/// A dark frame with the given hot pixels.
QImage darkFrame(const std::vector<QPoint>& hotpixels = {})
{
    QImage frame = uniformFrame(40, 30, 10);
    for (const QPoint& position : hotpixels) {
        setPixel(frame, position.x(), position.y(), 200);
    }
    return frame;
}

/// A frame of 100 × 100 with @p count bytes of @p level, and 0 elsewhere.
QImage frameWithBytes(int count, int level)
{
    QImage frame = uniformFrame(100, 100, 0);
    std::fill_n(frame.bits(), count, static_cast<uchar>(level));
    return frame;
}

class DetectionRunTest : public testing::Test
{
protected:
    DetectionRunTest() { m_list.setMaxUserEntries(100); }
    // The progress outlives the run, and so the test.
    ~DetectionRunTest() override { m_run.cancel(); }

    /// A whole run over ten frames like @p frame up to the image that asks for the evaluation.
    void collect(const QImage& frame)
    {
        m_run.start(false, 40);
        for (int i = 0; i < DetectionRun::FrameCount; ++i) {
            ASSERT_EQ(m_run.addFrame(frame), Step::Collected);
        }
        ASSERT_EQ(m_run.addFrame(frame), Step::Ready);
    }

    void addEntry(int x, int y, const QString& classWord = "user")
    {
        m_list.insertRows(m_list.rowCount(), 1);
        const int row = m_list.rowCount() - 1;
        m_list.setData(m_list.index(row, 0), x);
        m_list.setData(m_list.index(row, 1), y);
        m_list.setData(m_list.index(row, 2), classWord);
    }

    BadpixelListModel m_list;
    DetectionRun m_run{m_list};
    const QSignalSpy m_progressed{&m_run, &DetectionRun::progressed};
    const QSignalSpy m_detectionFinished{&m_run, &DetectionRun::detectionFinished};
    const QSignalSpy m_foundWithoutLimit{&m_run, &DetectionRun::foundWithoutLimit};
    const QSignalSpy m_failed{&m_run, &DetectionRun::failed};
    const QSignalSpy m_finished{&m_run, &DetectionRun::finished};
    const QSignalSpy m_pixelAdded{&m_list, &BadpixelListModel::pixelAdded};
};

using DetectionRunDarkness = DetectionRunTest;
using DetectionRunEvaluation = DetectionRunTest;
using DetectionRunFailure = DetectionRunTest;

} // namespace

TEST_F(DetectionRunTest, IsIdleAtFirst)
{
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_EQ(m_run.threshold(), 25);
    EXPECT_TRUE(m_run.frames().isEmpty());
    EXPECT_EQ(m_run.addFrame(darkFrame()), Step::Idle);
    EXPECT_TRUE(m_run.frames().isEmpty());
    EXPECT_EQ(m_progressed.count(), 0);
}

TEST_F(DetectionRunTest, ClearsUserEntriesBeforeTheFirstFrameAndKeepsFactoryOnes)
{
    addEntry(1, 1, "factory");
    addEntry(2, 2);
    addEntry(3, 3);
    m_run.start(true, 60);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{1, 1}}));
    EXPECT_TRUE(m_run.isRunning());
    EXPECT_EQ(m_run.threshold(), 60);
    EXPECT_TRUE(m_run.frames().isEmpty());
}

TEST_F(DetectionRunTest, KeepsUserEntriesUnlessToldToClear)
{
    addEntry(2, 2);
    m_run.start(false, 60);
    EXPECT_EQ(m_list.rowCount(), 1);
}

TEST_F(DetectionRunTest, ReachesHundredPercentWithTheTenthFrame)
{
    m_run.start(false, 40);
    for (int i = 1; i <= 10; ++i) {
        EXPECT_EQ(m_run.addFrame(darkFrame()), Step::Collected);
        ASSERT_EQ(m_progressed.count(), i);
        EXPECT_EQ(m_progressed.last().first().toInt(), 10 * i);
    }
    EXPECT_TRUE(m_run.isRunning()) << "the evaluation waits for the next image";
}

TEST_F(DetectionRunTest, DoesNotUseTheEleventhImage)
{
    collect(darkFrame());
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_EQ(m_run.frames().size(), 10);
    EXPECT_EQ(m_progressed.count(), 10);
    EXPECT_EQ(m_run.addFrame(darkFrame()), Step::Idle);
    EXPECT_EQ(m_run.frames().size(), 10);
}

TEST_F(DetectionRunTest, AcceptsALitImageAsTheEleventh)
{
    m_run.start(false, 40);
    for (int i = 0; i < 10; ++i) {
        m_run.addFrame(darkFrame());
    }
    EXPECT_EQ(m_run.addFrame(uniformFrame(100, 100, 255)), Step::Ready);
}

TEST_F(DetectionRunTest, KeepsDeepCopies)
{
    std::vector<uchar> memory(64, 10);
    const QImage image(memory.data(), 8, 8, 8, QImage::Format_Indexed8);
    m_run.start(false, 40);
    m_run.addFrame(image);
    std::fill(memory.begin(), memory.end(), uchar{99});
    const QImage& frame = m_run.frames().first();
    ASSERT_EQ(frame.size(), QSize(8, 8));
    EXPECT_EQ(std::count(frame.constBits(), frame.constBits() + 64, 10), 64);
}

TEST_F(DetectionRunTest, FillsPaddingThatTheImageDoesNotHave)
{
    // Lines of 5 bytes become lines of 8; the walk of the detector reads the other three.
    std::vector<uchar> memory(15, 10);
    const QImage image(memory.data(), 5, 3, 5, QImage::Format_Indexed8);
    m_run.start(false, 40);
    m_run.addFrame(image);
    const QImage& frame = m_run.frames().first();
    ASSERT_EQ(frame.bytesPerLine(), 8);
    for (int y = 0; y < 3; ++y) {
        EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(frame.constScanLine(y)), 8),
                  QByteArray(5, 10) + QByteArray(3, 0));
    }
}

TEST_F(DetectionRunTest, CountsTheEmptyImageOfAnUnpluggedCamera)
{
    m_run.start(false, 40);
    EXPECT_EQ(m_run.addFrame(QImage()), Step::Collected);
    EXPECT_EQ(m_run.frames().size(), 1);
    EXPECT_EQ(m_progressed.last().first().toInt(), 10);
}

TEST_F(DetectionRunTest, SharesTheProgressWithAllOthers)
{
    BadpixelListModel otherList;
    DetectionRun other(otherList);
    const QSignalSpy otherProgressed(&other, &DetectionRun::progressed);
    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    m_run.addFrame(darkFrame());
    other.start(false, 40);
    other.addFrame(darkFrame());
    EXPECT_EQ(otherProgressed.last().first().toInt(), 30);
    m_run.cancel();
    other.addFrame(darkFrame());
    EXPECT_EQ(otherProgressed.last().first().toInt(), 10);
    other.cancel();
}

TEST_F(DetectionRunTest, CancelDropsTheFrames)
{
    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    m_run.cancel();
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_TRUE(m_run.frames().isEmpty());
    EXPECT_EQ(m_run.addFrame(darkFrame()), Step::Idle);

    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    EXPECT_EQ(m_progressed.last().first().toInt(), 10);
}

TEST_F(DetectionRunTest, MayBeCancelledByWhoIsToldTheProgress)
{
    QObject::connect(&m_run, &DetectionRun::progressed, &m_run, [this] { m_run.cancel(); });
    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_TRUE(m_run.frames().isEmpty());
}

TEST_F(DetectionRunDarkness, AcceptsExactly5000BrightBytes)
{
    m_run.start(false, 40);
    EXPECT_EQ(m_run.addFrame(frameWithBytes(5000, 101)), Step::Collected);
}

TEST_F(DetectionRunDarkness, Refuses5001BrightBytes)
{
    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    EXPECT_EQ(m_run.addFrame(frameWithBytes(5001, 101)), Step::NotDark);
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_TRUE(m_run.frames().isEmpty());
    EXPECT_EQ(m_progressed.last().first().toInt(), 20) << "progress comes before the check";
    EXPECT_EQ(m_list.rowCount(), 0);
    EXPECT_EQ(m_finished.count(), 0);

    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    EXPECT_EQ(m_progressed.last().first().toInt(), 10) << "the next run starts anew";
}

TEST_F(DetectionRunDarkness, DoesNotCountAByteOfExactly100)
{
    EXPECT_TRUE(DetectionRun::isDark(frameWithBytes(10000, 100)));
    EXPECT_FALSE(DetectionRun::isDark(frameWithBytes(10000, 101)));
    EXPECT_FALSE(DetectionRun::isDark(frameWithBytes(10000, 128)));
    EXPECT_FALSE(DetectionRun::isDark(frameWithBytes(10000, 255)));
}

TEST_F(DetectionRunDarkness, CountsThePaddingOfTheLines)
{
    QImage frame = uniformFrame(1, 1700, 0);
    ASSERT_EQ(frame.bytesPerLine(), 4);
    for (int y = 0; y < 1700; ++y) {
        std::fill_n(frame.scanLine(y) + 1, 3, uchar{200});
    }
    EXPECT_FALSE(DetectionRun::isDark(frame));
}

TEST_F(DetectionRunDarkness, CountsWhereverTheBrightBytesAre)
{
    for (const int width : {8, 64, 1028, 4096, 5472}) {
        const int height = 40000 / width + 1;
        const qsizetype bytes = uniformFrame(width, height, 0).sizeInBytes();
        for (const qsizetype first :
             {qsizetype{0}, qsizetype{1}, bytes / 3, bytes - 5002, bytes - 5001}) {
            QImage frame = uniformFrame(width, height, 100);
            std::fill_n(frame.bits() + first, 5000, uchar{101});
            ASSERT_TRUE(DetectionRun::isDark(frame)) << width << ", " << first;
            frame.bits()[first + 5000] = 255;
            ASSERT_FALSE(DetectionRun::isDark(frame)) << width << ", " << first;
        }
    }
}

TEST_F(DetectionRunDarkness, CountsAsAByteLoopDoes)
{
    std::mt19937 random(6);
    for (int round = 0; round < 200; ++round) {
        const int bright = static_cast<int>(random() % 40);
        QImage frame = uniformFrame(1 + static_cast<int>(random() % 300),
                                    1 + static_cast<int>(random() % 300), 0);
        int count = 0;
        for (qsizetype i = 0; i < frame.sizeInBytes(); ++i) {
            const bool isBright = static_cast<int>(random() % 100) < bright;
            const std::uint_fast32_t value = isBright ? 101 + random() % 155 : random() % 101;
            frame.bits()[i] = static_cast<uchar>(value);
            count += isBright ? 1 : 0;
        }
        ASSERT_EQ(DetectionRun::isDark(frame), count <= 5000) << "round " << round;
    }
}

TEST_F(DetectionRunDarkness, TakesAnEmptyImageForDark)
{
    EXPECT_TRUE(DetectionRun::isDark(QImage()));
}

TEST_F(DetectionRunEvaluation, AddsWhatTheFramesHold)
{
    collect(darkFrame({{5, 2}, {7, 9}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{5, 2}, {7, 9}}));
    EXPECT_EQ(m_pixelAdded.count(), 2);
    EXPECT_EQ(m_detectionFinished.count(), 1);
    EXPECT_EQ(m_finished.count(), 1);
    EXPECT_EQ(m_failed.count(), 0);
    EXPECT_EQ(m_foundWithoutLimit.count(), 0);
    EXPECT_TRUE(m_run.frames().isEmpty());
    EXPECT_FALSE(m_run.isRunning());
}

TEST_F(DetectionRunEvaluation, UsesThresholdAndColourMode)
{
    std::mt19937 random(7);
    const QVector<QImage> frames = noisyFrames(random, 40, 30, 10);
    m_list.setMaxUserEntries(5000);
    for (const int colorMode : {Mono8, RawBayer8}) {
        m_list.clearBadpixelList();
        m_run.start(false, 50);
        for (const QImage& frame : frames) {
            ASSERT_EQ(m_run.addFrame(frame), Step::Collected);
        }
        ASSERT_EQ(m_run.addFrame(frames.first()), Step::Ready);
        m_run.evaluate(colorMode);
        EXPECT_EQ(positionsOf(m_list),
                  reference::withoutDuplicates(reference::hotpixels(colorMode, frames, 50)));
    }
}

TEST_F(DetectionRunEvaluation, NeitherAddsNorCountsWhatTheListHolds)
{
    addEntry(5, 2, "factory");
    addEntry(7, 9);
    m_list.setFactoryCount(1);
    collect(darkFrame({{5, 2}, {7, 9}, {9, 20}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{5, 2}, {7, 9}, {9, 20}}));
    EXPECT_EQ(m_pixelAdded.count(), 1);
    EXPECT_EQ(m_failed.count(), 0);
}

TEST_F(DetectionRunEvaluation, DoesNotCountFactoryEntriesAgainstTheLimit)
{
    addEntry(1, 1, "factory");
    addEntry(2, 2, "factory");
    m_list.setFactoryCount(2);
    m_list.setMaxUserEntries(2);
    collect(darkFrame({{5, 2}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(m_failed.count(), 0);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{1, 1}, {2, 2}, {5, 2}}));
}

TEST_F(DetectionRunEvaluation, RunsAgainAfterwards)
{
    collect(darkFrame({{5, 2}}));
    m_run.evaluate(RawBayer8);
    collect(darkFrame({{7, 9}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{5, 2}, {7, 9}}));
}

TEST_F(DetectionRunFailure, CountsWhatTheCameraCantStore)
{
    m_list.setMaxUserEntries(3);
    addEntry(1, 1);
    addEntry(2, 2);

    QStringList order;
    QObject::connect(&m_run, &DetectionRun::detectionFinished, &m_run,
                     [&order] { order << "detectionFinished"; });
    QObject::connect(&m_run, &DetectionRun::listFull, &m_run,
                     [&order](const QString& text) { order << "full: " + text; });
    QObject::connect(&m_run, &DetectionRun::foundWithoutLimit, &m_run,
                     [&order](int count) { order << QString("found %1").arg(count); });
    QObject::connect(&m_run, &DetectionRun::failed, &m_run,
                     [&order](const QString& text) { order << text; });
    QObject::connect(&m_run, &DetectionRun::finished, &m_run, [&] {
        order << "finished";
        EXPECT_TRUE(m_run.frames().isEmpty());
    });

    collect(darkFrame({{5, 2}, {7, 9}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{1, 1}, {2, 2}})) << "nothing taken over";
    EXPECT_EQ(m_pixelAdded.count(), 0);
    // Only the detection without the limit comes to its end.
    EXPECT_EQ(order,
              (QStringList{"full: Can't add more than 3 hotpixel entries.", "detectionFinished",
                           "found 2", "Can't add more than 3 hotpixel entries.", "finished"}));
}

TEST_F(DetectionRunFailure, CountsListedPixelsThatAreHot)
{
    m_list.setMaxUserEntries(2);
    addEntry(5, 2);
    addEntry(2, 2);
    collect(darkFrame({{5, 2}, {7, 9}}));
    m_run.evaluate(RawBayer8);
    ASSERT_EQ(m_foundWithoutLimit.count(), 1);
    EXPECT_EQ(m_foundWithoutLimit.first().first().toInt(), 2);
}

TEST_F(DetectionRunFailure, FailsWhenAFullListOnlyKnowsThePixelsAlready)
{
    // The limit is checked before the duplicate, so a full list refuses even what it holds.
    m_list.setMaxUserEntries(2);
    addEntry(5, 2);
    addEntry(7, 9);
    collect(darkFrame({{5, 2}}));
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(m_list.rowCount(), 2);
    ASSERT_EQ(m_failed.count(), 1);
    EXPECT_EQ(m_failed.first().first().toString(), "Can't add more than 2 hotpixel entries.");
    EXPECT_EQ(m_foundWithoutLimit.first().first().toInt(), 1);
}

TEST_F(DetectionRunFailure, FailsWhenTheListIsFullAndNothingIsHot)
{
    // The detection succeeds, then the list refuses to take its own entries back.
    m_list.setMaxUserEntries(1);
    addEntry(5, 2);
    collect(darkFrame());
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(m_detectionFinished.count(), 2);
    ASSERT_EQ(m_failed.count(), 1);
    EXPECT_EQ(m_foundWithoutLimit.first().first().toInt(), 0);
    EXPECT_EQ(m_finished.count(), 1);
}

TEST_F(DetectionRunFailure, FailsBeforeACameraListWasRead)
{
    m_list.setMaxUserEntries(0);
    collect(darkFrame({{5, 2}}));
    m_run.evaluate(RawBayer8);
    ASSERT_EQ(m_failed.count(), 1);
    EXPECT_EQ(m_failed.first().first().toString(), "Can't add more than 0 hotpixel entries.");
    EXPECT_EQ(m_foundWithoutLimit.first().first().toInt(), 1);
    EXPECT_TRUE(m_run.frames().isEmpty());
}

TEST_F(DetectionRunFailure, KeepsTheFramesWhenTheCountFailsAsWell)
{
    collect(darkFrame({{5, 2}}));
    try {
        m_run.evaluate(1);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "Color mode for hotpixel detection not supported.");
    }
    EXPECT_EQ(m_detectionFinished.count(), 2);
    EXPECT_EQ(m_foundWithoutLimit.count(), 0);
    EXPECT_EQ(m_failed.count(), 0);
    EXPECT_EQ(m_finished.count(), 0);
    EXPECT_FALSE(m_run.isRunning());
    EXPECT_EQ(m_run.frames().size(), 10);
}

TEST_F(DetectionRunFailure, EvaluatesFramesThatWereLeftOverWithTheNextImage)
{
    collect(darkFrame({{5, 2}}));
    EXPECT_ANY_THROW(m_run.evaluate(1));
    m_run.start(false, 40);
    EXPECT_EQ(m_run.addFrame(uniformFrame(100, 100, 255)), Step::Ready);
    EXPECT_EQ(m_progressed.count(), 10);
    m_run.evaluate(RawBayer8);
    EXPECT_EQ(positionsOf(m_list), (std::vector<QPoint>{{5, 2}}));
    EXPECT_TRUE(m_run.frames().isEmpty());
}

TEST_F(DetectionRunFailure, ThrowsWhenFramesDifferInSize)
{
    m_run.start(false, 40);
    m_run.addFrame(darkFrame());
    for (int i = 1; i < 10; ++i) {
        m_run.addFrame(QImage());
    }
    EXPECT_EQ(m_run.addFrame(QImage()), Step::Ready);
    try {
        m_run.evaluate(RawBayer8);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), "Aqcuired images are not the same size.");
    }
    EXPECT_EQ(m_run.frames().size(), 10);
}

TEST_F(DetectionRunFailure, ThrowsWhenMoreThan5000PixelsAreHot)
{
    // 90 is not bright, but well above the mean.
    QImage frame = uniformFrame(200, 200, 0);
    std::fill_n(frame.bits() + 400, 6000, uchar{90});
    collect(frame);
    try {
        m_run.evaluate(Mono8);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        // The text names the camera's limit, which the counting list does not have.
        EXPECT_STREQ(e.what(), "Can't add more than 0 hotpixel entries.");
    }
    EXPECT_EQ(m_finished.count(), 0);
    EXPECT_EQ(m_run.frames().size(), 10);
    EXPECT_EQ(m_list.rowCount(), 0);
}
