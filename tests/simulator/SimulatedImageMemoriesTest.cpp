// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

#include <limits>

using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

namespace {

TEST(SimulatedImageMemories, AreGivenBackOnceAndByTheirOwnHandle)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk, 1);
    const OpenedCamera bayer(*fixture.sdk, 2);
    char* memory = nullptr;
    std::int32_t id = 0;
    ASSERT_EQ(fixture.sdk->allocImageMemory(mono.handle, 96, 64, 8, &memory, &id), 0);
    EXPECT_EQ(fixture.sdk->imageMemories(), 1);
    EXPECT_EQ(fixture.sdk->freeImageMemory(bayer.handle, memory, id),
              simulator::InvalidImageMemory);
    EXPECT_EQ(fixture.sdk->freeImageMemory(mono.handle, memory + 1, id),
              simulator::InvalidImageMemory);
    EXPECT_EQ(fixture.sdk->freeImageMemory(99, memory, id), simulator::InvalidHandle);
    EXPECT_EQ(fixture.sdk->freeImageMemory(mono.handle, memory, id), 0);
    EXPECT_EQ(fixture.sdk->freeImageMemory(mono.handle, memory, id), simulator::InvalidImageMemory);
    EXPECT_EQ(fixture.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, OutliveTheOpening)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    char* memory = nullptr;
    std::int32_t id = 0;
    ASSERT_EQ(fixture.sdk->allocImageMemory(mono.handle, 96, 64, 8, &memory, &id), 0);
    mono.close();
    memory[96 * 64 - 1] = 1;
    EXPECT_EQ(fixture.sdk->imageMemories(), 1);
    EXPECT_EQ(fixture.sdk->freeImageMemory(mono.handle, memory, id), 0);
    EXPECT_EQ(fixture.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, OfImpossibleSizesAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    char* memory = nullptr;
    std::int32_t id = 0;
    const auto allocate = [&](int width, int height, int bits) {
        return fixture.sdk->allocImageMemory(mono.handle, width, height, bits, &memory, &id);
    };
    EXPECT_EQ(allocate(0, 64, 8), simulator::InvalidParameter);
    EXPECT_EQ(allocate(96, -1, 8), simulator::InvalidParameter);
    EXPECT_EQ(allocate(96, 64, 7), simulator::InvalidParameter);
    EXPECT_EQ(allocate(std::numeric_limits<int>::max(), std::numeric_limits<int>::max(), 32),
              simulator::InvalidParameter);
    EXPECT_EQ(memory, nullptr);
    EXPECT_EQ(fixture.sdk->imageMemories(), 0);
}

TEST(SimulatedImageMemories, MustHaveTheSensorsSizeToBeCapturedInto)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    const auto add = [&](int width, int height, int bits) {
        char* memory = nullptr;
        std::int32_t id = 0;
        EXPECT_EQ(fixture.sdk->allocImageMemory(mono.handle, width, height, bits, &memory, &id), 0);
        return fixture.sdk->addToSequence(mono.handle, memory, id);
    };
    EXPECT_EQ(add(95, 64, 8), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 63, 8), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 64, 32), simulator::InvalidBufferSize);
    EXPECT_EQ(add(96, 64, 8), 0);
}

} // namespace
