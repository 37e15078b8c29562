// SPDX-License-Identifier: MIT
#include "tests/camera/CameraFixture.h"

#include <string>
#include <vector>

namespace {

class CameraOpening : public CameraFixture
{};

// Up to the ring, of a camera that is opened by device 5.
const char* const OpenedToRing = R"(initCamera(32773, null)
loadParameters(7, ./VornHotpixelEditor.ini)
setColorMode(7, 11)
getSensorInfo(7)
setColorMode(7, 32768)
hotpixelCommand(7, 0, null, 0)
hotpixelCommand(7, 8, null, 0)
)";

const char* const RingToLive = R"(allocImageMemory(7, 6, 3, 8)
addToSequence(7, memory1, 10)
allocImageMemory(7, 6, 3, 8)
addToSequence(7, memory2, 20)
initEvent(7, 2)
enableEvent(7, 2)
initEvent(7, 9)
enableEvent(7, 9)
initEvent(7, 128)
enableEvent(7, 128)
initEvent(7, 8)
enableEvent(7, 8)
startLiveVideo(7, 0)
)";

const char* const LiveToEnd = R"(-> cameraOpened
setPixelClock(7, 32769)
getFramesPerSecond(7)
setExposureTime(7, 32769)
getPixelClockRange(7)
setPixelClock(7, 24)
setPixelClock(7, 32768)
-> pixelclockChanged 22
getFrameTimeRange(7, 1, 1, 1)
setFrameRate(7, 1.5)
-> framerateChanged 1.5
getExposureRange(7)
setExposureTime(7, 32768)
setExposureTime(7, 66)
-> exposureChanged 66
setHardwareGain(7, 32768, -1, -1, -1)
-> mastergainChanged 13
)";

const std::string ClosedWithRing = R"(stopLiveVideo(7, 1)
exitCamera(7)
freeImageMemory(7, memory1, 10)
freeImageMemory(7, memory2, 20)
clearSequence(7)
-> newImage null
-> cameraClosed
)";

const std::string ClosedWithoutRing = R"(stopLiveVideo(7, 1)
exitCamera(7)
-> newImage null
-> cameraClosed
)";

const std::string ErrorAsked = "getError(7, 12)\n";

TEST_F(CameraOpening, WatchesForDevicesFromTheStart)
{
    makeCamera();
    EXPECT_EQ(sdk.takeCalls(), lines("initEvent(0, 130)\n"
                                     "enableEvent(0, 130)\n"
                                     "initEvent(0, 129)\n"
                                     "enableEvent(0, 129)\n"));
}

TEST_F(CameraOpening, CallsTheSdkInItsOrder)
{
    makeCamera();
    sdk.takeCalls();
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls(), lines(OpenedToRing) + lines(RingToLive) + lines(LiveToEnd));
    EXPECT_TRUE(camera->isOpen());
    EXPECT_EQ(camera->handle(), 7U);
    EXPECT_EQ(camera->cameraId(), 5U);
    EXPECT_EQ(camera->imageWidth(), 6);
    EXPECT_EQ(camera->imageHeight(), 3);
    EXPECT_EQ(camera->colorMode(), 11);
}

TEST_F(CameraOpening, KnowsItsIdWhenItSaysThatItIsOpen)
{
    makeCamera();
    Camera* opened = nullptr;
    unsigned int id = 0;
    QObject::connect(&*camera, &Camera::cameraOpened, &*camera, [&](Camera* which) {
        opened = which;
        id = which->cameraId();
    });
    camera->open(5);
    EXPECT_EQ(opened, &*camera);
    EXPECT_EQ(id, 5U);
}

TEST_F(CameraOpening, ClosesTheCameraThatWasOpenFirst)
{
    makeOpenCamera();
    camera->open(6);
    const QStringList calls = sdk.takeCalls();
    EXPECT_EQ(calls.mid(0, 7), lines(ClosedWithRing.c_str()));
    EXPECT_EQ(calls.value(7), QStringLiteral("initCamera(32774, null)"));
    EXPECT_EQ(camera->cameraId(), 6U);
}

TEST_F(CameraOpening, RetriesWithTheUploadFlagWhenFirmwareIsMissing)
{
    makeCamera();
    sdk.takeCalls();
    sdk.results[QStringLiteral("initCamera(32773, null)")] = {184};
    answers.uploadMsec = 61999;
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls().mid(0, 5),
              lines("initCamera(32773, null)\n"
                    "getFirmwareUploadTime(32873, 1, 25000)\n"
                    "-> displayError Upload of new firmware required. (approx. 61 seconds) (2000)\n"
                    "initCamera(98309, null)\n"
                    "loadParameters(7, ./VornHotpixelEditor.ini)\n"));
    EXPECT_TRUE(camera->isOpen());
}

TEST_F(CameraOpening, SpeaksOf25SecondsWhenTheSdkGivesNoUploadTime)
{
    makeCamera();
    sdk.takeCalls();
    sdk.results[QStringLiteral("initCamera(32773, null)")] = {184};
    sdk.results[QStringLiteral("getFirmwareUploadTime(32873, 1, 25000)")] = {77};
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls().value(2),
              QStringLiteral(
                  "-> displayError Upload of new firmware required. (approx. 25 seconds) (2000)"));
}

TEST_F(CameraOpening, FailsWhenTheCameraCannotBeInitialised)
{
    makeCamera();
    sdk.takeCalls();
    sdk.results[QStringLiteral("initCamera(32773, null)")] = {3};
    EXPECT_EQ(openingError(), QStringLiteral("Could not initialize camera."));
    // Nothing was open, so nothing is closed and nobody is told.
    EXPECT_EQ(sdk.takeCalls(), lines("initCamera(32773, null)"));
    EXPECT_FALSE(camera->isOpen());
}

TEST_F(CameraOpening, FailsWhenTheCameraRefusesTheUploadToo)
{
    for (const int result : {184, 3}) {
        makeCamera();
        sdk.takeCalls();
        sdk.results[QStringLiteral("initCamera(32773, null)")] = {184};
        sdk.results[QStringLiteral("initCamera(98309, null)")] = {result};
        EXPECT_EQ(openingError(), QStringLiteral("Could not initialize camera."));
        EXPECT_EQ(sdk.takeCalls().size(), 4); // two tries, the time and the notice; no third try
    }
}

TEST_F(CameraOpening, GoesOnWithoutASettingsFile)
{
    makeCamera();
    sdk.takeCalls();
    sdk.results[QStringLiteral("loadParameters(7, ./VornHotpixelEditor.ini)")] = {50};
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls().mid(1, 3), lines("loadParameters(7, ./VornHotpixelEditor.ini)\n"
                                               "-> displayError Can't open ini file. (2000)\n"
                                               "setColorMode(7, 11)\n"));
    EXPECT_TRUE(camera->isOpen());
    EXPECT_EQ(camera->settingsResult(), camera::FileNotOpened);

    sdk.results[QStringLiteral("loadParameters(7, ./VornHotpixelEditor.ini)")] = {0};
    camera->open(5);
    EXPECT_EQ(camera->settingsResult(), 0);
}

TEST_F(CameraOpening, GoesOnWithASettingsFileThatTheSdkRefuses)
{
    makeCamera();
    sdk.takeCalls();
    answers.errorTexts[12] = "Bad settings";
    sdk.results[QStringLiteral("loadParameters(7, ./VornHotpixelEditor.ini)")] = {12};
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls().mid(1, 4), lines("loadParameters(7, ./VornHotpixelEditor.ini)\n"
                                               "getError(7, 12)\n"
                                               "-> displayError Bad settings (2000)\n"
                                               "setColorMode(7, 11)\n"));
    EXPECT_TRUE(camera->isOpen());
}

struct Failure
{
    const char* call;      ///< that fails
    const char* errorText; ///< of the SDK; null when it has none
    const char* thrown;
    std::string closing; ///< the calls after it
};

class CameraOpeningFailure : public CameraFixture, public ::testing::WithParamInterface<Failure>
{};

TEST_P(CameraOpeningFailure, LeavesTheCameraClosed)
{
    const Failure& failure = GetParam();
    makeCamera();
    sdk.takeCalls();
    if (failure.errorText != nullptr) {
        answers.errorTexts[12] = failure.errorText;
    }
    const QString call = QString::fromLatin1(failure.call);
    sdk.results[call] = {12};
    EXPECT_EQ(openingError(), QString::fromLatin1(failure.thrown));

    const QStringList calls = sdk.takeCalls();
    EXPECT_EQ(calls.mid(calls.indexOf(call) + 1), lines(failure.closing.c_str()));
    EXPECT_FALSE(camera->isOpen());
    EXPECT_EQ(camera->handle(), 0U);
    EXPECT_EQ(camera->cameraId(), 0U);
    EXPECT_TRUE(camera->image().isNull());

    sdk.results.clear();
    EXPECT_EQ(openingError(), QString()) << "the next opening works";
}

INSTANTIATE_TEST_SUITE_P(
    EveryStep, CameraOpeningFailure,
    ::testing::Values(
        Failure{"setColorMode(7, 11)", "No such mode", "No such mode",
                ErrorAsked + ClosedWithoutRing},
        Failure{"setColorMode(7, 11)", nullptr, "Unknown error.", ErrorAsked + ClosedWithoutRing},
        Failure{"allocImageMemory(7, 6, 3, 8)", "Not shown", "Can't allocate image memory.",
                ClosedWithoutRing},
        Failure{"addToSequence(7, memory1, 10)", "Not shown", "Can't add buffer to sequence.",
                "freeImageMemory(7, memory1, 10)\n" + ClosedWithoutRing},
        Failure{"addToSequence(7, memory2, 20)", "Not shown", "Can't add buffer to sequence.",
                "freeImageMemory(7, memory2, 20)\nstopLiveVideo(7, 1)\nexitCamera(7)\n"
                "freeImageMemory(7, memory1, 10)\nclearSequence(7)\n"
                "-> newImage null\n-> cameraClosed\n"},
        Failure{"startLiveVideo(7, 0)", "No live video", "No live video",
                ErrorAsked + ClosedWithRing},
        Failure{"startLiveVideo(7, 0)", nullptr, "Unknown error.", ErrorAsked + ClosedWithRing},
        Failure{"getFramesPerSecond(7)", "No rate", "No rate", ErrorAsked + ClosedWithRing},
        Failure{"getFramesPerSecond(7)", nullptr, "Unknown error.", ErrorAsked + ClosedWithRing},
        Failure{"setExposureTime(7, 32769)", "No exposure", "No exposure",
                ErrorAsked + ClosedWithRing},
        Failure{"setExposureTime(7, 32769)", nullptr, "Unknown error.",
                ErrorAsked + ClosedWithRing},
        Failure{"getPixelClockRange(7)", "No range", "No range", ErrorAsked + ClosedWithRing},
        Failure{"getPixelClockRange(7)", nullptr, "Unknown error.", ErrorAsked + ClosedWithRing},
        Failure{"setPixelClock(7, 24)", "No clock", "No clock", ErrorAsked + ClosedWithRing},
        Failure{"setPixelClock(7, 24)", nullptr, "Unknown error.", ErrorAsked + ClosedWithRing}));

TEST_F(CameraOpening, GivesBackTheFirstBufferWhenTheSecondCannotBeAllocated)
{
    makeCamera();
    sdk.takeCalls();
    sdk.results[QStringLiteral("allocImageMemory(7, 6, 3, 8)")] = {0, 12};
    EXPECT_EQ(openingError(), QStringLiteral("Can't allocate image memory."));
    EXPECT_EQ(sdk.takeCalls().mid(lines(OpenedToRing).size()),
              lines("allocImageMemory(7, 6, 3, 8)\n"
                    "addToSequence(7, memory1, 10)\n"
                    "allocImageMemory(7, 6, 3, 8)\n"
                    "stopLiveVideo(7, 1)\n"
                    "exitCamera(7)\n"
                    "freeImageMemory(7, memory1, 10)\n"
                    "clearSequence(7)\n"
                    "-> newImage null\n"
                    "-> cameraClosed\n"));
}

TEST_F(CameraOpening, RefusesAColourModeOtherThan0And6And11)
{
    for (const int mode : {-1, 1, 5, 7, 10, 12, 32768}) {
        answers.currentColorMode = mode;
        makeCamera();
        sdk.takeCalls();
        EXPECT_EQ(openingError(), QStringLiteral("Color Mode not supported."));
        EXPECT_EQ(sdk.takeCalls(),
                  lines(OpenedToRing).mid(0, 5) + lines(ClosedWithoutRing.c_str()));
        EXPECT_FALSE(camera->isOpen());
        EXPECT_EQ(camera->colorMode(), mode);
    }
}

TEST_F(CameraOpening, AllocatesBuffersOfTheModesDepth)
{
    const std::vector<std::pair<int, int>> bitsOfMode = {{0, 32}, {6, 8}, {11, 8}};
    for (const auto& [mode, bits] : bitsOfMode) {
        CannedCameraSdk freshAnswers;
        RecordingCameraSdk fresh(freshAnswers);
        freshAnswers.currentColorMode = mode;
        Camera opened(fresh);
        opened.open(5);
        EXPECT_TRUE(
            fresh.takeCalls().contains(QStringLiteral("allocImageMemory(7, 6, 3, %1)").arg(bits)))
            << mode;
        EXPECT_EQ(opened.colorMode(), mode);
    }
}

TEST_F(CameraOpening, IgnoresWhatTheOtherCallsReport)
{
    makeCamera();
    sdk.takeCalls();
    for (const char* call :
         {"getSensorInfo(7)", "hotpixelCommand(7, 0, null, 0)", "hotpixelCommand(7, 8, null, 0)",
          "initEvent(7, 2)", "setFrameRate(7, 1.5)", "getExposureRange(7)",
          "setExposureTime(7, 32768)", "setExposureTime(7, 66)"}) {
        sdk.results[QString::fromLatin1(call)] = {12};
    }
    camera->open(5);
    EXPECT_EQ(sdk.takeCalls(), lines(OpenedToRing) + lines(RingToLive) + lines(LiveToEnd));
}

TEST_F(CameraOpening, CountsFramesFromItsEnd)
{
    makeCamera();
    event(8);
    EXPECT_EQ(camera->failedCount(), 1);
    QObject::connect(&*camera, &Camera::cameraOpened, &*camera, [this] {
        EXPECT_EQ(camera->failedCount(), 0);
        event(2);
        event(8);
        EXPECT_EQ(camera->frameCount(), 1);
        EXPECT_EQ(camera->failedCount(), 1);
    });
    camera->open(5);
    EXPECT_EQ(camera->frameCount(), 0);
    EXPECT_EQ(camera->failedCount(), 0);
}

TEST_F(CameraOpening, ClosesWhenAReceiverOfCameraOpenedThrows)
{
    makeCamera();
    QObject::connect(&*camera, &Camera::cameraOpened, &*camera,
                     [] { throw std::runtime_error("No list"); });
    EXPECT_EQ(openingError(), QStringLiteral("No list"));
    EXPECT_FALSE(camera->isOpen());
}

} // namespace
