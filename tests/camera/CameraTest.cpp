// SPDX-License-Identifier: MIT
#include "camera/CameraListModel.h"
#include "camera/EventThread.h"
#include "tests/camera/CameraFixture.h"
#include "tests/harness/MethodsOf.h"

namespace {

TEST(MetaObject, OfCameraListsItsSignalsAndSlotsInOrder)
{
    EXPECT_EQ(methodsOf(Camera::staticMetaObject),
              lines("signal newImage(QImage&)\n"
                    "signal bufferSizeChanged(ImageInfo)\n"
                    "signal cameraOpened(Camera*)\n"
                    "signal cameraClosed()\n"
                    "signal cameraRemoved()\n"
                    "signal cameraReconnect()\n"
                    "signal cameraNewDevice()\n"
                    "signal cameraRemovedDevice()\n"
                    "signal displayError(QString,int)\n"
                    "signal displayError(QString)\n"
                    "signal pixelclockChanged(CameraParameter<int>&)\n"
                    "signal framerateChanged(CameraParameter<double>&)\n"
                    "signal exposureChanged(CameraParameter<double>&)\n"
                    "signal mastergainChanged(CameraParameter<int>&)\n"
                    "public setPixelclock(int)\n"
                    "public setPixelclockRelative(int)\n"
                    "public setFramerate(double)\n"
                    "public setFramerateRelative(int)\n"
                    "public setExposure(double)\n"
                    "public setExposureRelative(int)\n"
                    "public setMastergain(int)\n"
                    "public setBadPixelCorrection(bool)\n"
                    "public updatePixelclock()\n"
                    "public updateFramerate()\n"
                    "public updateExposure()\n"
                    "public updateMastergain()\n"
                    "public setAutoConfig()\n"
                    "protected eventReceived(int)\n"));
}

TEST(MetaObject, OfEventThreadHoldsOneSignal)
{
    EXPECT_EQ(methodsOf(EventThread::staticMetaObject), lines("signal eventhappen(int)\n"));
}

TEST(MetaObject, OfCameraListModelListsItsSignalsAndSlotsInOrder)
{
    EXPECT_EQ(methodsOf(CameraListModel::staticMetaObject), lines("signal somethingChanged()\n"
                                                                  "signal rowToSelect(int)\n"
                                                                  "public setOpenCamera(Camera*)\n"
                                                                  "public clearOpenCamera()\n"
                                                                  "public sort(int,Qt::SortOrder)\n"
                                                                  "public updateList()\n"));
}

class ClosedCamera : public CameraFixture
{
protected:
    void SetUp() override
    {
        makeCamera();
        sdk.takeCalls();
    }
};

TEST_F(ClosedCamera, HasNothing)
{
    EXPECT_FALSE(camera->isOpen());
    EXPECT_EQ(camera->handle(), 0U);
    EXPECT_EQ(camera->cameraId(), 0U);
    EXPECT_EQ(camera->frameCount(), 0);
    EXPECT_EQ(camera->failedCount(), 0);
    EXPECT_EQ(camera->imageWidth(), 0);
    EXPECT_EQ(camera->imageHeight(), 0);
    EXPECT_EQ(camera->colorMode(), 11);
    EXPECT_TRUE(camera->image().isNull());
    EXPECT_EQ(&camera->sdk(), &sdk);
    for (const CameraParameter<int>& parameter : {camera->pixelclock(), camera->mastergain()}) {
        EXPECT_EQ(parameter.min, 0);
        EXPECT_EQ(parameter.max, 0);
        EXPECT_EQ(parameter.increment, 1);
        EXPECT_EQ(parameter.value, 0);
    }
    for (const CameraParameter<double>& parameter : {camera->framerate(), camera->exposure()}) {
        EXPECT_EQ(parameter.min, 0.0);
        EXPECT_EQ(parameter.max, 0.0);
        EXPECT_EQ(parameter.increment, 1.0);
        EXPECT_EQ(parameter.value, 0.0);
    }
}

TEST_F(ClosedCamera, HasNoFrameRateWithoutAskingTheSdk)
{
    EXPECT_EQ(camera->getFramerate(), 0.0);
    EXPECT_EQ(sdk.takeCalls(), QStringList());
}

class OpenCamera : public CameraFixture
{
protected:
    void SetUp() override { makeOpenCamera(); }
};

TEST_F(OpenCamera, AsksTheSdkForTheFrameRateWhateverItReports)
{
    answers.framesPerSecond = 0.75;
    sdk.results[QStringLiteral("getFramesPerSecond(7)")] = {12};
    EXPECT_EQ(camera->getFramerate(), 0.75);
    EXPECT_EQ(camera->framerate().value, 1.5);
}

TEST_F(OpenCamera, GivesTheSdksErrorText)
{
    answers.errorTexts[12] = "Transfer error";
    EXPECT_STREQ(camera->errorText(12), "Transfer error");
    EXPECT_EQ(sdk.takeCalls(), lines("getError(7, 12)\n"));
    EXPECT_STREQ(camera->errorText(13), "Unknown error.");
    sdk.results[QStringLiteral("getError(7, 12)")] = {1};
    EXPECT_STREQ(camera->errorText(12), "Unknown error.");
}

TEST_F(OpenCamera, StartsLiveCaptureAgainOrSaysWhyNot)
{
    camera->startLive();
    EXPECT_EQ(sdk.takeCalls(), lines("startLiveVideo(7, 0)\n"));
    answers.errorTexts[12] = "Busy";
    sdk.results[QStringLiteral("startLiveVideo(7, 0)")] = {12};
    try {
        camera->startLive();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Busy");
    }
    EXPECT_TRUE(camera->isOpen());
}

} // namespace
