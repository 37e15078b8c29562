// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatorFixture.h"

#include <QFile>

using listbuffer::sizeOf;
using simulatortest::OpenedCamera;
using simulatortest::readList;
using simulatortest::SimulatorFixture;

namespace {

using Words = listbuffer::Words;

const QString Mono = QStringLiteral("M1");

std::int32_t writeUserList(CameraSdk& sdk, CameraSdk::Handle handle, Words words)
{
    return sdk.hotpixelCommand(handle, camera::SetUserList, words.data(), sizeOf(words));
}

TEST(SimulatedLists, OfANewCameraHoldSomeOfItsHotPixels)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    const Words factory = readList(*fixture.sdk, mono.handle, false);
    const Words user = readList(*fixture.sdk, mono.handle, true);
    EXPECT_EQ(factory.size(), 4U);
    EXPECT_EQ(user.size(), 2U);
    const auto isHot = [&](std::uint16_t x, std::uint16_t y) {
        for (const KnownHotPixel& pixel : fixture.sdk->control(Mono).knownHotPixels()) {
            if (pixel.x == x && pixel.y == y) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(isHot(factory[0], factory[1]));
    EXPECT_TRUE(isHot(factory[2], factory[3]));
    EXPECT_TRUE(isHot(user[0], user[1]));
}

TEST(SimulatedLists, AreReadBackAfterTheNextStart)
{
    SimulatorFixture fixture;
    Words factory;
    {
        const OpenedCamera mono(*fixture.sdk);
        factory = readList(*fixture.sdk, mono.handle, false);
        ASSERT_EQ(
            writeUserList(*fixture.sdk, mono.handle, listbuffer::encode({1, 2, 3, 4, 96, 70})), 0);
    }
    fixture.restart();
    const OpenedCamera mono(*fixture.sdk);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), (Words{1, 2, 3, 4, 96, 70}));
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, false), factory);
}

TEST(SimulatedLists, OfTheUserCanBeEmptiedInTwoWays)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    const Words factory = readList(*fixture.sdk, mono.handle, false);
    ASSERT_EQ(fixture.sdk->hotpixelCommand(mono.handle, camera::DeleteUserList, nullptr, 0), 0);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), Words());
    ASSERT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode({5, 5})), 0);
    ASSERT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode({})), 0);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), Words());
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, false), factory);
}

TEST(SimulatedLists, HaveRoomForAsManyEntriesAsTheyShow)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    std::int32_t most = 0;
    ASSERT_EQ(fixture.sdk->hotpixelCommand(mono.handle, camera::GetMaxUserEntries, &most, 4), 0);
    ASSERT_EQ(most, 8);
    const Words before = readList(*fixture.sdk, mono.handle, true);
    EXPECT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode(Words(18, 3))),
              simulator::ListTooLong);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), before);
    EXPECT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode(Words(16, 3))), 0);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), Words(16, 3));
}

TEST(SimulatedLists, BuffersOfAnotherSizeAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    SimulatedCameraSdk& sdk = *fixture.sdk;
    const CameraSdk::Handle handle = mono.handle;
    Words words = listbuffer::encode({1, 2, 3, 4});
    for (const std::int32_t command :
         {camera::GetFactoryCount, camera::GetUserCount, camera::GetMaxUserEntries}) {
        for (const std::int32_t size : {-1, 0, 2, 5, 8}) {
            EXPECT_EQ(sdk.hotpixelCommand(handle, command, words.data(), size),
                      simulator::InvalidBufferSize)
                << command << ", " << size;
        }
    }
    const Words before = readList(sdk, handle, true);
    for (const std::int32_t size : {-1, 0, 1, 2, 9, 12}) {
        EXPECT_EQ(sdk.hotpixelCommand(handle, camera::SetUserList, words.data(), size),
                  simulator::InvalidBufferSize)
            << size;
    }
    EXPECT_EQ(readList(sdk, handle, true), before);
    EXPECT_EQ(sdk.hotpixelCommand(handle, camera::GetFactoryList, words.data(), 9),
              simulator::InvalidBufferSize);
    EXPECT_EQ(sdk.hotpixelCommand(handle, camera::GetFactoryList, words.data(), -1),
              simulator::InvalidBufferSize);
    EXPECT_EQ(sdk.hotpixelCommand(handle, camera::GetFactoryList, words.data(), 10), 0);
    for (const std::int32_t command : {0, 1, 2, 8, camera::DeleteUserList}) {
        EXPECT_EQ(sdk.hotpixelCommand(handle, command, words.data(), 2),
                  simulator::InvalidBufferSize)
            << command;
    }
}

TEST(SimulatedLists, UnknownCommandsAreRefused)
{
    SimulatorFixture fixture;
    const OpenedCamera mono(*fixture.sdk);
    for (const std::int32_t command : {-1, 3, 33030, 33033, 33039}) {
        EXPECT_EQ(fixture.sdk->hotpixelCommand(mono.handle, command, nullptr, 0),
                  simulator::InvalidParameter)
            << command;
    }
}

TEST(SimulatedLists, TheLongestOnesGoThrough)
{
    CameraDescription camera = simulatortest::smallMono();
    camera.userCapacity = 65535;
    SimulatorFixture fixture({camera});
    const OpenedCamera mono(*fixture.sdk);
    Words coordinates(2 * 65535);
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        coordinates[i] = static_cast<std::uint16_t>(i);
    }
    ASSERT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode(coordinates)), 0);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), coordinates);
}

class DamagedEeprom : public ::testing::Test
{
protected:
    DamagedEeprom()
    {
        QDir().mkpath(m_fixture.bus.eepromFolder);
        QFile file(m_fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("scrambled");
    }
    SimulatorFixture m_fixture;
    QString m_fileName = m_fixture.sdk->control(Mono).eepromFileName();
};

TEST_F(DamagedEeprom, IsReportedAndLeftAsItIs)
{
    const OpenedCamera mono(*m_fixture.sdk);
    std::int32_t count = 77;
    std::int32_t result =
        m_fixture.sdk->hotpixelCommand(mono.handle, camera::GetUserCount, &count, 4);
    EXPECT_EQ(result, simulator::EepromDamaged);
    EXPECT_EQ(count, 77);
    char* text = nullptr;
    ASSERT_EQ(m_fixture.sdk->getError(mono.handle, &result, &text), 0);
    EXPECT_EQ(QString::fromUtf8(text),
              QStringLiteral("The camera's EEPROM is damaged. (%1: the EEPROM file is damaged)")
                  .arg(m_fileName));
    QFile file(m_fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "scrambled");
}

TEST_F(DamagedEeprom, IsKeptAsideByTheNextWrite)
{
    const OpenedCamera mono(*m_fixture.sdk);
    ASSERT_EQ(writeUserList(*m_fixture.sdk, mono.handle, listbuffer::encode({4, 5})), 0);
    EXPECT_EQ(readList(*m_fixture.sdk, mono.handle, true), (Words{4, 5}));
    EXPECT_EQ(readList(*m_fixture.sdk, mono.handle, false).size(), 4U);
    QFile aside(m_fileName + QStringLiteral(".damaged-1"));
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
    EXPECT_EQ(aside.readAll(), "scrambled");
}

TEST(SimulatedEeprom, ThatCannotBeWrittenIsReportedAndTheCameraWorks)
{
    SimulatorFixture fixture;
    QFile notAFolder(fixture.bus.eepromFolder);
    ASSERT_TRUE(notAFolder.open(QIODevice::WriteOnly));
    const OpenedCamera mono(*fixture.sdk);
    const Words before = readList(*fixture.sdk, mono.handle, true);
    EXPECT_EQ(before.size(), 2U);
    EXPECT_EQ(writeUserList(*fixture.sdk, mono.handle, listbuffer::encode({4, 5})),
              simulator::EepromNotWritten);
    EXPECT_EQ(readList(*fixture.sdk, mono.handle, true), before);
}

} // namespace
