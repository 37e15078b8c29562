// SPDX-License-Identifier: MIT
#include "tests/camera/CameraFixture.h"

#include <functional>
#include <vector>

namespace {

// Pixel clock 5 to 40, now 22; frame rate 0.5 to 2, now 1.5; exposure 0.5 to 900, now 66; gain 13.
class CameraParameters : public CameraFixture
{
protected:
    void SetUp() override { makeOpenCamera(); }
};

const char* const FramerateUpdated = R"(getFrameTimeRange(7, 1, 1, 1)
setFrameRate(7, 1.5)
-> framerateChanged 1.5
getExposureRange(7)
setExposureTime(7, 32768)
setExposureTime(7, 66)
-> exposureChanged 66
)";

const char* const ExposureUpdated = R"(getExposureRange(7)
setExposureTime(7, 32768)
setExposureTime(7, 66)
-> exposureChanged 66
)";

TEST_F(CameraParameters, AreReadFromTheCameraOnOpening)
{
    EXPECT_EQ(camera->pixelclock().min, 5);
    EXPECT_EQ(camera->pixelclock().max, 40);
    EXPECT_EQ(camera->pixelclock().increment, 1);
    EXPECT_EQ(camera->pixelclock().value, 22);
    EXPECT_EQ(camera->framerate().min, 0.5);
    EXPECT_EQ(camera->framerate().value, 1.5);
    EXPECT_EQ(camera->exposure().min, 0.5);
    EXPECT_EQ(camera->exposure().max, 900.0);
    EXPECT_EQ(camera->exposure().increment, 0.25);
    EXPECT_EQ(camera->exposure().value, 66.0);
    EXPECT_EQ(camera->mastergain().min, 0);
    EXPECT_EQ(camera->mastergain().max, 100);
    EXPECT_EQ(camera->mastergain().increment, 1);
    EXPECT_EQ(camera->mastergain().value, 13);
}

// 1 / 0.25 s would be 4 frames per second.
TEST_F(CameraParameters, CapTheFrameRateAtTwo)
{
    EXPECT_EQ(camera->framerate().max, 2.0);
    // (2 - 0.5) / ((2 - 0.25) / 0.25)
    EXPECT_DOUBLE_EQ(camera->framerate().increment, 1.5 / 7.0);
}

TEST_F(CameraParameters, LeaveAFrameRateBelowTwoAsItIs)
{
    answers.minFrameTime = 0.8;
    camera->updateFramerate();
    EXPECT_EQ(camera->framerate().max, 1.25);
    EXPECT_DOUBLE_EQ(camera->framerate().increment, (1.25 - 0.5) / ((2.0 - 0.8) / 0.25));
}

TEST_F(CameraParameters, TakeTheRatesAndTimesThatTheCameraTook)
{
    answers.framerateFactor = 0.5;
    answers.exposureFactor = 2.0;
    camera->updateFramerate();
    EXPECT_EQ(camera->framerate().value, 0.75);
    EXPECT_EQ(camera->exposure().value, 132.0);
}

TEST_F(CameraParameters, PresetTheFrameTimesForASdkThatGivesNone)
{
    sdk.results[QStringLiteral("getFrameTimeRange(7, 1, 1, 1)")] = {12};
    camera->updateFramerate();
    EXPECT_EQ(camera->framerate().min, 1.0);
    EXPECT_EQ(camera->framerate().max, 1.0);
}

TEST_F(CameraParameters, UpdatePixelclockReadsBackAndUpdatesTheFrameRate)
{
    answers.currentPixelclock = 21;
    camera->updatePixelclock();
    EXPECT_EQ(sdk.takeCalls(), lines("getPixelClockRange(7)\n"
                                     "setPixelClock(7, 22)\n"
                                     "setPixelClock(7, 32768)\n"
                                     "-> pixelclockChanged 21\n") +
                                   lines(FramerateUpdated));
}

TEST_F(CameraParameters, UpdatePixelclockThrowsTheSdksTextToItsCaller)
{
    answers.errorTexts[12] = "No range";
    sdk.results[QStringLiteral("getPixelClockRange(7)")] = {12};
    try {
        camera->updatePixelclock();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "No range");
    }
    sdk.results[QStringLiteral("setPixelClock(7, 22)")] = {13};
    try {
        camera->updatePixelclock();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Unknown error.");
    }
    EXPECT_TRUE(camera->isOpen());
}

TEST_F(CameraParameters, UpdateFramerateAppliesTheStoredRateAgain)
{
    camera->updateFramerate();
    EXPECT_EQ(sdk.takeCalls(), lines(FramerateUpdated));
}

TEST_F(CameraParameters, UpdateExposureAppliesTheStoredExposureAgain)
{
    camera->updateExposure();
    EXPECT_EQ(sdk.takeCalls(), lines(ExposureUpdated));
}

TEST_F(CameraParameters, UpdateMastergainReadsBack)
{
    answers.currentGain = 77;
    camera->updateMastergain();
    EXPECT_EQ(sdk.takeCalls(),
              lines("setHardwareGain(7, 32768, -1, -1, -1)\n-> mastergainChanged 77\n"));
}

TEST_F(CameraParameters, SetPixelclockStoresAppliesAndUpdatesTheFrameRate)
{
    camera->setPixelclock(30);
    EXPECT_EQ(sdk.takeCalls(),
              lines("-> pixelclockChanged 30\nsetPixelClock(7, 30)\n") + lines(FramerateUpdated));
    EXPECT_EQ(camera->pixelclock().value, 30);
}

TEST_F(CameraParameters, SetPixelclockToTheStoredValueStillCallsTheSdk)
{
    camera->setPixelclock(22);
    EXPECT_EQ(sdk.takeCalls(), lines("setPixelClock(7, 22)\n") + lines(FramerateUpdated));
}

TEST_F(CameraParameters, SetPixelclockIgnoresTheResult)
{
    sdk.results[QStringLiteral("setPixelClock(7, 30)")] = {12};
    EXPECT_NO_THROW(camera->setPixelclock(30));
    EXPECT_EQ(camera->pixelclock().value, 30);
}

TEST_F(CameraParameters, StayWithinTheirRange)
{
    camera->setPixelclock(4);
    EXPECT_EQ(camera->pixelclock().value, 5);
    camera->setPixelclock(41);
    EXPECT_EQ(camera->pixelclock().value, 40);
    camera->setFramerate(0.25);
    EXPECT_EQ(camera->framerate().value, 0.5);
    camera->setFramerate(2.5);
    EXPECT_EQ(camera->framerate().value, 2.0);
    camera->setExposure(0.25);
    EXPECT_EQ(camera->exposure().value, 0.5);
    camera->setExposure(1000.0);
    EXPECT_EQ(camera->exposure().value, 900.0);
    camera->setMastergain(-1);
    EXPECT_EQ(camera->mastergain().value, 0);
    camera->setMastergain(101);
    EXPECT_EQ(camera->mastergain().value, 100);
}

// The cap of two frames per second lies below what this camera can be slowed down to.
TEST_F(CameraParameters, TakeTheMinimumOfARangeThatIsTheWrongWayRound)
{
    answers.maxFrameTime = 0.25;
    answers.minFrameTime = 0.125;
    camera->updateFramerate();
    ASSERT_EQ(camera->framerate().min, 4.0);
    ASSERT_EQ(camera->framerate().max, 2.0);
    camera->setFramerate(3.0);
    EXPECT_EQ(camera->framerate().value, 4.0);
    camera->setFramerate(5.0);
    EXPECT_EQ(camera->framerate().value, 2.0);
}

TEST_F(CameraParameters, SetFramerateStoresWhatTheCameraTook)
{
    answers.framerateFactor = 0.875;
    camera->setFramerate(1.0);
    EXPECT_EQ(sdk.takeCalls(),
              lines("setFrameRate(7, 1)\n-> framerateChanged 0.875\n") + lines(ExposureUpdated));
    EXPECT_EQ(camera->framerate().value, 0.875);
}

TEST_F(CameraParameters, SetFramerateToTheStoredValueOnlyUpdatesTheExposure)
{
    camera->setFramerate(1.5);
    EXPECT_EQ(sdk.takeCalls(), lines(ExposureUpdated));
}

TEST_F(CameraParameters, SetExposureTellsBeforeItApplies)
{
    answers.exposureFactor = 0.5;
    camera->setExposure(100.0);
    EXPECT_EQ(sdk.takeCalls(), lines("-> exposureChanged 100\nsetExposureTime(7, 100)\n"));
    EXPECT_EQ(camera->exposure().value, 50.0);
    camera->setExposure(50.0);
    EXPECT_EQ(sdk.takeCalls(), lines("setExposureTime(7, 50)\n"));
}

TEST_F(CameraParameters, SetMastergainAlwaysApplies)
{
    camera->setMastergain(50);
    EXPECT_EQ(sdk.takeCalls(), lines("-> mastergainChanged 50\n"
                                     "setHardwareGain(7, 50, -1, -1, -1)\n"));
    camera->setMastergain(50);
    EXPECT_EQ(sdk.takeCalls(), lines("setHardwareGain(7, 50, -1, -1, -1)\n"));
}

TEST_F(CameraParameters, IgnoreWhatAReceiverFeedsBack)
{
    QObject::connect(&*camera, &Camera::pixelclockChanged, &*camera,
                     [this] { camera->setPixelclock(6); });
    QObject::connect(&*camera, &Camera::mastergainChanged, &*camera,
                     [this] { camera->setMastergain(6); });
    camera->setPixelclock(30);
    EXPECT_EQ(camera->pixelclock().value, 30);
    camera->setMastergain(50);
    EXPECT_EQ(camera->mastergain().value, 50);

    QObject::connect(&*camera, &Camera::framerateChanged, &*camera,
                     [this] { camera->setFramerate(0.75); });
    camera->setFramerate(1.0);
    EXPECT_EQ(camera->framerate().value, 1.0);

    QObject::connect(&*camera, &Camera::exposureChanged, &*camera,
                     [this] { camera->setExposure(6.0); });
    camera->setExposure(100.0);
    EXPECT_EQ(camera->exposure().value, 100.0);
}

TEST_F(CameraParameters, AreSetByReceiversOfWhatIsReadBack)
{
    // As the control does when the rate lies above the cap: it shows the cap and says so.
    answers.framesPerSecond = 6.0;
    QObject::connect(&*camera, &Camera::framerateChanged, &*camera,
                     [this] { camera->setFramerate(camera->framerate().max); });
    camera->open(5);
    EXPECT_EQ(camera->framerate().value, 2.0);
    EXPECT_TRUE(sdk.takeCalls().contains(QStringLiteral("setFrameRate(7, 2)")));
}

TEST_F(CameraParameters, AreGuardedAcrossAllCameras)
{
    CannedCameraSdk otherAnswers;
    RecordingCameraSdk otherSdk(otherAnswers);
    Camera other(otherSdk);
    other.open(5);
    otherSdk.takeCalls();
    QObject::connect(&*camera, &Camera::pixelclockChanged, &other, [&] { other.setPixelclock(6); });
    QObject::connect(&*camera, &Camera::mastergainChanged, &other, [&] { other.setMastergain(6); });
    camera->setPixelclock(30);
    camera->setMastergain(50);
    EXPECT_EQ(otherSdk.takeCalls(), QStringList());
    other.setMastergain(6);
    EXPECT_EQ(other.mastergain().value, 6);
}

TEST_F(CameraParameters, AreFreeAgainAfterAReceiverThrew)
{
    bool throwing = true;
    const auto throwOnce = [&throwing] {
        if (throwing) {
            throw std::runtime_error("Receiver");
        }
    };
    QObject::connect(&*camera, &Camera::pixelclockChanged, &*camera, throwOnce);
    QObject::connect(&*camera, &Camera::framerateChanged, &*camera, throwOnce);
    QObject::connect(&*camera, &Camera::exposureChanged, &*camera, throwOnce);
    QObject::connect(&*camera, &Camera::mastergainChanged, &*camera, throwOnce);
    EXPECT_THROW(camera->setPixelclock(30), std::runtime_error);
    EXPECT_THROW(camera->setFramerate(1.0), std::runtime_error);
    EXPECT_THROW(camera->setExposure(100.0), std::runtime_error);
    EXPECT_THROW(camera->setMastergain(50), std::runtime_error);
    throwing = false;
    camera->setPixelclock(31);
    camera->setFramerate(1.25);
    camera->setExposure(101.0);
    camera->setMastergain(51);
    EXPECT_EQ(camera->pixelclock().value, 31);
    EXPECT_EQ(camera->framerate().value, 1.25);
    EXPECT_EQ(camera->exposure().value, 101.0);
    EXPECT_EQ(camera->mastergain().value, 51);
}

// (position - 5) / 1, although the slider's position 0 stands for 5.
TEST_F(CameraParameters, SetPixelclockRelativeSubtractsTheMinimum)
{
    camera->setPixelclockRelative(20);
    EXPECT_EQ(camera->pixelclock().value, 15);
    camera->setPixelclockRelative(0);
    EXPECT_EQ(camera->pixelclock().value, 5);
}

TEST_F(CameraParameters, SetFramerateRelativeSubtractsTheMinimumAndTruncates)
{
    // Increment (2 - 0.5) / 4 = 0.375.
    answers.maxFrameTime = 2.0;
    answers.minFrameTime = 0.5;
    answers.frameTimeStep = 0.375;
    camera->updateFramerate();
    ASSERT_DOUBLE_EQ(camera->framerate().increment, 0.375);
    camera->setFramerateRelative(1); // (1 - 0.5) / 0.375 = 1.33
    EXPECT_EQ(camera->framerate().value, 1.0);
    camera->setFramerateRelative(0); // (0 - 0.5) / 0.375 = -1.33
    EXPECT_EQ(camera->framerate().value, 0.5);
    camera->setFramerateRelative(7); // 17.33
    EXPECT_EQ(camera->framerate().value, 2.0);
}

TEST_F(CameraParameters, SetExposureRelativeSubtractsTheMinimumAndTruncates)
{
    camera->setExposureRelative(30); // (30 - 0.5) / 0.25 = 118
    EXPECT_EQ(camera->exposure().value, 118.0);
    answers.exposureStep = 0.75;
    camera->updateExposure();
    camera->setExposureRelative(10); // 9.5 / 0.75 = 12.67
    EXPECT_EQ(camera->exposure().value, 12.0);
    camera->setExposureRelative(0); // -0.67, which becomes 0
    EXPECT_EQ(camera->exposure().value, 0.5);
}

TEST_F(CameraParameters, SetRelativelyStayWithinARangeThatIsASingleValue)
{
    answers.minExposure = 3.0;
    answers.maxExposure = 3.0;
    answers.exposureStep = 0.0;
    camera->updateExposure();
    for (const int position : {0, 3, 10}) {
        camera->setExposureRelative(position);
        EXPECT_EQ(camera->exposure().value, 3.0) << position;
    }
}

class CameraAutoConfig : public CameraFixture
{};

TEST_F(CameraAutoConfig, LeavesThePixelclockAloneWhenTheFrameRateGoesDownToOne)
{
    answers.maxFrameTime = 1.0;
    makeOpenCamera();
    camera->setAutoConfig();
    EXPECT_EQ(sdk.takeCalls(), lines("setFrameRate(7, 1)\n"
                                     "-> framerateChanged 1\n") +
                                   lines(ExposureUpdated) +
                                   lines("-> exposureChanged 900\n"
                                         "setExposureTime(7, 900)\n"
                                         "-> mastergainChanged 50\n"
                                         "setHardwareGain(7, 50, -1, -1, -1)\n"));
}

TEST_F(CameraAutoConfig, HalvesThePixelclockUntilTheFrameRateGoesDownToOne)
{
    answers.maxFrameTime = 0.5;
    makeOpenCamera();
    // The camera gets slower with its clock: at 11 MHz still 2 frames per second, at 5.5 one.
    QObject::connect(&*camera, &Camera::pixelclockChanged, &*camera,
                     [this](CameraParameter<int>& clock) {
                         answers.maxFrameTime = clock.value > 6 ? 0.5 : 1.0;
                     });
    answers.minPixelclock = 4;
    camera->updatePixelclock();
    sdk.takeCalls();
    camera->setAutoConfig();
    const QStringList calls = sdk.takeCalls();
    EXPECT_EQ(calls.filter(QStringLiteral("lock")), lines("-> pixelclockChanged 11\n"
                                                          "setPixelClock(7, 11)\n"
                                                          "-> pixelclockChanged 5\n"
                                                          "setPixelClock(7, 5)\n"));
    EXPECT_EQ(camera->framerate().value, 1.0);
}

TEST_F(CameraAutoConfig, StopsHalvingAtTheSlowestPixelclock)
{
    answers.maxFrameTime = 0.5;
    makeOpenCamera();
    camera->setAutoConfig();
    // 22, 11; the next would be 5, which is not above the minimum of 5.
    EXPECT_EQ(camera->pixelclock().value, 11);
    EXPECT_EQ(sdk.takeCalls().filter(QStringLiteral("setPixelClock")),
              lines("setPixelClock(7, 11)\n"));
    EXPECT_EQ(camera->framerate().value, 2.0) << "as slow as it goes";
    EXPECT_EQ(camera->exposure().value, 900.0);
    EXPECT_EQ(camera->mastergain().value, 50);
}

TEST_F(CameraAutoConfig, EndsWhenItIsCalledWhileThePixelclockIsSet)
{
    answers.maxFrameTime = 0.5;
    makeOpenCamera();
    bool called = false;
    QObject::connect(&*camera, &Camera::pixelclockChanged, &*camera, [&] {
        if (!std::exchange(called, true)) {
            camera->setAutoConfig();
        }
    });
    camera->setPixelclock(30);
    EXPECT_TRUE(called);
    EXPECT_EQ(camera->pixelclock().value, 7); // 30, 15, 7
}

class CameraCorrection : public CameraFixture
{};

TEST_F(CameraCorrection, IsSwitchedOnAtTheFastestRate)
{
    makeOpenCamera();
    camera->setBadPixelCorrection(true);
    EXPECT_EQ(sdk.takeCalls(), lines("stopLiveVideo(7, 1)\n"
                                     "getFrameTimeRange(7, 1, 1, 1)\n"
                                     "setFrameRate(7, 4)\n"
                                     "hotpixelCommand(7, 1, null, 0)\n"
                                     "hotpixelCommand(7, 2, null, 0)\n"
                                     "setFrameRate(7, 1.5)\n"
                                     "setExposureTime(7, 66)\n"
                                     "startLiveVideo(7, 1)\n"));
}

TEST_F(CameraCorrection, IsSwitchedOffAtTheFastestRate)
{
    makeOpenCamera();
    camera->setBadPixelCorrection(false);
    EXPECT_EQ(sdk.takeCalls(), lines("stopLiveVideo(7, 1)\n"
                                     "getFrameTimeRange(7, 1, 1, 1)\n"
                                     "setFrameRate(7, 4)\n"
                                     "hotpixelCommand(7, 0, null, 0)\n"
                                     "hotpixelCommand(7, 8, null, 0)\n"
                                     "setFrameRate(7, 1.5)\n"
                                     "setExposureTime(7, 66)\n"
                                     "startLiveVideo(7, 1)\n"));
}

TEST_F(CameraCorrection, KeepsTheParametersAsTheyWere)
{
    makeOpenCamera();
    answers.framerateFactor = 0.5;
    answers.exposureFactor = 0.5;
    camera->setBadPixelCorrection(true);
    EXPECT_EQ(camera->framerate().value, 1.5);
    EXPECT_EQ(camera->exposure().value, 66.0);
}

TEST_F(CameraCorrection, ChecksNothingNotEvenWhetherACameraIsOpen)
{
    makeCamera();
    sdk.takeCalls();
    for (const char* call : {"stopLiveVideo(0, 1)", "getFrameTimeRange(0, 1, 1, 1)",
                             "hotpixelCommand(0, 1, null, 0)", "startLiveVideo(0, 1)"}) {
        sdk.results[QString::fromLatin1(call)] = {12};
    }
    camera->setBadPixelCorrection(true);
    EXPECT_EQ(sdk.takeCalls(), lines("stopLiveVideo(0, 1)\n"
                                     "getFrameTimeRange(0, 1, 1, 1)\n"
                                     "setFrameRate(0, 1)\n"
                                     "hotpixelCommand(0, 1, null, 0)\n"
                                     "hotpixelCommand(0, 2, null, 0)\n"
                                     "setFrameRate(0, 0)\n"
                                     "setExposureTime(0, 0)\n"
                                     "startLiveVideo(0, 1)\n"));
}

} // namespace
