// SPDX-License-Identifier: MIT
#include "simulator/SdkErrors.h"
#include "tests/simulator/SimulatedBench.h"

#include <QFile>

using bench::Bench;
using bench::listBuffer;
using bench::OpenedCamera;
using bench::readList;
using bench::sizeOf;

namespace {

using Words = std::vector<std::uint16_t>;

const QString Mono = QStringLiteral("M1");

std::int32_t writeUserList(CameraSdk& sdk, CameraSdk::Handle handle, Words words)
{
    return sdk.hotpixelCommand(handle, camera::SetUserList, words.data(), sizeOf(words));
}

TEST(SimulatedLists, OfANewCameraHoldSomeOfItsHotPixels)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    const Words factory = readList(*bench.sdk, mono.handle, false);
    const Words user = readList(*bench.sdk, mono.handle, true);
    EXPECT_EQ(factory.size(), 4U);
    EXPECT_EQ(user.size(), 2U);
    const auto isHot = [&](std::uint16_t x, std::uint16_t y) {
        for (const KnownHotPixel& pixel : bench.sdk->control(Mono).knownHotPixels()) {
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
    Bench bench;
    Words factory;
    {
        const OpenedCamera mono(*bench.sdk);
        factory = readList(*bench.sdk, mono.handle, false);
        ASSERT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer({1, 2, 3, 4, 96, 70})), 0);
    }
    bench.restart();
    const OpenedCamera mono(*bench.sdk);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), (Words{1, 2, 3, 4, 96, 70}));
    EXPECT_EQ(readList(*bench.sdk, mono.handle, false), factory);
}

TEST(SimulatedLists, OfTheUserCanBeEmptiedInTwoWays)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    const Words factory = readList(*bench.sdk, mono.handle, false);
    ASSERT_EQ(bench.sdk->hotpixelCommand(mono.handle, camera::DeleteUserList, nullptr, 0), 0);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), Words());
    ASSERT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer({5, 5})), 0);
    ASSERT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer({})), 0);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), Words());
    EXPECT_EQ(readList(*bench.sdk, mono.handle, false), factory);
}

TEST(SimulatedLists, HaveRoomForAsManyEntriesAsTheyShow)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    std::int32_t most = 0;
    ASSERT_EQ(bench.sdk->hotpixelCommand(mono.handle, camera::GetMaxUserEntries, &most, 4), 0);
    ASSERT_EQ(most, 8);
    const Words before = readList(*bench.sdk, mono.handle, true);
    EXPECT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer(Words(18, 3))),
              simulator::ListTooLong);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), before);
    EXPECT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer(Words(16, 3))), 0);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), Words(16, 3));
}

TEST(SimulatedLists, BuffersOfAnotherSizeAreRefused)
{
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    SimulatedCameraSdk& sdk = *bench.sdk;
    const CameraSdk::Handle handle = mono.handle;
    Words words = listBuffer({1, 2, 3, 4});
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
    Bench bench;
    const OpenedCamera mono(*bench.sdk);
    for (const std::int32_t command : {-1, 3, 33030, 33033, 33039}) {
        EXPECT_EQ(bench.sdk->hotpixelCommand(mono.handle, command, nullptr, 0),
                  simulator::InvalidParameter)
            << command;
    }
}

TEST(SimulatedLists, TheLongestOnesGoThrough)
{
    CameraDescription camera = bench::smallMono();
    camera.userCapacity = 65535;
    Bench bench({camera});
    const OpenedCamera mono(*bench.sdk);
    Words coordinates(2 * 65535);
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        coordinates[i] = static_cast<std::uint16_t>(i);
    }
    ASSERT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer(coordinates)), 0);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), coordinates);
}

class DamagedEeprom : public ::testing::Test
{
protected:
    DamagedEeprom()
    {
        QDir().mkpath(m_bench.bus.eepromFolder);
        QFile file(m_fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("scrambled");
    }
    Bench m_bench;
    QString m_fileName = m_bench.sdk->control(Mono).eepromFileName();
};

TEST_F(DamagedEeprom, IsReportedAndLeftAsItIs)
{
    const OpenedCamera mono(*m_bench.sdk);
    std::int32_t count = 77;
    std::int32_t result =
        m_bench.sdk->hotpixelCommand(mono.handle, camera::GetUserCount, &count, 4);
    EXPECT_EQ(result, simulator::EepromDamaged);
    EXPECT_EQ(count, 77);
    char* text = nullptr;
    ASSERT_EQ(m_bench.sdk->getError(mono.handle, &result, &text), 0);
    EXPECT_EQ(QString::fromUtf8(text),
              QStringLiteral("The camera's EEPROM is damaged. (%1: the EEPROM file is damaged)")
                  .arg(m_fileName));
    QFile file(m_fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "scrambled");
}

TEST_F(DamagedEeprom, IsKeptAsideByTheNextWrite)
{
    const OpenedCamera mono(*m_bench.sdk);
    ASSERT_EQ(writeUserList(*m_bench.sdk, mono.handle, listBuffer({4, 5})), 0);
    EXPECT_EQ(readList(*m_bench.sdk, mono.handle, true), (Words{4, 5}));
    EXPECT_EQ(readList(*m_bench.sdk, mono.handle, false).size(), 4U);
    QFile aside(m_fileName + QStringLiteral(".damaged-1"));
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
    EXPECT_EQ(aside.readAll(), "scrambled");
}

TEST(SimulatedEeprom, ThatCannotBeWrittenIsReportedAndTheCameraWorks)
{
    Bench bench;
    QFile notAFolder(bench.bus.eepromFolder);
    ASSERT_TRUE(notAFolder.open(QIODevice::WriteOnly));
    const OpenedCamera mono(*bench.sdk);
    const Words before = readList(*bench.sdk, mono.handle, true);
    EXPECT_EQ(before.size(), 2U);
    EXPECT_EQ(writeUserList(*bench.sdk, mono.handle, listBuffer({4, 5})),
              simulator::EepromNotWritten);
    EXPECT_EQ(readList(*bench.sdk, mono.handle, true), before);
}

} // namespace
