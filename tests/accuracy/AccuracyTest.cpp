// SPDX-License-Identifier: MIT
#include "tests/accuracy/AccuracyTrial.h"
#include "tests/accuracy/SimulatedDefects.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

AccuracyTrial trial(std::uint32_t width, std::uint32_t height, const Mosaic& mosaic)
{
    AccuracyTrial trial;
    trial.width = width;
    trial.height = height;
    trial.mosaic = mosaic;
    trial.seed = width + height;
    trial.run();
    return trial;
}

std::vector<AccuracyTrial> trials()
{
    return {trial(1280, 1024, Mosaic::mono()), trial(1280, 1024, Mosaic::bayer()),
            trial(640, 483, Mosaic::mono()), trial(640, 483, Mosaic::bayer()),
            trial(132, 500, Mosaic::bayer())};
}

} // namespace

TEST(Accuracy, OfTheExactSearchIsPerfectForClearPixels)
{
    for (const AccuracyTrial& each : trials()) {
        EXPECT_GT(each.exact.clearHot, 500U);
        EXPECT_EQ(each.exact.found, each.exact.clearHot);
        EXPECT_EQ(each.exact.missed, 0U);
        EXPECT_EQ(each.exact.reportedFalsely, 0U);
        EXPECT_GT(each.exact.unclear, 0U);
        EXPECT_EQ(each.exact.precision(), 1);
        EXPECT_EQ(each.exact.recall(), 1);
    }
}

TEST(Accuracy, HasAReasonForEachDifferenceFromTheEditor)
{
    std::uint64_t behindRows = 0;
    std::uint64_t endLeftOut = 0;
    for (const AccuracyTrial& each : trials()) {
        EXPECT_EQ(each.differences.unexplained, 0U);
        behindRows += each.differences.behindRows;
        endLeftOut += each.differences.endLeftOut;
    }
    EXPECT_GT(behindRows, 0U);
    EXPECT_GT(endLeftOut, 0U);
}

TEST(SimulatedDefects, ShowWhatTheyAreSaidToShow)
{
    constexpr int Frames = 400;
    SimulatedDefects sensor(64, 64, 1, 40);
    std::vector<double> sums(64 * 64);
    std::vector<double> squares(64 * 64);
    for (int i = 0; i < Frames; ++i) {
        const QImage frame = sensor.takeFrame();
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                const double value = frame.constScanLine(y)[x];
                sums[std::size_t(y * 64 + x)] += value;
                squares[std::size_t(y * 64 + x)] += value * value;
            }
        }
    }
    for (std::uint32_t y = 0; y < 64; ++y) {
        for (std::uint32_t x = 0; x < 64; ++x) {
            const SimulatedDefects::Truth truth = sensor.truth(x, y);
            const double mean = sums[y * 64 + x] / Frames;
            EXPECT_NEAR(mean, truth.mean, 6 * truth.deviation / std::sqrt(Frames) + 1e-9);
            // Near saturation only a few draws in a thousand scatter at all.
            if (truth.deviation > 0.8) {
                const double variance = squares[y * 64 + x] / Frames - mean * mean;
                EXPECT_NEAR(std::sqrt(variance), truth.deviation, 0.25 * truth.deviation);
            }
        }
    }
}
