// SPDX-License-Identifier: MIT
#include "darkframes/DarkStack.h"

#include "tests/darkframes/TestFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

void expectExact(const DarkStack& stack, const TestFrames& frames)
{
    ASSERT_EQ(stack.frameCount(), frames.frames.size());
    ASSERT_EQ(stack.pixelCount(), frames.frames.front().size());
    for (std::size_t pixel = 0; pixel < stack.pixelCount(); ++pixel) {
        std::uint64_t sum = 0;
        std::uint64_t squares = 0;
        std::vector<std::uint64_t> values;
        for (const std::vector<std::uint16_t>& frame : frames.frames) {
            const std::uint64_t value = frame[pixel];
            sum += value;
            squares += value * value;
            values.push_back(value);
        }
        const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
        ASSERT_EQ(stack.sums()[pixel], sum) << pixel;
        ASSERT_EQ(stack.sumOfSquares(pixel), squares) << pixel;
        ASSERT_EQ(stack.least(pixel), *least) << pixel;
        ASSERT_EQ(stack.greatest(pixel), *greatest) << pixel;
    }
}

} // namespace

TEST(DarkStack, KeepsSumSquaresLeastAndGreatestOfEachPixel)
{
    for (const int bits : {8, 16}) {
        for (const int frames : {1, 2, 7, 8, 9, 10, 17}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(frames) + " frames");
            const TestFrames random = TestFrames::random(13, 5, bits, frames, 1);
            expectExact(random.stack(), random);
        }
    }
}

TEST(DarkStack, IsTheSameHoweverTheFramesAreHandedOver)
{
    for (const int bits : {8, 16}) {
        const TestFrames random = TestFrames::random(21, 4, bits, 11, 2);
        DarkStack stack({21, 4, static_cast<std::uint32_t>(bits)});
        const QList<QImage> images = random.images();
        const std::span<const QImage> all(images.cbegin(), images.cend());
        stack.add(all.first(1));
        stack.add(all.subspan(1, 3));
        stack.add({});
        stack.add(all.subspan(4));
        expectExact(stack, random);
    }
}

TEST(DarkStack, GoesOnBeyondTheEndOfAPieceOfARow)
{
    const TestFrames random = TestFrames::random(4103, 2, 16, 3, 3);
    expectExact(random.stack(), random);
}

TEST(DarkStack, TakesAsManySaturatedFramesAsASumHasRoomFor)
{
    for (const int bits : {8, 16}) {
        const std::uint64_t value = bits == 16 ? 65535 : 255;
        const QImage frame =
            TestFrames::of(1, 1, bits, 1, [&](int, int, int) { return int(value); }).image(0);
        DarkStack stack({1, 1, static_cast<std::uint32_t>(bits)});
        for (std::uint64_t i = 0; i < DarkStack::MostFrames; ++i) {
            stack.add(std::span(&frame, 1));
        }
        EXPECT_EQ(stack.sums()[0], value * DarkStack::MostFrames);
        EXPECT_EQ(stack.sumOfSquares(0), value * value * DarkStack::MostFrames);
        EXPECT_EQ(stack.variance(0), 0);
        EXPECT_THROW(stack.add(std::span(&frame, 1)), std::invalid_argument);
        EXPECT_EQ(stack.frameCount(), DarkStack::MostFrames);
    }
}

TEST(DarkStack, RefusesFramesOfAnotherSizeOrDepthAndAddsNone)
{
    DarkStack stack({4, 3, 8});
    const QImage right(4, 3, QImage::Format_Grayscale8);
    for (const QImage& wrong :
         {QImage(4, 2, QImage::Format_Grayscale8), QImage(3, 3, QImage::Format_Grayscale8),
          QImage(4, 3, QImage::Format_Grayscale16), QImage(4, 3, QImage::Format_RGB32), QImage()}) {
        const QList<QImage> frames{right, wrong};
        EXPECT_THROW(stack.add(frames), std::invalid_argument);
    }
    EXPECT_EQ(stack.frameCount(), 0U);
}

TEST(DarkStack, GivesTheUnbiasedVarianceOverTheFrames)
{
    // 2, 4, 4, 6: mean 4, squared distances 4 + 0 + 0 + 4, divided by 3.
    const TestFrames frames = TestFrames::of(2, 1, 8, 4, [](int frame, int x, int) {
        return x == 0 ? std::array{2, 4, 4, 6}[std::size_t(frame)] : 9;
    });
    const DarkStack stack = frames.stack();
    EXPECT_DOUBLE_EQ(stack.variance(0), 8.0 / 3);
    EXPECT_EQ(stack.variance(1), 0);
    EXPECT_DOUBLE_EQ(stack.sumOfVariances(0, 0, 1), 8.0 / 3);
    EXPECT_EQ(stack.sumOfVariances(0, 1, 2), 0);
}

TEST(DarkStack, HasNoVarianceOfASingleFrame)
{
    const DarkStack stack = TestFrames::random(3, 3, 16, 1, 4).stack();
    EXPECT_EQ(stack.variance(0), 0);
    EXPECT_EQ(stack.sumOfVariances(1, 0, 1), 0);
}

TEST(DarkStack, GivesTheGreatestValuesOfARow)
{
    for (const int bits : {8, 16}) {
        const DarkStack stack = TestFrames::random(5, 3, bits, 4, 5).stack();
        std::vector<std::uint16_t> row(5);
        stack.greatestOfRow(2, row);
        for (std::size_t x = 0; x < 5; ++x) {
            EXPECT_EQ(row[x], stack.greatest(10 + x));
        }
    }
}
