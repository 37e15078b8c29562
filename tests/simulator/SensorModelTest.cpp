// SPDX-License-Identifier: MIT
#include "simulator/SensorModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

SensorSettings darkSecond(int masterGain)
{
    SensorSettings settings;
    settings.exposureSeconds = 1.0;
    settings.masterGain = masterGain;
    settings.covered = true;
    return settings;
}

TEST(SensorModel, DarkCurrentGrowsWithExposureAndDoublesWithTemperature)
{
    CameraDescription camera;
    camera.darkElectronsPerSecond = 20;
    camera.doublingKelvin = 7;
    const SensorModel model(camera);
    SensorSettings settings = darkSecond(0);
    EXPECT_DOUBLE_EQ(model.darkElectrons(settings), 20.0);
    settings.exposureSeconds = 2.5;
    EXPECT_DOUBLE_EQ(model.darkElectrons(settings), 50.0);
    settings.temperature = 32;
    EXPECT_DOUBLE_EQ(model.darkElectrons(settings), 100.0);
    settings.temperature = 11;
    EXPECT_DOUBLE_EQ(model.darkElectrons(settings), 12.5);
}

TEST(SensorModel, GainAndPedestalTurnElectronsIntoGreyValues)
{
    CameraDescription camera;
    camera.dnPerElectron = 0.025;
    camera.pedestalDn = 8;
    camera.readNoiseElectrons = 10;
    const SensorModel model(camera);
    EXPECT_DOUBLE_EQ(model.systemGain(0, 0, darkSecond(0)), 0.025);
    EXPECT_DOUBLE_EQ(model.systemGain(0, 0, darkSecond(50)), 0.0625); // 2.5 times
    EXPECT_DOUBLE_EQ(model.systemGain(0, 0, darkSecond(100)), 0.1);   // 4 times
    EXPECT_DOUBLE_EQ(model.meanDn(1000, 0.0625), 70.5);
    // 0.0625² · (10² + 1500) + 1/12 = 6.25 + 0.08333
    EXPECT_NEAR(model.deviationDn(1500, 0.0625), std::sqrt(6.333333), 1e-6);
}

TEST(SensorModel, ColourGainsConcernTheirSitesOfTheMosaicOnly)
{
    CameraDescription camera;
    camera.bayer = true;
    camera.dnPerElectron = 0.01;
    SensorSettings settings = darkSecond(0);
    settings.redGain = 100;
    settings.greenGain = 50;
    settings.blueGain = 10;
    const SensorModel bayer(camera);
    EXPECT_DOUBLE_EQ(bayer.systemGain(0, 0, settings), 0.04);
    EXPECT_DOUBLE_EQ(bayer.systemGain(1, 0, settings), 0.025);
    EXPECT_DOUBLE_EQ(bayer.systemGain(0, 1, settings), 0.025);
    EXPECT_DOUBLE_EQ(bayer.systemGain(1, 1, settings), 0.013);
    camera.bayer = false;
    const SensorModel mono(camera);
    EXPECT_DOUBLE_EQ(mono.systemGain(0, 0, settings), 0.01);
}

TEST(SensorModel, TheCoverTakesTheLightAway)
{
    const SensorModel model{CameraDescription()};
    SensorSettings settings;
    settings.exposureSeconds = 0.04;
    EXPECT_GT(model.whiteElectrons(settings), 0);
    settings.covered = true;
    EXPECT_EQ(model.whiteElectrons(settings), 0);
}

TEST(SensorModel, TheSameSerialNumberHasTheSameHotPixels)
{
    CameraDescription camera;
    camera.serial = QStringLiteral("A");
    const SensorModel first(camera);
    const SensorModel second(camera);
    camera.serial = QStringLiteral("B");
    const SensorModel other(camera);
    ASSERT_EQ(first.hotPixels().size(), 64U);
    bool differs = false;
    for (std::size_t i = 0; i < first.hotPixels().size(); ++i) {
        EXPECT_EQ(first.hotPixels()[i].x, second.hotPixels()[i].x);
        EXPECT_EQ(first.hotPixels()[i].electronsPerSecond,
                  second.hotPixels()[i].electronsPerSecond);
        differs = differs || first.hotPixels()[i].x != other.hotPixels()[i].x;
    }
    EXPECT_TRUE(differs);
}

class BuiltInSensor : public ::testing::TestWithParam<std::size_t>
{
protected:
    CameraDescription m_camera = simulator::builtInBus().cameras[GetParam()];
    SensorModel m_model{m_camera};
};

TEST_P(BuiltInSensor, HasTheNumberOfHotPixelsItSays)
{
    EXPECT_EQ(m_model.hotPixels().size(), static_cast<std::size_t>(m_camera.hotPixels));
    EXPECT_EQ(m_model.factoryPixels().size(), static_cast<std::size_t>(m_camera.factoryEntries));
    EXPECT_EQ(m_model.userPixels().size(), static_cast<std::size_t>(m_camera.userEntries));
    EXPECT_LE(m_camera.userEntries, m_camera.userCapacity);
}

TEST_P(BuiltInSensor, HasHotPixelsInAllCornersOnAllPlanesAndOfAllKinds)
{
    std::set<int> planes;
    std::set<std::pair<int, int>> positions;
    int faint = 0;
    int clear = 0;
    int saturated = 0;
    const SensorSettings settings = darkSecond(50);
    for (const SimulatedHotPixel& pixel : m_model.hotPixels()) {
        planes.insert(pixel.y % 2 * 2 + pixel.x % 2);
        positions.insert({pixel.x, pixel.y});
        EXPECT_LT(pixel.x, m_camera.width);
        EXPECT_LT(pixel.y, m_camera.height);
        const double mean = m_model.meanDn(m_model.darkElectrons(pixel, settings),
                                           m_model.systemGain(0, 0, settings));
        faint += mean < 45 ? 1 : 0;
        clear += mean > 60 && mean < 255 ? 1 : 0;
        saturated += mean > 300 ? 1 : 0;
    }
    EXPECT_EQ(planes.size(), 4U);
    EXPECT_EQ(positions.size(), m_model.hotPixels().size()) << "no position twice";
    for (const int x : {0, m_camera.width - 1}) {
        for (const int y : {0, m_camera.height - 1}) {
            EXPECT_TRUE(positions.contains({x, y})) << x << ", " << y;
        }
    }
    EXPECT_GT(faint, 5);
    EXPECT_GT(clear, 20);
    EXPECT_GT(saturated, 5);
}

TEST_P(BuiltInSensor, HasNoHotPixelNearTheUsualThreshold)
{
    // Exposures between 0.8 and 1.1 seconds at master gain 50 and a threshold of 40: eight standard
    // deviations of a mean over ten frames lie between each hot pixel and the limit.
    for (const double seconds : {0.8, 1.0, 1.1}) {
        SensorSettings settings = darkSecond(50);
        settings.exposureSeconds = seconds;
        const double gain = m_model.systemGain(0, 0, settings);
        const double limit = m_model.meanDn(m_model.darkElectrons(settings), gain) + 40;
        for (const SimulatedHotPixel& pixel : m_model.hotPixels()) {
            const double electrons = m_model.darkElectrons(pixel, settings);
            const double mean = m_model.meanDn(electrons, gain);
            const double deviation = m_model.deviationDn(electrons, gain) / std::sqrt(10.0);
            EXPECT_GT(std::abs(mean - limit), 8 * deviation + 1)
                << pixel.x << ", " << pixel.y << " at " << seconds << " s";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, BuiltInSensor, ::testing::Range(std::size_t{0}, std::size_t{4}));

} // namespace
