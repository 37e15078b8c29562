// SPDX-License-Identifier: MIT
#include "tests/camera/CameraFixture.h"

namespace {

class CameraClosing : public CameraFixture
{};

TEST_F(CameraClosing, DoesNothingWhenNoCameraIsOpen)
{
    makeCamera();
    sdk.takeCalls();
    camera->close();
    EXPECT_EQ(sdk.takeCalls(), QStringList());
}

TEST_F(CameraClosing, CallsTheSdkInItsOrder)
{
    makeOpenCamera();
    event(2);
    sdk.takeCalls();
    camera->close();
    EXPECT_EQ(sdk.takeCalls(), lines("stopLiveVideo(7, 1)\n"
                                     "exitCamera(7)\n"
                                     "freeImageMemory(7, memory1, 10)\n"
                                     "freeImageMemory(7, memory2, 20)\n"
                                     "clearSequence(7)\n"
                                     "-> newImage null\n"
                                     "-> cameraClosed\n"));
    EXPECT_FALSE(camera->isOpen());
    EXPECT_EQ(camera->handle(), 0U);
    EXPECT_EQ(camera->cameraId(), 0U);
    EXPECT_TRUE(camera->image().isNull());

    camera->close();
    EXPECT_EQ(sdk.takeCalls(), QStringList());
}

TEST_F(CameraClosing, IsDoneWhenReceiversAreTold)
{
    makeOpenCamera();
    int told = 0;
    QObject::connect(&*camera, &Camera::newImage, &*camera, [&] {
        ++told;
        EXPECT_FALSE(camera->isOpen());
        camera->close();
    });
    camera->close();
    EXPECT_EQ(told, 1);
}

TEST_F(CameraClosing, KeepsCountersAndSize)
{
    makeOpenCamera();
    event(2);
    event(8);
    camera->close();
    EXPECT_EQ(camera->frameCount(), 1);
    EXPECT_EQ(camera->failedCount(), 1);
    EXPECT_EQ(camera->imageWidth(), 6);
    EXPECT_EQ(camera->imageHeight(), 3);
}

TEST_F(CameraClosing, ReachesReceiversOfAFrameThatCloseTheCamera)
{
    makeOpenCamera();
    QObject::connect(&*camera, &Camera::newImage, &*camera, [this](const QImage& image) {
        if (!image.isNull()) {
            camera->close();
        }
    });
    event(2);
    EXPECT_EQ(sdk.takeCalls().mid(2), lines("stopLiveVideo(7, 1)\n"
                                            "exitCamera(7)\n"
                                            "freeImageMemory(7, memory1, 10)\n"
                                            "freeImageMemory(7, memory2, 20)\n"
                                            "clearSequence(7)\n"
                                            "-> newImage null\n"
                                            "-> cameraClosed\n"));
}

TEST_F(CameraClosing, ByDestructionForcesTheStopAndTellsNobody)
{
    makeOpenCamera();
    camera.reset();
    EXPECT_EQ(sdk.takeCalls(), lines("stopLiveVideo(7, 16384)\n"
                                     "exitCamera(7)\n"
                                     "freeImageMemory(7, memory1, 10)\n"
                                     "freeImageMemory(7, memory2, 20)\n"
                                     "clearSequence(7)\n"));
}

TEST_F(CameraClosing, ByDestructionOfAClosedCameraCallsNothing)
{
    makeOpenCamera();
    camera->close();
    sdk.takeCalls();
    camera.reset();
    EXPECT_EQ(sdk.takeCalls(), QStringList());
}

} // namespace
