// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

#include <QFile>

#include <limits>

using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

namespace {

TEST(SimulatedColorModes, AMonoCameraStaysMono)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk, 1);
    EXPECT_EQ(fixture.sdk->setColorMode(mono.handle, camera::QueryCurrent), 6);
    EXPECT_EQ(fixture.sdk->setColorMode(mono.handle, 11), 0);
    EXPECT_EQ(fixture.sdk->setColorMode(mono.handle, camera::QueryCurrent), 6);
}

TEST(SimulatedColorModes, ABayerCameraHasThemAll)
{
    SimulatorFixture fixture;
    const OpenedCamera bayer(*fixture.sdk, 2);
    EXPECT_EQ(fixture.sdk->setColorMode(bayer.handle, camera::QueryCurrent), 11);
    for (const std::int32_t mode : {6, 0, 11}) {
        EXPECT_EQ(fixture.sdk->setColorMode(bayer.handle, mode), 0);
        EXPECT_EQ(fixture.sdk->setColorMode(bayer.handle, camera::QueryCurrent), mode);
    }
}

TEST(SimulatedColorModes, OthersAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera bayer(*fixture.sdk, 2);
    for (const std::int32_t mode : {-1, 1, 12, 0x8001}) {
        EXPECT_EQ(fixture.sdk->setColorMode(bayer.handle, mode), simulator::InvalidColorMode);
    }
    EXPECT_EQ(fixture.sdk->setColorMode(bayer.handle, camera::QueryCurrent), 11);
}

TEST(SimulatedParameters, HaveTheirRangesDefaultsAndQueries)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    const CameraSdk::Handle handle = mono.handle;
    SimulatedCameraSdk& sdk = *fixture.sdk;
    std::int32_t least = 0;
    std::int32_t most = 0;
    ASSERT_EQ(sdk.getPixelClockRange(handle, &least, &most), 0);
    EXPECT_EQ(least, 1);
    EXPECT_EQ(most, 60);
    EXPECT_EQ(sdk.setPixelClock(handle, camera::QueryCurrent), 2);
    EXPECT_EQ(sdk.setPixelClock(handle, 4), 0);
    EXPECT_EQ(sdk.setPixelClock(handle, camera::QueryCurrent), 4);
    EXPECT_EQ(sdk.setPixelClock(handle, camera::QueryDefault), 2);
    EXPECT_EQ(sdk.setPixelClock(handle, 61), simulator::InvalidParameter);
    EXPECT_EQ(sdk.setPixelClock(handle, 0), simulator::InvalidParameter);

    // A line of (96 + 400) / 4 MHz = 124 us; 64 + 26 lines are the shortest frame.
    double minimum = 0;
    double maximum = 0;
    double step = 0;
    ASSERT_EQ(sdk.getFrameTimeRange(handle, &minimum, &maximum, &step), 0);
    EXPECT_DOUBLE_EQ(minimum, 90 * 124e-6);
    EXPECT_DOUBLE_EQ(maximum, 16 * 90 * 124e-6);
    EXPECT_DOUBLE_EQ(step, 124e-6);

    double actual = 0;
    ASSERT_EQ(sdk.setFrameRate(handle, 1000, &actual), 0);
    EXPECT_NEAR(actual, 1 / (90 * 124e-6), 1e-9);
    double rate = 0;
    ASSERT_EQ(sdk.getFramesPerSecond(handle, &rate), 0);
    EXPECT_DOUBLE_EQ(rate, actual);

    ASSERT_EQ(sdk.getExposureRange(handle, &minimum, &maximum, &step), 0);
    EXPECT_DOUBLE_EQ(maximum, 89 * 0.124);
    ASSERT_EQ(sdk.setExposureTime(handle, 5.0, &actual), 0);
    EXPECT_DOUBLE_EQ(actual, 40 * 0.124);
    ASSERT_EQ(sdk.setExposureTime(handle, camera::QueryCurrentDouble, &actual), 0);
    EXPECT_DOUBLE_EQ(actual, 40 * 0.124);
    ASSERT_EQ(sdk.setExposureTime(handle, camera::QueryDefaultDouble, &actual), 0);
    EXPECT_DOUBLE_EQ(actual, 89 * 0.124) << "40 ms do not fit into this frame";
    ASSERT_EQ(sdk.setExposureTime(handle, camera::QueryCurrentDouble, &actual), 0);
    EXPECT_DOUBLE_EQ(actual, 40 * 0.124) << "a query changes nothing";

    for (const double nonsense : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(sdk.setFrameRate(handle, nonsense, &actual), simulator::InvalidParameter);
    }
    EXPECT_EQ(sdk.setExposureTime(handle, -1.0, &actual), simulator::InvalidParameter);
}

TEST(SimulatedParameters, GainsAreKeptSetOrRefusedTogether)
{
    SimulatorFixture fixture;
    const OpenedCamera bayer(*fixture.sdk, 2);
    const CameraSdk::Handle handle = bayer.handle;
    SimulatedCameraSdk& sdk = *fixture.sdk;
    EXPECT_EQ(sdk.setHardwareGain(handle, camera::QueryCurrent, -1, -1, -1), 0);
    EXPECT_EQ(sdk.setHardwareGain(handle, 50, -1, -1, -1), 0);
    EXPECT_EQ(sdk.setHardwareGain(handle, -1, 10, 20, 30), 0);
    EXPECT_EQ(sdk.setHardwareGain(handle, camera::QueryCurrent, -1, -1, -1), 50);
    EXPECT_EQ(sdk.setHardwareGain(handle, 60, 101, 0, 0), simulator::InvalidParameter);
    EXPECT_EQ(sdk.setHardwareGain(handle, -2, -1, -1, -1), simulator::InvalidParameter);
    EXPECT_EQ(sdk.setHardwareGain(handle, camera::QueryCurrent, -1, -1, -1), 50);
}

TEST(SimulatedParameters, AreTheDefaultsAgainAfterTheNextOpening)
{
    SimulatorFixture fixture;
    {
        const OpenedCamera mono(*fixture.sdk);
        double actual = 0;
        fixture.sdk->setPixelClock(mono.handle, 10);
        fixture.sdk->setHardwareGain(mono.handle, 50, -1, -1, -1);
        fixture.sdk->setExposureTime(mono.handle, 1.0, &actual);
    }
    const OpenedCamera mono(*fixture.sdk);
    double exposure = 0;
    double standard = 0;
    EXPECT_EQ(fixture.sdk->setPixelClock(mono.handle, camera::QueryCurrent), 2);
    EXPECT_EQ(fixture.sdk->setHardwareGain(mono.handle, camera::QueryCurrent, -1, -1, -1), 0);
    fixture.sdk->setExposureTime(mono.handle, camera::QueryCurrentDouble, &exposure);
    fixture.sdk->setExposureTime(mono.handle, camera::QueryDefaultDouble, &standard);
    EXPECT_DOUBLE_EQ(exposure, standard);
}

class ParameterFile : public ::testing::Test
{
protected:
    std::int32_t load(const QByteArray& text)
    {
        QFile file(m_fixture.folder.filePath(QStringLiteral("parameters%1.ini").arg(++m_files)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return m_fixture.sdk->loadParameters(m_mono.handle,
                                             QFile::encodeName(file.fileName()).constData());
    }
    int m_files = 0;
    SimulatorFixture m_fixture;
    OpenedCamera m_mono{*m_fixture.sdk};
};

TEST_F(ParameterFile, ThatCannotBeOpenedIsReported)
{
    const QByteArray folder = QFile::encodeName(m_fixture.folder.path());
    EXPECT_EQ(m_fixture.sdk->loadParameters(m_mono.handle, "/no/such/file"), camera::FileNotOpened);
    EXPECT_EQ(m_fixture.sdk->loadParameters(m_mono.handle, folder.constData()),
              camera::FileNotOpened);
}

TEST_F(ParameterFile, SetsWhatItHolds)
{
    ASSERT_EQ(load("pixelClock=4\nframeRate=20\nexposure=5\nmasterGain=33\n"), 0);
    double exposure = 0;
    double rate = 0;
    EXPECT_EQ(m_fixture.sdk->setPixelClock(m_mono.handle, camera::QueryCurrent), 4);
    EXPECT_EQ(m_fixture.sdk->setHardwareGain(m_mono.handle, camera::QueryCurrent, -1, -1, -1), 33);
    m_fixture.sdk->setExposureTime(m_mono.handle, camera::QueryCurrentDouble, &exposure);
    m_fixture.sdk->getFramesPerSecond(m_mono.handle, &rate);
    EXPECT_NEAR(exposure, 5.0, 0.124);
    EXPECT_NEAR(rate, 20.0, 0.1);
    EXPECT_EQ(load(""), 0) << "an empty file sets nothing";
}

TEST_F(ParameterFile, ThatHoldsAnythingWrongSetsNothing)
{
    for (const char* text :
         {"pixelClock=4\nmasterGain=101\n", "pixelClock=1000\nmasterGain=9\n", "nonsense=1\n",
          "masterGain=ten\n", "frameRate=0\n", "exposure=-1\n", "exposure=nan\n"}) {
        EXPECT_EQ(load(text), simulator::InvalidParameterFile) << text;
        EXPECT_EQ(m_fixture.sdk->setPixelClock(m_mono.handle, camera::QueryCurrent), 2) << text;
        EXPECT_EQ(m_fixture.sdk->setHardwareGain(m_mono.handle, camera::QueryCurrent, -1, -1, -1),
                  0)
            << text;
    }
}

} // namespace
