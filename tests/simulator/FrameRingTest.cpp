// SPDX-License-Identifier: MIT
#include "simulator/FrameRing.h"

#include <gtest/gtest.h>

namespace {

FrameRing::Memory memory(std::int32_t id)
{
    return std::make_shared<SimulatedImageMemory>(id, 4, 2, 8);
}

FrameRing::Memory writeOne(FrameRing& ring)
{
    FrameRing::Memory written = ring.beginWrite();
    ring.endWrite(true);
    return written;
}

TEST(SimulatedImageMemory, StartsItsLinesAtMultiplesOfFourBytes)
{
    EXPECT_EQ(SimulatedImageMemory(1, 4, 2, 8).pitch, 4U);
    EXPECT_EQ(SimulatedImageMemory(1, 5, 2, 8).pitch, 8U);
    EXPECT_EQ(SimulatedImageMemory(1, 7, 2, 24).pitch, 24U);
    EXPECT_EQ(SimulatedImageMemory(1, 5, 2, 32).pitch, 20U);
}

TEST(FrameRing, WithoutMemoryThereIsNothingToWriteOrToShow)
{
    FrameRing ring;
    EXPECT_EQ(ring.beginWrite(), nullptr);
    EXPECT_EQ(ring.handOutLatest(), nullptr);
}

TEST(FrameRing, FillsItsMemoriesInTurn)
{
    FrameRing ring;
    const auto a = memory(1);
    const auto b = memory(2);
    const auto c = memory(3);
    for (const auto& each : {a, b, c}) {
        ring.append(each);
    }
    EXPECT_EQ(writeOne(ring), a);
    EXPECT_EQ(writeOne(ring), b);
    EXPECT_EQ(writeOne(ring), c);
    EXPECT_EQ(writeOne(ring), a);
    EXPECT_EQ(ring.handOutLatest(), a);
}

TEST(FrameRing, LeavesTheMemoryHandedOutLastAlone)
{
    FrameRing ring;
    const auto a = memory(1);
    const auto b = memory(2);
    ring.append(a);
    ring.append(b);
    writeOne(ring);
    ASSERT_EQ(ring.handOutLatest(), a);
    for (int frame = 0; frame < 5; ++frame) {
        EXPECT_EQ(writeOne(ring), b);
    }
    ASSERT_EQ(ring.handOutLatest(), b);
    for (int frame = 0; frame < 5; ++frame) {
        EXPECT_EQ(writeOne(ring), a);
    }
}

TEST(FrameRing, ASingleMemoryIsWrittenAgainAndAgain)
{
    FrameRing ring;
    const auto only = memory(1);
    ring.append(only);
    writeOne(ring);
    ASSERT_EQ(ring.handOutLatest(), only);
    EXPECT_EQ(writeOne(ring), only);
}

TEST(FrameRing, KnowsThatTheLatestFrameIsBeingOverwritten)
{
    FrameRing ring;
    ring.append(memory(1));
    ring.append(memory(2));
    writeOne(ring);
    static_cast<void>(ring.handOutLatest());
    EXPECT_FALSE(ring.latestIsBeingWritten());
    writeOne(ring);
    static_cast<void>(ring.beginWrite());
    EXPECT_TRUE(ring.latestIsBeingWritten());
    ring.endWrite(true);
    EXPECT_FALSE(ring.latestIsBeingWritten());
}

TEST(FrameRing, AFrameThatWasGivenUpIsNotShown)
{
    FrameRing ring;
    const auto a = memory(1);
    ring.append(a);
    static_cast<void>(ring.beginWrite());
    ring.endWrite(false);
    EXPECT_EQ(ring.handOutLatest(), nullptr);

    writeOne(ring);
    static_cast<void>(ring.beginWrite());
    ring.endWrite(false);
    EXPECT_EQ(ring.handOutLatest(), nullptr) << "half overwritten";
}

TEST(FrameRing, MemoryTakenOutWhileItIsWrittenIsNotShown)
{
    FrameRing ring;
    const auto a = memory(1);
    const auto b = memory(2);
    ring.append(a);
    ring.append(b);
    static_cast<void>(ring.beginWrite());
    ring.remove(a);
    ring.endWrite(true);
    EXPECT_EQ(ring.handOutLatest(), nullptr);
    EXPECT_EQ(writeOne(ring), b);
}

TEST(FrameRing, ClearForgetsEverything)
{
    FrameRing ring;
    ring.append(memory(1));
    writeOne(ring);
    ring.clear();
    EXPECT_TRUE(ring.isEmpty());
    EXPECT_EQ(ring.handOutLatest(), nullptr);
}

} // namespace
