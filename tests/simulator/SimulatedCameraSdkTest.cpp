// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCameraSdk.h"

#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

#include <QFile>

#include <cstring>

using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

namespace {

std::vector<CameraListEntry> listedCameras(CameraSdk& sdk, std::uint32_t room)
{
    std::vector<std::uint32_t> words((sizeof(CameraListEntry) * room + 4) / 4 + 1);
    auto* list = reinterpret_cast<CameraList*>(words.data());
    list->count = room;
    EXPECT_EQ(sdk.getCameraList(list), 0);
    std::vector<CameraListEntry> entries(list->count);
    if (!entries.empty()) {
        std::memcpy(entries.data(), list->entries, entries.size() * sizeof(CameraListEntry));
    }
    return entries;
}

std::string errorText(CameraSdk& sdk, CameraSdk::Handle handle, std::int32_t code)
{
    char* text = nullptr;
    return sdk.getError(handle, &code, &text) == 0 ? text : "Unknown error.";
}

/// Calls every operation that takes a handle, with good arguments otherwise.
std::vector<std::int32_t> callEverything(CameraSdk& sdk, CameraSdk::Handle handle)
{
    char* memory = nullptr;
    std::int32_t number = 0;
    double a = 0;
    double b = 0;
    double c = 0;
    SensorInfo info{};
    EventHandle event = createEventObject();
    return {
        sdk.stopLiveVideo(handle, camera::Wait),
        sdk.startLiveVideo(handle, camera::DontWait),
        sdk.setColorMode(handle, camera::ColorModeBayer8),
        sdk.setColorMode(handle, camera::QueryCurrent),
        sdk.allocImageMemory(handle, 8, 8, 8, &memory, &number),
        sdk.initEvent(handle, event, camera::EventFrame),
        sdk.enableEvent(handle, camera::EventFrame),
        sdk.disableEvent(handle, camera::EventFrame),
        sdk.exitEvent(handle, camera::EventFrame),
        sdk.clearSequence(handle),
        sdk.getFrameMemory(handle, 0, 0, &memory),
        sdk.setPixelClock(handle, camera::QueryCurrent),
        sdk.getSensorInfo(handle, &info),
        sdk.setHardwareGain(handle, 0, -1, -1, -1),
        sdk.getFramesPerSecond(handle, &a),
        sdk.setFrameRate(handle, 1.0, &a),
        sdk.setExposureTime(handle, 1.0, &a),
        sdk.exitCamera(handle),
        sdk.getFrameTimeRange(handle, &a, &b, &c),
        sdk.getExposureRange(handle, &a, &b, &c),
        sdk.getPixelClockRange(handle, &number, &number),
        sdk.loadParameters(handle, "/no/such/file"),
        sdk.hotpixelCommand(handle, camera::CorrectionOnFirst, nullptr, 0),
    };
}

TEST(SimulatedCameraList, HoldsWhatTheDescriptionSays)
{
    SimulatorFixture fixture;
    std::int32_t count = 0;
    ASSERT_EQ(fixture.sdk->getNumberOfCameras(&count), 0);
    EXPECT_EQ(count, 2);
    const auto entries = listedCameras(*fixture.sdk, 2);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].camId, 1U);
    EXPECT_EQ(entries[0].devId, 1U);
    EXPECT_EQ(entries[0].status, 0U);
    EXPECT_STREQ(entries[0].serNo, "M1");
    EXPECT_STREQ(entries[0].model, "Small mono");
    EXPECT_EQ(entries[1].camId, 7U);
    EXPECT_EQ(entries[1].devId, 2U);
    EXPECT_STREQ(entries[1].serNo, "B2");
}

TEST(SimulatedCameraList, WritesNoMoreThanThereIsRoomFor)
{
    SimulatorFixture fixture;
    EXPECT_EQ(listedCameras(*fixture.sdk, 1).size(), 1U);
    EXPECT_EQ(listedCameras(*fixture.sdk, 0).size(), 0U);
    EXPECT_EQ(listedCameras(*fixture.sdk, 5).size(), 2U);
}

TEST(SimulatedCameraList, LeavesUnpluggedCamerasOut)
{
    SimulatorFixture fixture;
    fixture.sdk->control(QStringLiteral("M1")).setPlugged(false);
    std::int32_t count = 0;
    ASSERT_EQ(fixture.sdk->getNumberOfCameras(&count), 0);
    EXPECT_EQ(count, 1);
    const auto entries = listedCameras(*fixture.sdk, 2);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].devId, 2U);
}

TEST(SimulatedCameraList, ShowsWhichCamerasAreInUse)
{
    SimulatorFixture fixture;
    {
        const OpenedCamera opened(*fixture.sdk);
        EXPECT_EQ(listedCameras(*fixture.sdk, 2)[0].status, 1U);
        EXPECT_EQ(listedCameras(*fixture.sdk, 2)[1].status, 0U);
    }
    EXPECT_EQ(listedCameras(*fixture.sdk, 2)[0].status, 0U);
    fixture.sdk->control(QStringLiteral("B2")).setHeldElsewhere(true);
    EXPECT_EQ(listedCameras(*fixture.sdk, 2)[1].status, 1U);
}

TEST(SimulatedCameraOpening, GivesAHandleThatNoOtherOpeningHad)
{
    SimulatorFixture fixture;
    CameraSdk::Handle first = 1 | camera::OpenByDevice;
    ASSERT_EQ(fixture.sdk->initCamera(&first, nullptr), 0);
    EXPECT_NE(first, 0U);
    EXPECT_EQ(fixture.sdk->openCameras(), 1);
    ASSERT_EQ(fixture.sdk->exitCamera(first), 0);
    EXPECT_EQ(fixture.sdk->openCameras(), 0);
    CameraSdk::Handle second = 1 | camera::OpenByDevice;
    ASSERT_EQ(fixture.sdk->initCamera(&second, nullptr), 0);
    EXPECT_NE(second, first);
}

TEST(SimulatedCameraOpening, WithoutTheDeviceFlagTheCameraIdCounts)
{
    SimulatorFixture fixture;
    CameraSdk::Handle handle = 7;
    ASSERT_EQ(fixture.sdk->initCamera(&handle, nullptr), 0);
    fixture.sdk->control(QStringLiteral("M1")).setPlugged(false);
    EXPECT_EQ(fixture.sdk->setColorMode(handle, camera::QueryCurrent), 11) << "the Bayer camera";
}

TEST(SimulatedCameraOpening, OfAnUnknownCameraFailsAndLeavesTheSelector)
{
    SimulatorFixture fixture;
    CameraSdk::Handle handle = 99 | camera::OpenByDevice;
    EXPECT_EQ(fixture.sdk->initCamera(&handle, nullptr), simulator::CameraNotFound);
    EXPECT_EQ(handle, 99 | camera::OpenByDevice);
    EXPECT_EQ(fixture.sdk->initCamera(nullptr, nullptr), simulator::NullPointer);
}

TEST(SimulatedCameraOpening, OfAnUnpluggedCameraFails)
{
    SimulatorFixture fixture;
    fixture.sdk->control(QStringLiteral("M1")).setPlugged(false);
    CameraSdk::Handle handle = 1 | camera::OpenByDevice;
    EXPECT_EQ(fixture.sdk->initCamera(&handle, nullptr), simulator::CameraNotFound);
}

TEST(SimulatedCameraOpening, OfACameraInUseFails)
{
    SimulatorFixture fixture;
    CameraSdk::Handle handle = 1 | camera::OpenByDevice;
    fixture.sdk->control(QStringLiteral("M1")).setHeldElsewhere(true);
    EXPECT_EQ(fixture.sdk->initCamera(&handle, nullptr), simulator::CameraInUse);
    fixture.sdk->control(QStringLiteral("M1")).setHeldElsewhere(false);
    const OpenedCamera opened(*fixture.sdk);
    EXPECT_EQ(fixture.sdk->initCamera(&handle, nullptr), simulator::CameraInUse);
}

TEST(SimulatedCameraOpening, IsSeenByAnotherProgram)
{
    SimulatorFixture fixture;
    SimulatedCameraSdk other(fixture.bus);
    CameraSdk::Handle handle = 1 | camera::OpenByDevice;
    {
        const OpenedCamera opened(*fixture.sdk);
        EXPECT_EQ(listedCameras(other, 2)[0].status, 1U);
        EXPECT_EQ(listedCameras(other, 2)[1].status, 0U);
        EXPECT_EQ(other.initCamera(&handle, nullptr), simulator::CameraInUse);
    }
    EXPECT_EQ(listedCameras(other, 2)[0].status, 0U);
    EXPECT_EQ(other.initCamera(&handle, nullptr), 0);
    EXPECT_EQ(listedCameras(*fixture.sdk, 2)[0].status, 1U);
}

TEST(SimulatedCameraOpening, IgnoresTheLockOfAProgramThatWasKilled)
{
    SimulatorFixture fixture;
    {
        const OpenedCamera opened(*fixture.sdk); // makes the folder
    }
    // A killed program leaves the file, and nobody who holds it.
    ASSERT_TRUE(QFile::exists(fixture.bus.eepromFolder + QStringLiteral("/M1.lock")));
    EXPECT_EQ(listedCameras(*fixture.sdk, 2)[0].status, 0U);
    const OpenedCamera opened(*fixture.sdk);
    EXPECT_EQ(fixture.sdk->openCameras(), 1);
}

TEST(SimulatedFirmwareUpload, IsAskedForOnceAndRemembered)
{
    CameraDescription camera = simulatortest::smallMono();
    camera.firmwareUpload = true;
    camera.firmwareUploadMsec = 3000;
    SimulatorFixture fixture({camera});
    CameraSdk::Handle handle = 1 | camera::OpenByDevice;
    ASSERT_EQ(fixture.sdk->initCamera(&handle, nullptr), camera::FirmwareUploadNeeded);
    EXPECT_EQ(fixture.sdk->openCameras(), 0);
    EXPECT_EQ(listedCameras(*fixture.sdk, 1)[0].status, 0U);

    std::int32_t msec = 25000;
    ASSERT_EQ(fixture.sdk->getFirmwareUploadTime(handle, 1, &msec), 0);
    EXPECT_EQ(msec, 3000);
    handle = 1 | camera::OpenWithFirmwareUpload;
    ASSERT_EQ(fixture.sdk->initCamera(&handle, nullptr), 0);
    fixture.sdk->exitCamera(handle);

    fixture.restart();
    handle = 1 | camera::OpenByDevice;
    ASSERT_EQ(fixture.sdk->getFirmwareUploadTime(handle, 1, &msec), 0);
    EXPECT_EQ(msec, 0);
    EXPECT_EQ(fixture.sdk->initCamera(&handle, nullptr), 0);
}

TEST(SimulatedFirmwareUpload, TheTimeOfAnUnknownCameraIsLeftAlone)
{
    SimulatorFixture fixture;
    std::int32_t msec = 25000;
    EXPECT_EQ(fixture.sdk->getFirmwareUploadTime(99 | camera::OpenByDevice, 1, &msec),
              simulator::CameraNotFound);
    EXPECT_EQ(msec, 25000);
    EXPECT_EQ(fixture.sdk->getFirmwareUploadTime(1, 1, nullptr), simulator::NullPointer);
}

TEST(SimulatedSdkErrors, AnUnknownHandleIsRefusedEverywhere)
{
    SimulatorFixture fixture;
    const OpenedCamera opened(*fixture.sdk);
    for (const std::int32_t result : callEverything(*fixture.sdk, opened.handle + 1)) {
        EXPECT_EQ(result, simulator::InvalidHandle);
    }
}

TEST(SimulatedSdkErrors, AClosedCameraIsRefusedEverywhere)
{
    SimulatorFixture fixture;
    OpenedCamera opened(*fixture.sdk);
    opened.close();
    for (const std::int32_t result : callEverything(*fixture.sdk, opened.handle)) {
        EXPECT_EQ(result, simulator::CameraClosed);
    }
}

TEST(SimulatedSdkErrors, WithHandleNullNothingButDeviceEventsWorks)
{
    SimulatorFixture fixture;
    const std::vector<std::int32_t> results = callEverything(*fixture.sdk, 0);
    for (const std::int32_t result : results) {
        EXPECT_TRUE(result == simulator::InvalidHandle || result == simulator::InvalidParameter)
            << result;
    }
    EventHandle event = createEventObject();
    EXPECT_EQ(fixture.sdk->initEvent(0, event, camera::EventDeviceNew), 0);
    EXPECT_EQ(fixture.sdk->enableEvent(0, camera::EventDeviceNew), 0);
    EXPECT_EQ(fixture.sdk->disableEvent(0, camera::EventDeviceNew), 0);
    EXPECT_EQ(fixture.sdk->exitEvent(0, camera::EventDeviceNew), 0);
}

TEST(SimulatedSdkErrors, AnUnpluggedCameraCanOnlyBeGivenUp)
{
    SimulatorFixture fixture;
    OpenedCamera opened(*fixture.sdk);
    fixture.sdk->control(QStringLiteral("M1")).setPlugged(false);
    double number = 0;
    const CameraSdk::Handle handle = opened.handle;
    EXPECT_EQ(fixture.sdk->setPixelClock(handle, camera::QueryCurrent), simulator::CameraUnplugged);
    EXPECT_EQ(fixture.sdk->getFramesPerSecond(handle, &number), simulator::CameraUnplugged);
    EXPECT_EQ(fixture.sdk->setExposureTime(handle, 1.0, &number), simulator::CameraUnplugged);
    EXPECT_EQ(fixture.sdk->hotpixelCommand(handle, camera::DeleteUserList, nullptr, 0),
              simulator::CameraUnplugged);
    EXPECT_EQ(fixture.sdk->startLiveVideo(handle, camera::DontWait), simulator::CameraUnplugged);
    EXPECT_EQ(fixture.sdk->stopLiveVideo(handle, camera::Wait), 0);
    EXPECT_EQ(fixture.sdk->exitCamera(handle), 0);
}

TEST(SimulatedSdkErrors, MissingPointersAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera opened(*fixture.sdk);
    const CameraSdk::Handle handle = opened.handle;
    SimulatedCameraSdk& sdk = *fixture.sdk;
    char* memory = nullptr;
    std::int32_t number = 0;
    double value = 0;
    const std::vector<std::int32_t> results{
        sdk.getError(handle, nullptr, &memory),
        sdk.getError(handle, &number, nullptr),
        sdk.allocImageMemory(handle, 8, 8, 8, nullptr, &number),
        sdk.allocImageMemory(handle, 8, 8, 8, &memory, nullptr),
        sdk.freeImageMemory(handle, nullptr, 1),
        sdk.initEvent(handle, nullptr, camera::EventFrame),
        sdk.addToSequence(handle, nullptr, 1),
        sdk.getFrameMemory(handle, 0, 0, nullptr),
        sdk.getSensorInfo(handle, nullptr),
        sdk.getFramesPerSecond(handle, nullptr),
        sdk.setFrameRate(handle, 1.0, nullptr),
        sdk.setExposureTime(handle, 1.0, nullptr),
        sdk.getNumberOfCameras(nullptr),
        sdk.getFrameTimeRange(handle, nullptr, &value, &value),
        sdk.getFrameTimeRange(handle, &value, nullptr, &value),
        sdk.getExposureRange(handle, &value, &value, nullptr),
        sdk.getPixelClockRange(handle, nullptr, &number),
        sdk.getPixelClockRange(handle, &number, nullptr),
        sdk.loadParameters(handle, nullptr),
        sdk.getCameraList(nullptr),
        sdk.getFirmwareUploadTime(handle, 1, nullptr),
        sdk.hotpixelCommand(handle, camera::GetUserCount, nullptr, 4),
        sdk.hotpixelCommand(handle, camera::SetUserList, nullptr, 2),
    };
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(results[i], simulator::NullPointer) << "call " << i;
    }
}

TEST(SimulatedSdkErrors, EachHasAText)
{
    SimulatorFixture fixture;
    for (std::int32_t code = simulator::InvalidHandle; code <= simulator::FirmwareUploadFailed;
         ++code) {
        EXPECT_NE(errorText(*fixture.sdk, 0, code), "Unknown error.") << code;
    }
    EXPECT_EQ(errorText(*fixture.sdk, 0, camera::FileNotOpened),
              "The settings file can't be opened.");
    EXPECT_EQ(errorText(*fixture.sdk, 0, simulator::CameraClosed), "The camera is closed.");
    EXPECT_EQ(errorText(*fixture.sdk, 0, 4711), "Unknown error.");
}

TEST(SimulatedControls, UnknownSerialNumbersDoNothing)
{
    SimulatorFixture fixture;
    const QString nobody = QStringLiteral("nobody");
    fixture.sdk->control(nobody).setPlugged(false);
    fixture.sdk->control(nobody).setCovered(true);
    fixture.sdk->control(nobody).setDropFrames(true);
    fixture.sdk->control(nobody).setTemperature(1);
    fixture.sdk->control(nobody).setHeldElsewhere(true);
    EXPECT_FALSE(fixture.sdk->control(nobody).isPlugged());
    EXPECT_FALSE(fixture.sdk->control(nobody).isCovered());
    EXPECT_FALSE(fixture.sdk->control(nobody).dropsFrames());
    EXPECT_FALSE(fixture.sdk->control(nobody).isHeldElsewhere());
    EXPECT_EQ(fixture.sdk->control(nobody).temperature(), 0);
    EXPECT_TRUE(fixture.sdk->control(nobody).knownHotPixels().empty());
    EXPECT_EQ(fixture.sdk->control(nobody).darkMeanDn(), 0);
    EXPECT_TRUE(fixture.sdk->control(nobody).eepromFileName().isEmpty());
    EXPECT_TRUE(fixture.sdk->control(nobody).model().isEmpty());
}

TEST(SimulatedControls, KnowTheirCameras)
{
    SimulatorFixture fixture;
    EXPECT_EQ(fixture.sdk->serials(), (QStringList{QStringLiteral("M1"), QStringLiteral("B2")}));
    EXPECT_EQ(fixture.sdk->serialOf(2), QStringLiteral("B2"));
    EXPECT_EQ(fixture.sdk->serialOf(3), QString());
    EXPECT_EQ(fixture.sdk->control(QStringLiteral("M1")).model(), QStringLiteral("Small mono"));
    EXPECT_EQ(fixture.sdk->control(QStringLiteral("M1")).eepromFileName(),
              fixture.bus.eepromFolder + QStringLiteral("/M1.eeprom"));
}

} // namespace
