// SPDX-License-Identifier: MIT
#include "darkframes/PlaneStatistics.h"

#include "tests/darkframes/ReferenceStatistics.h"
#include "tests/darkframes/TestFrames.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct Case
{
    const char* name;
    TestFrames frames;
};

int saturation(int bits)
{
    return (1 << bits) - 1;
}

std::vector<Case> cases()
{
    std::vector<Case> cases;
    for (const int bits : {8, 16}) {
        const int most = saturation(bits);
        cases.push_back({"random", TestFrames::random(16, 12, bits, 10, 1)});
        cases.push_back({"random, odd sizes", TestFrames::random(17, 13, bits, 3, 2)});
        cases.push_back({"random, large", TestFrames::random(301, 199, bits, 5, 3)});
        cases.push_back({"random, so many frames that sums are sorted",
                         TestFrames::random(9, 7, bits, 300, 4)});
        cases.push_back({"dark", TestFrames::dark(64, 48, bits, 10, 5)});
        cases.push_back({"dark, odd sizes", TestFrames::dark(63, 47, bits, 7, 6)});
        cases.push_back({"two frames", TestFrames::dark(20, 20, bits, 2, 7)});
        cases.push_back({"one frame", TestFrames::dark(20, 20, bits, 1, 8)});
        cases.push_back(
            {"all equal", TestFrames::of(24, 18, bits, 10, [](int, int, int) { return 11; })});
        cases.push_back(
            {"all zero", TestFrames::of(5, 4, bits, 4, [](int, int, int) { return 0; })});
        cases.push_back(
            {"saturated", TestFrames::of(31, 9, bits, 10, [&](int, int, int) { return most; })});
        cases.push_back(
            {"black and saturated", TestFrames::of(12, 8, bits, 6, [&](int f, int x, int y) {
                 return (f + x + y) % 2 == 0 ? 0 : most;
             })});
        cases.push_back({"stripes of columns",
                         TestFrames::of(16, 16, bits, 4,
                                        [&](int, int x, int) { return x % 3 == 0 ? most : 1; })});
        cases.push_back({"stripes of rows", TestFrames::of(16, 16, bits, 4, [&](int, int, int y) {
                             return y % 3 == 0 ? most : 1;
                         })});
        cases.push_back(
            {"one bright pixel", TestFrames::of(40, 30, bits, 8, [&](int, int x, int y) {
                 return x == 39 && y == 29 ? most : 3;
             })});
        cases.push_back({"noise only in time",
                         TestFrames::of(10, 10, bits, 9, [&](int f, int, int) { return 50 + f; })});
        cases.push_back({"one row", TestFrames::random(37, 1, bits, 5, 9)});
        cases.push_back({"one column", TestFrames::random(1, 37, bits, 5, 10)});
        cases.push_back({"two rows", TestFrames::random(2, 37, bits, 5, 11)});
        cases.push_back({"four pixels", TestFrames::random(2, 2, bits, 5, 12)});
        cases.push_back({"one pixel", TestFrames::random(1, 1, bits, 5, 13)});
    }
    return cases;
}

void expectNear(const char* figure, const std::optional<double>& value,
                const std::optional<double>& expected)
{
    if (!expected || !value) {
        EXPECT_EQ(value.has_value(), expected.has_value())
            << figure << ": " << value.value_or(-1) << ", expected " << expected.value_or(-1);
        return;
    }
    EXPECT_NEAR(*value, *expected, 1e-9 * std::max(1.0, std::abs(*expected))) << figure;
}

/// A root of what is 0 but for the last digits is a small number in one and none in the other.
std::optional<double> withoutRounding(const std::optional<double>& value)
{
    return value.value_or(0) < 1e-7 ? std::nullopt : value;
}

void expectNearRoot(const char* figure, const std::optional<double>& value,
                    const std::optional<double>& expected)
{
    expectNear(figure, withoutRounding(value), withoutRounding(expected));
}

} // namespace

TEST(PlaneStatistics, AgreeWithTheFormulasTakenLiterally)
{
    for (const Case& each : cases()) {
        const DarkStack stack = each.frames.stack();
        for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
            for (const SensorPlane& plane : mosaic.planes()) {
                SCOPED_TRACE(std::string(each.name) + ", " + std::to_string(each.frames.bits) +
                             " bits, " + plane.name.toStdString());
                const PlaneStatistics statistics = PlaneStatistics::of(stack, plane);
                const reference::Statistics expected = reference::statistics(
                    each.frames, {int(plane.x), int(plane.y), int(plane.step)});
                EXPECT_EQ(statistics.pixels, expected.pixels);
                expectNear("mean", statistics.mean, expected.mean);
                expectNear("median", statistics.median, expected.median);
                expectNear("deviation", statistics.deviation, expected.deviation);
                expectNear("robust deviation", statistics.robustDeviation,
                           expected.robustDeviation);
                expectNear("minimum", statistics.minimum, expected.minimum);
                expectNear("maximum", statistics.maximum, expected.maximum);
                expectNear("noise", statistics.temporalNoise, expected.temporalNoise);
                expectNearRoot("DSNU", statistics.dsnu, expected.dsnu);
                expectNearRoot("rows", statistics.dsnuRow, expected.dsnuRow);
                expectNearRoot("columns", statistics.dsnuColumn, expected.dsnuColumn);
                expectNearRoot("pixels", statistics.dsnuPixel, expected.dsnuPixel);
            }
        }
    }
}

TEST(PlaneStatistics, AreExactWhereAllPixelsAreAlike)
{
    for (const int bits : {8, 16}) {
        const int most = saturation(bits);
        const DarkStack stack =
            TestFrames::of(33, 21, bits, 10, [&](int, int, int) { return most; }).stack();
        const PlaneStatistics statistics = PlaneStatistics::of(stack, Mosaic::wholeSensor());
        EXPECT_EQ(statistics.mean, most);
        EXPECT_EQ(statistics.median, most);
        EXPECT_EQ(statistics.deviation, 0);
        EXPECT_EQ(statistics.robustDeviation, 0);
        EXPECT_EQ(statistics.temporalNoise, 0);
        EXPECT_EQ(statistics.dsnu, 0);
        EXPECT_EQ(statistics.dsnuRow, 0);
        EXPECT_EQ(statistics.dsnuColumn, 0);
        EXPECT_EQ(statistics.dsnuPixel, 0);
    }
}

TEST(PlaneStatistics, HaveNoNonuniformityWhereOnlyTimeMakesNoise)
{
    const DarkStack stack = TestFrames::of(10, 10, 8, 2, [](int frame, int x, int y) {
                                return frame == 0 ? 10 + (x + y) % 2 : 11 - (x + y) % 2;
                            }).stack();
    const PlaneStatistics statistics = PlaneStatistics::of(stack, Mosaic::wholeSensor());
    EXPECT_DOUBLE_EQ(*statistics.temporalNoise, std::sqrt(0.5));
    EXPECT_EQ(statistics.dsnu, std::nullopt);
}

TEST(PlaneStatistics, KnowStripesOfRowsFromStripesOfColumns)
{
    const auto stripes = [](bool rows) {
        return PlaneStatistics::of(
            TestFrames::of(100, 100, 8, 3,
                           [rows](int, int x, int y) { return (rows ? y : x) % 2 == 0 ? 10 : 14; })
                .stack(),
            Mosaic::wholeSensor());
    };
    const PlaneStatistics rows = stripes(true);
    EXPECT_NEAR(*rows.dsnuRow, 2, 0.05);
    EXPECT_LT(rows.dsnuColumn.value_or(0), 0.3);
    const PlaneStatistics columns = stripes(false);
    EXPECT_NEAR(*columns.dsnuColumn, 2, 0.05);
    EXPECT_LT(columns.dsnuRow.value_or(0), 0.3);
}

TEST(PlaneStatistics, CountWholeLevelsOfTheMeanImage)
{
    // Means 10, 10.5 and 11.75 of two frames; the mean of 10, 10 and 11 is 10 when it is cut.
    const TestFrames frames = TestFrames::of(3, 1, 8, 4, [](int frame, int x, int) {
        return x == 0 ? 10 : x == 1 ? 10 + frame % 2 : 11 + (frame > 0 ? 1 : 0);
    });
    const PlaneStatistics statistics = PlaneStatistics::of(frames.stack(), Mosaic::wholeSensor());
    EXPECT_EQ(statistics.levels.size(), 256U);
    EXPECT_EQ(statistics.levels[10], 2U);
    EXPECT_EQ(statistics.levels[11], 1U);
    EXPECT_EQ(statistics.wholeMean, 10U);
    EXPECT_EQ(statistics.countAbove(0), 1U);
    EXPECT_EQ(statistics.countAbove(1), 0U);
    EXPECT_EQ(statistics.countAbove(4'000'000'000U), 0U);
}

TEST(PlaneStatistics, AreMissingWhereAPlaneHasNoPixels)
{
    const DarkStack stack = TestFrames::random(7, 1, 16, 3, 20).stack();
    const PlaneStatistics statistics =
        PlaneStatistics::of(stack, {QStringLiteral("below"), 0, 1, 2});
    EXPECT_EQ(statistics.pixels, 0U);
    EXPECT_EQ(statistics.mean, std::nullopt);
    EXPECT_EQ(statistics.dsnu, std::nullopt);
    EXPECT_EQ(statistics.countAbove(0), 0U);
}
