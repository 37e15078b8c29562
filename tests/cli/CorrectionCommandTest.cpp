// SPDX-License-Identifier: MIT
// `correction` with a simulated camera.

#include "camera/CameraSdk.h"
#include "tests/cli/CameraFixture.h"

#include <QJsonArray>

#include <algorithm>

namespace {

using Entries = CameraFixture::Entries;

/// A camera whose list holds pixels that are hot with --auto.
class CameraCorrection : public testing::Test
{
protected:
    void SetUp() override
    {
        const auto made = m_fixture.run(QStringLiteral("detect 1 --auto --clear --write --yes"));
        ASSERT_EQ(made.status, 0) << made.err.constData();
        m_list = m_fixture.user();
    }

    /// The commands of the last run that switch the correction.
    [[nodiscard]] std::vector<std::int32_t> switches() const
    {
        std::vector<std::int32_t> switches;
        std::ranges::copy_if(m_fixture.commands, std::back_inserter(switches),
                             [](std::int32_t command) { return command < 100; });
        return switches;
    }

    /// The last thing that happened to the correction is that it was switched off.
    void expectOff()
    {
        const std::vector<std::int32_t> sent = switches();
        ASSERT_GE(sent.size(), 2U);
        EXPECT_EQ(sent[sent.size() - 2], camera::CorrectionOffFirst);
        EXPECT_EQ(sent.back(), camera::CorrectionOffSecond);
        EXPECT_EQ(m_fixture.user(), m_list);
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
    }

    /// Whether the last run got as far as switching the correction on.
    [[nodiscard]] bool wasOn() const
    {
        return std::ranges::count(m_fixture.commands, camera::CorrectionOnSecond) > 0;
    }

    /// Tests the correction by an Sdk that is made of the simulated one and @p arguments.
    template <typename Sdk, typename... Arguments>
    CameraFixture::Outcome testBy(const Arguments&... arguments)
    {
        RecordedConsole recorded;
        Companion companion(
            [&] { return std::make_unique<Sdk>(m_fixture.simulated(), arguments...); }, {},
            recorded.console(), m_fixture.interruption());
        const int status =
            companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("correction"),
                           QStringLiteral("1"), QStringLiteral("test"), QStringLiteral("--auto")});
        return {status, recorded.out(), recorded.err()};
    }

    CameraFixture m_fixture;
    Entries m_list;

    /// That of a camera which, once its correction is on, sends some images in which a pixel is
    /// bright all the same.
    class LitSdk final : public FaultyCameraSdk
    {
    public:
        LitSdk(CameraSdk& sdk, const BadpixelEntry& pixel, int images)
            : FaultyCameraSdk(sdk)
            , m_pixel(pixel)
            , m_images(images)
        {}

        std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                     std::int32_t size) override
        {
            m_on = m_on || command == camera::CorrectionOnSecond;
            return FaultyCameraSdk::hotpixelCommand(handle, command, buffer, size);
        }

        std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                    char** memory) override
        {
            const std::int32_t result =
                FaultyCameraSdk::getFrameMemory(handle, first, second, memory);
            if (result == 0 && m_on && m_images-- > 0) {
                (*memory)[m_pixel.y * CameraFixture::camera().width + m_pixel.x] = '\xff';
            }
            return result;
        }

    private:
        BadpixelEntry m_pixel;
        int m_images;
        bool m_on = false;
    };
};

} // namespace

TEST_F(CameraCorrection, IsProvenByTheMeansOfTheListedPixels)
{
    const auto tested = m_fixture.run(QStringLiteral("correction 1 test --auto"));
    EXPECT_EQ(tested.status, 0) << tested.err.constData();
    EXPECT_TRUE(tested.out.contains("x   y   list     off    on\n")) << tested.out.constData();
    EXPECT_TRUE(tested.out.endsWith("The camera corrects what is in its lists.\n"));
    EXPECT_TRUE(wasOn());
    expectOff();

    const QJsonObject object =
        m_fixture.run(QStringLiteral("correction 1 test --auto --json")).json();
    const QJsonArray listed = object[QStringLiteral("listed")].toArray();
    ASSERT_EQ(static_cast<std::size_t>(listed.size()), m_list.size() + 2);
    for (qsizetype i = 2; i < listed.size(); ++i) {
        const QJsonObject pixel = listed[i].toObject();
        EXPECT_GT(pixel[QStringLiteral("off")].toDouble(), 45);
        EXPECT_LT(pixel[QStringLiteral("on")].toDouble(), 40) << i;
        EXPECT_GT(pixel[QStringLiteral("on")].toDouble(), 0);
    }
    EXPECT_GE(object[QStringLiteral("hot")].toInt(), static_cast<int>(m_list.size()));
    EXPECT_EQ(object[QStringLiteral("stillHot")].toInt(-1), 0);
}

// As if the camera had another list in its correction than in its EEPROM: switching it on does
// nothing at all.
TEST_F(CameraCorrection, ThatDoesNothingIsFoundOut)
{
    class Idle final : public FaultyCameraSdk
    {
    public:
        using FaultyCameraSdk::FaultyCameraSdk;
        std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                     std::int32_t size) override
        {
            const bool on =
                command == camera::CorrectionOnFirst || command == camera::CorrectionOnSecond;
            return on ? 0 : FaultyCameraSdk::hotpixelCommand(handle, command, buffer, size);
        }
    };
    const auto tested = testBy<Idle>();
    EXPECT_EQ(tested.status, Companion::CommandFailed);
    EXPECT_TRUE(tested.err.startsWith("vorn-hotpixel: The camera does not correct "))
        << tested.err.constData();
    EXPECT_TRUE(tested.err.contains(" hot listed pixels.\n"));
}

// A pixel that flickers may be bright while the correction is on, and was not hot without it.
TEST_F(CameraCorrection, IsNotDoubtedForAPixelThatWasNotHotWithoutIt)
{
    m_list.push_back({31, 21, UserPixel});
    m_fixture.setUser(m_list);
    const auto tested = testBy<LitSdk>(m_list.back(), 1000);
    EXPECT_EQ(tested.status, 0);
    EXPECT_EQ(tested.err, QByteArray());
    EXPECT_TRUE(tested.out.contains("  255.0\n")) << tested.out.constData();
}

TEST_F(CameraCorrection, IsNotDoubtedForTheImagesThatWereExposedWithoutIt)
{
    const auto tested = testBy<LitSdk>(m_list.front(), 2);
    EXPECT_EQ(tested.status, 0);
    EXPECT_EQ(tested.err, QByteArray());
}

TEST_F(CameraCorrection, IsNotProvenByPixelsThatAreNotHot)
{
    m_list = {{30, 21, UserPixel}};
    m_fixture.setUser(m_list);
    const auto tested = m_fixture.run(QStringLiteral("correction 1 test --threshold 250"));
    EXPECT_EQ(tested.status, 1);
    EXPECT_EQ(tested.err, QByteArray("vorn-hotpixel: No listed pixel is hot with the correction "
                                     "off, so this proves nothing.\n"));
    EXPECT_TRUE(tested.out.contains("is short"));
    expectOff();
}

TEST_F(CameraCorrection, HasNothingToDoForEmptyLists)
{
    CameraDescription description = CameraFixture::camera();
    description.factoryEntries = description.userEntries = 0;
    CameraFixture fixture(description);
    const auto tested = fixture.run(QStringLiteral("correction 1 test"));
    EXPECT_EQ(tested.status, 1);
    EXPECT_EQ(tested.err,
              QByteArray("vorn-hotpixel: The lists are empty: there is nothing to correct.\n"));
}

TEST_F(CameraCorrection, IsSwitchedOnAndStaysSo)
{
    const auto on = m_fixture.run(QStringLiteral("correction 1 on"));
    EXPECT_EQ(on.status, 0) << on.err.constData();
    EXPECT_EQ(on.out, QByteArray("Small, SerNo S1, Dev 1\nThe correction is on.\n"));
    // The opening comes first.
    EXPECT_EQ(switches(), (std::vector<std::int32_t>{0, 8, 1, 2}));
    const auto off = m_fixture.run(QStringLiteral("correction S1 off --json"));
    EXPECT_EQ(off.status, 0);
    EXPECT_FALSE(off.json()[QStringLiteral("correction")].toBool(true));
    expectOff();
}

TEST_F(CameraCorrection, IsLeftOffWhenTheCameraRefusesToSwitchItOn)
{
    for (const int call : {3, 4}) {
        m_fixture.fault = SdkFault{SdkOperation::HotpixelCommand, call, false};
        const auto refused = m_fixture.run(QStringLiteral("correction 1 on"));
        EXPECT_EQ(refused.status, 1);
        EXPECT_TRUE(refused.err.startsWith(
            "vorn-hotpixel: The camera's correction could not be switched on: "))
            << refused.err.constData();
        expectOff();
    }
}

TEST_F(CameraCorrection, IsSwitchedInNoOtherWay)
{
    const struct
    {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"1", "on|off|test is missing."},
        {"1 maybe", "\"maybe\" is nothing that can be done with the correction: on, off or test "
                    "is."},
        {"1 on --gain 5", "--gain is for \"test\", which takes images."},
        {"1 off --threshold 50", "--threshold is for \"test\", which takes images."},
    };
    for (const auto& [arguments, message] : cases) {
        const auto refused =
            m_fixture.run(QStringLiteral("correction ") + QLatin1String(arguments));
        EXPECT_EQ(refused.status, 2);
        EXPECT_EQ(refused.err, QByteArray("vorn-hotpixel: ") + message +
                                   " See \"vorn-hotpixel correction --help\".\n");
    }
}

// Eleven images with it off, then thirteen with it on.
TEST_F(CameraCorrection, IsOffAgainWhenATestIsInterrupted)
{
    for (const int when : {4, 14, 20}) {
        CameraFixture fixture;
        fixture.onFrame = [&](int frame) {
            if (frame == when) {
                fixture.interruption().request();
            }
        };
        const auto ended = fixture.run(QStringLiteral("correction 1 test"));
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.err, QByteArray("vorn-hotpixel: Interrupted.\n"));
        const bool on = std::ranges::count(fixture.commands, camera::CorrectionOnFirst) > 0;
        EXPECT_EQ(on, when > 11);
        if (on) {
            EXPECT_EQ(fixture.commands.back(), camera::CorrectionOffSecond);
        }
        EXPECT_EQ(fixture.simulated().openCameras(), 0);
    }
}

TEST_F(CameraCorrection, IsTriedToBePutBackWhenTheCableIsPulled)
{
    m_fixture.onFrame = [&](int frame) {
        if (frame == 16) {
            m_fixture.control().setPlugged(false);
        }
    };
    const auto failed = m_fixture.run(QStringLiteral("correction 1 test"));
    EXPECT_EQ(failed.status, 1);
    EXPECT_TRUE(wasOn());
    EXPECT_TRUE(failed.err.startsWith(
        "The camera's correction could not be switched off again: The camera is not connected."))
        << failed.err.constData();
    EXPECT_TRUE(failed.err.endsWith("vorn-hotpixel: The camera was unplugged.\n"));
    expectOff();
}

TEST_F(CameraCorrection, IsOffInTheEndWhicheverCommandFails)
{
    m_fixture.run(QStringLiteral("correction 1 test"));
    const int calls = m_fixture.calls[static_cast<std::size_t>(SdkOperation::HotpixelCommand)];
    EXPECT_GE(calls, 11);
    for (int call = 1; call <= calls; ++call) {
        m_fixture.fault = SdkFault{SdkOperation::HotpixelCommand, call, false};
        const auto ended = m_fixture.run(QStringLiteral("correction 1 test"));
        SCOPED_TRACE(testing::Message() << "call " << call << ": " << ended.err.constData());
        EXPECT_TRUE(m_fixture.struck);
        EXPECT_EQ(ended.status, 1);
        EXPECT_TRUE(ended.err.contains("vorn-hotpixel: "));
        const std::vector<std::int32_t> sent = switches();
        EXPECT_EQ(sent.back(), camera::CorrectionOffSecond);
        EXPECT_EQ(m_fixture.user(), m_list);
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
    }
}
