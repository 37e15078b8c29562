// SPDX-License-Identifier: MIT
#include "camera/CameraListModel.h"

#include "camera/Camera.h"
#include "tests/sdk/MockCameraSdk.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ::testing::Invoke;
using ::testing::NiceMock;
using ::testing::Return;

constexpr int NoRefreshMsec = 1'000'000'000;

struct Row
{
    std::uint32_t camId;
    std::uint32_t devId;
    std::uint32_t status;
    const char* serNo = "";
    const char* model = "";
    std::uint32_t word2 = 0;
};

class CameraListFixture : public ::testing::Test
{
protected:
    CameraListFixture()
    {
        ON_CALL(sdk, getNumberOfCameras).WillByDefault(Invoke([this](std::int32_t* count) {
            *count = static_cast<std::int32_t>(cameras.size());
            return 0;
        }));
        ON_CALL(sdk, getCameraList).WillByDefault(Invoke([this](CameraList* list) {
            EXPECT_EQ(list->count, cameras.size()) << "the room there is";
            fill(list);
            return 0;
        }));
        makeModel(NoRefreshMsec);
    }

    void fill(CameraList* list) const
    {
        auto* bytes = reinterpret_cast<char*>(list) + 4;
        for (const Row& row : cameras) {
            CameraListEntry entry = {};
            entry.camId = row.camId;
            entry.devId = row.devId;
            entry.word2 = row.word2;
            entry.status = row.status;
            std::memcpy(entry.serNo, row.serNo, std::strlen(row.serNo));
            std::memcpy(entry.model, row.model, std::strlen(row.model));
            std::memcpy(bytes, &entry, sizeof entry);
            bytes += sizeof entry;
        }
        list->count = static_cast<std::uint32_t>(cameras.size());
    }

    void makeModel(int msec)
    {
        model.emplace(sdk, msec);
        const auto note = [this](const QString& text) { signalled.append(text); };
        QObject* context = &*model;
        QObject::connect(&*model, &CameraListModel::somethingChanged, context,
                         [note] { note(QStringLiteral("somethingChanged")); });
        QObject::connect(&*model, &CameraListModel::rowToSelect, context,
                         [note](int row) { note(QStringLiteral("rowToSelect %1").arg(row)); });
        QObject::connect(&*model, &CameraListModel::rowsAboutToBeRemoved, context,
                         [note](const QModelIndex&, int first, int last) {
                             note(QStringLiteral("remove %1-%2").arg(first).arg(last));
                         });
        QObject::connect(&*model, &CameraListModel::rowsAboutToBeInserted, context,
                         [note](const QModelIndex&, int first, int last) {
                             note(QStringLiteral("insert %1-%2").arg(first).arg(last));
                         });
        QObject::connect(&*model, &CameraListModel::dataChanged, context,
                         [note](const QModelIndex& from, const QModelIndex& to) {
                             note(QStringLiteral("changed %1,%2-%3,%4")
                                      .arg(from.row())
                                      .arg(from.column())
                                      .arg(to.row())
                                      .arg(to.column()));
                         });
        QObject::connect(&*model, &CameraListModel::layoutAboutToBeChanged, context,
                         [note] { note(QStringLiteral("layoutAboutToBeChanged")); });
        QObject::connect(&*model, &CameraListModel::layoutChanged, context,
                         [note] { note(QStringLiteral("layoutChanged")); });
    }

    QStringList signalsOfRefresh()
    {
        signalled.clear();
        model->updateList();
        return signalled;
    }

    QStringList shown() const
    {
        QStringList rows;
        for (int row = 0; row < model->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model->columnCount(); ++column) {
                cells.append(model->index(row, column).data().toString());
            }
            rows.append(cells.join(QLatin1Char('|')));
        }
        return rows;
    }

    QList<uint> devices() const
    {
        QList<uint> list;
        for (int row = 0; row < model->rowCount(); ++row) {
            list.append(model->item(row).devId);
        }
        return list;
    }

    QStringList sortedBy(int column, Qt::SortOrder order)
    {
        makeModel(NoRefreshMsec);
        model->updateList();
        model->sort(column, order);
        return shown();
    }

    NiceMock<MockCameraSdk> sdk;
    std::vector<Row> cameras;
    QStringList signalled;
    std::optional<CameraListModel> model;
};

QStringList list(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts) {
        result.append(QString::fromLatin1(text));
    }
    return result;
}

class CameraListRefresh : public CameraListFixture
{};

TEST_F(CameraListRefresh, KeepsTheRulesOfAModel)
{
    const QAbstractItemModelTester tester(&*model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    cameras = {{1, 11, 0}, {2, 12, 0}, {3, 13, 0}};
    model->updateList();
    cameras = {{2, 12, 1}, {4, 14, 0}};
    model->updateList();
    cameras = {};
    model->updateList();
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(CameraListRefresh, AppendsAllNewCamerasAtOnce)
{
    cameras = {{1, 11, 0, "4103", "VC-20"}, {2, 12, 7, "4104", "VC-5"}};
    EXPECT_EQ(signalsOfRefresh(), list({"insert 0-1", "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(shown(), list({"1|11|VC-20|4103|free", "2|12|VC-5|4104|in use"}));
    cameras.push_back({3, 13, 0});
    EXPECT_EQ(signalsOfRefresh(), list({"insert 2-2", "somethingChanged", "rowToSelect 0"}));
}

TEST_F(CameraListRefresh, OfTheSameCamerasOnlySelectsTheFirstRow)
{
    cameras = {{1, 11, 0}, {2, 12, 7}};
    model->updateList();
    EXPECT_EQ(signalsOfRefresh(), list({"rowToSelect 0"}));
}

TEST_F(CameraListRefresh, WithoutCamerasOnlySelectsTheFirstRow)
{
    EXPECT_CALL(sdk, getCameraList).Times(0);
    EXPECT_EQ(signalsOfRefresh(), list({"rowToSelect 0"}));
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(CameraListRefresh, EmptiesTheListAtOnceWhenNoCameraIsLeft)
{
    cameras = {{1, 11, 0}, {2, 12, 0}, {3, 13, 0}};
    model->updateList();
    for (const int count : {0, -1}) {
        EXPECT_CALL(sdk, getNumberOfCameras).WillOnce(Invoke([count](std::int32_t* number) {
            *number = count;
            return 0;
        }));
        EXPECT_EQ(signalsOfRefresh(),
                  count == 0 ? list({"remove 0-2", "somethingChanged", "rowToSelect 0"})
                             : list({"rowToSelect 0"}));
        EXPECT_EQ(model->rowCount(), 0);
    }
}

TEST_F(CameraListRefresh, RemovesTheCameraThatHasGoneAndAppendsTheNewOne)
{
    cameras = {{1, 11, 0}, {2, 12, 0}};
    model->updateList();
    cameras = {{3, 13, 0}, {2, 12, 0}};
    EXPECT_EQ(signalsOfRefresh(),
              list({"remove 0-0", "insert 1-1", "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(devices(), (QList<uint>{12, 13}));
}

TEST_F(CameraListRefresh, RemovesEachCameraThatHasGoneOnItsOwn)
{
    cameras = {{1, 11, 0}, {2, 12, 0}, {3, 13, 0}, {4, 14, 0}};
    model->updateList();
    cameras = {{3, 13, 0}};
    EXPECT_EQ(signalsOfRefresh(), list({"remove 0-0", "remove 0-0", "remove 1-1",
                                        "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(devices(), (QList<uint>{13}));
}

TEST_F(CameraListRefresh, ChangesTheWholeRowOfACameraThatComesIntoUse)
{
    cameras = {{1, 11, 0}, {2, 12, 0}};
    model->updateList();
    cameras[1].status = 1;
    EXPECT_EQ(signalsOfRefresh(), list({"changed 1,0-1,4", "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(model->index(0, 4).data().toString(), QStringLiteral("free"));
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("in use"));
}

TEST_F(CameraListRefresh, SeesAChangeOfAnyField)
{
    cameras = {{1, 11, 0, "4103", "VC-20", 5}};
    model->updateList();
    const std::vector<Row> changes = {{2, 11, 0, "4103", "VC-20", 5},
                                      {2, 11, 3, "4103", "VC-20", 5},
                                      {2, 11, 3, "4999", "VC-20", 5},
                                      {2, 11, 3, "4999", "VC-21", 5},
                                      {2, 11, 3, "4999", "VC-21", 6}};
    for (const Row& change : changes) {
        cameras = {change};
        EXPECT_EQ(signalsOfRefresh(),
                  list({"changed 0,0-0,4", "somethingChanged", "rowToSelect 0"}));
    }
    EXPECT_EQ(model->item(0).word2, 6U);
}

TEST_F(CameraListRefresh, MatchesTwoCamerasOfOneDeviceInTheirOrder)
{
    cameras = {{1, 11, 0}, {2, 11, 0}};
    model->updateList();
    EXPECT_EQ(signalsOfRefresh(), list({"rowToSelect 0"}));
    cameras = {{2, 11, 0}};
    EXPECT_EQ(signalsOfRefresh(),
              list({"changed 0,0-0,4", "remove 1-1", "somethingChanged", "rowToSelect 0"}));
}

TEST_F(CameraListRefresh, EndsSilentlyWhenTheCamerasCannotBeCounted)
{
    cameras = {{1, 11, 0}};
    model->updateList();
    ON_CALL(sdk, getNumberOfCameras).WillByDefault(Return(12));
    EXPECT_EQ(signalsOfRefresh(), list({"rowToSelect 0"}));
    EXPECT_EQ(devices(), (QList<uint>{11}));
}

TEST_F(CameraListRefresh, EndsSilentlyWhenTheListCannotBeHad)
{
    cameras = {{1, 11, 0}};
    model->updateList();
    ON_CALL(sdk, getCameraList).WillByDefault(Return(12));
    EXPECT_EQ(signalsOfRefresh(), list({"rowToSelect 0"}));
    EXPECT_EQ(devices(), (QList<uint>{11}));
}

TEST_F(CameraListRefresh, TakesAsManyEntriesAsTheSdkLeft)
{
    cameras = {{1, 11, 0}, {2, 12, 0}, {3, 13, 0}};
    ON_CALL(sdk, getCameraList).WillByDefault(Invoke([this](CameraList* record) {
        fill(record);
        record->count = 2;
        return 0;
    }));
    model->updateList();
    EXPECT_EQ(devices(), (QList<uint>{11, 12}));
}

TEST_F(CameraListRefresh, ReadsNoFurtherThanItsMemoryWhenACameraComesInBetween)
{
    cameras = {{1, 11, 0}, {2, 12, 0}};
    ON_CALL(sdk, getCameraList).WillByDefault(Invoke([this](CameraList* record) {
        fill(record);
        record->count = 3;
        return 0;
    }));
    model->updateList();
    EXPECT_EQ(devices(), (QList<uint>{11, 12}));
}

TEST_F(CameraListRefresh, ReadsTextsThatFillTheirField)
{
    cameras = {{1, 11, 0, "0123456789abcdef", "ABCDEFGHIJKLMNOP"}};
    model->updateList();
    EXPECT_EQ(shown(), list({"1|11|ABCDEFGHIJKLMNOP|0123456789abcdef|free"}));
}

TEST_F(CameraListRefresh, ComesAgainWithTheTimer)
{
    makeModel(1);
    QSignalSpy refreshed(&*model, &CameraListModel::rowToSelect);
    EXPECT_TRUE(refreshed.wait(60'000));
    cameras = {{1, 11, 0}};
    QSignalSpy changed(&*model, &CameraListModel::somethingChanged);
    EXPECT_TRUE(changed.wait(60'000));
    EXPECT_EQ(devices(), (QList<uint>{11}));
}

class CameraListOpened : public CameraListFixture
{
protected:
    // A camera that says it is open as device 12; its SDK is a mock that lets everything pass.
    void openDevice12()
    {
        ON_CALL(cameraSdk, initCamera).WillByDefault(Invoke([](CameraSdk::Handle* handle, void*) {
            *handle = 7;
            return 0;
        }));
        ON_CALL(cameraSdk, setColorMode).WillByDefault(Invoke([](CameraSdk::Handle, int mode) {
            return mode == camera::QueryCurrent ? camera::ColorModeBayer8 : 0;
        }));
        ON_CALL(cameraSdk, enableEvent).WillByDefault(Return(1));
        camera.emplace(cameraSdk);
        camera->open(12);
    }

    NiceMock<MockCameraSdk> cameraSdk;
    std::optional<Camera> camera;
};

TEST_F(CameraListOpened, ShowsAtTheNextRefresh)
{
    cameras = {{1, 11, 0}, {2, 12, 5}};
    model->updateList();
    openDevice12();
    signalled.clear();
    model->setOpenCamera(&*camera);
    EXPECT_EQ(signalled, QStringList());
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("in use"));
    EXPECT_EQ(signalsOfRefresh(), list({"changed 1,0-1,4", "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("opened"));
    EXPECT_TRUE(model->item(1).opened);
    EXPECT_FALSE(model->item(0).opened);

    model->clearOpenCamera();
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("opened"));
    model->updateList();
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("in use"));
    cameras[1].status = 0;
    model->updateList();
    EXPECT_EQ(model->index(1, 4).data().toString(), QStringLiteral("free"));
}

TEST_F(CameraListOpened, IsNotMarkedInTheRefreshThatAppendsItButInTheNext)
{
    openDevice12();
    model->setOpenCamera(&*camera);
    cameras = {{2, 12, 5}};
    EXPECT_EQ(signalsOfRefresh(), list({"insert 0-0", "somethingChanged", "rowToSelect 0"}));
    EXPECT_FALSE(model->item(0).opened);
    EXPECT_EQ(signalsOfRefresh(), list({"changed 0,0-0,4", "somethingChanged", "rowToSelect 0"}));
    EXPECT_TRUE(model->item(0).opened);
}

TEST_F(CameraListOpened, IsShownAsFreeWhenTheSdkSaysSo)
{
    openDevice12();
    model->setOpenCamera(&*camera);
    cameras = {{2, 12, 0}};
    model->updateList();
    model->updateList();
    EXPECT_TRUE(model->item(0).opened);
    EXPECT_EQ(model->index(0, 4).data().toString(), QStringLiteral("free"));
}

class CameraListTable : public CameraListFixture
{};

TEST_F(CameraListTable, HasItsTitles)
{
    EXPECT_EQ(model->columnCount(), 5);
    const QStringList titles = list({"Cam", "Dev", "Model", "SerNo", "Status"});
    for (int section = 0; section < 5; ++section) {
        EXPECT_EQ(model->headerData(section, Qt::Horizontal), QVariant(titles.at(section)));
    }
    EXPECT_EQ(model->headerData(3, Qt::Vertical), QVariant(3));
    EXPECT_EQ(model->headerData(5, Qt::Horizontal), QVariant());
    EXPECT_EQ(model->headerData(-1, Qt::Horizontal), QVariant());
    EXPECT_EQ(model->headerData(0, Qt::Horizontal, Qt::ToolTipRole), QVariant());
    EXPECT_EQ(model->headerData(0, Qt::Vertical, Qt::EditRole), QVariant());
}

TEST_F(CameraListTable, ShowsNumbersAsUnsigned)
{
    cameras = {{4000000000U, 4000000001U, 0}};
    model->updateList();
    EXPECT_EQ(model->index(0, 0).data(), QVariant(4000000000U));
    EXPECT_EQ(model->index(0, 1).data(), QVariant(4000000001U));
}

TEST_F(CameraListTable, HasDataOnlyInsideAndForDisplay)
{
    cameras = {{1, 11, 0}};
    model->updateList();
    EXPECT_EQ(model->data({}), QVariant());
    const QModelIndex inside = model->index(0, 0);
    for (const int role : {Qt::EditRole, Qt::ToolTipRole, Qt::TextAlignmentRole, Qt::UserRole}) {
        EXPECT_EQ(model->data(inside, role), QVariant());
    }
    cameras = {};
    model->updateList();
    EXPECT_EQ(model->data(inside), QVariant()) << "an index of a row that has gone";
}

TEST_F(CameraListTable, GivesTheItemOfARowAndTheEmptyOneOutside)
{
    cameras = {{1, 11, 3, "4103", "VC-20", 9}};
    model->updateList();
    const CameraItem expected = {.opened = false,
                                 .camId = 1,
                                 .devId = 11,
                                 .word2 = 9,
                                 .status = 3,
                                 .serNo = QStringLiteral("4103"),
                                 .model = QStringLiteral("VC-20")};
    EXPECT_TRUE(model->item(0) == expected);
    EXPECT_TRUE(model->item(-1) == CameraItem());
    EXPECT_TRUE(model->item(1) == CameraItem());
}

class CameraListSort : public CameraListFixture
{};

TEST_F(CameraListSort, OfAnEmptyModelDoesNothing)
{
    model->sort(0, Qt::AscendingOrder);
    model->sort(77, Qt::AscendingOrder);
    EXPECT_EQ(signalled, QStringList());
}

TEST_F(CameraListSort, EmitsLayoutChangedAlone)
{
    cameras = {{2, 12, 0}, {1, 11, 0}};
    model->updateList();
    signalled.clear();
    model->sort(0, Qt::AscendingOrder);
    EXPECT_EQ(signalled, list({"layoutChanged"}));
}

TEST_F(CameraListSort, OrdersByNumbersAndTexts)
{
    cameras = {{4000000000U, 2, 0, "9", "b"}, {10, 1, 0, "10", "C"}};
    const QString first = QStringLiteral("4000000000|2|b|9|free");
    const QString second = QStringLiteral("10|1|C|10|free");
    EXPECT_EQ(sortedBy(0, Qt::AscendingOrder), (QStringList{second, first}));
    EXPECT_EQ(sortedBy(0, Qt::DescendingOrder), (QStringList{first, second}));
    EXPECT_EQ(sortedBy(2, Qt::AscendingOrder), (QStringList{second, first})) << "C before b";
    EXPECT_EQ(sortedBy(2, Qt::DescendingOrder), (QStringList{first, second}));
    EXPECT_EQ(sortedBy(3, Qt::AscendingOrder), (QStringList{second, first})) << "10 before 9";
    EXPECT_EQ(sortedBy(3, Qt::DescendingOrder), (QStringList{first, second}));
}

TEST_F(CameraListSort, OrdersByTheStatusThatIsShown)
{
    cameras = {{1, 11, 3}, {2, 12, 0}};
    const QString inUse = QStringLiteral("1|11|||in use");
    const QString free = QStringLiteral("2|12|||free");
    EXPECT_EQ(sortedBy(4, Qt::AscendingOrder), (QStringList{free, inUse}));
    EXPECT_EQ(sortedBy(4, Qt::DescendingOrder), (QStringList{inUse, free}));
    cameras = {{2, 12, 0}, {1, 11, 3}};
    EXPECT_EQ(sortedBy(4, Qt::AscendingOrder), (QStringList{free, inUse}));
    EXPECT_EQ(sortedBy(4, Qt::DescendingOrder), (QStringList{inUse, free}));
}

// The last row's devId against the first row's camId decides about two rows.
TEST_F(CameraListSort, OfDevComparesOneRowsDevIdWithTheOthersCamId)
{
    cameras = {{5, 1, 0}, {1, 9, 0}};
    sortedBy(1, Qt::AscendingOrder); // 9 < 5 does not hold
    EXPECT_EQ(devices(), (QList<uint>{1, 9}));
    sortedBy(1, Qt::DescendingOrder); // 9 > 5
    EXPECT_EQ(devices(), (QList<uint>{9, 1}));

    cameras = {{20, 1, 0}, {1, 9, 0}};
    sortedBy(1, Qt::AscendingOrder); // 9 < 20, although 9 > 1
    EXPECT_EQ(devices(), (QList<uint>{9, 1}));
    sortedBy(1, Qt::DescendingOrder); // 9 > 20 does not hold
    EXPECT_EQ(devices(), (QList<uint>{1, 9}));
}

TEST_F(CameraListSort, LeavesEqualRowsAsTheToolkitsSortDid)
{
    // Four equal rows: the third and the fourth change places, the first and the fourth, the
    // second and the fourth (see the sort's own tests).
    cameras = {{1, 11, 0}, {1, 12, 0}, {1, 13, 0}, {1, 14, 0}};
    sortedBy(0, Qt::AscendingOrder);
    EXPECT_EQ(devices(), (QList<uint>{14, 13, 11, 12}));
}

TEST_F(CameraListSort, RefusesOtherColumnsAndLosesNothing)
{
    cameras = {{2, 12, 0}, {1, 11, 0}};
    model->updateList();
    signalled.clear();
    for (const int column : {-1, 5, 1000}) {
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            try {
                model->sort(column, order);
                FAIL() << column << ' ' << order;
            } catch (const std::runtime_error& error) {
                EXPECT_STREQ(error.what(), "Sort Error");
            }
        }
    }
    EXPECT_EQ(devices(), (QList<uint>{12, 11}));
    EXPECT_EQ(signalled, QStringList());
}

TEST_F(CameraListSort, IsKeptByLaterRefreshes)
{
    cameras = {{1, 11, 0}, {2, 12, 0}, {3, 13, 0}};
    model->updateList();
    model->sort(0, Qt::DescendingOrder);
    EXPECT_EQ(devices(), (QList<uint>{13, 12, 11}));
    cameras = {{0, 10, 0}, {1, 11, 0}, {2, 12, 4}, {3, 13, 0}};
    EXPECT_EQ(signalsOfRefresh(),
              list({"changed 1,0-1,4", "insert 3-3", "somethingChanged", "rowToSelect 0"}));
    EXPECT_EQ(devices(), (QList<uint>{13, 12, 11, 10}));
}

} // namespace

class ConnectedCameras : public CameraListFixture
{
protected:
    std::string failure()
    {
        try {
            static_cast<void>(camera::connectedCameras(sdk));
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }
};

TEST_F(ConnectedCameras, AreThoseOfTheSdkInItsOrder)
{
    cameras = {{7, 5, 1, "111", "One", 9}, {3, 16, 0, "22", "Second"}};
    EXPECT_EQ(
        camera::connectedCameras(sdk),
        (QList<CameraItem>{{false, 7, 5, 9, 1, QStringLiteral("111"), QStringLiteral("One")},
                           {false, 3, 16, 0, 0, QStringLiteral("22"), QStringLiteral("Second")}}));
}

TEST_F(ConnectedCameras, AreNoneWithoutAskingForTheirList)
{
    EXPECT_CALL(sdk, getCameraList).Times(0);
    EXPECT_TRUE(camera::connectedCameras(sdk).isEmpty());
}

TEST_F(ConnectedCameras, CantBeToldApartFromNoneButByAnError)
{
    cameras = {{1, 1, 0}};
    EXPECT_CALL(sdk, getCameraList).WillOnce(Return(1));
    EXPECT_EQ(failure(), "Can't get camera list.");
    EXPECT_CALL(sdk, getNumberOfCameras).WillOnce(Return(1));
    EXPECT_EQ(failure(), "Can't get number of cameras.");
}
