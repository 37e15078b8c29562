// SPDX-License-Identifier: MIT
#include "camera/Camera.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/CameraLists.h"
#include "tests/hotpixel/PrintEntry.h"
#include "tests/sdk/FakeListCamera.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

using Entries = std::vector<BadpixelEntry>;
using Command = FakeListCamera::Command;
using Words = std::vector<std::uint16_t>;

void PrintTo(const FakeListCamera::Command& command, std::ostream* out)
{
    *out << command.code << " on " << command.handle << " with "
         << (command.hasBuffer ? "a buffer of " : "null, ") << command.size;
}

namespace {

/// The list with a camera that was not opened: its handle is 0 and goes to the SDK all the same.
class CameraExchange : public testing::Test
{
protected:
    [[nodiscard]] Entries entries() const
    {
        return {m_model.entries().begin(), m_model.entries().end()};
    }

    void load(const QByteArray& lines)
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath("list.txt"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
        file.close();
        m_model.loadFromFile(file.fileName());
    }

    [[nodiscard]] std::string writeError()
    {
        try {
            m_model.writeBadpixelList(&m_camera);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }

    /// Every row insertion and removal from now on.
    [[nodiscard]] QStringList* record()
    {
        const auto note = [this](const char* what) {
            return [this, what](const QModelIndex& /*parent*/, int first, int last) {
                m_announcements << QStringLiteral("%1 %2-%3").arg(what).arg(first).arg(last);
            };
        };
        QObject::connect(&m_model, &QAbstractItemModel::rowsInserted, note("inserted"));
        QObject::connect(&m_model, &QAbstractItemModel::rowsRemoved, note("removed"));
        return &m_announcements;
    }

    FakeListCamera m_sdk;
    Camera m_camera{m_sdk};
    BadpixelListModel m_model;

private:
    QStringList m_announcements;
};

} // namespace

TEST_F(CameraExchange, ReadsTheFactoryListAndBehindItTheUserList)
{
    m_sdk.maxUserEntries = 77;
    m_sdk.factoryCount = 2;
    m_sdk.factoryList = {2, 10, 20, 11, 21};
    m_sdk.userCount = 1;
    m_sdk.userList = {1, 65535, 3};
    m_model.getBadpixelList(&m_camera);

    EXPECT_EQ(entries(), (Entries{{10, 20, 0}, {11, 21, 0}, {65535, 3, 1}}));
    EXPECT_EQ(m_model.maxUserEntries(), 77);
    EXPECT_EQ(m_model.factoryCount(), 2);
    EXPECT_EQ(m_sdk.commands, (std::vector<Command>{{0, 33037, true, 4},
                                                    {0, 33031, true, 4},
                                                    {0, 33032, true, 10},
                                                    {0, 33034, true, 4},
                                                    {0, 33035, true, 6}}));
}

TEST_F(CameraExchange, UsesTheHandleOfTheOpenCamera)
{
    m_camera.open(1);
    m_sdk.commands.clear();
    m_model.getBadpixelList(&m_camera);
    m_model.writeBadpixelList(&m_camera);
    EXPECT_EQ(
        m_sdk.commands,
        (std::vector<Command>{
            {7, 33037, true, 4}, {7, 33031, true, 4}, {7, 33034, true, 4}, {7, 33038, false, 0}}));
}

TEST_F(CameraExchange, AnnouncesUserEntriesAsTheFirstRows)
{
    m_sdk.factoryCount = 3;
    m_sdk.factoryList = {3, 1, 1, 2, 2, 3, 3};
    m_sdk.userCount = 2;
    m_sdk.userList = {2, 4, 4, 5, 5};
    const QStringList* announcements = record();
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(*announcements, (QStringList{"inserted 0-2", "inserted 0-1"}));
    EXPECT_EQ(m_model.badpixelAt(3), (BadpixelEntry{4, 4, 1}));
}

TEST_F(CameraExchange, DoesNotExamineTheCountInTheList)
{
    m_sdk.userCount = 2;
    m_sdk.userList = {9999, 4, 4, 5, 5};
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(entries(), (Entries{{4, 4, 1}, {5, 5, 1}}));
}

TEST_F(CameraExchange, ReplacesWhatTheListHeld)
{
    load("1 1 0\n2 2 1\n3 3 2\n");
    const QStringList* announcements = record();
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(*announcements, QStringList{"removed 0-2"});
}

TEST_F(CameraExchange, ClearsTheListAlsoWithoutACamera)
{
    load("1 1 0\n2 2 1\n");
    m_model.setMaxUserEntries(5);
    m_model.getBadpixelList(nullptr);
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(m_model.maxUserEntries(), 5);
    EXPECT_EQ(m_sdk.commands, std::vector<Command>{});
}

TEST_F(CameraExchange, ReadsListsOfUpTo1000Entries)
{
    m_sdk.factoryCount = 1000;
    m_sdk.factoryList = Words(2001, 6);
    m_sdk.userCount = 1000;
    m_sdk.userList = Words(2001, 8);
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(m_model.rowCount(), 2000);
}

TEST_F(CameraExchange, ReadsNoLongerListsButTakesTheFactoryCountIntoTheLimit)
{
    m_sdk.maxUserEntries = 0;
    m_sdk.factoryCount = 1001;
    m_sdk.userCount = 1001;
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(m_model.factoryCount(), 1001);
    EXPECT_EQ(m_sdk.commands.size(), 3U) << "neither list was asked for";
    EXPECT_TRUE(m_model.addBadpixel({1, 1})) << "0 entries less 1001 is below 0";
}

TEST_F(CameraExchange, ReadsNoListsOfNegativeCounts)
{
    m_sdk.factoryCount = -1;
    m_sdk.userCount = -1;
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_EQ(m_model.factoryCount(), -1);
    EXPECT_EQ(m_sdk.commands.size(), 3U);
}

TEST_F(CameraExchange, LeavesAListEmptyThatCantBeRead)
{
    m_sdk.factoryCount = 1;
    m_sdk.factoryList = {1, 1, 1};
    m_sdk.userCount = 1;
    m_sdk.userList = {1, 2, 2};
    m_sdk.results = {{camera::GetFactoryList, 5}};
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(entries(), (Entries{{2, 2, 1}}));

    m_sdk.results = {{camera::GetUserList, 5}};
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(entries(), (Entries{{1, 1, 0}}));
}

TEST_F(CameraExchange, KeepsTheLimitsWhereTheCameraDoesNotAnswer)
{
    m_model.setMaxUserEntries(5);
    m_model.setFactoryCount(6);
    m_sdk.results = {{camera::GetMaxUserEntries, 1},
                     {camera::GetFactoryCount, 1},
                     {camera::GetUserCount, 1},
                     {camera::GetFactoryList, 1}};
    m_model.getBadpixelList(&m_camera);
    EXPECT_EQ(m_model.maxUserEntries(), 5);
    EXPECT_EQ(m_model.factoryCount(), 6);
    EXPECT_EQ(m_model.rowCount(), 0);
}

TEST_F(CameraExchange, KnowsTheEntriesItReadAsDuplicates)
{
    m_sdk.factoryCount = 1;
    m_sdk.factoryList = {1, 1, 1};
    m_sdk.userCount = 1;
    m_sdk.userList = {1, 2, 2};
    m_model.getBadpixelList(&m_camera);
    EXPECT_FALSE(m_model.addBadpixel({1, 1}));
    EXPECT_FALSE(m_model.addBadpixel({2, 2}));
    m_model.getBadpixelList(&m_camera);
    EXPECT_FALSE(m_model.addBadpixel({2, 2}));
}

TEST_F(CameraExchange, ForgetsThePositionsOfTheListsBefore)
{
    m_sdk.factoryCount = 1;
    m_sdk.factoryList = {1, 1, 1};
    m_sdk.userCount = 1;
    m_sdk.userList = {1, 2, 2};
    m_model.getBadpixelList(&m_camera);
    EXPECT_FALSE(m_model.addBadpixel({1, 1})) << "the positions are known from here on";

    m_sdk.factoryList = {1, 7, 7};
    m_sdk.userList = {1, 8, 8};
    m_model.getBadpixelList(&m_camera);
    EXPECT_FALSE(m_model.addBadpixel({7, 7}));
    EXPECT_FALSE(m_model.addBadpixel({8, 8}));
    EXPECT_TRUE(m_model.addBadpixel({1, 1}));
    EXPECT_TRUE(m_model.addBadpixel({2, 2}));
}

TEST_F(CameraExchange, KnowsTheEntriesItReadAlsoWhenTheListBeforeHadBecomeEmpty)
{
    m_model.setMaxUserEntries(10);
    EXPECT_TRUE(m_model.addBadpixel({5, 5})) << "the positions are known from here on";
    EXPECT_TRUE(m_model.removeUserBadpixel(0));

    m_sdk.factoryCount = 1;
    m_sdk.factoryList = {1, 7, 7};
    m_sdk.userCount = 1;
    m_sdk.userList = {1, 8, 8};
    m_model.getBadpixelList(&m_camera);
    EXPECT_FALSE(m_model.addBadpixel({7, 7}));
    EXPECT_FALSE(m_model.addBadpixel({8, 8}));
    EXPECT_TRUE(m_model.addBadpixel({5, 5}));
}

TEST_F(CameraExchange, WritesTheUserEntriesInListOrder)
{
    load("9 9 1\n1 1 0\n65535 4 1\n2 2 2\n");
    m_model.writeBadpixelList(&m_camera);
    EXPECT_EQ(m_sdk.written, (Words{2, 9, 9, 65535, 4}));
    EXPECT_EQ(m_sdk.commands, (std::vector<Command>{{0, 33036, true, 10}}));
}

TEST_F(CameraExchange, WritesTheLow16BitsOfTheCount)
{
    load(QByteArray("1 1 1\n").repeated(65538));
    m_model.writeBadpixelList(&m_camera);
    EXPECT_EQ(m_sdk.written.size(), 65538U * 2 + 1);
    EXPECT_EQ(m_sdk.written.front(), 2);
    EXPECT_EQ(m_sdk.commands, (std::vector<Command>{{0, 33036, true, 65538 * 4 + 2}}));
}

TEST_F(CameraExchange, DeletesTheCamerasListWhereThereAreNoUserEntries)
{
    load("1 1 0\n2 2 2\n");
    m_model.writeBadpixelList(&m_camera);
    EXPECT_EQ(m_sdk.commands, (std::vector<Command>{{0, 33038, false, 0}}));
}

TEST_F(CameraExchange, SaysThatTheListCantBeWritten)
{
    load("1 1 1\n");
    m_sdk.results = {{camera::SetUserList, 3}, {camera::DeleteUserList, 3}};
    EXPECT_EQ(writeError(), "Error writing hotpixel list");
    EXPECT_EQ(entries(), (Entries{{1, 1, 1}}));

    m_model.clearBadpixelList();
    EXPECT_EQ(writeError(), "Error writing hotpixel list");
}

TEST_F(CameraExchange, GivesListsOfEveryLengthToWhoWantsToKnowOfFailures)
{
    const CameraLists lists(m_camera);
    m_sdk.maxUserEntries = 65535;
    m_sdk.factoryCount = 65535;
    m_sdk.factoryList = Words(65535 * 2 + 1, 6);
    m_sdk.userCount = 2;
    m_sdk.userList = {2, 4, 5, 7, 8};
    EXPECT_EQ(lists.maxUserEntries(), 65535);
    EXPECT_EQ(lists.factoryEntries(), Entries(65535, {6, 6, FactoryPixel}));
    EXPECT_EQ(lists.userEntries(), (Entries{{4, 5, UserPixel}, {7, 8, UserPixel}}));

    m_sdk.commands.clear();
    m_sdk.userCount = 0;
    EXPECT_EQ(lists.userEntries(), Entries{});
    EXPECT_EQ(m_sdk.commands.size(), 1U) << "an empty list is not read";
}

TEST_F(CameraExchange, TellsWhatFailedWithTheTextOfTheSdk)
{
    const CameraLists lists(m_camera);
    const auto failure = [](const auto& call) {
        try {
            static_cast<void>(call());
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string("no error");
    };
    m_sdk.userCount = 1;
    m_sdk.results = {{camera::GetUserList, 3}, {camera::GetFactoryCount, 3}};
    EXPECT_EQ(failure([&] { return lists.userEntries(); }),
              "Can't read the camera's user list: Unknown error.");
    EXPECT_EQ(failure([&] { return lists.factoryEntries(); }),
              "Can't read the camera's factory list: Unknown error.");
    m_sdk.maxUserEntries = 65536;
    EXPECT_EQ(failure([&] { return lists.maxUserEntries(); }),
              "Can't read the capacity of the camera's user list: the camera answers 65536.");
}
