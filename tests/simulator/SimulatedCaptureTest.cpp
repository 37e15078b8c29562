// SPDX-License-Identifier: MIT
#include "simulator/ModelledFrames.h"
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <set>

using simulatortest::GenerousMsec;
using simulatortest::OpenedCamera;
using simulatortest::SimulatorFixture;

namespace {

using Pixels = std::vector<std::uint8_t>;

const QString Mono = QStringLiteral("M1");
const QString Bayer = QStringLiteral("B2");

/// Longest exposure at the rate of one frame per second, master gain 50, covered: as for a
/// detection.
void prepareForDarkFrames(SimulatedCameraSdk& sdk, const OpenedCamera& camera,
                          const QString& serial)
{
    sdk.control(serial).setCovered(true);
    double actual = 0;
    sdk.setPixelClock(camera.handle, 1);
    ASSERT_EQ(sdk.setFrameRate(camera.handle, 1.0, &actual), 0);
    ASSERT_EQ(sdk.setExposureTime(camera.handle, 1e6, &actual), 0);
    ASSERT_EQ(sdk.setHardwareGain(camera.handle, 50, -1, -1, -1), 0);
}

double averageAt(const std::vector<Pixels>& frames, std::size_t index)
{
    double sum = 0;
    for (const Pixels& frame : frames) {
        sum += frame[index];
    }
    return sum / static_cast<double>(frames.size());
}

TEST(SimulatedCapture, NeedsImageMemory)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    EXPECT_EQ(fixture.sdk->startLiveVideo(mono.handle, camera::DontWait), simulator::SequenceEmpty);
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, camera::Wait), 0);
}

TEST(SimulatedCapture, RefusesUnknownWaitModes)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    EXPECT_EQ(fixture.sdk->startLiveVideo(mono.handle, 2), simulator::InvalidParameter);
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, 2), simulator::InvalidParameter);
}

TEST(SimulatedCapture, StartsAndStopsAsOftenAsOneLikes)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    EXPECT_EQ(fixture.sdk->startLiveVideo(mono.handle, camera::DontWait), 0);
    EXPECT_FALSE(mono.nextFrame().empty());
    EXPECT_EQ(fixture.sdk->setColorMode(mono.handle, 6), simulator::CaptureRunning);
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, camera::Wait), 0);
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, camera::ForceStop), 0);
    EXPECT_EQ(fixture.sdk->startLiveVideo(mono.handle, camera::Wait), 0);
    EXPECT_FALSE(mono.nextFrame().empty());
}

TEST(SimulatedCapture, HasNoFrameBeforeTheFirst)
{
    CameraDescription slow = simulatortest::smallMono();
    SimulatorFixture fixture({slow}, 0.01);
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    char* memory = nullptr;
    EXPECT_EQ(fixture.sdk->getFrameMemory(mono.handle, 0, 0, &memory), simulator::NoFrameYet);
    EXPECT_EQ(memory, nullptr);
}

TEST(SimulatedCapture, DeliversFramesIntoBothMemories)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    std::set<char*> seen;
    while (seen.size() < 2) {
        char* memory = nullptr;
        ASSERT_TRUE(waitForEventObject(mono.frameEvent, GenerousMsec));
        ASSERT_EQ(fixture.sdk->getFrameMemory(mono.handle, 0, 0, &memory), 0);
        ASSERT_TRUE(memory == mono.memories[0].pointer || memory == mono.memories[1].pointer);
        seen.insert(memory);
    }
}

TEST(SimulatedCapture, NeverTouchesTheFrameHandedOutLast)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    char* memory = nullptr;
    ASSERT_TRUE(waitForEventObject(mono.frameEvent, GenerousMsec));
    ASSERT_EQ(fixture.sdk->getFrameMemory(mono.handle, 0, 0, &memory), 0);
    const Pixels before(memory, memory + 96 * 64);
    for (int frame = 0; frame < 10; ++frame) {
        ASSERT_TRUE(waitForEventObject(mono.frameEvent, GenerousMsec));
    }
    EXPECT_TRUE(std::equal(before.begin(), before.end(), reinterpret_cast<std::uint8_t*>(memory)));
}

TEST(SimulatedCapture, WorksWithASingleMemory)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive(1);
    for (int frame = 0; frame < 3; ++frame) {
        ASSERT_TRUE(waitForEventObject(mono.frameEvent, GenerousMsec));
    }
    char* memory = nullptr;
    EXPECT_EQ(fixture.sdk->getFrameMemory(mono.handle, 0, 0, &memory), 0);
    EXPECT_EQ(memory, mono.memories[0].pointer);
}

TEST(SimulatedCapture, MemoryMayBeTakenAwayWhileItRuns)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    ASSERT_FALSE(mono.nextFrame().empty());
    for (const OpenedCamera::Memory& memory : mono.memories) {
        EXPECT_EQ(fixture.sdk->freeImageMemory(mono.handle, memory.pointer, memory.id), 0);
    }
    mono.memories.clear();
    EXPECT_TRUE(waitForEventObject(mono.failedEvent, GenerousMsec)) << "nowhere to write to";
    char* memory = nullptr;
    EXPECT_EQ(fixture.sdk->getFrameMemory(mono.handle, 0, 0, &memory), simulator::NoFrameYet);
}

TEST(SimulatedCapture, DroppedFramesAreReportedAsFailed)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    fixture.sdk->control(Mono).setDropFrames(true);
    mono.startLive();
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_TRUE(waitForEventObject(mono.failedEvent, GenerousMsec));
    }
    EXPECT_FALSE(waitForEventObject(mono.frameEvent, 0));
    fixture.sdk->control(Mono).setDropFrames(false);
    EXPECT_FALSE(mono.nextFrame().empty());
}

TEST(SimulatedCapture, GoesOnWhenTheCableIsBack)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    ASSERT_FALSE(mono.nextFrame().empty());
    fixture.sdk->control(Mono).setPlugged(false);
    waitForEventObject(mono.frameEvent, 0); // the frame that was on its way
    EXPECT_FALSE(waitForEventObject(mono.frameEvent, 100));
    EXPECT_FALSE(waitForEventObject(mono.failedEvent, 0));
    fixture.sdk->control(Mono).setPlugged(true);
    EXPECT_FALSE(mono.nextFrame().empty());
}

TEST(SimulatedCapture, ComesAtTheSetRate)
{
    // At a hundredth of its speed not a single frame would come within the test's life, so the
    // frames that come show that a new rate counts at once.
    CameraDescription camera = simulatortest::smallMono();
    camera.pixelClockMin = 1;
    camera.slowestFrame = 1000;
    camera.frameRate = 0.03;
    SimulatorFixture fixture({camera}, 1.0);
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    EXPECT_FALSE(waitForEventObject(mono.frameEvent, 50));
    double actual = 0;
    ASSERT_EQ(fixture.sdk->setFrameRate(mono.handle, 100, &actual), 0);
    EXPECT_FALSE(mono.nextFrame().empty());
}

TEST(SimulatedCapture, StopsPromptlyHoweverSlowTheFrames)
{
    SimulatorFixture fixture({simulatortest::smallMono()}, 0.01);
    OpenedCamera mono(*fixture.sdk);
    mono.startLive();
    // Would wait for the end of a frame that takes minutes.
    EXPECT_EQ(fixture.sdk->stopLiveVideo(mono.handle, camera::Wait), 0);
}

TEST(SimulatedCapture, KnownHotPixelsAreWhatAnAverageOfFramesShows)
{
    constexpr int Frames = 40;
    for (const std::uint32_t devId : {1U, 2U}) {
        SimulatorFixture fixture;
        const QString serial = fixture.sdk->serialOf(devId);
        OpenedCamera opened(*fixture.sdk, devId);
        prepareForDarkFrames(*fixture.sdk, opened, serial);
        opened.startLive();
        std::vector<Pixels> frames;
        while (frames.size() < Frames) {
            frames.push_back(opened.nextFrame());
            ASSERT_FALSE(frames.back().empty());
        }
        const auto known = fixture.sdk->control(serial).knownHotPixels();
        ASSERT_EQ(known.size(), 12U);
        const double dark = fixture.sdk->control(serial).darkMeanDn();
        int hot = 0;
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 96; ++x) {
                const double average = averageAt(frames, static_cast<std::size_t>(y) * 96 +
                                                             static_cast<std::size_t>(x));
                const auto pixel = std::find_if(known.begin(), known.end(),
                                                [x, y](const KnownHotPixel& candidate) {
                                                    return candidate.x == x && candidate.y == y;
                                                });
                const double expected = pixel == known.end() ? dark : pixel->meanDn;
                EXPECT_NEAR(average, expected, pixel == known.end() ? 1.2 : 5.0) << x << ", " << y;
                hot += average > dark + 40 ? 1 : 0;
            }
        }
        EXPECT_GT(hot, 5);
    }
}

TEST(SimulatedCapture, CorrectionReplacesEachListedPixel)
{
    for (const std::uint32_t devId : {1U, 2U}) {
        SimulatorFixture fixture;
        const QString serial = fixture.sdk->serialOf(devId);
        OpenedCamera opened(*fixture.sdk, devId);
        prepareForDarkFrames(*fixture.sdk, opened, serial);
        const CameraSdk::Handle handle = opened.handle;
        std::vector<std::uint16_t> listed = simulatortest::readList(*fixture.sdk, handle, false);
        const auto user = simulatortest::readList(*fixture.sdk, handle, true);
        listed.insert(listed.end(), user.begin(), user.end());
        ASSERT_EQ(listed.size(), 6U);
        const double dark = fixture.sdk->control(serial).darkMeanDn();
        opened.startLive();
        const auto brightest = [&] {
            int value = 0;
            const Pixels frame = opened.nextFrame();
            for (std::size_t i = 0; !frame.empty() && i < listed.size(); i += 2) {
                value = std::max<int>(value, frame[listed[i + 1] * 96U + listed[i]]);
            }
            return value;
        };
        EXPECT_GT(brightest(), dark + 40);
        fixture.sdk->stopLiveVideo(handle, camera::Wait);
        waitForEventObject(opened.frameEvent, 0);
        for (const std::int32_t command : {camera::CorrectionOnFirst, camera::CorrectionOnSecond}) {
            ASSERT_EQ(fixture.sdk->hotpixelCommand(handle, command, nullptr, 0), 0);
        }
        fixture.sdk->startLiveVideo(handle, camera::Wait);
        EXPECT_LT(brightest(), dark + 8);
        fixture.sdk->stopLiveVideo(handle, camera::Wait);
        waitForEventObject(opened.frameEvent, 0);
        for (const std::int32_t command :
             {camera::CorrectionOffFirst, camera::CorrectionOffSecond}) {
            ASSERT_EQ(fixture.sdk->hotpixelCommand(handle, command, nullptr, 0), 0);
        }
        fixture.sdk->startLiveVideo(handle, camera::Wait);
        EXPECT_GT(brightest(), dark + 40);
    }
}

TEST(SimulatedCapture, WarmthMakesHotPixelsBrighter)
{
    SimulatorFixture fixture;
    OpenedCamera mono(*fixture.sdk);
    prepareForDarkFrames(*fixture.sdk, mono, Mono);
    const double cool = fixture.sdk->control(Mono).knownHotPixels()[2].meanDn;
    const double pedestal = 8;
    fixture.sdk->control(Mono).setTemperature(32); // seven degrees more: twice the dark current
    EXPECT_NEAR(fixture.sdk->control(Mono).knownHotPixels()[2].meanDn - pedestal,
                2 * (cool - pedestal), 1e-9);
    EXPECT_EQ(fixture.sdk->control(Mono).temperature(), 32);
}

TEST(SimulatedCapture, ColourModeZeroGivesColourPixels)
{
    SimulatorFixture fixture;
    OpenedCamera bayer(*fixture.sdk, 2);
    ASSERT_EQ(fixture.sdk->setColorMode(bayer.handle, 0), 0);
    bayer.startLive(2, 32);
    char* memory = nullptr;
    ASSERT_TRUE(waitForEventObject(bayer.frameEvent, GenerousMsec));
    ASSERT_EQ(fixture.sdk->getFrameMemory(bayer.handle, 0, 0, &memory), 0);
    const QImage image(reinterpret_cast<uchar*>(memory), 96, 64, QImage::Format_RGB32);
    bool coloured = false;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 96; ++x) {
            const QRgb pixel = image.pixel(x, y);
            coloured = coloured || std::abs(qRed(pixel) - qBlue(pixel)) > 40;
            ASSERT_EQ(qAlpha(pixel), 255);
        }
    }
    EXPECT_TRUE(coloured);
}

TEST(SimulatedCapture, MemoryOfAnotherDepthThanTheModeIsRefused)
{
    SimulatorFixture fixture;
    OpenedCamera bayer(*fixture.sdk, 2);
    bayer.startLive();
    fixture.sdk->stopLiveVideo(bayer.handle, camera::Wait);
    ASSERT_EQ(fixture.sdk->setColorMode(bayer.handle, 0), 0);
    EXPECT_EQ(fixture.sdk->startLiveVideo(bayer.handle, camera::Wait),
              simulator::InvalidBufferSize);
}

TEST(SimulatedCapture, AFrameIsTheModelsFrameOfItsNumber)
{
    SimulatorFixture fixture({simulatortest::smallMono()}, 20);
    OpenedCamera mono(*fixture.sdk);
    fixture.sdk->control(Mono).setCovered(true);
    mono.startLive();
    const Pixels pixels = mono.nextFrame();
    ASSERT_FALSE(pixels.empty());

    const SensorModel model(simulatortest::smallMono());
    ModelledFrames frames(model);
    double exposureMsec = 0;
    fixture.sdk->setExposureTime(mono.handle, camera::QueryCurrentDouble, &exposureMsec);
    SensorSettings settings;
    settings.exposureSeconds = exposureMsec / 1000.0;
    settings.covered = true;
    // Which one it was depends on how fast this test ran.
    bool found = false;
    for (std::uint64_t frame = 0; frame < 1000 && !found; ++frame) {
        Pixels expected(pixels.size());
        frames.render(frame, settings, expected.data(), 96);
        found = expected == pixels;
    }
    EXPECT_TRUE(found);
}

class Recorded : public ::testing::Test
{
protected:
    Recorded()
    {
        for (int i = 0; i < 3; ++i) {
            QImage image(96, 64, QImage::Format_Grayscale8);
            image.fill(10U * static_cast<uint>(i + 1));
            EXPECT_TRUE(image.save(m_folder.filePath(QStringLiteral("%1.png").arg(i))));
        }
        m_camera.recordedFrames = m_folder.path();
        m_camera.hotPixels = m_camera.factoryEntries = m_camera.userEntries = 0;
    }
    QTemporaryDir m_folder;
    CameraDescription m_camera = simulatortest::smallMono();
};

TEST_F(Recorded, FramesAreAllPlayedAsTheyAre)
{
    SimulatorFixture fixture({m_camera}, 20);
    OpenedCamera opened(*fixture.sdk);
    opened.startLive();
    std::set<int> levels;
    while (levels.size() < 3) {
        const Pixels pixels = opened.nextFrame();
        ASSERT_FALSE(pixels.empty());
        const std::uint8_t level = pixels.front();
        ASSERT_TRUE(level == 10 || level == 20 || level == 30);
        ASSERT_EQ(pixels, Pixels(96 * 64, level));
        levels.insert(level);
    }
    EXPECT_TRUE(fixture.sdk->control(Mono).knownHotPixels().empty());
}

TEST_F(Recorded, FramesCanBeKeptForTheCoveredSensor)
{
    m_camera.recordedOnlyCovered = true;
    SimulatorFixture fixture({m_camera}, 20);
    OpenedCamera opened(*fixture.sdk);
    opened.startLive();
    const auto isRecorded = [&] {
        const Pixels pixels = opened.nextFrame();
        EXPECT_FALSE(pixels.empty());
        return pixels.empty() || pixels == Pixels(pixels.size(), pixels.front());
    };
    for (int frame = 0; frame < 3; ++frame) {
        ASSERT_FALSE(isRecorded());
    }
    fixture.sdk->control(Mono).setCovered(true);
    while (!isRecorded()) {
        // Frames that were on their way when the cover was put on.
    }
    EXPECT_TRUE(isRecorded());
}

TEST_F(Recorded, FramesThatCannotBePlayedFailTheStartWithAClearText)
{
    QImage image(95, 64, QImage::Format_Grayscale8);
    image.fill(0);
    const QString name = m_folder.filePath(QStringLiteral("2.png"));
    ASSERT_TRUE(image.save(name));
    SimulatorFixture fixture({m_camera});
    const OpenedCamera opened(*fixture.sdk);
    OpenedCamera::Memory memory;
    ASSERT_EQ(fixture.sdk->allocImageMemory(opened.handle, 96, 64, 8, &memory.pointer, &memory.id),
              0);
    ASSERT_EQ(fixture.sdk->addToSequence(opened.handle, memory.pointer, memory.id), 0);
    std::int32_t code = fixture.sdk->startLiveVideo(opened.handle, camera::DontWait);
    EXPECT_EQ(code, simulator::RecordedFramesUnusable);
    char* text = nullptr;
    ASSERT_EQ(fixture.sdk->getError(opened.handle, &code, &text), 0);
    EXPECT_EQ(QString::fromUtf8(text), QStringLiteral("The recorded frames can't be played. "
                                                      "(%1: 95 x 64 pixels instead of 96 x 64)")
                                           .arg(name));
}

TEST(BuiltInBus, EveryCameraIsDarkUnderItsCoverAtTheLongestExposure)
{
    BusDescription bus = simulator::builtInBus();
    for (CameraDescription& camera : bus.cameras) {
        camera.heldElsewhere = camera.firmwareUpload = false;
    }
    SimulatorFixture fixture(bus.cameras, 1000);
    for (const CameraDescription& description : bus.cameras) {
        OpenedCamera opened(*fixture.sdk, description.devId);
        fixture.sdk->control(description.serial).setCovered(true);
        double actual = 0;
        fixture.sdk->setPixelClock(opened.handle, description.pixelClockMin);
        fixture.sdk->setFrameRate(opened.handle, 1e-9, &actual);
        fixture.sdk->setExposureTime(opened.handle, 1e9, &actual);
        EXPECT_GT(actual, 1000);
        fixture.sdk->setHardwareGain(opened.handle, 50, -1, -1, -1);
        opened.startLive();
        const Pixels pixels = opened.nextFrame();
        ASSERT_FALSE(pixels.empty());
        EXPECT_LE(
            std::count_if(pixels.begin(), pixels.end(), [](int value) { return value > 100; }),
            5000)
            << description.serial.toStdString();
    }
}

TEST(BuiltInBus, SomeCamerasNeedASlowerClockForOneFramePerSecond)
{
    SimulatorFixture fixture(simulator::builtInBus().cameras, 1000);
    int needsSlower = 0;
    for (const CameraDescription& description : fixture.bus.cameras) {
        fixture.sdk->control(description.serial).setHeldElsewhere(false);
        CameraSdk::Handle handle = description.devId | camera::OpenWithFirmwareUpload;
        ASSERT_EQ(fixture.sdk->initCamera(&handle, nullptr), 0);
        double least = 0;
        double most = 0;
        double step = 0;
        ASSERT_EQ(fixture.sdk->getFrameTimeRange(handle, &least, &most, &step), 0);
        EXPECT_LE(least, 0.5) << "two frames per second at the default clock";
        int clock = description.pixelClockDefault;
        while (most < 1.0) {
            ++needsSlower;
            clock /= 2;
            ASSERT_GT(clock, description.pixelClockMin);
            ASSERT_EQ(fixture.sdk->setPixelClock(handle, clock), 0);
            ASSERT_EQ(fixture.sdk->getFrameTimeRange(handle, &least, &most, &step), 0);
        }
        double actual = 0;
        ASSERT_EQ(fixture.sdk->setFrameRate(handle, 1.0, &actual), 0);
        EXPECT_NEAR(actual, 1.0, 0.001);
    }
    EXPECT_GT(needsSlower, 0);
    EXPECT_LT(needsSlower, 4) << "some do not";
}

} // namespace
