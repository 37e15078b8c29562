// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatedBench.h"

#include <limits>

using bench::Bench;
using bench::OpenedCamera;

namespace {

TEST(SimulatedImageMemories, AreGivenBackOnceAndByTheirOwnHandle)
{
    Bench bench;
    OpenedCamera mono(*bench.sdk, 1);
    const OpenedCamera bayer(*bench.sdk, 2);
    char* memory = nullptr;
    std::int32_t id = 0;
    ASSERT_EQ(bench.sdk->allocImageMemory(mono.handle, 96, 64, 8, &memory, &id), 0);
    EXPECT_EQ(bench.sdk->imageMemories(), 1);
    EXPECT_EQ(bench.sdk->freeImageMemory(bayer.handle, memory, id), simulator::InvalidImageMemory);
    EXPECT_EQ(bench.sdk->freeImageMemory(mono.handle, memory + 1, id),
              simulator::InvalidImageMemory);
    EXPECT_EQ(bench.sdk->freeImageMemory(99, memory, id), simulator::InvalidHandle);
    EXPECT_EQ(bench.sdk->freeImageMemory(mono.handle, memory, id), 0);
    EXPECT_EQ(bench.sdk->freeImageMemory(mono.handle, memory, id), simulator::InvalidImageMemory);
    EXPECT_EQ(bench.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, OutliveTheOpening)
{
    Bench bench;
    OpenedCamera mono(*bench.sdk);
    char* memory = nullptr;
    std::int32_t id = 0;
    ASSERT_EQ(bench.sdk->allocImageMemory(mono.handle, 96, 64, 8, &memory, &id), 0);
    mono.close();
    memory[96 * 64 - 1] = 1;
    EXPECT_EQ(bench.sdk->imageMemories(), 1);
    EXPECT_EQ(bench.sdk->freeImageMemory(mono.handle, memory, id), 0);
    EXPECT_EQ(bench.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, OfImpossibleSizesAreRefused)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    char* memory = nullptr;
    std::int32_t id = 0;
    const auto allocate = [&](int width, int height, int bits) {
        return bench.sdk->allocImageMemory(mono.handle, width, height, bits, &memory, &id);
    };
    EXPECT_EQ(allocate(0, 64, 8), simulator::InvalidParameter);
    EXPECT_EQ(allocate(96, -1, 8), simulator::InvalidParameter);
    EXPECT_EQ(allocate(96, 64, 7), simulator::InvalidParameter);
    EXPECT_EQ(allocate(std::numeric_limits<int>::max(), std::numeric_limits<int>::max(), 32),
              simulator::InvalidParameter);
    EXPECT_EQ(memory, nullptr);
    EXPECT_EQ(bench.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, MustHaveTheSensorsSizeToBeCapturedInto)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    const auto add = [&](int width, int height, int bits) {
        char* memory = nullptr;
        std::int32_t id = 0;
        EXPECT_EQ(bench.sdk->allocImageMemory(mono.handle, width, height, bits, &memory, &id), 0);
        return bench.sdk->addToSequence(mono.handle, memory, id);
    };
    EXPECT_EQ(add(95, 64, 8), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 63, 8), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 64, 32), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 64, 8), 0);
}

} // namespace
