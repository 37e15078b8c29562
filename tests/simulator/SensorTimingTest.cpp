// SPDX-License-Identifier: MIT
#include "simulator/SensorTiming.h"

#include <gtest/gtest.h>

namespace {

// A line takes (100 + 100) / 2 MHz = 0.1 ms, a frame at least 50 + 50 lines = 10 ms and at most
// 20 times as much.
CameraDescription roundNumbers()
{
    CameraDescription camera;
    camera.width = 100;
    camera.height = 50;
    camera.lineBlanking = 100;
    camera.frameBlanking = 50;
    camera.slowestFrame = 20;
    camera.pixelClockMin = 1;
    camera.pixelClockMax = 8;
    camera.pixelClockDefault = 2;
    camera.frameRate = 50;
    camera.exposureMsec = 5;
    return camera;
}

TEST(SensorTiming, StartsWithTheDefaults)
{
    const SensorTiming timing(roundNumbers());
    EXPECT_EQ(timing.pixelClock(), 2);
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.02);
    EXPECT_DOUBLE_EQ(timing.exposure(), 5.0);
}

TEST(SensorTiming, FrameTimesFollowFromPixelsAndClock)
{
    SensorTiming timing(roundNumbers());
    EXPECT_DOUBLE_EQ(timing.frameTimeRange().minimum, 0.01);
    EXPECT_DOUBLE_EQ(timing.frameTimeRange().maximum, 0.2);
    EXPECT_DOUBLE_EQ(timing.frameTimeRange().step, 0.0001);

    ASSERT_TRUE(timing.setPixelClock(8));
    EXPECT_DOUBLE_EQ(timing.frameTimeRange().minimum, 0.0025);
    EXPECT_DOUBLE_EQ(timing.frameTimeRange().maximum, 0.05);
}

TEST(SensorTiming, TheExposureIsALineShorterThanTheFrame)
{
    SensorTiming timing(roundNumbers());
    EXPECT_DOUBLE_EQ(timing.exposureRange().minimum, 0.1);
    EXPECT_DOUBLE_EQ(timing.exposureRange().maximum, 19.9);
    EXPECT_DOUBLE_EQ(timing.exposureRange().step, 0.1);

    timing.setExposure(1000);
    EXPECT_DOUBLE_EQ(timing.exposure(), 19.9);
    timing.setExposure(0);
    EXPECT_DOUBLE_EQ(timing.exposure(), 0.1);
}

TEST(SensorTiming, AFasterFrameRateShortensTheExposure)
{
    SensorTiming timing(roundNumbers());
    timing.setExposure(19.9);
    timing.setFrameRate(100);
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.01);
    EXPECT_DOUBLE_EQ(timing.exposure(), 9.9);
}

TEST(SensorTiming, TheFrameRateIsKeptWithinWhatTheClockAllows)
{
    SensorTiming timing(roundNumbers());
    timing.setFrameRate(1e6);
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.01);
    timing.setFrameRate(1e-6);
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.2);
}

TEST(SensorTiming, ANewClockKeepsFrameTimeAndExposureWhereItCan)
{
    SensorTiming timing(roundNumbers());
    ASSERT_TRUE(timing.setPixelClock(4));
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.02);
    EXPECT_DOUBLE_EQ(timing.exposure(), 5.0);

    // 100 lines of 0.2 ms are the least now.
    timing.setFrameRate(200);
    ASSERT_TRUE(timing.setPixelClock(1));
    EXPECT_DOUBLE_EQ(timing.frameTime(), 0.02);
}

TEST(SensorTiming, AClockOutsideTheRangeChangesNothing)
{
    SensorTiming timing(roundNumbers());
    EXPECT_FALSE(timing.setPixelClock(0));
    EXPECT_FALSE(timing.setPixelClock(9));
    EXPECT_EQ(timing.pixelClock(), 2);
}

TEST(SensorTiming, WhatItTookIsTakenAgainUnchanged)
{
    SensorTiming timing(roundNumbers());
    timing.setFrameRate(33.3);
    timing.setExposure(12.34);
    const double frameTime = timing.frameTime();
    const double exposure = timing.exposure();
    timing.setFrameRate(1 / frameTime);
    timing.setExposure(exposure);
    EXPECT_DOUBLE_EQ(timing.frameTime(), frameTime);
    EXPECT_DOUBLE_EQ(timing.exposure(), exposure);
}

TEST(SensorTiming, TheDefaultExposureIsCutToTheFrame)
{
    CameraDescription camera = roundNumbers();
    camera.exposureMsec = 15;
    SensorTiming timing(camera);
    EXPECT_DOUBLE_EQ(timing.defaultExposure(), 15.0);
    timing.setFrameRate(100);
    EXPECT_DOUBLE_EQ(timing.defaultExposure(), 9.9);
}

} // namespace
