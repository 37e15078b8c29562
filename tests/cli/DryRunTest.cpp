// SPDX-License-Identifier: MIT
// What a write would change, before it does.

#include "tests/cli/CameraFixture.h"

#include <QJsonArray>

#include <algorithm>

namespace {

using Entries = CameraFixture::Entries;

bool changesTheEeprom(std::int32_t command)
{
    return command == camera::SetUserList || command == camera::DeleteUserList;
}

/// A camera with a list of its own, and files to be written into it.
class DryRun : public testing::Test
{
protected:
    void SetUp() override
    {
        m_fixture.run(QStringLiteral("read 1"));
        m_fixture.setUser({{10, 10}, {20, 20}});
        m_fixture.write(QStringLiteral("list.txt"), "20 20 1\n30 30 1\n");
    }

    void expectUntouched()
    {
        EXPECT_EQ(std::ranges::count_if(m_fixture.commands, changesTheEeprom), 0);
        EXPECT_EQ(m_fixture.user(), (Entries{{10, 10, UserPixel}, {20, 20, UserPixel}}));
        EXPECT_TRUE(m_fixture.backups().isEmpty());
        EXPECT_FALSE(QFileInfo::exists(m_fixture.path(QStringLiteral("data"))))
            << "not even a folder";
    }

    CameraFixture m_fixture;
};

} // namespace

TEST_F(DryRun, ShowsWhatWouldChangeAndWritesNothing)
{
    const auto shown = m_fixture.run(QStringLiteral("write 1 DIR/list.txt --dry-run"));
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.err, QByteArray()) << "it asks nothing";
    EXPECT_EQ(shown.out, QByteArray("Small, SerNo S1, Dev 1\n"
                                    "Added: 1 entry\n  (30, 30)\n"
                                    "Removed: 1 entry\n  (10, 10)\n"
                                    "Nothing was written.\n"));
    expectUntouched();
}

TEST_F(DryRun, WritesNothingAlsoWithYes)
{
    const auto shown = m_fixture.run(QStringLiteral("write 1 DIR/list.txt --dry-run --yes --json"));
    EXPECT_EQ(shown.status, 0);
    const QJsonObject changes = shown.json()[QStringLiteral("changes")].toObject();
    EXPECT_EQ(changes[QStringLiteral("added")].toArray(), (QJsonArray{QJsonArray{30, 30}}));
    EXPECT_EQ(changes[QStringLiteral("removed")].toArray(), (QJsonArray{QJsonArray{10, 10}}));
    EXPECT_FALSE(shown.json().contains(QStringLiteral("written")));
    expectUntouched();
}

TEST_F(DryRun, FindsOutThatAListDoesNotFit)
{
    QByteArray lines;
    for (int y = 0; y < 21; ++y) {
        lines += "31 " + QByteArray::number(y) + " 1\n";
    }
    m_fixture.write(QStringLiteral("long.txt"), lines);
    const auto refused = m_fixture.run(QStringLiteral("write 1 DIR/long.txt --dry-run"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, QByteArray("vorn-hotpixel: The list has 21 user entries, but the camera "
                                      "can store 20 at most.\n"));
    expectUntouched();
}

TEST_F(DryRun, ShowsWhatAnEmptyListRemovesAndRefusesIt)
{
    m_fixture.write(QStringLiteral("empty.txt"), "");
    const auto refused = m_fixture.run(QStringLiteral("write 1 DIR/empty.txt --dry-run"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.out.contains("Removed: 2 entries\n"));
    EXPECT_TRUE(refused.err.contains("use --allow-empty"));
    EXPECT_EQ(m_fixture.run(QStringLiteral("write 1 DIR/empty.txt --dry-run --allow-empty")).status,
              0);
    expectUntouched();
}

TEST_F(DryRun, OfAnEmptyListForACameraWithoutEntriesHasNothingToRefuse)
{
    m_fixture.setUser({});
    m_fixture.write(QStringLiteral("empty.txt"), "");
    const auto shown = m_fixture.run(QStringLiteral("write 1 DIR/empty.txt --dry-run"));
    EXPECT_EQ(shown.status, 0) << shown.err.constData();
    EXPECT_TRUE(shown.out.contains("No pixel is added or removed.\n"));
}

TEST_F(DryRun, OfADetectionEndsBeforeTheWrite)
{
    const auto shown =
        m_fixture.run(QStringLiteral("detect 1 --auto --clear --write --dry-run --json"));
    EXPECT_EQ(shown.status, 0) << shown.err.constData();
    const QJsonObject changes = shown.json()[QStringLiteral("changes")].toObject();
    EXPECT_EQ(changes[QStringLiteral("added")], shown.json()[QStringLiteral("pixels")]);
    EXPECT_FALSE(changes[QStringLiteral("added")].toArray().isEmpty());
    EXPECT_EQ(changes[QStringLiteral("removed")].toArray().size(), 2);
    expectUntouched();
}

TEST_F(DryRun, NeedsSomethingThatWouldBeWritten)
{
    const auto refused = m_fixture.run(QStringLiteral("detect 1 --dry-run"));
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err,
              QByteArray("vorn-hotpixel: --dry-run shows what --write would do, which is missing. "
                         "See \"vorn-hotpixel detect --help\".\n"));
}

TEST_F(DryRun, EndsWithALineWhenTheCableIsPulled)
{
    for (const std::int32_t command :
         {camera::GetFactoryCount, camera::GetFactoryList, camera::GetMaxUserEntries,
          camera::GetUserCount, camera::GetUserList}) {
        m_fixture.onCommand = [&](std::int32_t sent) {
            if (sent == command) {
                m_fixture.control().setPlugged(false);
            }
        };
        const auto failed = m_fixture.run(QStringLiteral("write 1 DIR/list.txt --dry-run"));
        EXPECT_EQ(failed.status, 1) << command;
        EXPECT_TRUE(failed.err.startsWith("vorn-hotpixel: Can't read the ")) << failed.err.data();
        EXPECT_EQ(failed.err.count('\n'), 1) << failed.err.constData();
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
        m_fixture.control().setPlugged(true);
        expectUntouched();
    }
}

TEST_F(DryRun, IsNotNeededToSeeWhatAWriteChanges)
{
    const auto written = m_fixture.run(QStringLiteral("write 1 DIR/list.txt --yes"));
    EXPECT_EQ(written.status, 0) << written.err.constData();
    EXPECT_TRUE(written.out.contains("Added: 1 entry\n  (30, 30)\nRemoved: 1 entry\n  (10, 10)\n"
                                     "Written into the camera and read back: 2 entries of at most "
                                     "20\n"))
        << written.out.constData();
}

TEST_F(DryRun, LeavesOutAsAWriteDoesWhatIsThereTwice)
{
    const BadpixelEntry factory = m_fixture.factory().front();
    const QByteArray known =
        QByteArray::number(factory.x) + ' ' + QByteArray::number(factory.y) + " 1\n";
    m_fixture.write(QStringLiteral("twice.txt"), "30 30 1\n" + known + "30 30 1\n40 40 1\n");
    for (const char* option : {"--dry-run", "--yes"}) {
        const auto shown =
            m_fixture.run(QStringLiteral("write 1 DIR/twice.txt ") + QLatin1String(option));
        EXPECT_EQ(shown.status, 0) << shown.err.constData();
        EXPECT_TRUE(shown.out.contains("Left out, since the list has them twice: 1 entry\n"
                                       "Left out, since the factory list has them: 1 entry\n"
                                       "Added: 2 entries\n"))
            << shown.out.constData();
    }
    EXPECT_EQ(m_fixture.user(), (Entries{{30, 30, UserPixel}, {40, 40, UserPixel}}));
}
