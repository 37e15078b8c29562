// SPDX-License-Identifier: MIT
// `backups` and `restore` with a simulated camera.

#include "camera/CameraSdk.h"
#include "cli/ListBackups.h"
#include "cli/ListFiles.h"
#include "tests/cli/CameraFixture.h"

#include <QJsonArray>

#include <algorithm>

namespace {

using Entries = CameraFixture::Entries;

const Entries First{{10, 10, UserPixel}, {20, 20, UserPixel}};
const Entries Second{{20, 20, UserPixel}, {30, 30, UserPixel}, {40, 40, UserPixel}};

/// A camera whose list was First until it was replaced by Second.
class Restore : public testing::Test
{
protected:
    void SetUp() override
    {
        m_fixture.run(QStringLiteral("read 1"));
        m_fixture.setUser(First);
        m_fixture.write(QStringLiteral("second.txt"), "20 20 1\n30 30 1\n40 40 1\n");
        const auto written = m_fixture.run(QStringLiteral("write 1 DIR/second.txt --yes"));
        ASSERT_EQ(written.status, 0) << written.err.constData();
        ASSERT_EQ(m_fixture.backups().size(), 1);
        m_copy = m_fixture.backups().front();
    }

    /// Makes a copy of the name's date by hand.
    QString copy(const char* name, const QByteArray& content) const
    {
        return m_fixture.write(
            QStringLiteral("data/VornHotpixelEditor/backups/") + QLatin1String(name), content);
    }

    void expectUntouched(const CameraFixture::Outcome& failed, const QByteArray& message)
    {
        EXPECT_EQ(failed.status, 1);
        EXPECT_EQ(failed.err, "vorn-hotpixel: " + message + '\n');
        EXPECT_EQ(m_fixture.user(), Second);
        EXPECT_EQ(std::ranges::count(m_fixture.commands, camera::SetUserList), 0);
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
    }

    CameraFixture m_fixture;
    QString m_copy; ///< the name of the copy that has First
};

} // namespace

TEST_F(Restore, WritesTheNewestCopyBack)
{
    const auto restored = m_fixture.run(QStringLiteral("restore 1 --yes"));
    EXPECT_EQ(restored.status, 0) << restored.err.constData();
    EXPECT_EQ(m_fixture.user(), First);
    EXPECT_TRUE(restored.out.contains("2 entries, DIR/data/VornHotpixelEditor/backups/" +
                                      m_copy.toLatin1() +
                                      "\nAdded: 1 entry\n  (10, 10)\nRemoved: 2 entries\n  (30, "
                                      "30)  (40, 40)\nWritten into the camera and read back: 2 "
                                      "entries of at most 20\n"))
        << restored.out.constData();
}

// The newest copy has what the camera had before, which is what a second restore goes back to.
TEST_F(Restore, CanBeRestored)
{
    ASSERT_EQ(m_fixture.run(QStringLiteral("restore 1 --yes")).status, 0);
    ASSERT_EQ(m_fixture.backups().size(), 2);
    ASSERT_EQ(m_fixture.run(QStringLiteral("restore 1 --yes")).status, 0);
    EXPECT_EQ(m_fixture.user(), Second);
}

TEST_F(Restore, TakesTheNewestCopyThatDiffersFromTheCamera)
{
    copy("S1-user-list-20990101-000000.txt", "40 40 1\n30 30 1\n20 20 1\n");
    copy("S1-user-list-20990101-000000-2.txt", "20 20 1\n30 30 1\n40 40 1\n");
    const auto restored = m_fixture.run(QStringLiteral("restore 1 --yes --json"));
    EXPECT_EQ(restored.status, 0) << restored.err.constData();
    EXPECT_TRUE(restored.json()[QStringLiteral("file")].toString().endsWith(m_copy));
    EXPECT_EQ(m_fixture.user(), First);
}

TEST_F(Restore, SaysThatNoCopyDiffers)
{
    m_fixture.setUser(First);
    const auto failed = m_fixture.run(QStringLiteral("restore 1 --yes"));
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, QByteArray("vorn-hotpixel: All copies of this camera's lists hold what "
                                     "the camera holds.\n"));
}

TEST_F(Restore, SaysThatThereIsNoCopy)
{
    QFile::rename(m_fixture.backupFolder() + u'/' + m_copy,
                  m_fixture.backupFolder() + QStringLiteral("/S2-user-list-20260101-000000.txt"));
    expectUntouched(m_fixture.run(QStringLiteral("restore 1 --yes")),
                    "There is no copy of a list of this camera in "
                    "DIR/data/VornHotpixelEditor/backups.");
}

TEST_F(Restore, TakesAnyCopyOfTheCameraByItsNameOrItsPath)
{
    copy("S1-user-list-20200101-000000.txt", "5 5 1\n");
    EXPECT_EQ(
        m_fixture.run(QStringLiteral("restore 1 S1-user-list-20200101-000000.txt --yes")).status,
        0);
    EXPECT_EQ(m_fixture.user(), (Entries{{5, 5, UserPixel}}));
    EXPECT_EQ(m_fixture
                  .run(QStringLiteral("restore S1 DIR/data/VornHotpixelEditor/backups/") + m_copy +
                       QStringLiteral(" --yes"))
                  .status,
              0);
    EXPECT_EQ(m_fixture.user(), First);
}

// Also with what a write would leave out or refuse: it was in this camera.
TEST_F(Restore, GivesBackExactlyWhatWasThere)
{
    const BadpixelEntry factory = m_fixture.factory().front();
    const Entries odd{{64, 5, UserPixel},
                      {7, 7, UserPixel},
                      {7, 7, UserPixel},
                      {factory.x, factory.y, UserPixel},
                      {5, 65535, UserPixel}};
    m_fixture.setUser(odd);
    ASSERT_EQ(m_fixture.run(QStringLiteral("write 1 DIR/second.txt --yes")).status, 0);
    ASSERT_EQ(m_fixture.user(), Second);
    EXPECT_EQ(m_fixture.run(QStringLiteral("restore 1 --yes")).status, 0);
    EXPECT_EQ(m_fixture.user(), odd);
}

TEST_F(Restore, RefusesTheCopyOfAnotherCamera)
{
    copy("S2-user-list-20990101-000000.txt", "5 5 1\n");
    expectUntouched(m_fixture.run(QStringLiteral("restore 1 S2-user-list-20990101-000000.txt "
                                                 "--yes")),
                    "DIR/data/VornHotpixelEditor/backups/S2-user-list-20990101-000000.txt is a "
                    "copy of the camera S2, not of S1.");
}

TEST_F(Restore, RefusesAFileThatIsNoCopy)
{
    expectUntouched(m_fixture.run(QStringLiteral("restore 1 DIR/second.txt --yes")),
                    "DIR/second.txt is not named like a copy that a write made; \"write\" takes "
                    "any list file.");
    expectUntouched(
        m_fixture.run(QStringLiteral("restore 1 S1-user-list-19990101-000000.txt --yes")),
        "There is no copy S1-user-list-19990101-000000.txt, neither here nor in "
        "DIR/data/VornHotpixelEditor/backups.");
    const auto noCamera = m_fixture.run(QStringLiteral("restore DIR/second.txt --yes"));
    EXPECT_EQ(noCamera.status, 2);
    EXPECT_EQ(noCamera.err, QByteArray("vorn-hotpixel: CAMERA is missing. See \"vorn-hotpixel "
                                       "restore --help\".\n"));
}

TEST_F(Restore, OfADamagedCopyEndsWithALine)
{
    const struct
    {
        QByteArray content;
        QByteArray message;
    } cases[] = {
        {"10 10 1\n20 2", ", line 2: this is no user entry (x, y and the class 1)."},
        {"10 10 1\n20 20 1", " is damaged: its last line is not complete."},
        {"10 10 1\n\n20 20 1\n", ", line 2: this is no user entry (x, y and the class 1)."},
        {QByteArray(24, '\0'), ", line 1: this is no user entry (x, y and the class 1)."},
        {"10 10 1\n70000 1 1\n", ", line 2: this is no user entry (x, y and the class 1)."},
        {"\xff\xfe\x31\x00", ", line 1: this is no user entry (x, y and the class 1)."},
    };
    for (const auto& [content, message] : cases) {
        copy("S1-user-list-20990101-000000.txt", content);
        for (const char* file : {"", " S1-user-list-20990101-000000.txt"}) {
            expectUntouched(m_fixture.run(QStringLiteral("restore 1") + QLatin1String(file) +
                                          QStringLiteral(" --yes")),
                            "DIR/data/VornHotpixelEditor/backups/S1-user-list-20990101-000000.txt" +
                                message);
        }
    }
    // An empty one may be a copy of an empty list.
    copy("S1-user-list-20990101-000000.txt", "");
    expectUntouched(m_fixture.run(QStringLiteral("restore 1 --yes")),
                    "The new list is empty; use --allow-empty to wipe the user list in the camera "
                    "(3 entries).");
    EXPECT_EQ(m_fixture.run(QStringLiteral("restore 1 --yes --allow-empty")).status, 0);
    EXPECT_TRUE(m_fixture.user().empty());
}

// Which takes a second or more, and may be what another program waits for.
TEST_F(Restore, OfADamagedCopyThatIsNamedDoesNotOpenTheCamera)
{
    copy("S1-user-list-20990101-000000.txt", "10 10 1\n20 20 1");
    const auto failed =
        m_fixture.run(QStringLiteral("restore 1 S1-user-list-20990101-000000.txt --yes"));
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(m_fixture.calls[static_cast<std::size_t>(SdkOperation::InitCamera)], 0);
}

TEST_F(Restore, OfAListThatDoesNotFitEndsWithALine)
{
    QByteArray lines;
    for (int y = 0; y < 21; ++y) {
        lines += "31 " + QByteArray::number(y) + " 1\n";
    }
    copy("S1-user-list-20990101-000000.txt", lines);
    for (const char* option : {" --yes", " --dry-run"}) {
        expectUntouched(m_fixture.run(QStringLiteral("restore 1") + QLatin1String(option)),
                        "The list has 21 user entries, but the camera can store 20 at most.");
    }
}

TEST_F(Restore, FillsACameraToItsLastEntry)
{
    QByteArray lines;
    for (int y = 0; y < 20; ++y) {
        lines += "31 " + QByteArray::number(y) + " 1\n";
    }
    copy("S1-user-list-20990101-000000.txt", lines);
    EXPECT_EQ(m_fixture.run(QStringLiteral("restore 1 --yes")).status, 0);
    EXPECT_EQ(m_fixture.user().size(), 20U);
    EXPECT_EQ(
        m_fixture.run(QStringLiteral("restore 1 ") + m_copy + QStringLiteral(" --yes")).status, 0);
    EXPECT_EQ(m_fixture.user(), First);
}

TEST_F(Restore, ShowsWhatItWouldDo)
{
    const auto shown = m_fixture.run(QStringLiteral("restore 1 --dry-run"));
    EXPECT_EQ(shown.status, 0) << shown.err.constData();
    EXPECT_TRUE(shown.out.endsWith("Added: 1 entry\n  (10, 10)\nRemoved: 2 entries\n  (30, 30)  "
                                   "(40, 40)\nNothing was written.\n"))
        << shown.out.constData();
    EXPECT_EQ(m_fixture.user(), Second);
    EXPECT_EQ(m_fixture.backups().size(), 1);
}

TEST_F(Restore, AsksUnlessToldNotTo)
{
    const auto refused = m_fixture.run(QStringLiteral("restore 1"));
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains("use --yes"));
}

// At each command to the EEPROM: pulled from then on, or plugged again at once.
TEST_F(Restore, LosesNothingWhenTheCableIsPulled)
{
    m_fixture.run(QStringLiteral("restore 1 --dry-run"));
    int commands = 0;
    for (int when = 1; when <= 14; ++when) {
        m_fixture.setUser(Second);
        int sent = 0;
        m_fixture.onCommand = [&](std::int32_t) {
            if (++sent == when) {
                m_fixture.control().setPlugged(false);
            }
        };
        const auto ended =
            m_fixture.run(QStringLiteral("restore 1 ") + m_copy + QStringLiteral(" --yes"));
        commands = std::max(commands, sent);
        m_fixture.onCommand = [](std::int32_t) {};
        m_fixture.control().setPlugged(true);
        SCOPED_TRACE(testing::Message() << "at command " << when << ": " << ended.err.constData());
        EXPECT_EQ(ended.status, sent < when ? 0 : 1);
        EXPECT_LE(ended.err.count('\n'), 1);
        EXPECT_TRUE(m_fixture.user() == First || m_fixture.user() == Second);
        EXPECT_EQ(m_fixture.simulated().openCameras(), 0);
        // Whatever the camera holds, the newest copy that differs is the other list.
        const Entries left = m_fixture.user();
        const auto undone = m_fixture.run(QStringLiteral("restore 1 --yes"));
        EXPECT_EQ(undone.status, 0) << undone.err.constData();
        EXPECT_EQ(m_fixture.user(), left == First ? Second : First);
    }
    EXPECT_GE(commands, 10);
}

TEST_F(Restore, LosesNothingWhicheverCallFails)
{
    m_fixture.run(QStringLiteral("restore 1 ") + m_copy + QStringLiteral(" --yes"));
    const int calls = m_fixture.calls[static_cast<std::size_t>(SdkOperation::HotpixelCommand)];
    EXPECT_EQ(calls, 8);
    for (int call = 1; call <= calls; ++call) {
        m_fixture.fault.reset();
        m_fixture.setUser(Second);
        m_fixture.fault = SdkFault{SdkOperation::HotpixelCommand, call, true};
        const auto ended =
            m_fixture.run(QStringLiteral("restore 1 ") + m_copy + QStringLiteral(" --yes"));
        SCOPED_TRACE(testing::Message() << "call " << call << ": " << ended.err.constData());
        EXPECT_TRUE(m_fixture.struck);
        EXPECT_EQ(m_fixture.user(), ended.status == 0 ? First : Second);
    }
}

TEST_F(Restore, DoesNothingForACameraThatIsInUse)
{
    m_fixture.control().setHeldElsewhere(true);
    const auto failed = m_fixture.run(QStringLiteral("restore 1 --yes"));
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, QByteArray("vorn-hotpixel: The camera (Small, SerNo S1, Dev 1) is in use "
                                     "by another program.\n"));
}

TEST_F(Restore, KnowsWhatThereIsByTheListOfCopies)
{
    copy("S1-user-list-20990101-000000.txt", "20 20 1\n30 30 1\n40 40 1\n");
    copy("S1-user-list-20200101-010203-12.txt", "broken");
    copy("S2-user-list-20250505-050505.txt", "1 1 1\n");
    copy("notes.txt", "no copy");
    const auto listed = m_fixture.run(QStringLiteral("backups 1"));
    EXPECT_EQ(listed.status, 0) << listed.err.constData();
    EXPECT_TRUE(
        listed.out.startsWith("Small, SerNo S1, Dev 1\n"
                              "Saved                SerNo  Entries  Restoring it        File\n"
                              "2099-01-01 00:00:00  S1     3        the same            "
                              "S1-user-list-20990101-000000.txt\n"))
        << listed.out.constData();
    EXPECT_TRUE(listed.out.contains("  S1     2        1 added, 2 removed  " + m_copy.toLatin1()));
    EXPECT_TRUE(listed.out.endsWith("2020-01-01 01:02:03  S1     -        damaged             "
                                    "S1-user-list-20200101-010203-12.txt\n"))
        << listed.out.constData();

    const QJsonObject object = m_fixture.run(QStringLiteral("backups S1 --json")).json();
    const QJsonArray copies = object[QStringLiteral("backups")].toArray();
    ASSERT_EQ(copies.size(), 3);
    EXPECT_EQ(copies[1].toObject()[QStringLiteral("added")].toInt(), 1);
    EXPECT_EQ(copies[1].toObject()[QStringLiteral("removed")].toInt(), 2);
    EXPECT_EQ(copies[1].toObject()[QStringLiteral("entries")].toInt(), 2);
    EXPECT_TRUE(copies[2].toObject().contains(QStringLiteral("error")));
}

TEST_F(Restore, ListsTheCopiesOfAllCamerasWithoutOpeningOne)
{
    copy("S2-user-list-20250505-050505.txt", "1 1 1\n");
    m_fixture.control().setHeldElsewhere(true);
    const auto listed = m_fixture.run(QStringLiteral("backups"));
    EXPECT_EQ(listed.status, 0) << listed.err.constData();
    EXPECT_EQ(listed.out.count('\n'), 3) << listed.out.constData();
    EXPECT_TRUE(listed.out.contains("S2     1"));
    EXPECT_TRUE(m_fixture.commands.empty());
}

TEST_F(Restore, ListsTheCopiesOfACameraThatHasGone)
{
    copy("S2-user-list-20250505-050505.txt", "1 1 1\n");
    const auto listed = m_fixture.run(QStringLiteral("backups S2"));
    EXPECT_EQ(listed.status, 0) << listed.err.constData();
    EXPECT_TRUE(listed.out.startsWith("SerNo S2, not connected\n")) << listed.out.constData();
    EXPECT_EQ(m_fixture.run(QStringLiteral("backups S3")).status, 1);
}

TEST_F(Restore, SaysThatTheListOfCopiesIsEmpty)
{
    QDir(m_fixture.backupFolder()).removeRecursively();
    const auto listed = m_fixture.run(QStringLiteral("backups"));
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.out,
              QByteArray("There are no copies in DIR/data/VornHotpixelEditor/backups.\n"));
    EXPECT_FALSE(QFileInfo::exists(m_fixture.backupFolder())) << "looking makes no folder";
}

TEST(ListBackups, AreNamedAfterCameraAndTime)
{
    const auto backup =
        cli::ListBackup::named(QStringLiteral("/x/a-b_c-user-list-20260309-070502.txt"));
    ASSERT_TRUE(backup);
    EXPECT_EQ(backup->serNo, QStringLiteral("a-b_c"));
    EXPECT_EQ(backup->saved, QDateTime(QDate(2026, 3, 9), QTime(7, 5, 2)));
    EXPECT_EQ(backup->number, 1);
    EXPECT_TRUE(backup->isOf(QStringLiteral("a-b c"))) << "the name carries no blank";
    EXPECT_FALSE(backup->isOf(QStringLiteral("a-b")));
    for (const char* name : {"list.txt", "S1-user-list-20260309-070502.txt.bak",
                             "S1-user-list-20261309-070502.txt", "S1-user-list-2026-070502.txt"}) {
        EXPECT_FALSE(cli::ListBackup::named(QLatin1String(name))) << name;
    }
}

TEST(ListBackups, OfOneSecondAreInTheOrderOfTheirNumbers)
{
    const QTemporaryDir folder;
    const QDateTime time(QDate(2026, 3, 9), QTime(7, 5, 2));
    for (std::uint16_t i = 0; i < 12; ++i) {
        cli::saveBackup(folder.path(), QStringLiteral("7"), time, Entries{{i, i, UserPixel}});
    }
    std::vector<int> first;
    for (const cli::ListBackup& backup : cli::backupsIn(folder.path())) {
        first.push_back(backup.entries().front().x);
    }
    EXPECT_EQ(first, (std::vector<int>{11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
}
