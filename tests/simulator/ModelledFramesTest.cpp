// SPDX-License-Identifier: MIT
#include "simulator/ModelledFrames.h"

#include "simulator/NoiseField.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Pixels = std::vector<std::uint8_t>;

constexpr int Width = 201; // odd, so that a mosaic's last column has no partner
constexpr int Height = 120;

CameraDescription smallCamera(bool bayer)
{
    CameraDescription camera;
    camera.serial = QStringLiteral("F1");
    camera.model = QStringLiteral("Frames");
    camera.width = Width;
    camera.height = Height;
    camera.bayer = bayer;
    camera.hotPixels = 24;
    return camera;
}

SensorSettings coveredSecond()
{
    SensorSettings settings;
    settings.exposureSeconds = 1.0;
    settings.masterGain = 50;
    settings.covered = true;
    return settings;
}

Pixels render(ModelledFrames& frames, std::uint64_t frame, const SensorSettings& settings)
{
    Pixels pixels(static_cast<std::size_t>(Width) * Height);
    frames.render(frame, settings, pixels.data(), Width);
    return pixels;
}

TEST(NoiseField, HasMeanZeroAndUnitDeviation)
{
    const std::int16_t* values = NoiseField::instance().values();
    double sum = 0;
    double squares = 0;
    for (std::size_t i = 0; i < NoiseField::Size; ++i) {
        const double value = values[i] / double{NoiseField::Unit};
        sum += value;
        squares += value * value;
    }
    const auto count = static_cast<double>(NoiseField::Size);
    // Five standard errors of 524288 values.
    EXPECT_NEAR(sum / count, 0.0, 5.0 / std::sqrt(count));
    EXPECT_NEAR(squares / count, 1.0, 5.0 * std::sqrt(2.0 / count));
}

TEST(NoiseField, GoesOnAtItsEndWhereItBegan)
{
    const std::int16_t* values = NoiseField::instance().values();
    EXPECT_TRUE(std::equal(values, values + NoiseField::LongestRow, values + NoiseField::Size));
}

TEST(ModelledFrames, TheSameFrameNumberGivesTheSameFrame)
{
    const SensorModel model(smallCamera(true));
    for (const bool covered : {true, false}) {
        SensorSettings settings = coveredSecond();
        settings.covered = covered;
        settings.exposureSeconds = covered ? 1.0 : 0.02;
        ModelledFrames first(model);
        ModelledFrames second(model);
        const Pixels three = render(first, 3, settings);
        EXPECT_NE(render(first, 4, settings), three);
        EXPECT_EQ(render(second, 3, settings), three);
    }
}

TEST(ModelledFrames, DarkPixelsHaveTheModelsMeanAndScatter)
{
    const SensorModel model(smallCamera(false));
    SensorSettings settings = coveredSecond();
    settings.masterGain = 100;
    settings.temperature = 45;
    ModelledFrames frames(model);
    std::vector<SimulatedHotPixel> hot = model.hotPixels();
    double sum = 0;
    double squares = 0;
    double count = 0;
    for (std::uint64_t frame = 0; frame < 20; ++frame) {
        const Pixels pixels = render(frames, frame, settings);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {
                if (std::none_of(hot.begin(), hot.end(), [x, y](const SimulatedHotPixel& pixel) {
                        return pixel.x == x && pixel.y == y;
                    })) {
                    const double value = pixels[static_cast<std::size_t>(y * Width + x)];
                    sum += value;
                    squares += value * value;
                    count += 1;
                }
            }
        }
    }
    // 20 e-/s · 2^(20/7) · 1 s = 144.9 e-, 0.1 DN each, on a pedestal of 8; the scatter is that of
    // these electrons, of 10 e- read noise and of rounding.
    const double electrons = 20 * std::exp2(20.0 / 7.0);
    EXPECT_NEAR(sum / count, 8 + 0.1 * electrons, 0.03);
    EXPECT_NEAR(squares / count - sum * sum / count / count,
                0.01 * (100 + electrons) + 1.0 / 12 + 1.0 / 12, 0.12);
}

TEST(ModelledFrames, RowsOfAFrameDiffer)
{
    const SensorModel model(smallCamera(false));
    ModelledFrames frames(model);
    const Pixels pixels = render(frames, 0, coveredSecond());
    for (int y = 20; y < 40; ++y) {
        const auto line = pixels.begin() + y * Width;
        EXPECT_FALSE(std::equal(line, line + Width, line + Width)) << "line " << y;
    }
}

TEST(ModelledFrames, HotPixelsAverageToTheirMeans)
{
    constexpr int Frames = 200;
    for (const bool bayer : {false, true}) {
        const SensorModel model(smallCamera(bayer));
        SensorSettings settings = coveredSecond();
        settings.redGain = bayer ? 20 : 0;
        ModelledFrames frames(model);
        std::vector<double> sums(model.hotPixels().size(), 0.0);
        for (std::uint64_t frame = 0; frame < Frames; ++frame) {
            const Pixels pixels = render(frames, frame, settings);
            for (std::size_t i = 0; i < sums.size(); ++i) {
                const SimulatedHotPixel& pixel = model.hotPixels()[i];
                sums[i] += pixels[static_cast<std::size_t>(pixel.y * Width + pixel.x)];
            }
        }
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const SimulatedHotPixel& pixel = model.hotPixels()[i];
            const double gain = model.systemGain(pixel.x, pixel.y, settings);
            const double electrons = model.darkElectrons(pixel, settings);
            const double mean = std::min(255.0, model.meanDn(electrons, gain));
            if (mean > 235 && mean < 255) {
                continue; // clipping takes a part of the scatter away
            }
            EXPECT_NEAR(sums[i] / Frames, mean,
                        5 * model.deviationDn(electrons, gain) / std::sqrt(double{Frames}) + 0.05)
                << pixel.x << ", " << pixel.y;
        }
    }
}

TEST(ModelledFrames, OnlyACoveredSensorIsDark)
{
    const SensorModel model(smallCamera(true));
    ModelledFrames frames(model);
    SensorSettings settings = coveredSecond();
    const auto above = [](const Pixels& pixels) {
        return std::count_if(pixels.begin(), pixels.end(), [](int value) { return value > 100; });
    };
    EXPECT_LT(above(render(frames, 0, settings)), 24);
    settings.covered = false;
    EXPECT_GT(above(render(frames, 1, settings)), Width * Height / 2);
    settings.covered = true;
    EXPECT_LT(above(render(frames, 2, settings)), 24);
}

TEST(ModelledFrames, TheSceneIsWellExposedAtTheDefaultExposure)
{
    const SensorModel model(smallCamera(false));
    ModelledFrames frames(model);
    SensorSettings settings;
    settings.exposureSeconds = 0.04;
    const Pixels pixels = render(frames, 0, settings);
    const auto [least, most] = std::minmax_element(pixels.begin(), pixels.end());
    EXPECT_LT(*least, 40);
    EXPECT_GT(*most, 180);
    EXPECT_LT(std::count(pixels.begin(), pixels.end(), 255), Width * Height / 100);
}

TEST(ModelledFrames, PaddingIsLeftAlone)
{
    const SensorModel model(smallCamera(true));
    ModelledFrames frames(model);
    constexpr std::size_t Pitch = Width + 3;
    for (const bool covered : {true, false}) {
        SensorSettings settings = coveredSecond();
        settings.covered = covered;
        Pixels pixels(Pitch * Height, 77);
        frames.render(0, settings, pixels.data(), Pitch);
        for (std::size_t y = 0; y < Height; ++y) {
            for (std::size_t x = Width; x < Pitch; ++x) {
                ASSERT_EQ(pixels[y * Pitch + x], 77);
            }
        }
    }
}

} // namespace
