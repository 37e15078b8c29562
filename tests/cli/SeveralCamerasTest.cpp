// SPDX-License-Identifier: MIT
// Commands that were given several cameras, or all.

#include "cli/SeveralCameras.h"

#include "cli/Command.h"
#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "hotpixel/BadpixelListFile.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/FaultyCameraSdk.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

CameraDescription cameraOf(const char* serial, std::uint32_t devId)
{
    CameraDescription camera;
    camera.serial = QLatin1String(serial);
    camera.model = QStringLiteral("Small");
    camera.devId = devId;
    camera.camId = devId;
    camera.width = 64;
    camera.height = 48;
    camera.hotPixels = 10;
    camera.factoryEntries = 2;
    camera.userEntries = 3;
    camera.userCapacity = 20;
    return camera;
}

/// Calls what a test wants whenever a camera is opened, and when the list of cameras is there.
class WatchedSdk final : public FaultyCameraSdk
{
public:
    WatchedSdk(CameraSdk& sdk, std::function<void()> onOpen,
               std::function<void(CameraList&)> onList)
        : FaultyCameraSdk(sdk)
        , m_onOpen(std::move(onOpen))
        , m_onList(std::move(onList))
    {}

    std::int32_t initCamera(Handle* handle, void* window) override
    {
        m_onOpen();
        return FaultyCameraSdk::initCamera(handle, window);
    }

    std::int32_t getCameraList(CameraList* list) override
    {
        const std::int32_t result = FaultyCameraSdk::getCameraList(list);
        m_onList(*list);
        return result;
    }

private:
    std::function<void()> m_onOpen;
    std::function<void(CameraList&)> m_onList;
};

/// The companion on three cameras; the second one is in use.
class SeveralCameras : public testing::Test
{
protected:
    SeveralCameras()
    {
        for (const QString& serial : m_simulated.serials()) {
            m_simulated.control(serial).setCovered(true);
        }
        m_simulated.control(QStringLiteral("S2")).setHeldElsewhere(true);
    }

    /// @p arguments are separated by blanks; DIR is a folder of the test.
    int run(QString arguments)
    {
        arguments.replace(QStringLiteral("DIR"), m_home.path());
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion(
            [&] {
                return std::make_unique<WatchedSdk>(
                    m_simulated, [&] { m_onOpen(interruption); }, m_onList);
            },
            {}, recorded.console(), interruption);
        const int status =
            companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' '));
        m_out = recorded.out().replace(m_home.path().toUtf8(), "DIR");
        m_err = recorded.err().replace(m_home.path().toUtf8(), "DIR");
        return status;
    }

    /// The objects that the last run printed, each of which has to be on a line of its own.
    [[nodiscard]] std::vector<QJsonObject> objects() const
    {
        std::vector<QJsonObject> objects;
        for (const QByteArray& line : m_out.trimmed().split('\n')) {
            QJsonParseError error;
            objects.push_back(QJsonDocument::fromJson(line, &error).object());
            EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        }
        return objects;
    }

    [[nodiscard]] QString path(const char* name) const
    {
        return m_home.filePath(QLatin1String(name));
    }

    void writeFile(const char* name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir m_home;
    SimulatedCameraSdk m_simulated{
        {{cameraOf("S1", 1), cameraOf("S2", 2), cameraOf("S3", 3)}, 40, path("eeprom"), {}}};
    std::function<void(Interruption&)> m_onOpen = [](Interruption&) {};
    std::function<void(CameraList&)> m_onList = [](CameraList&) {};
    QByteArray m_out;
    QByteArray m_err;
};

} // namespace

TEST_F(SeveralCameras, AreWorkedThroughAlsoAfterOneThatFails)
{
    EXPECT_EQ(run(QStringLiteral("read 1 2 S3")), Companion::CommandFailed);
    EXPECT_EQ(m_err, QByteArray("2: The camera (Small, SerNo S2, Dev 2) is in use by another "
                                "program.\n"
                                "vorn-hotpixel: Something is wrong with 1 of 3 cameras.\n"));
    EXPECT_TRUE(m_out.startsWith("Small, SerNo S1, Dev 1\nFactory list: 2 entries\n"));
    EXPECT_EQ(m_out.count("User list: 3 entries, at most 20"), 2);
    EXPECT_TRUE(m_out.endsWith("\n\n"
                               "Camera  Model  Result\n"
                               "S1      Small  2 factory, 3 user\n"
                               "S2      Small  The camera (Small, SerNo S2, Dev 2) is in use by "
                               "another program.\n"
                               "S3      Small  2 factory, 3 user\n"))
        << m_out.constData();
    EXPECT_EQ(m_simulated.openCameras(), 0);
}

TEST_F(SeveralCameras, EndWithStatus0WhenAllAreDone)
{
    EXPECT_EQ(run(QStringLiteral("read 3 1")), Companion::Succeeded);
    EXPECT_EQ(m_err, QByteArray());
    EXPECT_LT(m_out.indexOf("SerNo S3"), m_out.indexOf("SerNo S1")) << "in the order of the names";
}

TEST_F(SeveralCameras, AreALineEachForMachines)
{
    EXPECT_EQ(run(QStringLiteral("read all --json")), Companion::CommandFailed);
    const std::vector<QJsonObject> lines = objects();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0][QStringLiteral("done")].toBool());
    EXPECT_EQ(lines[0][QStringLiteral("user")].toArray().size(), 3);
    EXPECT_FALSE(lines[0].contains(QStringLiteral("error")));
    EXPECT_FALSE(lines[1][QStringLiteral("done")].toBool(true));
    EXPECT_EQ(lines[1][QStringLiteral("error")].toString(),
              QStringLiteral("The camera (Small, SerNo S2, Dev 2) is in use by another program."));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const QString serial = QStringLiteral("S%1").arg(i + 1);
        EXPECT_EQ(lines[i][QStringLiteral("name")].toString(), serial);
        EXPECT_EQ(lines[i][QStringLiteral("camera")].toObject()[QStringLiteral("serNo")].toString(),
                  serial);
    }
}

TEST_F(SeveralCameras, AreSeveralForMachinesAlsoWhereAllIsOne)
{
    for (const char* serial : {"S2", "S3"}) {
        m_simulated.control(QLatin1String(serial)).setPlugged(false);
    }
    EXPECT_EQ(run(QStringLiteral("read all --json")), Companion::Succeeded);
    ASSERT_EQ(objects().size(), 1);
    EXPECT_TRUE(objects().front()[QStringLiteral("done")].toBool());
}

TEST_F(SeveralCameras, HaveNothingInTheObjectOfASingleOne)
{
    EXPECT_EQ(run(QStringLiteral("read 1 --json")), Companion::Succeeded);
    ASSERT_EQ(objects().size(), 1);
    for (const char* key : {"done", "name", "error"}) {
        EXPECT_FALSE(objects().front().contains(QLatin1String(key))) << key;
    }
    EXPECT_FALSE(run(QStringLiteral("read 1")) != 0 || m_out.contains("Result"));
}

TEST_F(SeveralCameras, HaveATurnEachHoweverOftenTheyAreNamed)
{
    EXPECT_EQ(run(QStringLiteral("read 1 S1 S9 1 S9")), Companion::CommandFailed);
    EXPECT_EQ(m_out.count("Small, SerNo S1, Dev 1"), 1);
    EXPECT_TRUE(m_err.endsWith("Something is wrong with 1 of 2 cameras.\n")) << m_err.constData();
}

TEST_F(SeveralCameras, DontWaitForOneThatIsNotConnected)
{
    EXPECT_EQ(run(QStringLiteral("read S9 1 --json")), Companion::CommandFailed);
    const std::vector<QJsonObject> lines = objects();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0][QStringLiteral("name")].toString(), QStringLiteral("S9"));
    EXPECT_FALSE(lines[0].contains(QStringLiteral("camera")));
    EXPECT_EQ(
        lines[0][QStringLiteral("error")].toString(),
        QStringLiteral("No camera with the Dev number or serial number \"S9\" is connected."));
    EXPECT_TRUE(lines[1][QStringLiteral("done")].toBool());
}

TEST_F(SeveralCameras, FailWhenThereAreNone)
{
    for (const QString& serial : m_simulated.serials()) {
        m_simulated.control(serial).setPlugged(false);
    }
    EXPECT_EQ(run(QStringLiteral("read all")), Companion::CommandFailed);
    EXPECT_EQ(m_err, QByteArray("vorn-hotpixel: No camera is connected.\n"));
}

TEST_F(SeveralCameras, CanBePulledBeforeItIsTheirTurn)
{
    int openings = 0;
    m_onOpen = [&](Interruption&) {
        if (++openings == 1) {
            m_simulated.control(QStringLiteral("S3")).setPlugged(false);
        }
    };
    EXPECT_EQ(run(QStringLiteral("read 1 3")), Companion::CommandFailed);
    EXPECT_TRUE(m_err.startsWith("3: The camera is not connected any more.\n"))
        << m_err.constData();
}

// One that is plugged in meanwhile may have the Dev number of one that has gone.
TEST_F(SeveralCameras, AreKnownByTheirSerialNumbersToo)
{
    bool isExchanged = false;
    m_onOpen = [&](Interruption&) { isExchanged = true; };
    m_onList = [&](CameraList& list) {
        for (std::uint32_t i = 0; isExchanged && i < list.count; ++i) {
            list.entries[i].serNo[0] = 'T'; // instead of S
        }
    };
    EXPECT_EQ(run(QStringLiteral("read 1 3")), Companion::CommandFailed);
    EXPECT_TRUE(m_err.startsWith("3: The camera is not connected any more.\n"))
        << m_err.constData();
}

TEST_F(SeveralCameras, EndWithTheGreatestStatusOfTheirTurns)
{
    Command command;
    command.run = [](const QStringList& values, const QCommandLineParser& /*parser*/,
                     CommandContext& context) {
        context.status = values.front() == QLatin1String("1") ? 3 : 0;
    };
    RecordedConsole recorded;
    Interruption interruption;
    const std::vector<SdkSwitch> switches;
    CommandContext context{[this]() -> CameraSdk& { return m_simulated; }, switches,
                           recorded.console(), interruption, false};
    const QCommandLineParser parser;
    cli::runForEach(command, {QStringLiteral("1"), QStringLiteral("3")}, {}, parser, context);
    EXPECT_EQ(context.status, 3);
    EXPECT_TRUE(recorded.out().contains("S3      Small  done")) << recorded.out().constData();
}

TEST_F(SeveralCameras, AreNotBegunOnceTheEndIsAskedFor)
{
    m_onOpen = [](Interruption& interruption) { interruption.request(); };
    EXPECT_EQ(run(QStringLiteral("read 1 3 --json")), Companion::CommandFailed);
    const std::vector<QJsonObject> lines = objects();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0][QStringLiteral("error")].toString(), QStringLiteral("Interrupted."));
    EXPECT_EQ(lines[1][QStringLiteral("error")].toString(), QStringLiteral("Not begun."));
}

TEST_F(SeveralCameras, AreNotTriedOneByOneWithOptionsThatMakeNoSense)
{
    EXPECT_EQ(run(QStringLiteral("detect 1 3 --threshold 4")), Companion::WrongUse);
    EXPECT_EQ(m_err,
              QByteArray("vorn-hotpixel: The threshold has to be a number from 5 to 255, not "
                         "\"4\". See \"vorn-hotpixel detect --help\".\n"));
    EXPECT_EQ(m_out, QByteArray());
}

TEST_F(SeveralCameras, SaveAFileEachInTheFolderThatIsNamed)
{
    EXPECT_EQ(run(QStringLiteral("read 1 3 --out DIR/lists")), Companion::Succeeded)
        << m_err.constData();
    EXPECT_EQ(QDir(path("lists")).entryList(QDir::Files),
              (QStringList{QStringLiteral("S1.txt"), QStringLiteral("S3.txt")}));
    EXPECT_EQ(hotpixel::readListFile(path("lists/S3.txt")).size(), 3);
    EXPECT_TRUE(m_out.contains("User list saved to DIR/lists/S3.txt\n"));

    EXPECT_EQ(run(QStringLiteral("detect 1 3 --out DIR/d --csv DIR/d --report DIR/d --save-frames "
                                 "DIR/f")),
              Companion::Succeeded)
        << m_err.constData();
    EXPECT_EQ(QDir(path("d")).entryList(QDir::Files).join(u' '),
              QStringLiteral("S1.csv S1.html S1.txt S3.csv S3.html S3.txt"));
    EXPECT_EQ(QDir(path("f/S3")).entryList(QDir::Files).size(), 10);
    EXPECT_EQ(run(QStringLiteral("survey 1 3 --report DIR/s")), Companion::Succeeded);
    EXPECT_EQ(QDir(path("s")).entryList(QDir::Files).size(), 2);
}

TEST_F(SeveralCameras, SaveFilesWithTheSuffixOfTheirFormat)
{
    EXPECT_EQ(run(QStringLiteral("read 1 3 --out DIR/l --format siril")), Companion::Succeeded)
        << m_err.constData();
    EXPECT_EQ(QDir(path("l")).entryList(QDir::Files).join(u' '), QStringLiteral("S1.lst S3.lst"));
}

TEST_F(SeveralCameras, RefuseAFileWhereAFolderIsNeeded)
{
    writeFile("list.txt", "keep me");
    EXPECT_EQ(run(QStringLiteral("read 1 3 --out DIR/list.txt")), Companion::WrongUse);
    EXPECT_EQ(m_err, QByteArray("vorn-hotpixel: With several cameras --out names a folder, and "
                                "DIR/list.txt is none. See \"vorn-hotpixel read --help\".\n"));
    EXPECT_EQ(run(QStringLiteral("read all --out=")), Companion::WrongUse);
    QFile file(path("list.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("keep me"));
}

TEST_F(SeveralCameras, CanBeWrittenInto)
{
    writeFile("list.txt", "1 2 1\n3 4 1\n");
    EXPECT_EQ(run(QStringLiteral("write 1 3 DIR/list.txt --yes --json")), Companion::Succeeded)
        << m_err.constData();
    for (const QJsonObject& line : objects()) {
        EXPECT_EQ(line[QStringLiteral("written")].toObject()[QStringLiteral("entries")].toInt(), 2);
    }
    EXPECT_EQ(run(QStringLiteral("read 3")), Companion::Succeeded);
    EXPECT_TRUE(m_out.contains("(1, 2)  (3, 4)")) << m_out.constData();
}

// Each serial number is the Dev number of the other.
TEST_F(SeveralCameras, AreToldApartByAllWhateverTheirNamesAre)
{
    SimulatedCameraSdk crossed{{{cameraOf("7", 1000), cameraOf("1000", 7)}, 40, path("x"), {}}};
    RecordedConsole recorded;
    Interruption interruption;
    Companion companion([&] { return std::make_unique<FaultyCameraSdk>(crossed); }, {},
                        recorded.console(), interruption);
    EXPECT_EQ(companion.run(
                  {QStringLiteral("vorn-hotpixel"), QStringLiteral("read"), QStringLiteral("all")}),
              Companion::Succeeded)
        << recorded.err().constData();
    EXPECT_EQ(recorded.out().count("SerNo 1000, Dev 7"), 1);
    EXPECT_EQ(recorded.out().count("SerNo 7, Dev 1000"), 1);
}
