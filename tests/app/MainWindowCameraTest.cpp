// SPDX-License-Identifier: MIT
#include "tests/app/WindowTest.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterBlockWidget.h"
#include "widgets/ParameterWidget.h"

#include <QDoubleSpinBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>

namespace {

class MainWindowCamera : public WindowTest
{
protected:
    /// Which of the commands for an open camera are enabled, in the order of the tool bar.
    [[nodiscard]] QString cameraCommands() const
    {
        QString enabled;
        for (const char* const text : {"&Close camera", "Hotpixel correction", "Detec&t hotpixel",
                                       "&Write hotpixel", "&Add hotpixel"}) {
            enabled.append(action(text)->isEnabled() ? '1' : '0');
        }
        enabled.append(zoomAction()->isEnabled() ? '1' : '0');
        return enabled;
    }

    [[nodiscard]] QAction* zoomAction() const
    {
        return child<QToolBar>("mainToolBar")->actions().last();
    }

    [[nodiscard]] QString status(int row) const
    {
        return cameraView()->model()->index(row, 4).data().toString();
    }

    void refresh() { EXPECT_TRUE(QMetaObject::invokeMethod(cameraView()->model(), "updateList")); }

    void choose(const char* zoom) { emit zoomAction()->menu()->triggered(action(zoom)); }

    [[nodiscard]] QString checkedZooms() const
    {
        QStringList checked;
        for (const QAction* const entry : zoomAction()->menu()->actions()) {
            if (entry->isChecked()) {
                checked.append(entry->text());
            }
        }
        return checked.join(' ');
    }

    /// The size at which a frame is shown.
    [[nodiscard]] QSize shownSize()
    {
        sendFrame(20);
        return display()->widget()->size();
    }

    [[nodiscard]] QTimer* statusTimer() const { return child<QTimer>("statusTimer"); }
};

TEST_F(MainWindowCamera, FirstCameraIsSelectedAtTheStart)
{
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
    EXPECT_TRUE(action("&Open camera")->isEnabled());
    EXPECT_EQ(cameraCommands(), "000000");
}

TEST_F(MainWindowCamera, ARefreshNeverOverridesTheUsersSelection)
{
    cameraView()->selectRow(1);
    refresh();
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({1}));
    cameraView()->clearSelection();
    refresh();
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
}

TEST_F(MainWindowCamera, OpensWithADoubleClick)
{
    const QSignalSpy opened(window.get(), &MainWindow::cameraOpened);
    open();
    EXPECT_EQ(opened, QList<QVariantList>({{true}}));
    EXPECT_TRUE(sdk.isOpen());
    EXPECT_EQ(status(0), "opened");
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user"}));
    EXPECT_FALSE(action("&Open camera")->isEnabled());
    EXPECT_EQ(cameraCommands(), "111111");
    EXPECT_TRUE(child<ParameterBlockWidget>()->isEnabled());
    EXPECT_FALSE(display()->widget()->isHidden());
    EXPECT_EQ(label("statusX"), "x: 0");
    EXPECT_EQ(label("statusY"), "y: 0");
    EXPECT_TRUE(statusTimer()->isActive());
    EXPECT_EQ(statusTimer()->interval(), 1500);
    EXPECT_EQ(message(), "");
}

TEST_F(MainWindowCamera, OpensByItsDeviceNumberAppliesTheCorrectionAndStartsLiveCaptureAgain)
{
    open();
    QStringList calls = sdk.takeCalls();
    EXPECT_EQ(calls.takeFirst(), "initCamera 32773"); // 5 | 0x8000
    EXPECT_EQ(calls.takeLast(), "startLiveVideo 0");
    EXPECT_EQ(calls.takeLast(), "startLiveVideo 1");
    EXPECT_EQ(calls.takeLast(), "setExposureTime 26");
    calls.removeLast();
    EXPECT_EQ(calls.takeLast(), "hotpixelCommand 8 0");
    EXPECT_EQ(calls.takeLast(), "hotpixelCommand 0 0");
}

TEST_F(MainWindowCamera, KnowsTheListsBeforeTheWindowTellsThatACameraIsOpen)
{
    QStringList seen;
    QObject::connect(window.get(), &MainWindow::cameraOpened, window.get(), [&](bool opened) {
        seen.append(QStringLiteral("%1 %2 %3").arg(opened).arg(badpixels().size()).arg(status(0)));
    });
    open();
    close();
    // The camera list follows after the window at the opening and before it at the closing.
    EXPECT_EQ(seen, QStringList({"1 3 free", "0 0 free"}));
}

TEST_F(MainWindowCamera, TheCorrectionThatIsCheckedIsAppliedToTheNextCamera)
{
    open();
    static_cast<void>(sdk.takeCalls());
    action("Hotpixel correction")->trigger();
    EXPECT_TRUE(sdk.takeCalls().contains("hotpixelCommand 2 0"));
    action("Hotpixel correction")->trigger();
    EXPECT_TRUE(sdk.takeCalls().contains("hotpixelCommand 8 0"));
    action("Hotpixel correction")->trigger();
    close();
    open();
    EXPECT_TRUE(sdk.takeCalls().contains("hotpixelCommand 2 0"));
}

TEST_F(MainWindowCamera, DoesNotOpenACameraThatIsInUse)
{
    open(1);
    EXPECT_EQ(status(1), "in use");
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    EXPECT_FALSE(action("&Open camera")->isEnabled());
    EXPECT_EQ(cameraCommands(), "000000");
}

TEST_F(MainWindowCamera, AFailedOpeningIsShownAndLeavesTheWindowAsItWas)
{
    sdk.devices[0].openFailure = "initCamera";
    open();
    EXPECT_EQ(message(), "Could not initialize camera.");
    EXPECT_FALSE(sdk.isOpen());
    EXPECT_TRUE(display()->widget()->isHidden());
    EXPECT_FALSE(statusTimer()->isActive());
    EXPECT_EQ(cameraCommands(), "000000");
    // The position is reset all the same, and without an image both coordinates are -1.
    EXPECT_EQ(label("statusX"), "x: -1");
    EXPECT_EQ(label("statusY"), "y: -1");
}

TEST_F(MainWindowCamera, ALiveCaptureThatDoesNotStartIsShown)
{
    sdk.devices[0].openFailure = "startLiveVideo";
    open();
    EXPECT_EQ(message(), "Error 7");
    EXPECT_FALSE(sdk.isOpen());
}

TEST_F(MainWindowCamera, AnOpeningThatFailsWhileAnotherCameraIsOpenLeavesTheWindowAsAfterClose)
{
    sdk.devices[1].status = 0;
    sdk.devices[1].openFailure = "initCamera";
    open(0);
    sendFrame(20);
    call("updateStatus");
    EXPECT_EQ(label("statusFrames"), "Frames: 1");
    refresh();
    open(1);
    EXPECT_EQ(message(), "Could not initialize camera.");
    EXPECT_FALSE(sdk.isOpen());
    EXPECT_FALSE(statusTimer()->isActive());
    EXPECT_TRUE(display()->widget()->isHidden());
    EXPECT_TRUE(qobject_cast<QLabel*>(display()->widget())->pixmap(Qt::ReturnByValue).isNull());
    EXPECT_TRUE(magnifier()->pixmap(Qt::ReturnByValue).isNull());
    EXPECT_EQ(label("statusFrames"), "Frames: 0");
    EXPECT_EQ(label("statusFailed"), "Failed: 0");
    EXPECT_EQ(label("statusFps"), "FPS: 0");
}

TEST_F(MainWindowCamera, AnOpenCameraWhoseSecondStartFailsIsShownAsOpen)
{
    sdk.startsUntilFailure = 2; // the opening's, the correction's, and then the window's
    open();
    EXPECT_EQ(message(), "Error 7");
    EXPECT_TRUE(sdk.isOpen());
    EXPECT_FALSE(display()->widget()->isHidden());
    EXPECT_TRUE(statusTimer()->isActive());
    refresh();
    EXPECT_EQ(cameraCommands(), "111111");
}

TEST_F(MainWindowCamera, ActionsFollowTheCameraThatSortingPutsUnderTheSelection)
{
    sdk.devices[1].status = 0;
    open(0);
    refresh();
    EXPECT_EQ(cameraCommands(), "111111");
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
    cameraView()->sortByColumn(2, Qt::DescendingOrder); // VX-2000 before VX-1300
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
    EXPECT_EQ(status(0), "free");
    EXPECT_EQ(cameraCommands(), "000000");
    EXPECT_TRUE(action("&Open camera")->isEnabled());
}

/// Writes down each message that the status bar paints.
class PaintedMessages final : public QObject
{
public:
    explicit PaintedMessages(QStatusBar* bar)
        : m_bar(bar)
    {
        bar->installEventFilter(this);
    }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            texts.append(m_bar->currentMessage());
        }
        return false;
    }
    QStringList texts;

private:
    QStatusBar* m_bar;
};

TEST_F(MainWindowCamera, PaintsTheNoticeOfAFirmwareUploadBeforeTheUploadBlocks)
{
    sdk.devices[0].firmwareUploadMsec = 12900;
    const PaintedMessages painted(child<QStatusBar>("statusBar"));
    QStringList beforeTheUpload;
    sdk.onUpload = [&] { beforeTheUpload = painted.texts; };
    open();
    EXPECT_TRUE(beforeTheUpload.contains("Upload of new firmware required. (approx. 12 seconds)"));
}

TEST_F(MainWindowCamera, TellsOfAFirmwareUploadBeforeItOpens)
{
    sdk.devices[0].firmwareUploadMsec = 12900;
    const QSignalSpy messages(child<QStatusBar>("statusBar"), &QStatusBar::messageChanged);
    open();
    EXPECT_TRUE(sdk.isOpen());
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_EQ(messages[0][0], "Upload of new firmware required. (approx. 12 seconds)");
}

TEST_F(MainWindowCamera, ClosesAndResetsTheStatus)
{
    open();
    sendFrame(20);
    call("updateStatus");
    moveMagnifier({7, 8});
    const QSignalSpy opened(window.get(), &MainWindow::cameraOpened);
    close();
    EXPECT_EQ(opened, QList<QVariantList>({{false}}));
    EXPECT_FALSE(sdk.isOpen());
    EXPECT_EQ(status(0), "free");
    EXPECT_EQ(badpixels(), QStringList());
    EXPECT_TRUE(action("&Open camera")->isEnabled());
    EXPECT_EQ(cameraCommands(), "000000");
    EXPECT_FALSE(child<ParameterBlockWidget>()->isEnabled());
    EXPECT_TRUE(display()->widget()->isHidden());
    EXPECT_TRUE(magnifier()->pixmap(Qt::ReturnByValue).isNull());
    EXPECT_FALSE(statusTimer()->isActive());
    EXPECT_EQ(label("statusFrames"), "Frames: 0");
    EXPECT_EQ(label("statusFailed"), "Failed: 0");
    EXPECT_EQ(label("statusFps"), "FPS: 0");
    EXPECT_EQ(label("statusX"), "x: 0");
    EXPECT_EQ(label("statusY"), "y: 0");
}

TEST_F(MainWindowCamera, ClosesNothingWhileAnotherRowThanTheOpenCameraIsSelected)
{
    open();
    cameraView()->selectRow(1);
    EXPECT_EQ(cameraCommands(), "000000");
    call("closeCamera");
    EXPECT_TRUE(sdk.isOpen());
    cameraView()->clearSelection();
    call("closeCamera");
    EXPECT_TRUE(sdk.isOpen());
    cameraView()->selectRow(0);
    EXPECT_EQ(cameraCommands(), "111111");
    call("closeCamera");
    EXPECT_FALSE(sdk.isOpen());
}

TEST_F(MainWindowCamera, OpeningAnotherCameraClosesTheFirst)
{
    sdk.devices[1].status = 0;
    refresh();
    open(0);
    open(1);
    EXPECT_EQ(status(0), "free");
    EXPECT_EQ(status(1), "opened");
    EXPECT_EQ(cameraCommands(), "111111");
}

TEST_F(MainWindowCamera, ACameraUnpluggedBlanksTheImagesAndStaysOpen)
{
    open();
    sendFrame(20);
    EXPECT_FALSE(magnifier()->pixmap(Qt::ReturnByValue).isNull());
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return display()->widget()->isHidden(); }, 20000));
    EXPECT_TRUE(magnifier()->pixmap(Qt::ReturnByValue).isNull());
    EXPECT_TRUE(sdk.isOpen());
    EXPECT_TRUE(statusTimer()->isActive());
}

TEST_F(MainWindowCamera, ACameraPluggedBackIsSelectedAndShownAgain)
{
    open();
    const ScriptedSdk::Device device = sdk.devices[0];
    sdk.devices[0].devId = 9; // it is gone, another one has come
    sdk.devices[0].status = 0;
    refresh();
    EXPECT_EQ(cameraCommands(), "000000");
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return display()->widget()->isHidden(); }, 20000));
    sdk.devices[0] = device;
    sdk.devices[0].status = 1;
    sdk.sendEvent(camera::EventReconnected);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !display()->widget()->isHidden(); }, 20000));
    // The row is new, so it reads "in use" until the next refresh; the last such row wins.
    const int row = cameraView()->model()->rowCount() - 1;
    EXPECT_EQ(status(row), "in use");
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({row}));
    refresh();
    EXPECT_EQ(status(row), "opened");
    EXPECT_EQ(cameraCommands(), "111111");
}

TEST_F(MainWindowCamera, ACameraPluggedBackIsSelectedWhenTheListKnewBeforeTheEventCame)
{
    open();
    refresh();
    sdk.devices[1].status = 0; // so that no row reads "in use"
    const ScriptedSdk::Device device = sdk.devices[0];
    sdk.devices[0].devId = 9; // it is gone, another one has come
    sdk.devices[0].status = 0;
    refresh();
    sdk.devices[0] = device;
    refresh();
    refresh();
    EXPECT_EQ(status(1), "opened");
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return display()->widget()->isHidden(); }, 20000));
    sdk.sendEvent(camera::EventReconnected);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !display()->widget()->isHidden(); }, 20000));
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({1}));
    EXPECT_EQ(cameraCommands(), "111111");
}

TEST_F(MainWindowCamera, ACameraPluggedBackShowsNothingUntilItsNextFrame)
{
    open();
    sendFrame(20);
    const auto* const picture = qobject_cast<QLabel*>(display()->widget());
    EXPECT_FALSE(picture->pixmap(Qt::ReturnByValue).isNull());
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture->isHidden(); }, 20000));
    sdk.sendEvent(camera::EventReconnected);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !picture->isHidden(); }, 20000));
    EXPECT_TRUE(picture->pixmap(Qt::ReturnByValue).isNull());
    sendFrame(20);
    EXPECT_FALSE(picture->pixmap(Qt::ReturnByValue).isNull());
}

TEST_F(MainWindowCamera, AnUnpluggedAndAPluggedDeviceRefreshTheList)
{
    sdk.devices.pop_back();
    sdk.sendEvent(camera::EventDeviceRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return cameraView()->model()->rowCount() == 1; }, 20000));
    sdk.devices.push_back({.devId = 8});
    sdk.sendEvent(camera::EventDeviceNew);
    EXPECT_TRUE(QTest::qWaitFor([&] { return cameraView()->model()->rowCount() == 2; }, 20000));
}

TEST_F(MainWindowCamera, StatusCountsUserEntriesAndAllOthers)
{
    open();
    sendFrame(20);
    sendFrame(20);
    sdk.framesPerSecond = 1.23456;
    call("updateStatus");
    EXPECT_EQ(label("statusUserCount"), "U: 1");
    EXPECT_EQ(label("statusFactoryCount"), "F: 2");
    EXPECT_EQ(label("statusFrames"), "Frames: 2");
    EXPECT_EQ(label("statusFailed"), "Failed: 0");
    EXPECT_EQ(label("statusFps"), "FPS: 1.23");
    sdk.sendEvent(camera::EventFrameFailed);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            call("updateStatus");
            return label("statusFailed") == "Failed: 1";
        },
        20000));
}

TEST_F(MainWindowCamera, StatusIgnoresAChangeOfTheListUntilItsTimerFires)
{
    open();
    call("updateStatus");
    add({30, 30});
    call("updateStatusBadpixel");
    EXPECT_EQ(label("statusUserCount"), "U: 1");
    ASSERT_TRUE(QMetaObject::invokeMethod(statusTimer(), "timeout"));
    EXPECT_EQ(label("statusUserCount"), "U: 2");
}

struct Zoom
{
    const char* text;
    QSize shown; // a frame of 128 × 96
    int scrollFactor;
};

constexpr Zoom Zooms[] = {
    {"1:1", {128, 96}, 1}, {"2:1", {256, 192}, 2}, {"4:1", {512, 384}, 4},
    {"1:2", {64, 48}, 1},  {"1:4", {32, 24}, 1},
};

TEST_F(MainWindowCamera, ZoomsExclusivelyByItsTable)
{
    open();
    for (const Zoom& zoom : Zooms) {
        SCOPED_TRACE(zoom.text);
        choose(zoom.text);
        EXPECT_EQ(checkedZooms(), zoom.text);
        EXPECT_EQ(zoomAction()->text(), zoom.text);
        EXPECT_EQ(shownSize(), zoom.shown);
    }
}

TEST_F(MainWindowCamera, OpeningGoesBackToOneToOne)
{
    open();
    choose("4:1");
    close();
    open();
    EXPECT_EQ(checkedZooms(), "1:1");
    EXPECT_EQ(shownSize(), QSize(128, 96));
}

TEST_F(MainWindowCamera, ToFitIsThereButNeverOffered)
{
    EXPECT_FALSE(action("To fit")->isVisible());
    open();
    EXPECT_FALSE(action("To fit")->isVisible());
    EXPECT_FALSE(action("To fit")->isEnabled());
    choose("To fit");
    EXPECT_EQ(checkedZooms(), "To fit");
    EXPECT_GT(shownSize().width(), 128);
    // Nothing divides by its scale factor of 0.
    moveMagnifier({10, 20});
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2}));
}

TEST_F(MainWindowCamera, ATooBigImageFallsBackToASmallerZoom)
{
    open();
    choose("4:1");
    emit display()->scaleChanged(2);
    EXPECT_EQ(checkedZooms(), "2:1");
    EXPECT_EQ(message(), "The image is too big and will be resized");
    child<QStatusBar>("statusBar")->clearMessage();
    emit display()->scaleChanged(1);
    EXPECT_EQ(checkedZooms(), "1:1");
    EXPECT_EQ(message(), "The image is too big and will be resized");
    child<QStatusBar>("statusBar")->clearMessage();
    emit display()->scaleChanged(0);
    EXPECT_EQ(checkedZooms(), "1:1");
    EXPECT_EQ(message(), "");
}

/// Selecting an entry scrolls to it, by a formula that the reducing zooms enter with the factor 1.
TEST_F(MainWindowCamera, SelectingAnEntryScrollsByTheZoomsFactor)
{
    open();
    for (const Zoom& zoom : Zooms) {
        SCOPED_TRACE(zoom.text);
        choose(zoom.text);
        const QSize shown = shownSize();
        window->resize(window->minimumSizeHint());
        QScrollBar* const bar = display()->verticalScrollBar();
        bar->setRange(0, 100); // as with an image that is higher than the window
        moveMagnifier({0, 0});
        bar->setValue(0);
        moveMagnifier({10, 20});
        EXPECT_EQ(bar->value(), 20 * 100 / (shown.height() / zoom.scrollFactor));
    }
}

TEST_F(MainWindowCamera, HighlightIsGivenToTheDisplayAtTheOpening)
{
    open();
    sendFrame(20);
    const QImage marked = display()->widget()->grab().toImage();
    action("&Highlight")->trigger();
    sendFrame(20);
    EXPECT_NE(display()->widget()->grab().toImage(), marked);
    close();
    open();
    sendFrame(20);
    EXPECT_NE(display()->widget()->grab().toImage(), marked);
    action("&Highlight")->trigger();
    sendFrame(20);
    EXPECT_EQ(display()->widget()->grab().toImage(), marked);
}

TEST_F(MainWindowCamera, PropertiesGoToTheCamera)
{
    open();
    auto* const block = child<ParameterBlockWidget>();
    EXPECT_EQ(block->mastergain()->spinBox()->maximum(), 100);
    EXPECT_EQ(block->exposure()->spinBox()->maximum(), 101.0);
    EXPECT_EQ(block->framerate()->spinBox()->maximum(), 2.0);
    static_cast<void>(sdk.takeCalls());
    block->mastergain()->spinBox()->setValue(40);
    EXPECT_EQ(sdk.takeCalls(), QStringList({"setHardwareGain 40"}));
    block->exposure()->spinBox()->setValue(51.0);
    EXPECT_EQ(sdk.takeCalls(), QStringList({"setExposureTime 51"}));
    block->framerate()->spinBox()->setValue(2.0);
    EXPECT_EQ(sdk.takeCalls().first(), "setFrameRate 2");
}

TEST_F(MainWindowCamera, OpeningKeepsWhatTheCameraIsSetTo)
{
    open();
    const auto* const block = child<ParameterBlockWidget>();
    EXPECT_EQ(block->exposure()->spinBox()->value(), 26.0);
    EXPECT_EQ(block->exposure()->slider()->value(), 25);
}

TEST_F(MainWindowCamera, NoticesOfTheCameraGoToTheStatusBar)
{
    open();
    sdk.devices[0].openFailure = "getFrameMemory";
    sendFrame(20);
    EXPECT_EQ(message(), "Error 7");
}

TEST_F(MainWindowCamera, ContextMenuOffersOpenAndClose)
{
    EXPECT_EQ(contextMenu(cameraView()), QStringList({"&Open camera", "(&Close camera)"}));
    open();
    EXPECT_EQ(contextMenu(cameraView()), QStringList({"(&Open camera)", "&Close camera"}));
    EXPECT_TRUE(window->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly).size() == 1);
}

TEST_F(MainWindowCamera, AnOpenCameraIsClosedWithTheWindow)
{
    open();
    static_cast<void>(sdk.takeCalls());
    window.reset();
    EXPECT_FALSE(sdk.isOpen());
    EXPECT_EQ(sdk.takeCalls().first(), "stopLiveVideo 16384");
}

} // namespace
