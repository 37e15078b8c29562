// SPDX-License-Identifier: MIT
// `check` with a simulated camera.

#include "camera/CameraSdk.h"
#include "tests/cli/CameraFixture.h"

#include <QJsonArray>

#include <algorithm>
#include <set>

namespace {

using Entries = CameraFixture::Entries;

/// A camera with a list that is right for --auto.
class Check : public testing::Test
{
protected:
    void SetUp() override
    {
        const auto made = m_fixture.run(QStringLiteral("detect 1 --auto --clear --write --yes"));
        ASSERT_EQ(made.status, 0) << made.err.constData();
        m_right = m_fixture.user();
        ASSERT_GE(m_right.size(), 4U);
    }

    /// The names of the states of the entry at this position, as the last check gave them.
    static QStringList statesOf(const QJsonObject& check, const BadpixelEntry& entry)
    {
        QStringList states;
        for (const QJsonValue& value : check[QStringLiteral("listed")].toArray()) {
            const QJsonObject pixel = value.toObject();
            if (pixel[QStringLiteral("x")].toInt() == entry.x &&
                pixel[QStringLiteral("y")].toInt() == entry.y) {
                states.append(pixel[QStringLiteral("state")].toString());
            }
        }
        return states;
    }

    static QJsonArray pair(const BadpixelEntry& entry) { return {entry.x, entry.y}; }

    /// Neither the list nor the correction has been changed.
    void expectUntouched(const Entries& list)
    {
        EXPECT_EQ(m_fixture.user(), list);
        for (const std::int32_t command : m_fixture.commands) {
            EXPECT_TRUE(command != camera::SetUserList && command != camera::DeleteUserList &&
                        command != camera::CorrectionOnFirst &&
                        command != camera::CorrectionOnSecond)
                << command;
        }
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
        EXPECT_EQ(m_fixture.simulated().imageMemories(), 0);
    }

    CameraFixture m_fixture;
    Entries m_right;
};

} // namespace

// Rows of images in memory begin at multiples of four bytes.
TEST(CheckOfACamera, SeesTheRightPixelsWhereTheWidthIsNoMultipleOfFour)
{
    CameraDescription description = CameraFixture::camera();
    description.width = 66;
    CameraFixture fixture(description);
    const auto made = fixture.run(QStringLiteral("detect 1 --auto --clear --write --yes"));
    ASSERT_EQ(made.status, 0) << made.err.constData();
    const Entries found = fixture.user();
    const Entries hot = fixture.hotPixels();
    EXPECT_GE(found.size(), 4U);
    for (const BadpixelEntry& entry : found) {
        EXPECT_TRUE(std::ranges::find(hot, entry) != hot.end()) << entry.x << ", " << entry.y;
    }
    EXPECT_EQ(fixture.run(QStringLiteral("check 1 --auto")).status, 0);
}

TEST_F(Check, FindsAListRightThatWasJustMade)
{
    const auto checked = m_fixture.run(QStringLiteral("check 1 --auto"));
    EXPECT_EQ(checked.status, 0) << checked.err.constData();
    EXPECT_EQ(checked.err, QByteArray());
    EXPECT_TRUE(checked.out.startsWith("Small, SerNo S1, Dev 1\nSensor: 64 × 48 pixels"));
    EXPECT_TRUE(checked.out.contains("x   y   list     mean   state\n")) << checked.out.data();
    EXPECT_TRUE(checked.out.contains("Hot is more than 40 grey levels above the mean of their "
                                     "plane.\n"));
    EXPECT_TRUE(checked.out.endsWith("New, hot and in no list: 0\nThe list is right.\n"))
        << checked.out.constData();
    expectUntouched(m_right);
}

TEST_F(Check, TellsOfEachListedPixelWhetherItIsHotWithItsMean)
{
    const QJsonObject checked = m_fixture.run(QStringLiteral("check 1 --auto --json")).json();
    const QJsonArray listed = checked[QStringLiteral("listed")].toArray();
    ASSERT_EQ(static_cast<std::size_t>(listed.size()), m_right.size() + 2);
    EXPECT_EQ(listed[0].toObject()[QStringLiteral("list")].toString(), QStringLiteral("factory"));
    EXPECT_EQ(listed[2].toObject()[QStringLiteral("list")].toString(), QStringLiteral("user"));
    EXPECT_EQ(listed[2].toObject()[QStringLiteral("x")].toInt(), m_right.front().x);
    for (std::size_t i = 0; i < m_right.size(); ++i) {
        const QJsonObject pixel = listed[static_cast<qsizetype>(i) + 2].toObject();
        EXPECT_EQ(pixel[QStringLiteral("state")].toString(), QStringLiteral("hot"));
        EXPECT_GT(pixel[QStringLiteral("mean")].toDouble(), 40);
    }
    EXPECT_EQ(checked[QStringLiteral("threshold")].toInt(), 40);
    EXPECT_FALSE(checked[QStringLiteral("needsWork")].toBool(true));
}

TEST_F(Check, EndsWithStatus1WhenAPixelIsNotHotAnyMoreAndAnotherIsNew)
{
    Entries list = m_right;
    const BadpixelEntry missing = list.front();
    list.erase(list.begin());
    const BadpixelEntry cold{30, 21, UserPixel};
    list.push_back(cold);
    m_fixture.setUser(list);

    const auto checked = m_fixture.run(QStringLiteral("check 1 --auto"));
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.err,
              QByteArray("vorn-hotpixel: The list needs work: 1 not hot any more, 1 new.\n"));
    EXPECT_TRUE(checked.out.contains(QStringLiteral("New, hot and in no list: 1\n  (%1, %2)\n")
                                         .arg(missing.x)
                                         .arg(missing.y)
                                         .toLatin1()))
        << checked.out.constData();
    EXPECT_TRUE(checked.out.contains("not hot\n"));

    const QJsonObject object = m_fixture.run(QStringLiteral("check 1 --auto --json")).json();
    EXPECT_EQ(object[QStringLiteral("notHot")].toArray(), (QJsonArray{pair(cold)}));
    EXPECT_EQ(object[QStringLiteral("new")].toArray(), (QJsonArray{pair(missing)}));
    EXPECT_TRUE(object[QStringLiteral("needsWork")].toBool());
    expectUntouched(list);
}

TEST_F(Check, EndsWithStatus1ForEitherOfTheTwoAlone)
{
    Entries list = m_right;
    list.pop_back();
    m_fixture.setUser(list);
    EXPECT_EQ(m_fixture.run(QStringLiteral("check 1 --auto")).err,
              QByteArray("vorn-hotpixel: The list needs work: 0 not hot any more, 1 new.\n"));
    list = m_right;
    list.push_back({30, 21, UserPixel});
    m_fixture.setUser(list);
    EXPECT_EQ(m_fixture.run(QStringLiteral("check 1 --auto")).err,
              QByteArray("vorn-hotpixel: The list needs work: 1 not hot any more, 0 new.\n"));
}

TEST_F(Check, TakesAThresholdOrDeviations)
{
    const auto high = m_fixture.run(QStringLiteral("check 1 --auto --threshold 250 --json"));
    EXPECT_EQ(high.status, 1);
    EXPECT_GT(high.json()[QStringLiteral("notHot")].toArray().size(), 0);
    EXPECT_EQ(high.json()[QStringLiteral("new")].toArray().size(), 0);
    const auto sigma = m_fixture.run(QStringLiteral("check 1 --auto --sigma 20 --json"));
    EXPECT_EQ(sigma.json()[QStringLiteral("sigma")].toDouble(), 20);
    EXPECT_EQ(m_fixture.run(QStringLiteral("check 1 --sigma 2 --threshold 5")).status, 2);
}

// Nobody can change the factory list.
TEST_F(Check, NeedsNoWorkForAFactoryPixelThatIsNotHot)
{
    CameraDescription description = CameraFixture::camera();
    description.factoryEntries = 0;
    description.userEntries = 0;
    description.hotPixels = 0;
    CameraFixture fixture(description);
    fixture.run(QStringLiteral("read 1"));
    const QString fileName = fixture.path(QStringLiteral("eeprom/S1.eeprom"));
    EepromContent content = EepromFile(fileName).read();
    content.factory = {{7, 7}};
    EepromFile(fileName).write(content);
    const auto checked = fixture.run(QStringLiteral("check 1 --auto --json"));
    EXPECT_EQ(checked.status, 0) << checked.err.constData();
    EXPECT_EQ(statesOf(checked.json(), {7, 7}), QStringList(QStringLiteral("not hot")));
}

TEST_F(Check, SaysWhichEntriesLieOutsideTheSensor)
{
    Entries list = m_right;
    list.push_back({64, 5, UserPixel});
    list.push_back({5, 65535, UserPixel});
    m_fixture.setUser(list);
    const auto checked = m_fixture.run(QStringLiteral("check 1 --auto --json"));
    EXPECT_EQ(checked.status, 0) << checked.err.constData();
    EXPECT_EQ(statesOf(checked.json(), {64, 5}), QStringList(QStringLiteral("outside")));
    EXPECT_EQ(statesOf(checked.json(), {5, 65535}), QStringList(QStringLiteral("outside")));
    EXPECT_TRUE(
        m_fixture.run(QStringLiteral("check 1 --auto")).out.contains("outside the sensor 2"));
}

TEST_F(Check, OfAFullListSaysWhatIsNew)
{
    Entries list;
    for (std::uint16_t y = 0; y < 20; ++y) {
        list.push_back({33, y, UserPixel});
    }
    m_fixture.setUser(list);
    const auto checked = m_fixture.run(QStringLiteral("check 1 --auto --json"));
    EXPECT_EQ(checked.status, 1);
    EXPECT_GE(static_cast<std::size_t>(checked.json()[QStringLiteral("new")].toArray().size()),
              m_right.size() - 2);
    expectUntouched(list);
}

TEST_F(Check, SaysThatAShortExposureShowsNothing)
{
    const auto checked = m_fixture.run(QStringLiteral("check 1 --threshold 250"));
    EXPECT_EQ(checked.status, 1);
    EXPECT_TRUE(checked.out.contains("is short: most hotpixels show in longer ones.\n"))
        << checked.out.constData();
}

TEST_F(Check, DrawsTheListIntoItsReport)
{
    Entries list = m_right;
    list.push_back({30, 21, UserPixel});
    m_fixture.setUser(list);
    EXPECT_EQ(m_fixture.run(QStringLiteral("check 1 --auto --report DIR/page.html")).status, 1);
    QFile page(m_fixture.path(QStringLiteral("page.html")));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray html = page.readAll();
    EXPECT_TRUE(html.contains("in a list, but not hot: 1"));
    EXPECT_TRUE(
        html.contains("known: " + QByteArray::number(static_cast<int>(m_right.size()) + 2)) ||
        html.contains("known: " + QByteArray::number(static_cast<int>(m_right.size()) + 1)))
        << "factory pixels may be faint";
    EXPECT_TRUE(html.contains("<pre>vorn-hotpixel check 1 --auto --report "));
    EXPECT_EQ(m_fixture.run(QStringLiteral("check 1 --report DIR/no/page.html")).status, 1);
}

TEST_F(Check, EndsWithALineWhenTheCableIsPulled)
{
    const Entries list = m_fixture.user();
    for (const int frame : {1, 5, 11}) {
        m_fixture.onFrame = [&](int taken) {
            if (taken == frame) {
                m_fixture.control().setPlugged(false);
            }
        };
        const auto failed = m_fixture.run(QStringLiteral("check 1"));
        EXPECT_EQ(failed.status, 1);
        // The last image may have been on its way already.
        if (frame < 11) {
            EXPECT_EQ(failed.err, QByteArray("vorn-hotpixel: The camera was unplugged.\n"));
        }
        m_fixture.control().setPlugged(true);
        expectUntouched(list);
    }
    m_fixture.onFrame = [](int) {};
    m_fixture.onCommand = [&](std::int32_t command) {
        if (command == camera::GetUserList) {
            m_fixture.control().setPlugged(false);
        }
    };
    const auto failed = m_fixture.run(QStringLiteral("check 1"));
    EXPECT_EQ(failed.status, 1);
    EXPECT_TRUE(failed.err.startsWith("vorn-hotpixel: Can't read the camera's user list"))
        << failed.err.constData();
}

TEST_F(Check, EndsWithALineWhenItIsInterrupted)
{
    const Entries list = m_fixture.user();
    m_fixture.onFrame = [&](int frame) {
        if (frame == 3) {
            m_fixture.interruption().request();
        }
    };
    const auto ended = m_fixture.run(QStringLiteral("check 1"));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.err, QByteArray("vorn-hotpixel: Interrupted.\n"));
    expectUntouched(list);
}

TEST_F(Check, RefusesASceneThatIsNotDark)
{
    CameraDescription description = CameraFixture::camera();
    description.width = 320;
    description.height = 240;
    CameraFixture bright(description);
    bright.control().setCovered(false);
    const auto refused = bright.run(QStringLiteral("check 1"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, QByteArray("vorn-hotpixel: Too many Hotpixel have been found. Please "
                                      "make sure that the sensor is completely obscured.\n"));
}

// What is corrected does not look hot, and would be struck off the list.
TEST_F(Check, BelievesNoFramesOfACameraThatDoesNotSwitchItsCorrectionOff)
{
    for (const int call : {1, 2}) {
        m_fixture.fault = SdkFault{SdkOperation::HotpixelCommand, call, false};
        const auto refused = m_fixture.run(QStringLiteral("check 1"));
        EXPECT_EQ(refused.status, 1);
        EXPECT_TRUE(refused.err.startsWith(
            "vorn-hotpixel: The camera's correction could not be switched off: "))
            << refused.err.constData();
        EXPECT_EQ(m_fixture.frames, 0);
    }
}

// The first and the last call of each operation; those that keep all frames from coming have tests
// of their own, since they take a command's whole patience.
TEST_F(Check, ChangesNothingWhateverFails)
{
    const Entries list = m_fixture.user();
    m_fixture.run(QStringLiteral("check 1"));
    const auto calls = m_fixture.calls;
    int struck = 0;
    for (std::size_t i = 0; i < SdkOperationCount; ++i) {
        const auto operation = static_cast<SdkOperation>(i);
        if (operation == SdkOperation::InitEvent || operation == SdkOperation::EnableEvent) {
            continue;
        }
        for (const int call : std::set<int>{1, calls[i]}) {
            if (call == 0) {
                continue;
            }
            m_fixture.fault = SdkFault{operation, call, false};
            const auto ended = m_fixture.run(QStringLiteral("check 1"));
            SCOPED_TRACE(testing::Message()
                         << name(operation) << ", call " << call << ": " << ended.err.data());
            struck += m_fixture.struck ? 1 : 0;
            EXPECT_TRUE(ended.status == 0 || ended.status == 1);
            EXPECT_EQ(ended.status == 1, ended.err.contains("vorn-hotpixel: "));
            EXPECT_EQ(m_fixture.user(), list);
            EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
        }
    }
    EXPECT_GT(struck, 30);
}
