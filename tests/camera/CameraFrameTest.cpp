// SPDX-License-Identifier: MIT
#include "tests/camera/CameraFixture.h"

#include <vector>

namespace {

class CameraFrame : public CameraFixture
{};

TEST_F(CameraFrame, LiesOverTheSdksMemory)
{
    makeOpenCamera();
    answers.frameMemory = answers.memory[1].data();
    event(2);
    EXPECT_EQ(sdk.takeCalls(), lines("getFrameMemory(7, 0, 0)\n-> newImage\n"));
    EXPECT_EQ(camera->image().size(), QSize(6, 3));
    EXPECT_EQ(camera->image().format(), QImage::Format_Indexed8);
    EXPECT_EQ(camera->image().constBits(),
              reinterpret_cast<const uchar*>(answers.memory[1].data()));
    EXPECT_EQ(camera->frameCount(), 1);
}

TEST_F(CameraFrame, HasAGreyTableThatCostsNoCopy)
{
    makeOpenCamera();
    answers.memory[0][1] = static_cast<char>(200);
    event(2);
    const QImage& image = camera->image();
    ASSERT_EQ(image.colorCount(), 256);
    for (int grey = 0; grey < 256; ++grey) {
        EXPECT_EQ(image.color(grey), qRgb(grey, grey, grey));
    }
    EXPECT_EQ(image.pixelIndex(1, 0), 200);
    EXPECT_EQ(image.pixel(1, 0), qRgb(200, 200, 200));
    EXPECT_EQ(image.constBits(), reinterpret_cast<const uchar*>(answers.memory[0].data()));

    answers.memory[0][1] = 17;
    EXPECT_EQ(image.pixelIndex(1, 0), 17) << "the SDK's memory shows through";
}

TEST_F(CameraFrame, OfColourModeZeroIsRgb32)
{
    answers.currentColorMode = 0;
    answers.sensorWidth = 3;
    makeOpenCamera();
    event(2);
    EXPECT_EQ(camera->image().format(), QImage::Format_RGB32);
    EXPECT_EQ(camera->image().colorCount(), 0);
    EXPECT_EQ(camera->image().constBits(),
              reinterpret_cast<const uchar*>(answers.memory[0].data()));
}

TEST_F(CameraFrame, OfColourModeSixIsIndexed)
{
    answers.currentColorMode = 6;
    makeOpenCamera();
    event(2);
    EXPECT_EQ(camera->image().format(), QImage::Format_Indexed8);
    EXPECT_EQ(camera->image().colorCount(), 256);
}

TEST_F(CameraFrame, IsHandedOutAsTheCamerasOwnImage)
{
    makeOpenCamera();
    const QImage* handedOut = nullptr;
    QObject::connect(&*camera, &Camera::newImage, &*camera,
                     [&](QImage& image) { handedOut = &image; });
    event(2);
    EXPECT_EQ(handedOut, &camera->image());
}

TEST_F(CameraFrame, OfAReceiversCopySharesTheSdksMemory)
{
    makeOpenCamera();
    QImage copy;
    QObject::connect(&*camera, &Camera::newImage, &*camera, [&](QImage& image) { copy = image; });
    event(2);
    EXPECT_EQ(copy.constBits(), reinterpret_cast<const uchar*>(answers.memory[0].data()));
    event(2);
    EXPECT_EQ(camera->image().constBits(), reinterpret_cast<const uchar*>(answers.memory[0].data()))
        << "a copy held by a receiver makes the camera copy nothing either";
}

TEST_F(CameraFrame, DoesNothingWithoutAnOpenCamera)
{
    makeCamera();
    sdk.takeCalls();
    event(2);
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    EXPECT_EQ(camera->frameCount(), 0);
}

TEST_F(CameraFrame, ThatCannotBeHadIsReportedAndCounted)
{
    makeOpenCamera();
    event(2);
    sdk.takeCalls();
    sdk.results[QStringLiteral("getFrameMemory(7, 0, 0)")] = {12, 13};
    answers.errorTexts[12] = "No frame";
    event(2);
    event(2);
    EXPECT_EQ(sdk.takeCalls(), lines("getFrameMemory(7, 0, 0)\n"
                                     "getError(7, 12)\n"
                                     "-> displayError No frame (2000)\n"
                                     "getFrameMemory(7, 0, 0)\n"
                                     "getError(7, 13)\n"
                                     "-> displayError Unknown error. (2000)\n"));
    EXPECT_EQ(camera->frameCount(), 3);
    EXPECT_FALSE(camera->image().isNull()) << "the frame before stays";
}

TEST_F(CameraFrame, ThatArrivesWhileReceiversRunOnlyReplacesTheImage)
{
    makeOpenCamera();
    int received = 0;
    QObject::connect(&*camera, &Camera::newImage, &*camera, [&](const QImage& image) {
        if (++received == 1) {
            answers.frameMemory = answers.memory[1].data();
            event(2);
            EXPECT_EQ(image.constBits(), reinterpret_cast<const uchar*>(answers.memory[1].data()));
        }
    });
    event(2);
    EXPECT_EQ(received, 1);
    EXPECT_EQ(camera->frameCount(), 2);
    event(2);
    EXPECT_EQ(received, 2);
}

TEST_F(CameraFrame, IsGuardedAcrossAllCameras)
{
    makeOpenCamera();
    CannedCameraSdk otherSdk;
    Camera other(otherSdk);
    other.open(5);
    int received = 0;
    QObject::connect(&other, &Camera::newImage, &other, [&] { ++received; });
    const auto otherEvent = [&other] {
        QMetaObject::invokeMethod(&other, "eventReceived", Qt::DirectConnection, Q_ARG(int, 2));
    };
    QObject::connect(&*camera, &Camera::newImage, &other, otherEvent);
    event(2);
    EXPECT_EQ(received, 0);
    EXPECT_EQ(other.frameCount(), 1);
    otherEvent();
    EXPECT_EQ(received, 1);
}

TEST_F(CameraFrame, SurvivesAReceiverThatThrows)
{
    makeOpenCamera();
    bool throwing = true;
    QObject::connect(&*camera, &Camera::newImage, &*camera, [&] {
        if (throwing) {
            throw std::runtime_error("Can't show it");
        }
    });
    event(2);
    EXPECT_EQ(sdk.takeCalls(), lines("getFrameMemory(7, 0, 0)\n"
                                     "-> newImage\n"
                                     "-> displayError Can't show it (2000)\n"));
    throwing = false;
    event(2);
    EXPECT_EQ(sdk.takeCalls(), lines("getFrameMemory(7, 0, 0)\n-> newImage\n"))
        << "the guard is open again";
}

class CameraEvent : public CameraFixture
{};

TEST_F(CameraEvent, IsSignalledWhileACameraIsOpen)
{
    makeOpenCamera();
    const std::vector<std::pair<int, const char*>> signalOfEvent = {{9, "-> cameraReconnect"},
                                                                    {128, "-> cameraRemoved"},
                                                                    {129, "-> cameraRemovedDevice"},
                                                                    {130, "-> cameraNewDevice"}};
    for (const auto& [id, signal] : signalOfEvent) {
        event(id);
        EXPECT_EQ(sdk.takeCalls(), lines(signal)) << id;
    }
}

TEST_F(CameraEvent, OfDevicesIsSignalledWithoutAnOpenCamera)
{
    makeCamera();
    sdk.takeCalls();
    event(9);
    event(128);
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    event(129);
    event(130);
    EXPECT_EQ(sdk.takeCalls(), lines("-> cameraRemovedDevice\n-> cameraNewDevice\n"));
}

TEST_F(CameraEvent, EightCountsFailuresAlsoWithoutAnOpenCamera)
{
    makeCamera();
    sdk.takeCalls();
    event(8);
    event(8);
    EXPECT_EQ(camera->failedCount(), 2);
    camera->open(5);
    sdk.takeCalls();
    event(8);
    EXPECT_EQ(camera->failedCount(), 1);
    EXPECT_EQ(camera->frameCount(), 0);
    EXPECT_EQ(sdk.takeCalls(), QStringList());
}

TEST_F(CameraEvent, OfAnyOtherNumberDoesNothing)
{
    makeOpenCamera();
    for (int id = -2; id <= 300; ++id) {
        if (id != 2 && id != 8 && id != 9 && (id < 128 || id > 130)) {
            event(id);
        }
    }
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    EXPECT_EQ(camera->frameCount(), 0);
    EXPECT_EQ(camera->failedCount(), 0);
}

} // namespace
