// SPDX-License-Identifier: MIT
// `survey` and the exact `detect` with a simulated camera.

#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/ForwardingCameraSdk.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// The companion on one covered camera whose lists have entries and room for more.
class SurveyOfACamera : public testing::Test
{
protected:
    static CameraDescription description()
    {
        CameraDescription camera;
        camera.serial = QStringLiteral("S1");
        camera.model = QStringLiteral("Small");
        camera.width = 64;
        camera.height = 48;
        camera.bayer = true;
        camera.colorMode = 11;
        camera.lineBlanking = 10000; // which lets it expose for a second
        camera.slowestFrame = 100;
        camera.hotPixels = 15;
        camera.factoryEntries = 2;
        camera.userEntries = 3;
        camera.userCapacity = 9;
        return camera;
    }

    QJsonObject run(QStringList arguments)
    {
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion([this] { return std::make_unique<ForwardingCameraSdk>(m_simulated); },
                            {}, recorded.console(), interruption);
        m_status = companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments +
                                 QStringList(QStringLiteral("--json")));
        m_err = recorded.err();
        return QJsonDocument::fromJson(recorded.out()).object();
    }

    QTemporaryDir m_home;
    SimulatedCameraSdk m_simulated{{{description()}, 20, m_home.path(), {}}};
    int m_status = -1;
    QByteArray m_err;

    void SetUp() override { m_simulated.control(QStringLiteral("S1")).setCovered(true); }
};

} // namespace

TEST_F(SurveyOfACamera, TellsWhichThresholdFillsItsList)
{
    const QJsonObject survey = run({QStringLiteral("survey"), QStringLiteral("1")});
    ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();
    EXPECT_EQ(survey[QStringLiteral("frames")].toInt(), 10);
    EXPECT_EQ(survey[QStringLiteral("planes")].toArray().size(), 5);
    EXPECT_EQ(survey[QStringLiteral("camera")].toObject()[QStringLiteral("serNo")].toString(),
              QStringLiteral("S1"));
    const QJsonObject capacity = survey[QStringLiteral("capacity")].toObject();
    EXPECT_EQ(capacity[QStringLiteral("entries")].toInt(), 9);
    EXPECT_EQ(capacity[QStringLiteral("taken")].toInt(), 3);
    const int found = capacity[QStringLiteral("found")].toInt(-1);
    EXPECT_GE(found, 0);
    EXPECT_LE(found, 6);
    EXPECT_EQ(m_simulated.openCameras(), 0);
}

TEST_F(SurveyOfACamera, IsSavedAsAReport)
{
    const QString file = m_home.filePath(QStringLiteral("page.html"));
    run({QStringLiteral("survey"), QStringLiteral("S1"), QStringLiteral("--report"), file});
    ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();
    QFile page(file);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray html = page.readAll();
    for (const char* part :
         {"<dt>serial number</dt><dd>S1</dd>", "<dt>exposure</dt>", "<dt>gain</dt>",
          "<dt>rate</dt>", "<dt>date</dt>", "<pre>vorn-hotpixel survey S1 --report "}) {
        EXPECT_TRUE(html.contains(part)) << part;
    }
}

TEST_F(SurveyOfACamera, SaysWhyThereIsNone)
{
    m_simulated.control(QStringLiteral("S1")).setCovered(false);
    CameraDescription large = description();
    large.width = 320;
    large.height = 240;
    SimulatedCameraSdk bright({{large}, 20, m_home.path(), {}});
    RecordedConsole recorded;
    Interruption interruption;
    Companion companion([&bright] { return std::make_unique<ForwardingCameraSdk>(bright); }, {},
                        recorded.console(), interruption);
    EXPECT_EQ(companion.run(
                  {QStringLiteral("vorn-hotpixel"), QStringLiteral("survey"), QStringLiteral("1")}),
              Companion::CommandFailed);
    EXPECT_EQ(recorded.err(),
              QByteArray("vorn-hotpixel: Too many Hotpixel have been found. Please make sure that "
                         "the sensor is completely obscured.\n"));
    EXPECT_EQ(bright.openCameras(), 0);
}

TEST_F(SurveyOfACamera, AgreesWithADetectionOfTheSameFrames)
{
    // Frames of a camera differ, so they are saved and looked at again.
    const QString folder = m_home.filePath(QStringLiteral("frames"));
    const QJsonObject live =
        run({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--clear"),
             QStringLiteral("--threshold"), QStringLiteral("60"), QStringLiteral("--auto"),
             QStringLiteral("--save-frames"), folder});
    ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 10);
    const QJsonObject files =
        run({QStringLiteral("detect"), QStringLiteral("--frames"), folder,
             QStringLiteral("--bayer"), QStringLiteral("--threshold"), QStringLiteral("60")});
    ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();
    // Files know no factory list.
    QJsonArray withoutKnown;
    const QJsonArray factory =
        run({QStringLiteral("read"), QStringLiteral("1")})[QStringLiteral("factory")].toArray();
    for (const QJsonValue& pixel : files[QStringLiteral("pixels")].toArray()) {
        if (!factory.contains(pixel)) {
            withoutKnown.append(pixel);
        }
    }
    EXPECT_EQ(live[QStringLiteral("pixels")].toArray(), withoutKnown);
    EXPECT_FALSE(withoutKnown.isEmpty());
}

TEST_F(SurveyOfACamera, PlaysBackTheFramesThatWereSaved)
{
    const QString folder = m_home.filePath(QStringLiteral("frames"));
    const QJsonObject live =
        run({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--clear"),
             QStringLiteral("--threshold"), QStringLiteral("60"), QStringLiteral("--auto"),
             QStringLiteral("--save-frames"), folder});
    ASSERT_EQ(m_status, Companion::Succeeded) << m_err.constData();

    CameraDescription played = description();
    played.serial = QStringLiteral("S1");
    played.recordedFrames = folder;
    // Ten frames go around, so any ten of them that follow each other are the same ten.
    SimulatedCameraSdk camera({{played}, 1, m_home.path(), {}});
    RecordedConsole recorded;
    Interruption interruption;
    Companion companion([&camera] { return std::make_unique<ForwardingCameraSdk>(camera); }, {},
                        recorded.console(), interruption);
    EXPECT_EQ(companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("detect"),
                             QStringLiteral("1"), QStringLiteral("--clear"),
                             QStringLiteral("--threshold"), QStringLiteral("60"),
                             QStringLiteral("--json")}),
              Companion::Succeeded)
        << recorded.err().constData();
    EXPECT_EQ(QJsonDocument::fromJson(recorded.out()).object()[QStringLiteral("pixels")],
              live[QStringLiteral("pixels")]);
}
