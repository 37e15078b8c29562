// SPDX-License-Identifier: MIT
#include "detection/FrameMeans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Frames = std::vector<std::vector<quint8>>;

std::vector<const quint8*> beginsOf(const Frames& frames)
{
    std::vector<const quint8*> begins;
    for (const std::vector<quint8>& frame : frames) {
        begins.push_back(frame.data());
    }
    return begins;
}

TEST(FrameMeans, AreExactForEverySumOfAnyNumberOfFrames)
{
    for (std::size_t count = 1; count <= 300; ++count) {
        // Byte s of the frames has the sum s.
        const std::size_t sums = 255 * count + 1;
        Frames frames(count, std::vector<quint8>(sums));
        for (std::size_t sum = 0; sum < sums; ++sum) {
            for (std::size_t i = 0; i < count; ++i) {
                frames[i][sum] = static_cast<quint8>(
                    sum > 255 * i ? std::min<std::size_t>(sum - 255 * i, 255) : 0);
            }
        }
        std::vector<quint8> means(sums);
        const FrameMeans frameMeans(beginsOf(frames));
        frameMeans.run(0, sums, means.data());
        for (std::size_t sum = 0; sum < sums; ++sum) {
            ASSERT_EQ(means[sum], sum / count) << sum << " of " << count << " frames";
        }
    }
}

TEST(FrameMeans, SumAndGreatestAreThoseOfTheRunFromAnyByteOnAndOfAnyLength)
{
    std::mt19937 random(7);
    Frames frames(10, std::vector<quint8>(400));
    for (std::vector<quint8>& frame : frames) {
        std::generate(frame.begin(), frame.end(), [&] { return static_cast<quint8>(random()); });
    }
    const FrameMeans frameMeans(beginsOf(frames));
    for (std::size_t first = 0; first < 40; ++first) {
        for (std::size_t length = 0; length <= 200; ++length) {
            std::vector<quint8> means(length + 1, 77);
            const FrameMeans::Run run = frameMeans.run(first, length, means.data());
            quint32 sums[2] = {};
            quint8 greatest = 0;
            for (std::size_t x = 0; x < length; ++x) {
                quint32 sum = 0;
                for (const std::vector<quint8>& frame : frames) {
                    sum += frame[first + x];
                }
                ASSERT_EQ(means[x], sum / 10);
                sums[x % 2] += sum / 10;
                greatest = std::max(greatest, static_cast<quint8>(sum / 10));
            }
            ASSERT_EQ(run.evenSum, sums[0]) << first << ", " << length;
            ASSERT_EQ(run.oddSum, sums[1]) << first << ", " << length;
            ASSERT_EQ(run.greatest, greatest) << first << ", " << length;
            ASSERT_EQ(means.back(), 77) << "nothing is written behind the run";
        }
    }
}

} // namespace
