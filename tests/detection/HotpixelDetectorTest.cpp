// SPDX-License-Identifier: MIT
#include "detection/HotpixelDetector.h"

#include "hotpixel/BadpixelListModel.h"
#include "tests/detection/Frames.h"
#include "tests/detection/ReferenceDetection.h"

#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int Unlimited = 1'000'000'000;

/// What a detection adds to an empty list that has room for everything.
std::vector<QPoint> detected(int colorMode, const QVector<QImage>& frames, int threshold)
{
    BadpixelListModel list;
    list.setMaxUserEntries(Unlimited);
    HotpixelDetector detector(threshold);
    detector.setImages(colorMode, &frames);
    detector.detect(&list);
    return positionsOf(list);
}

std::vector<QPoint> expected(int colorMode, const QVector<QImage>& frames, int threshold)
{
    return reference::withoutDuplicates(reference::hotpixels(colorMode, frames, threshold));
}

/// A frame in memory of its own, with @p tail behind its last byte.
class FrameWithTail
{
public:
    FrameWithTail(const QImage& frame, uchar tail)
        : m_bytes(static_cast<std::size_t>(frame.sizeInBytes()) + TailBytes, tail)
        , m_image(m_bytes.data(), frame.width(), frame.height(), frame.bytesPerLine(),
                  QImage::Format_Indexed8)
    {
        std::memcpy(m_bytes.data(), frame.constBits(),
                    static_cast<std::size_t>(frame.sizeInBytes()));
    }

    [[nodiscard]] const QImage& image() const { return m_image; }

private:
    static constexpr std::size_t TailBytes = 256;

    std::vector<uchar> m_bytes;
    QImage m_image;
};

} // namespace

TEST(HotpixelDetectorVisitors, MeanSumsAndCounts)
{
    HotpixelDetector::MeanIterator mean;
    EXPECT_EQ(mean.sum, 0U);
    EXPECT_EQ(mean.count, 0U);
    for (unsigned int element : {20U, 30U, 0xffffffffU}) {
        mean(element);
    }
    EXPECT_EQ(mean.sum, 49U);
    EXPECT_EQ(mean.count, 3U);
}

TEST(HotpixelDetectorVisitors, AddHotpixelAddsOnlyWhatIsAboveTheLimit)
{
    BadpixelListModel list;
    list.setMaxUserEntries(10);
    HotpixelDetector::AddHotpixelIterator add(&list, 60);
    unsigned int element = 60;
    add(element, 1, 2);
    EXPECT_EQ(list.rowCount(), 0);
    element = 61;
    add(element, 3, 4);
    EXPECT_EQ(positionsOf(list), (std::vector<QPoint>{{3, 4}}));
}

TEST(HotpixelDetector, IsKnownByItsBaseClassName)
{
    const HotpixelDetector detector(40);
    EXPECT_STREQ(detector.metaObject()->className(), "BadpixelDetector");
    EXPECT_EQ(detector.parent(), nullptr);
}

TEST(HotpixelDetector, TakesOneFrameAsItIs)
{
    QImage frame = uniformFrame(4, 4, 20);
    setPixel(frame, 2, 0, 80);
    // The mean is 380 / 16, truncated to 23.
    EXPECT_EQ(detected(Mono8, {frame}, 56), (std::vector<QPoint>{{2, 0}}));
    EXPECT_EQ(detected(Mono8, {frame}, 57), std::vector<QPoint>());
}

TEST(HotpixelDetector, FindsNothingInUniformFrames)
{
    const QVector<QImage> frames(10, uniformFrame(8, 8, 20));
    EXPECT_EQ(detected(Mono8, frames, 40), std::vector<QPoint>());
    EXPECT_EQ(detected(RawBayer8, frames, 40), std::vector<QPoint>());
}

TEST(HotpixelDetector, ReportsOneAboveTheLimitAndNotTheLimitItself)
{
    // 100 pixels of 20 but for one: the mean stays 20 and the limit is 60.
    for (const auto& [level, found] : {std::pair{60, false}, std::pair{61, true}}) {
        QImage frame = uniformFrame(10, 10, 20);
        setPixel(frame, 5, 0, level);
        const std::vector<QPoint> positions = detected(Mono8, QVector<QImage>(3, frame), 40);
        EXPECT_EQ(positions, found ? std::vector<QPoint>({{5, 0}}) : std::vector<QPoint>())
            << level;
    }
}

TEST(HotpixelDetector, TruncatesThePixelsMean)
{
    // 61, 61 and 60 have the mean 60.67, which is not above 60.
    QVector<QImage> frames(3, uniformFrame(12, 12, 20));
    setPixel(frames[0], 5, 0, 61);
    setPixel(frames[1], 5, 0, 61);
    setPixel(frames[2], 5, 0, 60);
    EXPECT_EQ(detected(Mono8, frames, 40), std::vector<QPoint>());
    setPixel(frames[2], 5, 0, 61);
    EXPECT_EQ(detected(Mono8, frames, 40), (std::vector<QPoint>{{5, 0}}));
}

TEST(HotpixelDetector, JudgesEachBayerPlaneByItsOwnMean)
{
    QImage frame = uniformFrame(4, 4, 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            setPixel(frame, x, y, x % 2 == 1 && y % 2 == 1 ? 10 : 200);
        }
    }
    setPixel(frame, 1, 1, 90);
    // Plane (1, 1) is 90, 10, 10, 10 with the mean 30; it stands far below the others.
    EXPECT_EQ(detected(RawBayer8, {frame}, 59), (std::vector<QPoint>{{1, 1}}));
    EXPECT_EQ(detected(RawBayer8, {frame}, 60), std::vector<QPoint>());
}

TEST(HotpixelDetector, ReportsThePlanesOneAfterTheOther)
{
    QImage frame = uniformFrame(32, 32, 0);
    setPixel(frame, 5, 5, 250);
    setPixel(frame, 4, 5, 250);
    setPixel(frame, 5, 4, 250);
    setPixel(frame, 4, 4, 250);
    EXPECT_EQ(detected(RawBayer8, {frame}, 40),
              (std::vector<QPoint>{{4, 4}, {4, 5}, {5, 4}, {5, 5}}));
}

TEST(HotpixelDetector, ReportsTheFirstPixelOfALineTwice)
{
    QImage frame = uniformFrame(4, 4, 0);
    setPixel(frame, 0, 1, 250);
    EXPECT_EQ(detected(Mono8, {frame}, 40), (std::vector<QPoint>{{4, 0}, {0, 1}}));
}

TEST(HotpixelDetector, LeavesOutTheEndOfTheImage)
{
    // Three elements of the matrix are spent on x == 4, so the walk ends three pixels early.
    QImage frame = uniformFrame(4, 4, 0);
    setPixel(frame, 1, 3, 250);
    EXPECT_EQ(detected(Mono8, {frame}, 40), std::vector<QPoint>());
    setPixel(frame, 0, 3, 250);
    EXPECT_THAT(detected(Mono8, {frame}, 40), testing::Contains(QPoint(0, 3)));
}

TEST(HotpixelDetector, ReportsOneAboveTheThresholdOnABlackSensor)
{
    QImage frame = uniformFrame(40, 40, 0);
    setPixel(frame, 3, 2, 41);
    // The mean is 41 / 1600, truncated to 0, so there is no lower limit than this one.
    EXPECT_EQ(detected(Mono8, {frame}, 40).size(), 1U);
    EXPECT_EQ(detected(Mono8, {frame}, 41), std::vector<QPoint>());
}

TEST(HotpixelDetector, ForgetsTheFramesOfADetectionBefore)
{
    QVector<QImage> frames{uniformFrame(40, 40, 0)};
    HotpixelDetector detector(40);
    detector.setImages(Mono8, &frames);
    setPixel(frames.first(), 3, 0, 90);
    BadpixelListModel before;
    before.setMaxUserEntries(Unlimited);
    detector.detect(&before);
    EXPECT_EQ(positionsOf(before), (std::vector<QPoint>{{3, 0}}));

    frames = {uniformFrame(40, 40, 0)};
    setPixel(frames.first(), 5, 0, 90);
    BadpixelListModel after;
    after.setMaxUserEntries(Unlimited);
    detector.detect(&after);
    EXPECT_EQ(positionsOf(after), (std::vector<QPoint>{{5, 0}}));
}

TEST(HotpixelDetector, AddsANegativeThresholdUnsigned)
{
    QImage frame = uniformFrame(10, 10, 20);
    setPixel(frame, 5, 0, 22);
    // 20 − 1 is 19, and all are above it. 20 − 21 wraps, and none is.
    EXPECT_EQ(detected(Mono8, {frame}, -1).size(), 100U);
    EXPECT_EQ(detected(Mono8, {frame}, -21), std::vector<QPoint>());
}

TEST(HotpixelDetector, LetsTheSumOfAPlaneWrap)
{
    // 4200² · 255 is 203,232,704 above 2³², so the mean is 11 and every pixel is hot.
    const QVector<QImage> frames(1, uniformFrame(4200, 4200, 255));
    BadpixelListModel list;
    list.setMaxUserEntries(3);
    HotpixelDetector detector(243);
    detector.setImages(Mono8, &frames);
    EXPECT_THROW(detector.detect(&list), std::runtime_error);
    EXPECT_EQ(positionsOf(list), (std::vector<QPoint>{{0, 0}, {1, 0}, {2, 0}}));

    BadpixelListModel empty;
    HotpixelDetector stricter(244);
    stricter.setImages(Mono8, &frames);
    stricter.detect(&empty);
    EXPECT_EQ(empty.rowCount(), 0);
}

TEST(HotpixelDetector, FindsWhatTheReferenceFinds)
{
    struct Size
    {
        int width;
        int height;
    };
    const std::vector<Size> sizes{{1, 1},   {1, 7},   {7, 1},   {1, 64},   {64, 1},    {2, 2},
                                  {2, 3},   {3, 2},   {3, 3},   {4, 4},    {5, 7},     {6, 6},
                                  {9, 16},  {16, 9},  {31, 33}, {33, 31},  {640, 2},   {2, 640},
                                  {3, 500}, {501, 3}, {67, 41}, {130, 98}, {1023, 17}, {17, 1024}};
    std::mt19937 random(1);
    for (const Size& size : sizes) {
        for (int count = 1; count <= 12; ++count) {
            const QVector<QImage> frames = noisyFrames(random, size.width, size.height, count);
            for (const int colorMode : {Mono8, RawBayer8}) {
                if (colorMode == RawBayer8 && (size.width < 2 || size.height < 2)) {
                    continue;
                }
                for (const int threshold : {-3, 0, 5, 25, 100}) {
                    ASSERT_EQ(detected(colorMode, frames, threshold),
                              expected(colorMode, frames, threshold))
                        << size.width << " x " << size.height << ", mode " << colorMode << ", "
                        << count << " frames, threshold " << threshold;
                }
            }
        }
    }
}

TEST(HotpixelDetector, ReadsNothingBehindTheImageInAnySize)
{
    std::mt19937 random(2);
    for (int width = 1; width < 60; ++width) {
        for (int height = 1; height < 60; ++height) {
            const QVector<QImage> frames = noisyFrames(random, width, height, 2);
            for (const int colorMode : {Mono8, RawBayer8}) {
                if (colorMode == RawBayer8 && (width < 2 || height < 2)) {
                    continue;
                }
                const std::vector<QPoint> positions = expected(colorMode, frames, 30);
                for (const uchar tail : {uchar{0}, uchar{255}}) {
                    const FrameWithTail first(frames[0], tail);
                    const FrameWithTail second(frames[1], tail);
                    ASSERT_EQ(detected(colorMode, {first.image(), second.image()}, 30), positions)
                        << width << " x " << height << ", mode " << colorMode;
                }
            }
        }
    }
}

TEST(HotpixelDetector, AveragesHundredsOfFrames)
{
    // The brightest sums: 300 · 255 needs 17 bits, 5000 · 255 needs 21.
    std::mt19937 random(3);
    for (const int count : {256, 257, 258, 300, 514, 515, 5000}) {
        QVector<QImage> frames = noisyFrames(random, 33, 10, count);
        for (QImage& frame : frames) {
            setPixel(frame, 3, 3, 255);
            setPixel(frame, 4, 4, 254);
        }
        for (const int colorMode : {Mono8, RawBayer8}) {
            EXPECT_EQ(detected(colorMode, frames, 20), expected(colorMode, frames, 20))
                << count << " frames, mode " << colorMode;
        }
    }
}

TEST(HotpixelDetector, DividesEverySumExactly)
{
    // One frame count after the other, all means' neighbourhoods at once: pixel k has the sum
    // m · n + d for a mean m and d in −1, 0, 1.
    for (int count = 1; count <= 40; ++count) {
        QVector<QImage> frames(count, uniformFrame(256 * 3, 2, 0));
        for (int k = 0; k < 256 * 3; ++k) {
            int left = std::clamp(k / 3 * count + k % 3 - 1, 0, 255 * count);
            for (QImage& frame : frames) {
                const int value = std::min(left, 255);
                setPixel(frame, k, 0, value);
                left -= value;
            }
        }
        for (const int threshold : {0, 1, 17, 64, 65, 66, 100, 150, 190}) {
            ASSERT_EQ(detected(Mono8, frames, threshold), expected(Mono8, frames, threshold))
                << count << " frames, threshold " << threshold;
        }
    }
}

TEST(HotpixelDetector, SignalsItsEndOnce)
{
    const QVector<QImage> frames(2, uniformFrame(8, 8, 20));
    BadpixelListModel list;
    HotpixelDetector detector(40);
    const QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    detector.setImages(RawBayer8, &frames);
    detector.detect(&list);
    EXPECT_EQ(finished.count(), 1);
}

TEST(HotpixelDetector, DetectsOnceMoreIntoAnotherList)
{
    std::mt19937 random(4);
    const QVector<QImage> frames = noisyFrames(random, 40, 30, 3);
    for (const int colorMode : {Mono8, RawBayer8}) {
        HotpixelDetector detector(30);
        detector.setImages(colorMode, &frames);
        for (int run = 0; run < 2; ++run) {
            BadpixelListModel list;
            list.setMaxUserEntries(Unlimited);
            detector.detect(&list);
            EXPECT_EQ(positionsOf(list), expected(colorMode, frames, 30));
        }
    }
}

TEST(HotpixelDetector, KeepsWhatItAddedBeforeTheListWasFull)
{
    std::mt19937 random(5);
    const QVector<QImage> frames = noisyFrames(random, 64, 64, 10);
    for (const int colorMode : {Mono8, RawBayer8}) {
        std::vector<QPoint> positions = expected(colorMode, frames, 30);
        ASSERT_GT(positions.size(), 12U);
        positions.resize(12);

        BadpixelListModel list;
        list.setMaxUserEntries(12);
        HotpixelDetector detector(30);
        const QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
        detector.setImages(colorMode, &frames);
        try {
            detector.detect(&list);
            ADD_FAILURE() << "no exception in mode " << colorMode;
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "Can't add more than 12 hotpixel entries.");
        }
        EXPECT_EQ(positionsOf(list), positions);
        EXPECT_EQ(finished.count(), 0) << "the list's exceptions come without the signal";
    }
}

namespace {

struct Refusal
{
    const char* name;
    int colorMode;
    QVector<QImage> frames;
    const char* text;
};

class HotpixelDetectorRefusal : public testing::TestWithParam<Refusal>
{};

std::vector<Refusal> refusals()
{
    const QImage frame = uniformFrame(8, 6, 20);
    return {
        {"NoFrames", Mono8, {}, "No images acquired for hotpixel detection."},
        {"NoFramesInAnUnknownMode", 1, {}, "No images acquired for hotpixel detection."},
        {"GreyInsteadOfIndexed",
         Mono8,
         {frame.convertToFormat(QImage::Format_Grayscale8)},
         "Image format for hotpixel detection not supported."},
        {"NoImageAtAll", Mono8, {QImage()}, "Image format for hotpixel detection not supported."},
        {"UnknownMode",
         1,
         {frame, uniformFrame(8, 7, 20)},
         "Color mode for hotpixel detection not supported."},
        {"AnotherWidth",
         Mono8,
         {frame, frame, uniformFrame(9, 6, 20)},
         "Aqcuired images are not the same size."},
        {"AnotherHeight",
         RawBayer8,
         {frame, uniformFrame(8, 7, 20)},
         "Aqcuired images are not the same size."},
        {"NoImageAfterTheFirst",
         RawBayer8,
         {frame, QImage()},
         "Aqcuired images are not the same size."},
        // A walk through one bit a pixel would read behind the image.
        {"TooFewBytesAfterTheFirst",
         Mono8,
         {frame, frame.convertToFormat(QImage::Format_Mono)},
         "Image format for hotpixel detection not supported."},
        {"OneColumnInBayerMode", RawBayer8, {uniformFrame(1, 6, 20)}, "Matrix has no size"},
        {"OneRowInBayerMode", RawBayer8, {uniformFrame(8, 1, 20), frame}, "Matrix has no size"},
    };
}

} // namespace

TEST_P(HotpixelDetectorRefusal, SignalsTheEndAndThrows)
{
    const Refusal& refusal = GetParam();
    BadpixelListModel list;
    list.setMaxUserEntries(Unlimited);
    HotpixelDetector detector(40);
    const QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    detector.setImages(refusal.colorMode, &refusal.frames);
    try {
        detector.detect(&list);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& e) {
        EXPECT_STREQ(e.what(), refusal.text);
        EXPECT_EQ(finished.count(), 1) << "not signalled before the exception";
        const bool isColorMode = dynamic_cast<const BadpixelDetector::ErrColorMode*>(&e) != nullptr;
        EXPECT_EQ(isColorMode, std::string(refusal.name) == "UnknownMode");
        const bool isLength = dynamic_cast<const std::length_error*>(&e) != nullptr;
        EXPECT_EQ(isLength, std::string(refusal.text) == "Matrix has no size");
    }
    EXPECT_EQ(list.rowCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(HotpixelDetector, HotpixelDetectorRefusal, testing::ValuesIn(refusals()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(HotpixelDetectorRefusal, NoFramesWereEverSet)
{
    BadpixelListModel list;
    HotpixelDetector detector(40);
    const QSignalSpy finished(&detector, &HotpixelDetector::detectionFinished);
    EXPECT_THROW(detector.detect(&list), std::runtime_error);
    EXPECT_EQ(finished.count(), 1);
}

TEST(HotpixelDetector, TakesLaterFramesOfAnotherFormatByTheirBytes)
{
    QImage hot = uniformFrame(8, 8, 20);
    setPixel(hot, 3, 0, 220);
    QImage grey = hot.convertToFormat(QImage::Format_Grayscale8);
    ASSERT_EQ(grey.format(), QImage::Format_Grayscale8);
    std::memcpy(grey.bits(), hot.constBits(), static_cast<std::size_t>(hot.sizeInBytes()));
    EXPECT_EQ(detected(Mono8, {hot, grey}, 100), (std::vector<QPoint>{{3, 0}}));
}
