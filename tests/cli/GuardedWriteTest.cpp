// SPDX-License-Identifier: MIT
#include "cli/GuardedWrite.h"

#include "camera/Camera.h"
#include "hotpixel/BadpixelListFile.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/EepromSdk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <optional>

namespace {

using Fault = EepromSdk::Fault;
using Entries = std::vector<BadpixelEntry>;

const Entries OldList{{3, 4, UserPixel}, {5, 6, UserPixel}, {700, 800, UserPixel}};
const Entries NewList{{9, 9, UserPixel}, {10, 9, UserPixel}};

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

/// A camera that holds @p old, and a folder for its backups.
struct WriteFixture
{
    explicit WriteFixture(Entries old = OldList) { sdk.user = std::move(old); }

    GuardedWrite guardedWrite()
    {
        return {CameraLists(camera), QStringLiteral("4102/7"), folder()};
    }

    [[nodiscard]] QString folder() const { return home.filePath(QStringLiteral("backups")); }

    /// Checks and writes; the text of what was thrown, empty when nothing was.
    QString replaceBy(const Entries& list)
    {
        GuardedWrite write = guardedWrite();
        try {
            write.check(list);
            backup = write.write();
        } catch (const std::runtime_error& error) {
            return QString::fromUtf8(error.what());
        }
        return {};
    }

    EepromSdk sdk;
    Camera camera{sdk};
    QTemporaryDir home;
    QString backup;
};

} // namespace

TEST(GuardedWrite, ReplacesTheListAndKeepsTheOldOneInAFile)
{
    WriteFixture fixture;
    EXPECT_EQ(fixture.replaceBy(NewList), QString());
    EXPECT_EQ(fixture.sdk.user, NewList);
    EXPECT_EQ(hotpixel::readListFile(fixture.backup), OldList);
    EXPECT_EQ(filesIn(fixture.folder()).size(), 1);
    EXPECT_TRUE(
        QFileInfo(fixture.backup).fileName().startsWith(QStringLiteral("4102_7-user-list-")));
}

TEST(GuardedWrite, SavesTheOldListBeforeTheCameraIsTouched)
{
    WriteFixture fixture;
    std::optional<Entries> savedBefore;
    fixture.sdk.beforeChange = [&] {
        const QDir folder(fixture.folder());
        const QStringList files = filesIn(fixture.folder());
        ASSERT_EQ(files.size(), 1);
        savedBefore = hotpixel::readListFile(folder.filePath(files.front()));
    };
    EXPECT_EQ(fixture.replaceBy(NewList), QString());
    EXPECT_EQ(savedBefore, OldList);
}

TEST(GuardedWrite, DeletesTheListForNoEntries)
{
    WriteFixture fixture;
    EXPECT_EQ(fixture.replaceBy({}), QString());
    EXPECT_TRUE(fixture.sdk.user.empty());
    EXPECT_EQ(fixture.sdk.deletions, 1) << "a list of no entries is not a list that a camera takes";
    EXPECT_EQ(hotpixel::readListFile(fixture.backup), OldList);
}

TEST(GuardedWrite, KeepsAnEmptyFileOfACameraWithoutEntries)
{
    WriteFixture fixture(Entries{});
    EXPECT_EQ(fixture.replaceBy(NewList), QString());
    EXPECT_EQ(fixture.sdk.user, NewList);
    EXPECT_EQ(QFileInfo(fixture.backup).size(), 0);
}

TEST(GuardedWrite, RefusesAListThatIsLongerThanTheCapacity)
{
    WriteFixture fixture;
    fixture.sdk.capacity = 1;
    EXPECT_EQ(fixture.replaceBy(NewList),
              QStringLiteral("The list has 2 user entries, but the camera can store 1 at most."));
    EXPECT_EQ(fixture.sdk.writes, 0);
    EXPECT_TRUE(filesIn(fixture.folder()).isEmpty());
}

// What a camera's maker has put there, a detection has not.
TEST(GuardedWrite, NotesUserEntriesBesideTheSensorOnly)
{
    RecordedConsole recorded;
    cli::noteEntriesBeside(Entries{{64, 3, FactoryPixel}, {63, 3, UserPixel}, {65, 3, UserPixel}},
                           64, recorded.console());
    EXPECT_EQ(recorded.err(), QByteArray());
    cli::noteEntriesBeside(Entries{{64, 3, FactoryPixel}, {64, 4, UserPixel}}, 64,
                           recorded.console());
    EXPECT_EQ(recorded.err(),
              QByteArray("Note: 1 entry at x = 64, behind the sensor's last column, "
                         "as a detection lists them.\n"));
}

TEST(GuardedWrite, FillsTheCameraToItsCapacity)
{
    WriteFixture fixture;
    fixture.sdk.capacity = 2;
    EXPECT_EQ(fixture.replaceBy(NewList), QString());
    EXPECT_EQ(fixture.sdk.user, NewList);
}

TEST(GuardedWrite, SavesMoreOldEntriesThanTheEditorCanShow)
{
    Entries old;
    for (std::uint16_t i = 0; i < 1500; ++i) {
        old.push_back({i, static_cast<std::uint16_t>(2 * i), UserPixel});
    }
    WriteFixture fixture(old);
    EXPECT_EQ(fixture.replaceBy(NewList), QString());
    EXPECT_EQ(hotpixel::readListFile(fixture.backup), old);
}

TEST(GuardedWrite, WritesNothingWhenTheOldListCantBeRead)
{
    for (const int call : {2, 3}) {
        WriteFixture fixture;
        fixture.sdk.fault = Fault::Refuse;
        fixture.sdk.faultyCall = call;
        EXPECT_EQ(fixture.replaceBy(NewList),
                  QStringLiteral("Can't read the camera's user list: The EEPROM is tired."));
        EXPECT_EQ(fixture.sdk.writes, 0);
    }
}

TEST(GuardedWrite, TakesNoTextFromAnSdkThatDoesNotKnowTheError)
{
    WriteFixture fixture;
    fixture.sdk.explains = false;
    fixture.sdk.fault = Fault::Refuse;
    fixture.sdk.faultyCall = 2;
    EXPECT_EQ(fixture.replaceBy(NewList),
              QStringLiteral("Can't read the camera's user list: Unknown error."));
}

TEST(GuardedWrite, WritesNothingWhenTheCapacityCantBeRead)
{
    WriteFixture fixture;
    fixture.sdk.fault = Fault::Refuse;
    fixture.sdk.faultyCall = 1;
    EXPECT_EQ(fixture.replaceBy(NewList), QStringLiteral("Can't read the capacity of the camera's "
                                                         "user list: The EEPROM is tired."));
    EXPECT_EQ(fixture.sdk.writes, 0);
}

TEST(GuardedWrite, WritesNothingWhenTheCapacityIsNonsense)
{
    WriteFixture fixture;
    fixture.sdk.capacity = -5;
    EXPECT_EQ(fixture.replaceBy({}), QStringLiteral("Can't read the capacity of the camera's user "
                                                    "list: the camera answers -5."));
    EXPECT_EQ(fixture.sdk.writes, 0);
}

TEST(GuardedWrite, WritesNothingWhenTheOldListCantBeSaved)
{
    WriteFixture fixture;
    QFile inTheWay(fixture.folder());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_TRUE(
        fixture.replaceBy(NewList).startsWith(QStringLiteral("Can't save the old list in ")));
    EXPECT_EQ(fixture.sdk.writes, 0);
    EXPECT_EQ(fixture.sdk.user, OldList);
}

TEST(GuardedWrite, PutsTheOldListBackWhenTheCameraStoredAnother)
{
    WriteFixture fixture;
    fixture.sdk.fault = Fault::StoreOther;
    fixture.sdk.faultyCall = 4;
    const QString text = fixture.replaceBy(NewList);
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("The camera did not store the list as it was written. The camera holds the "
                       "old list, which is also in ")))
        << qPrintable(text);
    EXPECT_EQ(fixture.sdk.user, OldList);
}

TEST(GuardedWrite, ComparesTheEntriesAndNotOnlyTheirNumber)
{
    WriteFixture fixture;
    fixture.sdk.fault = Fault::StoreChanged;
    fixture.sdk.faultyCall = 4;
    const QString text = fixture.replaceBy(NewList);
    EXPECT_TRUE(
        text.startsWith(QStringLiteral("The camera did not store the list as it was written.")))
        << qPrintable(text);
    EXPECT_EQ(fixture.sdk.user, OldList);
}

TEST(GuardedWrite, TriesThreeTimesToPutTheOldListBack)
{
    WriteFixture fixture;
    fixture.sdk.unlikeWrites = 3; // the new list and two attempts
    const QString text = fixture.replaceBy(NewList);
    EXPECT_TRUE(text.contains(QStringLiteral("The camera holds the old list"))) << qPrintable(text);
    EXPECT_EQ(fixture.sdk.user, OldList);
    EXPECT_EQ(fixture.sdk.writes, 4);
}

TEST(GuardedWrite, GivesUpPuttingTheOldListBackAfterTheThirdTime)
{
    WriteFixture fixture;
    fixture.sdk.unlikeWrites = 100;
    const QString text = fixture.replaceBy(NewList);
    EXPECT_TRUE(text.contains(QStringLiteral(
        "The old list could not be put back (the camera did not store it); it is in ")))
        << qPrintable(text);
    EXPECT_EQ(fixture.sdk.writes, 4);
}

TEST(GuardedWrite, DoesNotWriteASecondTimeWhenTheFirstOneWasRefusedAsAWhole)
{
    WriteFixture fixture;
    fixture.sdk.fault = Fault::Refuse;
    fixture.sdk.faultyCall = 4;
    EXPECT_TRUE(fixture.replaceBy(NewList).startsWith(
        QStringLiteral("Error writing hotpixel list: The EEPROM is tired. The camera holds the old "
                       "list")));
    EXPECT_EQ(fixture.sdk.writes, 1);
}

TEST(GuardedWrite, SaysWhereTheOldListIsWhenTheCameraHasGone)
{
    WriteFixture fixture;
    fixture.sdk.fault = Fault::RefuseFromThenOn;
    fixture.sdk.faultyCall = 5;
    const QString text = fixture.replaceBy(NewList);
    EXPECT_TRUE(text.contains(QStringLiteral("The old list could not be put back (Error writing "
                                             "hotpixel list: The EEPROM is tired.); it is in ")))
        << qPrintable(text);
    EXPECT_TRUE(text.contains(filesIn(fixture.folder()).value(0)));
}

// One fault at each call in each way, for lists of every kind: whatever happens, the camera ends
// with one of the two lists, and as soon as it may not hold the old one any more, a file does.
TEST(GuardedWrite, LeavesTheOldOrTheNewListWhateverGoesWrong)
{
    const std::vector<Entries> lists{{}, NewList, OldList};
    int injected = 0;
    for (const Entries& old : lists) {
        for (const Entries& wanted : lists) {
            for (const Fault fault :
                 {Fault::Refuse, Fault::RefuseWithGarbage, Fault::RefuseFromThenOn, Fault::Tear,
                  Fault::StoreOther, Fault::StoreChanged, Fault::StoreAndFail}) {
                bool reached = true;
                for (int call = 1; reached; ++call) {
                    WriteFixture fixture(old);
                    fixture.sdk.fault = fault;
                    fixture.sdk.faultyCall = call;
                    const QString failure = fixture.replaceBy(wanted);
                    reached = fixture.sdk.calls >= call;
                    injected += reached ? 1 : 0;

                    SCOPED_TRACE(testing::Message()
                                 << "fault " << static_cast<int>(fault) << " at call " << call
                                 << ", " << old.size() << " old and " << wanted.size()
                                 << " new entries: " << qPrintable(failure));
                    EXPECT_TRUE(fixture.sdk.user == old || fixture.sdk.user == wanted);
                    if (failure.isEmpty()) {
                        EXPECT_EQ(fixture.sdk.user, wanted);
                    }
                    const QStringList files = filesIn(fixture.folder());
                    if (fixture.sdk.writes > 0) {
                        ASSERT_EQ(files.size(), 1);
                        EXPECT_EQ(
                            hotpixel::readListFile(QDir(fixture.folder()).filePath(files.front())),
                            old);
                    }
                }
            }
        }
    }
    EXPECT_GT(injected, 200);
    std::printf("%d faults injected\n", injected);
}
