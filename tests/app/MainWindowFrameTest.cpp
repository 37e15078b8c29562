// SPDX-License-Identifier: MIT
#include "tests/app/WindowTest.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"
#include "view/MagnifierControl.h"
#include "widgets/ParameterBlockWidget.h"

#include <QApplication>
#include <QDockWidget>
#include <QFile>
#include <QGridLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

namespace {

using MainWindowFrame = WindowTest;

/// A menu or tool bar as text, one line for each action, "-" for a separator.
QStringList textsOf(const QWidget* bar)
{
    QStringList texts;
    for (const QAction* const entry : bar->actions()) {
        texts.append(entry->isSeparator() ? QStringLiteral("-") : entry->text());
    }
    return texts;
}

TEST_F(MainWindowFrame, HasTheFormOfTheEditor)
{
    EXPECT_EQ(window->objectName(), "MainWindow");
    EXPECT_EQ(window->windowTitle(), "VornHotpixelEditor");
    EXPECT_EQ(window->locale(), QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(window->centralWidget()->objectName(), "centralWidget");
    const auto* const layout = child<QGridLayout>("gridLayout");
    EXPECT_EQ(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    EXPECT_EQ(layout->spacing(), 6);
    EXPECT_EQ(layout->itemAtPosition(0, 0)->widget(), display());
    EXPECT_EQ(display()->contextMenuPolicy(), Qt::CustomContextMenu);
    EXPECT_EQ(window->menuBar()->objectName(), "menuBar");
    EXPECT_EQ(window->statusBar()->objectName(), "statusBar");
    auto* const toolBar = child<QToolBar>("mainToolBar");
    EXPECT_EQ(toolBar->windowTitle(), "Toolbar");
    EXPECT_EQ(window->toolBarArea(toolBar), Qt::TopToolBarArea);
    EXPECT_EQ(window->size(), QSize(800, 600));
}

TEST_F(MainWindowFrame, ShowsNoImageAreaUntilACameraIsOpened)
{
    EXPECT_TRUE(display()->widget()->isHidden());
}

struct ActionState
{
    const char* text;
    const char* icon;
    const char* shortcut;
    bool checkable;
    bool checked;
    bool enabled;
};

// "&Open camera" is enabled here because the first camera of the list was selected and is free.
constexpr ActionState Actions[] = {
    {"&Open camera", "openplay.png", "", false, false, true},
    {"&Close camera", "camclose.png", "", false, false, false},
    {"&Highlight", "highlight.png", "", true, true, true},
    {"&Write hotpixel", "writeBadpixel.png", "", false, false, false},
    {"Hotpixel correction", "badpixelCorrection.png", "", true, false, false},
    {"&Add hotpixel", "addBadpixel.png", "Ctrl+A", false, false, false},
    {"&Delete hotpixel", "deleteBadpixel.png", "Del", false, false, false},
    {"Clear user hotpixel", "", "", false, false, true},
    {"Detec&t hotpixel", "detectBadpixel.png", "", false, false, false},
    {"1:1", "", "", true, true, true},
    {"2:1", "", "", true, false, true},
    {"4:1", "", "", true, false, true},
    {"1:2", "", "", true, false, true},
    {"1:4", "", "", true, false, true},
    {"To fit", "", "", true, false, false},
    {"&Usage", "help.png", "", false, false, true},
    {"&About", "information.png", "", false, false, true},
    {"&Save hotpixel list", "writeList.png", "", false, false, true},
    {"&Load hotpixel list", "openList.png", "", false, false, true},
    {"E&xit", "exit.png", "", false, false, true},
    {"Camera list", "cameraList.png", "", true, true, true},
    {"Hotpixel list", "badpixelList.png", "", true, true, true},
    {"Magnifier", "window_view.png", "", true, true, true},
    {"Camera properties", "cameraproperties.png", "", true, true, true},
};

TEST_F(MainWindowFrame, HasItsActionsInTheirFirstState)
{
    for (const ActionState& expected : Actions) {
        const QAction* const found = action(expected.text);
        ASSERT_NE(found, nullptr);
        SCOPED_TRACE(expected.text);
        EXPECT_EQ(found->shortcut(), QKeySequence(QLatin1String(expected.shortcut)));
        EXPECT_EQ(found->isCheckable(), expected.checkable);
        EXPECT_EQ(found->isChecked(), expected.checked);
        EXPECT_EQ(found->isEnabled(), expected.enabled);
        EXPECT_EQ(found->isVisible(), found->text() != "To fit");
        EXPECT_EQ(found->icon().isNull(), QLatin1String(expected.icon).isEmpty());
        EXPECT_FALSE(found->objectName().isEmpty());
    }
}

TEST_F(MainWindowFrame, ShowsAnIconForEachCommandThatHasOne)
{
    for (const ActionState& expected : Actions) {
        if (QLatin1String(expected.icon).isEmpty()) {
            continue;
        }
        SCOPED_TRACE(expected.icon);
        const QString path = QStringLiteral(":/res/%1").arg(QLatin1String(expected.icon));
        ASSERT_TRUE(QFile::exists(path));
        EXPECT_EQ(action(expected.text)->icon().pixmap(24).toImage(),
                  QIcon(path).pixmap(24).toImage());
    }
    EXPECT_EQ(window->windowIcon().pixmap(32).toImage(),
              QIcon(":/res/Vorn.ico").pixmap(32).toImage());
}

TEST_F(MainWindowFrame, OpenIsEnabledButDoesNothingWithoutASelection)
{
    sdk.devices.clear();
    call("updateCameraActions");
    cameraView()->clearSelection();
    EXPECT_TRUE(action("&Open camera")->isEnabled());
    static_cast<void>(sdk.takeCalls());
    action("&Open camera")->trigger();
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    EXPECT_EQ(message(), "");
}

TEST_F(MainWindowFrame, HasItsMenus)
{
    QStringList menus;
    for (const QAction* const entry : window->menuBar()->actions()) {
        menus.append(entry->text());
    }
    EXPECT_EQ(menus, QStringList({"&File", "&View", "&Help"}));
    EXPECT_EQ(textsOf(child<QMenu>("menuFile")),
              QStringList({"&Open camera", "&Close camera", "-", "&Save hotpixel list",
                           "&Load hotpixel list", "-", "E&xit"}));
    EXPECT_EQ(textsOf(child<QMenu>("menuView")),
              QStringList({"Camera list", "Hotpixel list", "Magnifier", "Camera properties", "-",
                           "&Highlight"}));
    EXPECT_EQ(textsOf(child<QMenu>("menuHelp")), QStringList({"&Usage", "-", "&About"}));
}

TEST_F(MainWindowFrame, HasItsToolBarWithTheZoomAsADropDown)
{
    auto* const toolBar = child<QToolBar>("mainToolBar");
    EXPECT_EQ(textsOf(toolBar),
              QStringList({"&Open camera", "&Close camera", "-", "Hotpixel correction",
                           "Detec&t hotpixel", "&Write hotpixel", "&Add hotpixel",
                           "&Delete hotpixel", "-", "&Highlight", "1:1"}));
    const QAction* const zoom = toolBar->actions().last();
    EXPECT_FALSE(zoom->isCheckable());
    EXPECT_FALSE(zoom->isEnabled());
    EXPECT_EQ(textsOf(zoom->menu()), QStringList({"1:4", "1:2", "1:1", "2:1", "4:1", "To fit"}));
}

TEST_F(MainWindowFrame, HasSevenEmptyStatusLabelsFromLeftToRight)
{
    QList<QLabel*> labels =
        window->statusBar()->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    std::sort(labels.begin(), labels.end(),
              [](const QLabel* a, const QLabel* b) { return a->x() < b->x(); });
    QStringList shown;
    for (const QLabel* const label : labels) {
        shown.append(QStringLiteral("%1 %2").arg(label->objectName()).arg(label->minimumWidth()));
    }
    EXPECT_EQ(shown,
              QStringList({"statusUserCount 40", "statusFactoryCount 40", "statusX 44",
                           "statusY 44", "statusFrames 64", "statusFailed 64", "statusFps 72"}));
}

TEST_F(MainWindowFrame, HasItsDocks)
{
    struct DockState
    {
        const char* objectName;
        const char* title;
        Qt::DockWidgetAreas areas;
        const char* content;
    };
    constexpr Qt::DockWidgetAreas Sides = Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea;
    constexpr DockState Docks[] = {
        {"CameraListDock", "Camera list", Sides, "QTableView"},
        {"BadpixelListDock", "Hotpixel list", Sides, "QTableView"},
        {"MagnifierDock", "Magnifier", Sides, "MagnifierControl"},
        {"CameraSliderDock", "Camera properties", Qt::AllDockWidgetAreas, "ParameterBlockWidget"},
    };
    EXPECT_EQ(window->findChildren<QDockWidget*>().size(), 4);
    for (const DockState& expected : Docks) {
        SCOPED_TRACE(expected.objectName);
        auto* const dock = child<QDockWidget>(QLatin1String(expected.objectName));
        ASSERT_NE(dock, nullptr);
        EXPECT_EQ(dock->windowTitle(), expected.title);
        EXPECT_EQ(dock->allowedAreas(), expected.areas);
        EXPECT_STREQ(dock->widget()->metaObject()->className(), expected.content);
        EXPECT_EQ(window->dockWidgetArea(dock), Qt::LeftDockWidgetArea);
    }
    EXPECT_FALSE(child<ParameterBlockWidget>()->isEnabled());
}

TEST_F(MainWindowFrame, ListsAreSortableTablesOfWholeRows)
{
    for (const QTableView* const view : {cameraView(), badpixelView()}) {
        SCOPED_TRACE(view->objectName().toStdString());
        EXPECT_TRUE(view->isSortingEnabled());
        EXPECT_EQ(view->selectionBehavior(), QAbstractItemView::SelectRows);
        EXPECT_EQ(view->selectionMode(), QAbstractItemView::SingleSelection);
        EXPECT_EQ(view->contextMenuPolicy(), Qt::CustomContextMenu);
        EXPECT_TRUE(view->verticalHeader()->isHidden());
        EXPECT_EQ(view->verticalHeader()->defaultSectionSize(),
                  view->verticalHeader()->minimumSectionSize());
        EXPECT_FALSE(view->horizontalHeader()->isSortIndicatorShown());
        EXPECT_FALSE(view->horizontalHeader()->highlightSections());
        EXPECT_TRUE(view->horizontalHeader()->stretchLastSection());
    }
    EXPECT_EQ(badpixelView()->horizontalHeader()->defaultSectionSize(), 40);
    EXPECT_STREQ(badpixelView()->itemDelegateForColumn(2)->metaObject()->className(),
                 "PixelclassDelegate");
}

TEST_F(MainWindowFrame, CameraColumnsFitTheirContents)
{
    const QTableView* const view = cameraView();
    for (int column = 0; column < 4; ++column) {
        EXPECT_GE(view->columnWidth(column),
                  view->sizeHintForIndex(view->model()->index(0, column)).width());
    }
}

TEST_F(MainWindowFrame, AClickOnAHeaderSortsTheList)
{
    open();
    const QHeaderView* const header = badpixelView()->horizontalHeader();
    child<QDockWidget>("BadpixelListDock")->raise();
    const auto clickX = [&] {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          {header->sectionViewportPosition(0) + 10, header->height() / 2});
        return badpixels();
    };
    const QStringList once = clickX();
    const QStringList twice = clickX();
    const QStringList ascending = {"3,4 ignore", "10,20 user", "60,40 ignore"};
    const QStringList descending = {"60,40 ignore", "10,20 user", "3,4 ignore"};
    EXPECT_NE(once, twice);
    EXPECT_TRUE(once == ascending || once == descending);
    EXPECT_TRUE(twice == ascending || twice == descending);
}

TEST_F(MainWindowFrame, ADockThatIsRaisedGivesItsViewTheFocus)
{
    cameraView()->setFocus();
    window->findChild<QDockWidget*>("BadpixelListDock")->raise();
    EXPECT_EQ(QApplication::focusWidget(), badpixelView());
    window->findChild<QDockWidget*>("CameraListDock")->raise();
    EXPECT_EQ(QApplication::focusWidget(), cameraView());
}

TEST_F(MainWindowFrame, ARaisedDockThatTakesNoFocusTakesItFromTheHiddenList)
{
    auto* const properties = window->findChild<QDockWidget*>("CameraSliderDock");
    auto* const cameras = window->findChild<QDockWidget*>("CameraListDock");
    window->tabifyDockWidget(cameras, properties);
    cameras->raise();
    cameraView()->setFocus();
    properties->raise(); // its controls are disabled without a camera
    EXPECT_NE(QApplication::focusWidget(), cameraView());
}

TEST_F(MainWindowFrame, ATabLeadsOutOfAList)
{
    cameraView()->setFocus();
    QTest::keyClick(cameraView(), Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), cameraView());
}

TEST_F(MainWindowFrame, ShortcutsWorkWithTheToolBarHidden)
{
    open();
    window->findChild<QToolBar*>("mainToolBar")->hide();
    QCoreApplication::processEvents();
    add({30, 31});
    EXPECT_EQ(badpixels().last(), "30,31 user");
    QTest::keyClick(window.get(), Qt::Key_Delete);
    EXPECT_EQ(badpixels().size(), 3);
}

TEST_F(MainWindowFrame, ALanguageChangeSetsItsTwoTitlesAgain)
{
    auto* const toolBar = child<QToolBar>("mainToolBar");
    window->setWindowTitle("Fenster");
    toolBar->setWindowTitle("Leiste");
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(window.get(), &change);
    EXPECT_EQ(window->windowTitle(), "VornHotpixelEditor");
    EXPECT_EQ(toolBar->windowTitle(), "Toolbar");
}

TEST_F(MainWindowFrame, HandsKeysToTheMagnifier)
{
    open();
    moveMagnifier({30, 30});
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(label("statusX"), "x: 31");
    QTest::keyClick(window.get(), Qt::Key_Up);
    EXPECT_EQ(label("statusY"), "y: 29");
    // The image view lets the keys through, so that it does not scroll instead.
    QTest::keyClick(display(), Qt::Key_Left);
    EXPECT_EQ(label("statusX"), "x: 30");
}

TEST_F(MainWindowFrame, SurvivesKeysWithoutAMagnifier)
{
    open();
    delete child<QDockWidget>("MagnifierDock");
    QTest::keyClick(window.get(), Qt::Key_Right);
    sendFrame(0);
    action("Magnifier")->trigger();
    call("onMenuShow");
    EXPECT_EQ(window->findChild<Magnifier*>(), nullptr);
    call("createMagnifierDock");
    EXPECT_NE(window->findChild<Magnifier*>(), nullptr);
}

TEST_F(MainWindowFrame, AMagnifierThatIsMadeWhileACameraIsOpenLooksAtThePosition)
{
    open();
    sendFrame(20, {{31, 21}}, 201);
    moveMagnifier({31, 21});
    const Magnifier* const former = magnifier();
    call("createMagnifierDock");
    ASSERT_EQ(window->findChildren<MagnifierControl*>().size(), 1);
    EXPECT_NE(magnifier(), former);
    const QSignalSpy info(magnifier(), &Magnifier::pixelInfoChanged);
    sendFrame(20, {{31, 21}}, 201);
    ASSERT_EQ(info.size(), 1);
    EXPECT_EQ(info[0], QVariantList({QString("B"), 201}));
}

TEST_F(MainWindowFrame, RebuildsADockInPlaceOfTheFormerOne)
{
    open();
    const QStringList listed = badpixels();
    for (const char* const slot : {"createCameraListDock", "createBadpixelListDock",
                                   "createMagnifierDock", "createCameraSliderDock"}) {
        call(slot);
    }
    EXPECT_EQ(window->findChildren<QDockWidget*>().size(), 4);
    EXPECT_EQ(badpixels(), listed);
    EXPECT_EQ(selectedRows(cameraView()), QList<int>({0}));
    close();
    EXPECT_FALSE(sdk.isOpen());
    open();
    EXPECT_TRUE(sdk.isOpen());
    EXPECT_TRUE(child<ParameterBlockWidget>()->isEnabled());
}

TEST_F(MainWindowFrame, ExitClosesTheWindow)
{
    action("E&xit")->trigger();
    EXPECT_FALSE(window->isVisible());
}

TEST(MainWindowInterface, HasItsSignalsAndProtectedSlots)
{
    QStringList signalNames;
    QStringList slotNames;
    const QMetaObject& meta = MainWindow::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const auto name = QString::fromLatin1(method.methodSignature());
        if (method.methodType() == QMetaMethod::Signal) {
            signalNames.append(name);
        } else {
            EXPECT_EQ(method.access(), QMetaMethod::Protected) << name.toStdString();
            slotNames.append(name);
        }
    }
    EXPECT_EQ(signalNames, QStringList({"cameraOpened(bool)", "magnifierPositionChanged(QPoint)",
                                        "detectionFinished()", "detectionProgress(int)"}));
    slotNames.sort();
    EXPECT_EQ(slotNames, QStringList({
                             "addNewBadpixel()",
                             "clearBadpixel()",
                             "clearMagnifier()",
                             "closeCamera()",
                             "createBadpixelListDock()",
                             "createCameraListDock()",
                             "createCameraSliderDock()",
                             "createMagnifierDock()",
                             "deleteBadpixel()",
                             "detectBadpixel()",
                             "loadBadpixelList()",
                             "newImage(QImage&)",
                             "onCameraClosed()",
                             "onCameraDisconnect()",
                             "onCameraOpened(Camera*)",
                             "onCameraReconnect()",
                             "onHotpixelCorrection()",
                             "onMenuShow()",
                             "onSelectCameraRow(int)",
                             "onShowHideBadpixelListDock()",
                             "onShowHideCameraListDock()",
                             "onShowHideCameraSliderDock()",
                             "onShowHideMagnifierDock()",
                             "onZoomChanged(QAction*)",
                             "openCamera()",
                             "openDetectDialog()",
                             "openHelpAboutWindow()",
                             "openHelpUsageWindow()",
                             "saveBadpixelList()",
                             "setMagnifierPosition(QPoint)",
                             "setSelection(QModelIndex,QModelIndex)",
                             "showBadpixelListContextMenu(QPoint)",
                             "showCameraListContextMenu(QPoint)",
                             "startDetectingBadpixel(bool,int)",
                             "updateCameraActions()",
                             "updateScaleFactor(int)",
                             "updateSelection(QItemSelection,QItemSelection)",
                             "updateStatus()",
                             "updateStatusBadpixel()",
                             "updateStatusPosition(QPoint)",
                             "writeBadpixelList()",
                         }));
}

} // namespace
