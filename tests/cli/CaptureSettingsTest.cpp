// SPDX-License-Identifier: MIT
// Exposure, gain and frame rate on the command line, with a simulated camera.

#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/FaultyCameraSdk.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// The companion on one covered camera that takes 40 ms at 2 images per second unless told, at
/// most 2 images per second, and at least one in two seconds.
class FramesOfACamera : public testing::Test
{
protected:
    static CameraDescription description()
    {
        CameraDescription camera;
        camera.serial = QStringLiteral("S1");
        camera.width = 64;
        camera.height = 48;
        // Lines of 2 ms: frames take 100 ms to 2 s.
        camera.pixelClockMin = camera.pixelClockMax = camera.pixelClockDefault = 5;
        camera.lineBlanking = 10000 - 64;
        camera.frameBlanking = 2;
        camera.slowestFrame = 20;
        camera.hotPixels = 15;
        return camera;
    }

    QByteArray run(const QString& arguments)
    {
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion([this] { return std::make_unique<FaultyCameraSdk>(m_simulated); }, {},
                            recorded.console(), interruption);
        m_status =
            companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' '));
        m_err = recorded.err();
        return recorded.out();
    }

    QJsonObject object(const QString& arguments)
    {
        return QJsonDocument::fromJson(run(arguments + QStringLiteral(" --json"))).object();
    }

    void SetUp() override { m_simulated.control(QStringLiteral("S1")).setCovered(true); }

    QTemporaryDir m_home;
    SimulatedCameraSdk m_simulated{{{description()}, 50, m_home.path(), {}}};
    int m_status = -1;
    QByteArray m_err;
};

} // namespace

TEST_F(FramesOfACamera, AreTakenAsTheOptionsSay)
{
    for (const char* command : {"detect", "survey"}) {
        const QJsonObject taken = object(
            QLatin1String(command) + QStringLiteral(" 1 --exposure 900 --gain 7 --framerate 1"));
        ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();
        EXPECT_DOUBLE_EQ(taken[QStringLiteral("framesPerSecond")].toDouble(), 1);
        EXPECT_DOUBLE_EQ(taken[QStringLiteral("exposureMsec")].toDouble(), 900);
        EXPECT_EQ(taken[QStringLiteral("mastergain")].toInt(), 7);
    }
}

TEST_F(FramesOfACamera, AreTakenAsTheCameraHasItUnlessTold)
{
    const QJsonObject taken = object(QStringLiteral("survey 1 --gain 100"));
    EXPECT_DOUBLE_EQ(taken[QStringLiteral("framesPerSecond")].toDouble(), 2);
    EXPECT_DOUBLE_EQ(taken[QStringLiteral("exposureMsec")].toDouble(), 40);
    EXPECT_EQ(taken[QStringLiteral("mastergain")].toInt(), 100);
}

TEST_F(FramesOfACamera, CanBeTakenBySurveyAsByDetectWithAuto)
{
    const QJsonObject taken = object(QStringLiteral("survey 1 --auto"));
    EXPECT_EQ(m_status, Companion::Succeeded) << m_err.constData();
    EXPECT_DOUBLE_EQ(taken[QStringLiteral("exposureMsec")].toDouble(), 998);
    EXPECT_EQ(taken[QStringLiteral("mastergain")].toInt(), 50);
}

TEST_F(FramesOfACamera, AreNotTakenOutOfTheCamerasRangeWhichOneLineNames)
{
    const struct
    {
        const char* options;
        const char* message;
    } cases[] = {
        {"--exposure 499", "The exposure of this camera goes from 2.00 to 498.00 ms at 2.00 images "
                           "per second, not 499.00 ms."},
        {"--exposure 0", "The exposure of this camera goes from 2.00 to 498.00 ms at 2.00 images "
                         "per second, not 0.00 ms."},
        {"--exposure 1999 --framerate 0.5",
         "The exposure of this camera goes from 2.00 to 1998.00 ms at 0.50 images per second, not "
         "1999.00 ms."},
        {"--framerate 2.1",
         "The frame rate of this camera goes from 0.50 to 2.00 images per second, not 2.10."},
        {"--framerate 0.4",
         "The frame rate of this camera goes from 0.50 to 2.00 images per second, not 0.40."},
        {"--gain 101", "The gain of this camera goes from 0 to 100, not 101."},
        {"--gain -1", "The gain of this camera goes from 0 to 100, not -1."},
    };
    const char* command = "detect";
    for (const auto& [options, message] : cases) {
        EXPECT_EQ(run(QLatin1String(command) + QStringLiteral(" 1 ") + QLatin1String(options)),
                  QByteArray());
        EXPECT_EQ(m_status, Companion::CommandFailed) << options;
        EXPECT_EQ(m_err, QByteArray("vorn-hotpixel: ") + message + '\n');
        command = "survey";
    }
    EXPECT_EQ(m_simulated.openCameras(), 0);
}

// The program's cap lies below its slowest rate.
TEST_F(FramesOfACamera, HaveOneRateWhereTheCameraIsAlwaysFast)
{
    CameraDescription fast = description();
    fast.serial = QStringLiteral("S1");
    fast.slowestFrame = 4;
    SimulatedCameraSdk simulated({{fast}, 50, m_home.path(), {}});
    simulated.control(QStringLiteral("S1")).setCovered(true);
    const auto errorOf = [&simulated](const char* rate) {
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion([&] { return std::make_unique<FaultyCameraSdk>(simulated); }, {},
                            recorded.console(), interruption);
        companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("survey"),
                       QStringLiteral("1"), QStringLiteral("--framerate"), QLatin1String(rate)});
        return recorded.err();
    };
    EXPECT_EQ(errorOf("1"), QByteArray("vorn-hotpixel: The frame rate of this camera goes from "
                                       "2.50 to 2.50 images per second, not 1.00.\n"));
    EXPECT_EQ(errorOf("2.5"), QByteArray());
}

TEST_F(FramesOfACamera, CanBeTakenAtTheLimitsAsTheyAreShown)
{
    for (const char* options : {"--exposure 498", "--exposure 2 --framerate 2",
                                "--framerate 0.5 --exposure 1998", "--gain 0", "--gain 100"}) {
        run(QStringLiteral("survey 1 ") + QLatin1String(options));
        EXPECT_EQ(m_status, Companion::Succeeded) << options << m_err.constData();
    }
}

TEST_F(FramesOfACamera, AreNotAskedForInAWayThatMakesNoSense)
{
    const struct
    {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"1 --exposure long", "The exposure has to be a number, not \"long\"."},
        {"1 --exposure nan", "The exposure has to be a number, not \"nan\"."},
        {"1 --framerate inf", "The frame rate has to be a number, not \"inf\"."},
        {"1 --gain 1.5", "The gain has to be a whole number, not \"1.5\"."},
        {"1 --auto --gain 5", "--auto sets exposure, gain and frame rate itself: --exposure, "
                              "--gain and --framerate go without."},
        {"1 --auto --framerate 1", "--auto sets exposure, gain and frame rate itself: --exposure, "
                                   "--gain and --framerate go without."},
        {"--frames f --exposure 5", "--auto, --exposure, --gain and --framerate are for a camera, "
                                    "and --frames takes none."},
        {"--frames f --auto", "--auto, --exposure, --gain and --framerate are for a camera, and "
                              "--frames takes none."},
    };
    for (const auto& [arguments, message] : cases) {
        for (const QByteArray command : {"detect", "survey"}) {
            run(QLatin1String(command) + u' ' + QLatin1String(arguments));
            EXPECT_EQ(m_status, Companion::WrongUse) << arguments;
            EXPECT_EQ(m_err, QByteArray("vorn-hotpixel: ") + message + " See \"vorn-hotpixel " +
                                 command + " --help\".\n");
        }
    }
}

TEST_F(FramesOfACamera, ThatShowNothingAtAShortExposureAreSaidToBeShort)
{
    const QByteArray line = "Nothing was found, and an exposure of 40.00 ms is short: most "
                            "hotpixels show in longer ones.\n";
    for (const char* command : {"detect", "survey"}) {
        EXPECT_EQ(run(QLatin1String(command) + QStringLiteral(" 1 --threshold 255")).count(line),
                  1);
        EXPECT_TRUE(object(QLatin1String(command) + QStringLiteral(" 1 --threshold 255"))
                        .contains(QStringLiteral("shortExposure")));
        // A long one has no such excuse, and what was found needs none.
        for (const char* options :
             {" 1 --threshold 255 --framerate 1 --exposure 600", " 1 --threshold 5 --gain 100"}) {
            EXPECT_FALSE(object(QLatin1String(command) + QLatin1String(options))
                             .contains(QStringLiteral("shortExposure")))
                << options;
        }
    }
}

// The first image with the new settings may be the third one.
TEST_F(FramesOfACamera, LeaveOutThoseOfTheSettingsBefore)
{
    class Counting final : public FaultyCameraSdk
    {
    public:
        Counting(CameraSdk& below, int& images)
            : FaultyCameraSdk(below)
            , m_images(images)
        {}
        std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                    char** memory) override
        {
            ++m_images;
            return FaultyCameraSdk::getFrameMemory(handle, first, second, memory);
        }

    private:
        int& m_images;
    };
    const auto imagesOf = [this](const QString& arguments) {
        int images = 0;
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion([&] { return std::make_unique<Counting>(m_simulated, images); }, {},
                            recorded.console(), interruption);
        EXPECT_EQ(
            companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' ')), 0);
        return images;
    };
    // Ten, and the one that tells that they are complete.
    EXPECT_EQ(imagesOf(QStringLiteral("survey 1")), 11);
    EXPECT_EQ(imagesOf(QStringLiteral("survey 1 --gain 5")), 13);
    EXPECT_EQ(imagesOf(QStringLiteral("detect 1 --exposure 50")), 13);
    EXPECT_EQ(imagesOf(QStringLiteral("detect 1 --framerate 1")), 13);
}
