// SPDX-License-Identifier: MIT
#include "simulator/BusDescription.h"

#include "camera/CameraSdk.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>

namespace {

class SettingsFile : public ::testing::Test
{
protected:
    BusDescription read(const QByteArray& text)
    {
        // A file of its own for each text: QSettings keeps what it has read by name and time.
        m_name = m_folder.filePath(QStringLiteral("cameras%1.ini").arg(++m_files));
        QFile file(m_name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return simulator::readBus(m_name);
    }

    /// What is said about the file, without its name.
    std::string complaint(const QByteArray& text)
    {
        const BusDescription bus = read(text);
        EXPECT_EQ(bus.cameras.size(), 4U) << "the built-in cameras";
        const QString suffix = QStringLiteral("; the built-in cameras are used instead");
        EXPECT_TRUE(bus.message.startsWith(m_name + QStringLiteral(": ")));
        EXPECT_TRUE(bus.message.endsWith(suffix));
        return bus.message.mid(m_name.size() + 2).chopped(suffix.size()).toStdString();
    }

    int m_files = 0;
    QTemporaryDir m_folder;
    QString m_name;
};

TEST_F(SettingsFile, DescribesEveryProperty)
{
    const BusDescription bus = read("[bus]\n"
                                    "speed=12.5\n"
                                    "[camera1]\n"
                                    "serial=AB-12_3\n"
                                    "model=My camera\n"
                                    "camId=5\n"
                                    "devId=6\n"
                                    "word2=7\n"
                                    "width=640\n"
                                    "height=480\n"
                                    "sensor=bayer\n"
                                    "colorMode=6\n"
                                    "pixelClockMin=2\n"
                                    "pixelClockMax=90\n"
                                    "pixelClock=30\n"
                                    "lineBlanking=100\n"
                                    "frameBlanking=10\n"
                                    "slowestFrame=9\n"
                                    "frameRate=4\n"
                                    "exposure=15.5\n"
                                    "systemGain=0.05\n"
                                    "readNoise=3\n"
                                    "darkCurrent=4\n"
                                    "doublingTemperature=6\n"
                                    "pedestal=9\n"
                                    "temperature=31\n"
                                    "hotPixels=10\n"
                                    "factoryEntries=2\n"
                                    "userEntries=3\n"
                                    "userCapacity=50\n"
                                    "seed=99\n"
                                    "firmwareUpload=true\n"
                                    "firmwareUploadMsec=1500\n"
                                    "heldElsewhere=true\n"
                                    "plugged=false\n");
    ASSERT_EQ(bus.message, QString());
    EXPECT_EQ(bus.speed, 12.5);
    ASSERT_EQ(bus.cameras.size(), 1U);
    const CameraDescription& camera = bus.cameras[0];
    EXPECT_EQ(camera.serial, QStringLiteral("AB-12_3"));
    EXPECT_EQ(camera.model, QStringLiteral("My camera"));
    EXPECT_EQ(camera.camId, 5U);
    EXPECT_EQ(camera.devId, 6U);
    EXPECT_EQ(camera.word2, 7U);
    EXPECT_EQ(camera.width, 640);
    EXPECT_EQ(camera.height, 480);
    EXPECT_TRUE(camera.bayer);
    EXPECT_EQ(camera.colorMode, 6);
    EXPECT_EQ(camera.pixelClockMin, 2);
    EXPECT_EQ(camera.pixelClockMax, 90);
    EXPECT_EQ(camera.pixelClockDefault, 30);
    EXPECT_EQ(camera.lineBlanking, 100);
    EXPECT_EQ(camera.frameBlanking, 10);
    EXPECT_EQ(camera.slowestFrame, 9);
    EXPECT_EQ(camera.frameRate, 4.0);
    EXPECT_EQ(camera.exposureMsec, 15.5);
    EXPECT_EQ(camera.dnPerElectron, 0.05);
    EXPECT_EQ(camera.readNoiseElectrons, 3.0);
    EXPECT_EQ(camera.darkElectronsPerSecond, 4.0);
    EXPECT_EQ(camera.doublingKelvin, 6.0);
    EXPECT_EQ(camera.pedestalDn, 9.0);
    EXPECT_EQ(camera.temperature, 31.0);
    EXPECT_EQ(camera.hotPixels, 10);
    EXPECT_EQ(camera.factoryEntries, 2);
    EXPECT_EQ(camera.userEntries, 3);
    EXPECT_EQ(camera.userCapacity, 50);
    EXPECT_EQ(camera.seed, 99U);
    EXPECT_TRUE(camera.firmwareUpload);
    EXPECT_EQ(camera.firmwareUploadMsec, 1500);
    EXPECT_TRUE(camera.heldElsewhere);
    EXPECT_FALSE(camera.plugged);
}

TEST_F(SettingsFile, LeavesWhatItDoesNotNameAtTheDefaults)
{
    const BusDescription bus = read("[camera1]\nsensor=mono\n[camera2]\nsensor=bayer\n");
    ASSERT_EQ(bus.message, QString());
    ASSERT_EQ(bus.cameras.size(), 2U);
    EXPECT_EQ(bus.cameras[0].serial, QStringLiteral("SIM0001"));
    EXPECT_EQ(bus.cameras[1].serial, QStringLiteral("SIM0002"));
    EXPECT_EQ(bus.cameras[1].devId, 2U);
    EXPECT_EQ(bus.cameras[0].colorMode, 6);
    EXPECT_EQ(bus.cameras[1].colorMode, 11);
    EXPECT_EQ(bus.cameras[0].width, CameraDescription().width);
    EXPECT_EQ(bus.speed, 1.0);
}

TEST_F(SettingsFile, MayDescribeAnEmptyBus)
{
    const BusDescription bus = read("[bus]\nspeed=1\n");
    EXPECT_EQ(bus.message, QString());
    EXPECT_TRUE(bus.cameras.empty());
}

TEST_F(SettingsFile, NamesRecordedFramesFromItsOwnFolder)
{
    const BusDescription bus =
        read("[camera1]\nrecordedFrames=dark, long/frames\nrecordedFramesPlay=covered\n");
    ASSERT_EQ(bus.message, QString());
    EXPECT_EQ(bus.cameras[0].recordedFrames,
              m_folder.filePath(QStringLiteral("dark, long/frames")));
    EXPECT_TRUE(bus.cameras[0].recordedOnlyCovered);
    EXPECT_EQ(bus.cameras[0].hotPixels, 0) << "the recording has its own";
    EXPECT_EQ(bus.cameras[0].factoryEntries, 0);
    EXPECT_EQ(bus.cameras[0].userEntries, 0);
}

TEST_F(SettingsFile, WithAMistakeGivesOneClearMessageAndTheBuiltInCameras)
{
    const struct
    {
        const char* text;
        const char* complaint;
    } mistakes[] = {
        {"[camera1]\nwidth=wide\n",
         "[camera1] width must be a whole number from 4 to 16384, not \"wide\""},
        {"[camera1]\nwidth=0\n",
         "[camera1] width must be a whole number from 4 to 16384, not \"0\""},
        {"[camera1]\nheight=\n",
         "[camera1] height must be a whole number from 4 to 16384, not \"\""},
        {"[camera1]\nexposure=nan\n",
         "[camera1] exposure must be a number from 0.001 to 1e+06, not \"nan\""},
        {"[camera1]\nsensor=infrared\n",
         "[camera1] sensor must be mono or bayer, not \"infrared\""},
        {"[camera1]\nplugged=maybe\n", "[camera1] plugged must be false or true, not \"maybe\""},
        {"[camera1]\ncolorMode=1\n", "[camera1] colorMode must be 0 or 6 or 11, not \"1\""},
        {"[camera1]\nserial=../x\n",
         "[camera1] serial must have 1 to 15 plain characters, not \"../x\""},
        {"[camera1]\nserial=\n", "[camera1] serial must have 1 to 15 plain characters, not \"\""},
        {"[camera1]\nmodel=0123456789abcdef\n",
         "[camera1] model must have 1 to 15 plain characters, not \"0123456789abcdef\""},
        {"[camera1]\nwidht=640\n", "[camera1] there is no setting \"widht\""},
        {"[camera1]\npixelClockMax=20\npixelClock=30\n",
         "[camera1] pixelClock must be a whole number from 10 to 20, not \"30\""},
        {"[camera1]\nhotPixels=999999\n",
         "[camera1] hotPixels must be a whole number from 0 to 5000, not \"999999\""},
        {"[camera1]\nwidth=16384\nheight=16384\n",
         "camera 1: a sensor of 16384 x 16384 pixels is too large"},
        {"[camera1]\nserial=A\n[camera2]\nserial=A\n", "the serial number A is there twice"},
        {"[camera1]\ndevId=3\n[camera2]\ndevId=3\n", "the devId 3 is there twice"},
        {"[lens]\nfocus=1\n", "[lens] is neither [bus] nor a camera"},
        {"width=3\n", "\"width\" stands outside of a group"},
        {"[bus]\nspeed=0\n", "[bus] speed must be a number from 0.01 to 1000, not \"0\""},
        {"[bus]\ncolour=1\n", "[bus] there is no setting \"colour\""},
        // INI files may spell any letter of a name with a percent sign, a line's end too.
        {"wi%0Adth=3\n", "\"wi?dth\" stands outside of a group"},
        {"[le%0Ans]\nfocus=1\n", "[le?ns] is neither [bus] nor a camera"},
        {"[camera%0A1]\nwi%0Adth=3\n", "[camera?1] there is no setting \"wi?dth\""},
        {"[camera%0A1]\nwidth=wide\n",
         "[camera?1] width must be a whole number from 4 to 16384, not \"wide\""},
        {"[a123456789b123456789c123456789d123456789e12]\nfocus=1\n",
         "[a123456789b123456789c123456789d123456789] is neither [bus] nor a camera"},
        {"[camera%253]\nwidth=wide\n",
         "[camera%3] width must be a whole number from 4 to 16384, not \"wide\""},
        {"[camera%253]\nexposure=nan\n",
         "[camera%3] exposure must be a number from 0.001 to 1e+06, not \"nan\""},
    };
    for (const auto& mistake : mistakes) {
        EXPECT_EQ(complaint(mistake.text), mistake.complaint);
    }
}

TEST_F(SettingsFile, ThatCannotBeReadGivesOneClearMessage)
{
    EXPECT_EQ(complaint(QByteArray(2 * 1024 * 1024, '\n')), "the file is too large");
    for (const QString& name : {m_folder.path(), m_folder.filePath(QStringLiteral("missing"))}) {
        const BusDescription bus = simulator::readBus(name);
        EXPECT_EQ(bus.message,
                  name + QStringLiteral(": there is no such file; the built-in cameras "
                                        "are used instead"));
        EXPECT_EQ(bus.cameras.size(), 4U);
    }
}

TEST_F(SettingsFile, CannotMakeObjectsOfAnyType)
{
    for (const char* text :
         {"[camera1]\nserial=@Variant(\\0\\0\\0\\x41)\n", "[camera1]\nserial=@Rect(1 2 3 4)\n",
          "[camera1]\nserial=\\x40Variant(x)\n"}) {
        EXPECT_EQ(complaint(text), "the characters @ and \\ can't be used");
    }
}

TEST_F(SettingsFile, SurvivesRubbish)
{
    for (const QByteArray& rubbish :
         {QByteArray("\0\0\0", 3), QByteArray("\xff\xfe[\0b", 5), QByteArray("[[[]]]===\n\\x"),
          QByteArray("[camera1]\nserial=\\x0\n"), QByteArray("[camera1\nwidth"),
          QByteArray(1000, '[')}) {
        const BusDescription bus = read(rubbish);
        EXPECT_TRUE(!bus.message.isEmpty() || bus.cameras.size() <= 1) << rubbish.toHex().data();
    }
}

TEST_F(SettingsFile, IsNamedByTheEnvironment)
{
    qputenv("VORN_SIMULATED_CAMERAS", "/no/such/file.ini");
    EXPECT_TRUE(simulator::readBus().message.startsWith(QStringLiteral("/no/such/file.ini: ")));
    qunsetenv("VORN_SIMULATED_CAMERAS");
}

TEST_F(SettingsFile, LiesInTheConfigurationFolderOfAllPrograms)
{
    qunsetenv("VORN_SIMULATED_CAMERAS");
    ASSERT_EQ(simulator::readBus().cameras.size(), 4U) << "none there yet";
    QDir().mkpath(QFileInfo(simulator::settingsFileName()).path());
    QFile file(simulator::settingsFileName());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[camera1]\nserial=HOME\n");
    file.close();
    const BusDescription bus = simulator::readBus();
    file.remove();
    ASSERT_EQ(bus.cameras.size(), 1U);
    EXPECT_EQ(bus.cameras[0].serial, QStringLiteral("HOME"));
    EXPECT_TRUE(
        file.fileName().endsWith(QStringLiteral("/VornHotpixelEditor/simulated-cameras.ini")));
}

TEST(EepromFolder, IsTheSameForEveryProgramAndCanBeSet)
{
    qunsetenv("VORN_SIMULATED_EEPROMS");
    EXPECT_TRUE(simulator::eepromFolder().endsWith(QStringLiteral("/VornHotpixelEditor/eeprom")));
    qputenv("VORN_SIMULATED_EEPROMS", "/somewhere/else");
    EXPECT_EQ(simulator::eepromFolder(), QStringLiteral("/somewhere/else"));
    qunsetenv("VORN_SIMULATED_EEPROMS");
}

TEST(BuiltInBus, HasTheFourCameras)
{
    const BusDescription bus = simulator::builtInBus();
    ASSERT_EQ(bus.cameras.size(), 4U);
    EXPECT_EQ(bus.cameras[0].width, 1280);
    EXPECT_EQ(bus.cameras[0].height, 1024);
    EXPECT_FALSE(bus.cameras[0].bayer);
    EXPECT_EQ(bus.cameras[1].width, 2592);
    EXPECT_EQ(bus.cameras[1].height, 1944);
    EXPECT_TRUE(bus.cameras[1].bayer);
    EXPECT_EQ(bus.cameras[2].width, 5472);
    EXPECT_EQ(bus.cameras[2].height, 3648);
    EXPECT_TRUE(bus.cameras[2].bayer);
    EXPECT_TRUE(bus.cameras[2].firmwareUpload);
    EXPECT_TRUE(bus.cameras[3].heldElsewhere);
    std::set<QString> serials;
    std::set<std::uint32_t> devIds;
    for (const CameraDescription& camera : bus.cameras) {
        EXPECT_GE(camera.userCapacity, 25);
        EXPECT_TRUE(camera.plugged);
        serials.insert(camera.serial);
        devIds.insert(camera.devId);
    }
    EXPECT_EQ(serials.size(), 4U);
    EXPECT_EQ(devIds.size(), 4U);
}

TEST(CreateCameraSdk, GivesTheSimulatedCameras)
{
    const std::unique_ptr<CameraSdk> sdk = createCameraSdk();
    ASSERT_NE(sdk, nullptr);
    std::int32_t count = 0;
    EXPECT_EQ(sdk->getNumberOfCameras(&count), 0);
    EXPECT_EQ(count, 4);
    EXPECT_NE(dynamic_cast<SimulatedCameraSdk*>(sdk.get()), nullptr);
}

} // namespace
