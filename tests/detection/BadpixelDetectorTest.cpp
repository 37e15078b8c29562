// SPDX-License-Identifier: MIT
#include "detection/BadpixelDetector.h"

#include "tests/detection/Frames.h"
#include "tests/detection/ReferenceDetection.h"

#include <QImage>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

using FrameMatrix = Matrix<unsigned int>;

static_assert(std::is_abstract_v<BadpixelDetector>);
static_assert(std::is_abstract_v<BadpixelDetector::PixelValIterator>);
static_assert(std::is_abstract_v<BadpixelDetector::PixelPosIterator>);
static_assert(std::is_abstract_v<BadpixelDetector::ImageIterator>);
static_assert(
    std::is_base_of_v<BadpixelDetector::PixelValIterator, BadpixelDetector::CopyIterator>);
static_assert(std::is_base_of_v<BadpixelDetector::PixelValIterator, BadpixelDetector::SumIterator>);
static_assert(std::is_base_of_v<FrameMatrix::Iterator, BadpixelDetector::DivIterator>);
static_assert(std::is_base_of_v<FrameMatrix::Iterator, BadpixelDetector::ImageIterator>);
static_assert(!std::has_virtual_destructor_v<BadpixelDetector::SumIterator>);

namespace {

struct Visit
{
    unsigned element;
    int x;
    int y;
    bool operator==(const Visit&) const = default;
};

class RecordPositions : public BadpixelDetector::PixelPosIterator
{
public:
    void operator()(unsigned int& element, int x, int y) override
    {
        visits.push_back({element, x, y});
    }

    std::vector<Visit> visits;
};

/// Offset of each visited pixel from the start of the image.
class RecordBytes : public BadpixelDetector::PixelValIterator
{
public:
    explicit RecordBytes(const QImage& image)
        : m_start(image.constBits())
    {}
    void operator()(unsigned int& /*element*/, const unsigned char* pixel) override
    {
        bytes.push_back(pixel - m_start);
    }

    std::vector<qsizetype> bytes;

private:
    const uchar* m_start;
};

class NumberIterator : public FrameMatrix::Iterator
{
public:
    void operator()(unsigned int& element) override { element = m_next++; }

private:
    unsigned m_next = 0;
};

} // namespace

TEST(BadpixelDetectorVisitors, CopySetsTheElement)
{
    const unsigned char pixel = 200;
    unsigned int element = 77;
    BadpixelDetector::CopyIterator copy;
    copy(element, &pixel);
    EXPECT_EQ(element, 200U);
}

TEST(BadpixelDetectorVisitors, SumAddsAndWraps)
{
    const unsigned char pixel = 200;
    unsigned int element = 1000;
    BadpixelDetector::SumIterator sum;
    sum(element, &pixel);
    EXPECT_EQ(element, 1200U);
    element = 0xffffffffU;
    sum(element, &pixel);
    EXPECT_EQ(element, 199U);
}

TEST(BadpixelDetectorVisitors, DivTruncates)
{
    BadpixelDetector::DivIterator divide(10);
    for (const auto& [sum, mean] : {std::pair{0U, 0U}, std::pair{9U, 0U}, std::pair{10U, 1U},
                                    std::pair{2549U, 254U}, std::pair{0xffffffffU, 429496729U}}) {
        unsigned int element = sum;
        divide(element);
        EXPECT_EQ(element, mean) << sum;
    }
}

TEST(BadpixelDetectorWalk, VisitsXAtTheWidthBeforeItWraps)
{
    const QImage image = uniformFrame(4, 2, 0);
    const BadpixelDetector::SamplingPattern pattern{0, 0, 1, 1};
    FrameMatrix matrix(2, 4);
    NumberIterator number;
    matrix.iterate(number);

    RecordPositions positions;
    BadpixelDetector::ImagePosIterator walkPositions(&image, &pattern, &positions);
    matrix.iterate(walkPositions);
    EXPECT_EQ(positions.visits, (std::vector<Visit>{{0, 0, 0},
                                                    {1, 1, 0},
                                                    {2, 2, 0},
                                                    {3, 3, 0},
                                                    {4, 4, 0},
                                                    {5, 0, 1},
                                                    {6, 1, 1},
                                                    {7, 2, 1}}));
}

TEST(BadpixelDetectorWalk, PairsTwoElementsWithTheFirstPixelOfALine)
{
    const QImage image = uniformFrame(4, 2, 0);
    const BadpixelDetector::SamplingPattern pattern{0, 0, 1, 1};
    FrameMatrix matrix(2, 4);
    RecordBytes bytes(image);
    BadpixelDetector::ImageValueIterator walkBytes(&image, &pattern, &bytes);
    matrix.iterate(walkBytes);
    EXPECT_EQ(bytes.bytes, (std::vector<qsizetype>{0, 1, 2, 3, 4, 4, 5, 6}));
}

TEST(BadpixelDetectorWalk, CountsBytesAsIfLinesHadNoPadding)
{
    const QImage image = uniformFrame(5, 2, 0);
    ASSERT_EQ(image.bytesPerLine(), 8);
    const BadpixelDetector::SamplingPattern pattern{1, 1, 2, 2};
    FrameMatrix matrix(1, 2);
    RecordBytes bytes(image);
    BadpixelDetector::ImageValueIterator walkBytes(&image, &pattern, &bytes);
    matrix.iterate(walkBytes);
    EXPECT_EQ(bytes.bytes, (std::vector<qsizetype>{6, 8}));
}

TEST(BadpixelDetectorWalk, GoesOnByWholeRunsOfALine)
{
    const QImage image = uniformFrame(5, 4, 0);
    const BadpixelDetector::SamplingPattern pattern{0, 1, 2, 2};
    RecordPositions positions;
    BadpixelDetector::ImagePosIterator walk(&image, &pattern, &positions);
    EXPECT_EQ(walk.stepsOnLine(), 3U);
    walk.advance(2);
    EXPECT_EQ(walk.x, 4);
    EXPECT_EQ(walk.y, 1);
    EXPECT_EQ(walk.byteIndex(), 9);
    EXPECT_EQ(walk.stepsOnLine(), 1U);
    walk.advance(1);
    EXPECT_EQ(walk.x, 0);
    EXPECT_EQ(walk.y, 3);
    walk.advance(3);
    EXPECT_EQ(walk.x, 0);
    EXPECT_EQ(walk.y, 5);
}

TEST(BadpixelDetectorWalk, NeverReachesBehindTheImage)
{
    for (int width = 1; width < 60; ++width) {
        for (int height = 1; height < 60; ++height) {
            const qsizetype pixels = qsizetype{width} * height;
            ASSERT_LT(reference::walk(width, 0, 0, 1, pixels).back().byte, pixels)
                << width << " x " << height;
            const qsizetype elements = qsizetype{width / 2} * (height / 2);
            for (const int startX : {0, 1}) {
                for (const int startY : {0, 1}) {
                    for (const reference::WalkStep& step :
                         reference::walk(width, startX, startY, 2, elements)) {
                        ASSERT_LT(step.byte, pixels) << width << " x " << height;
                    }
                }
            }
        }
    }
}

TEST(BadpixelDetectorErrors, ColorModeHasItsOwnClassAndText)
{
    static_assert(std::is_base_of_v<std::runtime_error, BadpixelDetector::ErrColorMode>);
    EXPECT_STREQ(BadpixelDetector::ErrColorMode().what(),
                 "Color mode for hotpixel detection not supported.");
}
