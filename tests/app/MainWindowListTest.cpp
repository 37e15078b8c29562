// SPDX-License-Identifier: MIT
#include "tests/app/WindowTest.h"
#include "view/DisplayWidget.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <functional>

namespace {

class MainWindowList : public WindowTest
{
protected:
    void SetUp() override { open(); }

    [[nodiscard]] QAction* deleteAction() const { return action("&Delete hotpixel"); }

    void select(int row) { badpixelView()->selectRow(row); }

    /// Answers the file dialogue that @p command opens with @p name, or cancels it when it is null.
    void chooseFile(const char* command, const QString& name)
    {
        whileModal([&] { action(command)->trigger(); }, {[&](QWidget* modal) {
                       auto* const dialogue = qobject_cast<QFileDialog*>(modal);
                       ASSERT_NE(dialogue, nullptr);
                       m_caption = dialogue->windowTitle();
                       m_filters = dialogue->nameFilters();
                       m_directory = dialogue->directory().absolutePath();
                       if (name.isNull()) {
                           dialogue->reject();
                           return;
                       }
                       dialogue->findChild<QLineEdit*>()->setText(name);
                       static_cast<QDialog*>(dialogue)->accept();
                   }});
    }

    /// A list file with @p text, which lives as long as the test.
    QString listFile(const QByteArray& text)
    {
        QFile file(m_folder.filePath("list.txt"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    QTemporaryDir m_folder;
    QString m_caption;
    QStringList m_filters;
    QString m_directory;
};

TEST_F(MainWindowList, AClickOnAHotpixelOfTheImageSelectsItsRow)
{
    sendFrame(20);
    QWidget* const viewport = display()->viewport();
    const QPoint origin = display()->widget()->pos();
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, origin + QPoint(11, 21));
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2}));
    EXPECT_EQ(label("statusX"), "x: 10"); // the entry's position, not that of the click
    EXPECT_EQ(label("statusY"), "y: 20");
}

TEST_F(MainWindowList, AClickElsewhereClearsTheSelection)
{
    sendFrame(20);
    select(2);
    QTest::mouseClick(display()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      display()->widget()->pos() + QPoint(40, 10));
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>());
    EXPECT_EQ(label("statusX"), "x: 40");
    EXPECT_EQ(label("statusY"), "y: 10");
    EXPECT_FALSE(deleteAction()->isEnabled());
}

TEST_F(MainWindowList, APositionBeyondTheEdgeIsClampedToTheImage)
{
    const QSignalSpy moved(window.get(), &MainWindow::magnifierPositionChanged);
    for (const auto& [asked, taken] :
         {std::pair(QPoint(128, 10), QPoint(127, 10)), std::pair(QPoint(10, 1000), QPoint(10, 95)),
          std::pair(QPoint(-1, -7), QPoint(0, 0)), std::pair(QPoint(127, 95), QPoint(127, 95))}) {
        moveMagnifier(asked);
        EXPECT_EQ(moved.last()[0].toPoint(), taken);
    }
}

TEST_F(MainWindowList, TheEntryIsLookedForAtTheUnclampedPosition)
{
    add({127, 30});
    moveMagnifier({128, 30});
    EXPECT_EQ(label("statusX"), "x: 127");
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>());
    moveMagnifier({127, 30});
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({3}));
}

TEST_F(MainWindowList, TheEntryIsLookedForExactlyAtThePosition)
{
    moveMagnifier({11, 20});
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>());
    moveMagnifier({10, 20});
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2}));
}

TEST_F(MainWindowList, SelectingARowMovesTheMagnifierThere)
{
    select(1);
    EXPECT_EQ(label("statusX"), "x: 60");
    EXPECT_EQ(label("statusY"), "y: 40");
}

TEST_F(MainWindowList, TheShownClassDecidesAboutDelete)
{
    chooseFile("&Load hotpixel list", listFile("1 2 1\n3 9 2\n5 6 0\n7 8 200\n"));
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "1,2 user", "3,9 factory",
                                        "5,6 ignore", "7,8 factory"}));
    const bool deletable[] = {true, true, true, false, true, false};
    for (int row = 0; row < 6; ++row) {
        select(row);
        EXPECT_EQ(deleteAction()->isEnabled(), deletable[row]) << row;
    }
    badpixelView()->clearSelection();
    EXPECT_FALSE(deleteAction()->isEnabled());
}

TEST_F(MainWindowList, AChangedCellIsSelectedAsIfItWereClicked)
{
    select(0);
    QAbstractItemModel* const model = badpixelView()->model();
    EXPECT_TRUE(model->setData(model->index(2, 2), "factory"));
    EXPECT_EQ(badpixels()[2], "10,20 ignore");
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2}));
    EXPECT_EQ(label("statusX"), "x: 10");
}

TEST_F(MainWindowList, TwoEntriesAtOnePositionEndInOneSelection)
{
    chooseFile("&Load hotpixel list", listFile("5 6 2\n5 6 1\n5 6 1\n"));
    select(4);
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2})); // the first at the position
    moveMagnifier({5, 6});
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({2}));
}

TEST_F(MainWindowList, AddsAUserEntryAtTheMagnifierPositionWithCtrlA)
{
    add({30, 31});
    EXPECT_EQ(badpixels().last(), "30,31 user");
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({3}));
    EXPECT_TRUE(deleteAction()->isEnabled());
    add({30, 31});
    EXPECT_EQ(badpixels().size(), 4); // it is listed already
    EXPECT_EQ(message(), "");
}

TEST_F(MainWindowList, ShortcutsWorkWhileATableHasTheFocus)
{
    child<QDockWidget>("BadpixelListDock")->raise();
    moveMagnifier({30, 31});
    badpixelView()->setFocus();
    QTest::keyClick(badpixelView(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(badpixels().last(), "30,31 user");
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({3}));
    QTest::keyClick(badpixelView(), Qt::Key_Delete);
    EXPECT_EQ(badpixels().last(), "10,20 user");
}

TEST_F(MainWindowList, ShortcutsDoNothingWhileTheirCommandsAreDisabled)
{
    close();
    add({30, 31});
    QTest::keyClick(window.get(), Qt::Key_Delete);
    EXPECT_EQ(badpixels(), QStringList());
    EXPECT_EQ(message(), "");
}

TEST_F(MainWindowList, AFullUserListRefusesTheNextEntry)
{
    for (int i = 0; i < 4; ++i) {
        add({20 + i, 30});
    }
    EXPECT_EQ(badpixels().size(), 7);
    add({30, 30});
    EXPECT_EQ(badpixels().size(), 7);
    EXPECT_EQ(message(), "Can't add more than 5 hotpixel entries.");
}

TEST_F(MainWindowList, DeleteRemovesTheSelectedRow)
{
    add({30, 31});
    select(2);
    QTest::keyClick(window.get(), Qt::Key_Delete);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "30,31 user"}));
}

TEST_F(MainWindowList, DeleteWithoutASelectionDoesNothing)
{
    badpixelView()->clearSelection();
    call("deleteBadpixel");
    EXPECT_EQ(badpixels().size(), 3);
}

TEST_F(MainWindowList, ClearRemovesUserEntriesWithoutAsking)
{
    add({30, 31});
    select(2);
    action("Clear user hotpixel")->trigger();
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
}

TEST_F(MainWindowList, ClearingSelectsNoneOfTheEntriesOnItsWay)
{
    add({30, 31});
    add({32, 33});
    select(2); // as a click does: it is the table's current row, too
    const QSignalSpy moved(window.get(), &MainWindow::magnifierPositionChanged);
    action("Clear user hotpixel")->trigger();
    EXPECT_EQ(moved.size(), 0);
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>());
    add({30, 31});
    select(2);
    const auto before = moved.size();
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "startDetectingBadpixel",
                                          Qt::DirectConnection, Q_ARG(bool, true), Q_ARG(int, 40)));
    EXPECT_EQ(moved.size(), before);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
}

/// Runs @p act and returns how often the image was drawn anew while the list changed and after.
class MainWindowRedraws : public MainWindowList
{
protected:
    void SetUp() override
    {
        sdk.devices[0].maxUserEntries = 100;
        MainWindowList::SetUp();
        for (int i = 0; i < 20; ++i) {
            add({30 + i, 31});
        }
        sendFrame(20);
    }

    int redrawsOf(const std::function<void()>& act)
    {
        auto* const label = qobject_cast<QLabel*>(display()->widget());
        // Each drawing gives the label a new pixmap.
        QList<qint64> pictures{label->pixmap(Qt::ReturnByValue).cacheKey()};
        const auto look = [&] {
            const qint64 picture = label->pixmap(Qt::ReturnByValue).cacheKey();
            if (picture != pictures.last()) {
                pictures.append(picture);
            }
        };
        QObject watcher;
        const QAbstractItemModel* const model = badpixelView()->model();
        QObject::connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, &watcher, look);
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, &watcher, look);
        QObject::connect(window.get(), &MainWindow::magnifierPositionChanged, &watcher, look);
        act();
        look();
        return static_cast<int>(pictures.size()) - 1;
    }

    void clear() { action("Clear user hotpixel")->trigger(); }
};

TEST_F(MainWindowRedraws, ClearDrawsOnceWhereverTheSelectionIs)
{
    select(22); // the last one, as after Add
    EXPECT_EQ(redrawsOf([&] { clear(); }), 1);
    for (int i = 0; i < 20; ++i) {
        add({30 + i, 31});
    }
    select(2); // the first one that goes
    EXPECT_EQ(redrawsOf([&] { clear(); }), 1);
    for (int i = 0; i < 20; ++i) {
        add({30 + i, 31});
    }
    badpixelView()->clearSelection();
    EXPECT_EQ(redrawsOf([&] { clear(); }), 1);
}

TEST_F(MainWindowRedraws, ClearOfADetectionDrawsOnce)
{
    select(22);
    EXPECT_EQ(redrawsOf([&] {
                  EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "startDetectingBadpixel",
                                                        Qt::DirectConnection, Q_ARG(bool, true),
                                                        Q_ARG(int, 40)));
              }),
              1);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
}

TEST_F(MainWindowRedraws, LoadDrawsOnce)
{
    const QString name = listFile("5 6 1\n7 8 1\n");
    select(22);
    EXPECT_EQ(redrawsOf([&] { chooseFile("&Load hotpixel list", name); }), 1);
    EXPECT_EQ(badpixels().size(), 4);
}

TEST_F(MainWindowRedraws, ALoadThatFailsDrawsOnce)
{
    select(22);
    EXPECT_EQ(redrawsOf([&] {
                  whileModal([&] { action("&Load hotpixel list")->trigger(); },
                             {[&](QWidget* modal) {
                                  auto* const dialogue = qobject_cast<QFileDialog*>(modal);
                                  ASSERT_NE(dialogue, nullptr);
                                  dialogue->setFileMode(QFileDialog::AnyFile);
                                  dialogue->findChild<QLineEdit*>()->setText(
                                      m_folder.filePath("missing.txt"));
                                  static_cast<QDialog*>(dialogue)->accept();
                              },
                              [](QWidget* modal) {
                                  EXPECT_EQ(pressInBox(modal, QMessageBox::Ok).text,
                                            "Can't open file for reading.");
                              }});
              }),
              1);
}

TEST_F(MainWindowRedraws, SortingDrawsOnce)
{
    select(3);
    EXPECT_EQ(redrawsOf([&] { badpixelView()->sortByColumn(0, Qt::DescendingOrder); }), 1);
}

TEST_F(MainWindowList, DeleteFollowsTheEntryThatSortingPutsUnderTheSelection)
{
    chooseFile("&Load hotpixel list", listFile("90 6 2\n")); // 3, 60 and 90, which reads "factory"
    select(0);
    EXPECT_TRUE(deleteAction()->isEnabled());
    badpixelView()->sortByColumn(0, Qt::DescendingOrder);
    EXPECT_EQ(badpixels().first(), "90,6 factory");
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({0}));
    EXPECT_FALSE(deleteAction()->isEnabled());
    badpixelView()->sortByColumn(0, Qt::AscendingOrder);
    EXPECT_TRUE(deleteAction()->isEnabled());
}

TEST_F(MainWindowRedraws, ASelectionByKeyDrawsOnce)
{
    select(3);
    badpixelView()->setFocus();
    EXPECT_EQ(redrawsOf([&] { QTest::keyClick(badpixelView(), Qt::Key_Down); }), 1);
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({4}));
}

TEST_F(MainWindowRedraws, AnAddedEntryAndAChangedClassDrawOnceEach)
{
    moveMagnifier({90, 50});
    EXPECT_EQ(redrawsOf([&] { action("&Add hotpixel")->trigger(); }), 1);
    EXPECT_EQ(redrawsOf([&] {
                  badpixelView()->model()->setData(badpixelView()->model()->index(5, 2), "factory");
              }),
              1);
}

TEST_F(MainWindowList, ClearKeepsTheSelectionOfAnEntryThatStaysAndDelete)
{
    badpixelView()->sortByColumn(0, Qt::AscendingOrder); // 3, 10, 60
    select(2);
    EXPECT_TRUE(deleteAction()->isEnabled());
    action("Clear user hotpixel")->trigger();
    EXPECT_EQ(selectedRows(badpixelView()), QList<int>({1}));
    EXPECT_TRUE(deleteAction()->isEnabled());
}

/// Gives every text of the program another one, so that no text can be meant where a word of the
/// list is.
class OtherLanguage final : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* /*context*/, const char* text,
                                    const char* /*disambiguation*/, int /*n*/) const override
    {
        return QStringLiteral("~%1~").arg(QString::fromUtf8(text));
    }
};

TEST_F(MainWindowList, NoTranslationLetsAFactoryEntryBeDeleted)
{
    chooseFile("&Load hotpixel list", listFile("5 6 2\n"));
    OtherLanguage language;
    QCoreApplication::installTranslator(&language);
    select(2);
    QCoreApplication::removeTranslator(&language);
    EXPECT_EQ(badpixels().last(), "5,6 factory");
    QAction* const found = window->findChild<QAction*>("actionDelete");
    EXPECT_FALSE(found->isEnabled());
}

TEST_F(MainWindowList, WriteAsksFirst)
{
    static_cast<void>(sdk.takeCalls());
    const ShownBox box = answerBox(QMessageBox::No, [&] { action("&Write hotpixel")->trigger(); });
    EXPECT_EQ(box.text, "This action will completely overwrite the user defined hotpixel list in "
                        "the EEPROM of the camera.");
    EXPECT_EQ(box.informativeText, "Do you want to continue?");
    EXPECT_EQ(box.icon, QMessageBox::Warning);
    EXPECT_EQ(box.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(sdk.takeCalls(), QStringList());
    EXPECT_EQ(sdk.devices[0].user, QList<QPoint>({{10, 20}}));
}

TEST_F(MainWindowList, WriteReplacesTheCamerasUserListOnYes)
{
    add({30, 31});
    answerBox(QMessageBox::Yes, [&] { action("&Write hotpixel")->trigger(); });
    EXPECT_EQ(sdk.devices[0].user, QList<QPoint>({{10, 20}, {30, 31}}));
    EXPECT_EQ(sdk.devices[0].factory, QList<QPoint>({{3, 4}, {60, 40}}));
    action("Clear user hotpixel")->trigger();
    answerBox(QMessageBox::Yes, [&] { action("&Write hotpixel")->trigger(); });
    EXPECT_EQ(sdk.devices[0].user, QList<QPoint>());
    EXPECT_EQ(message(), "");
}

TEST_F(MainWindowList, AFailedWriteIsShown)
{
    sdk.failEveryWrite = true;
    answerBox(QMessageBox::Yes, [&] { action("&Write hotpixel")->trigger(); });
    EXPECT_EQ(message(), "Error writing hotpixel list");
    EXPECT_EQ(badpixels().size(), 3);
}

TEST_F(MainWindowList, SavesUserEntriesToTheChosenFile)
{
    const QString name = m_folder.filePath("saved.txt");
    chooseFile("&Save hotpixel list", name);
    EXPECT_EQ(m_caption, "Save hotpixel list");
    EXPECT_EQ(m_filters, QStringList({"Text files (*.txt)"}));
    EXPECT_EQ(m_directory, QDir::homePath());
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    EXPECT_EQ(file.readAll(), "10 20 1\n");
}

TEST_F(MainWindowList, LoadsUserEntriesFromTheChosenFile)
{
    chooseFile("&Load hotpixel list", listFile("1 2 1\n"));
    EXPECT_EQ(m_caption, "Open hotpixel list");
    EXPECT_EQ(m_filters, QStringList({"Text files (*.txt)"}));
    EXPECT_EQ(m_directory, QDir::homePath());
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "1,2 user"}));
}

TEST_F(MainWindowList, CancellingAFileDialogueChangesNothing)
{
    const QStringList before = badpixels();
    chooseFile("&Save hotpixel list", {});
    chooseFile("&Load hotpixel list", {});
    EXPECT_EQ(badpixels(), before);
}

TEST_F(MainWindowList, AFileThatCantBeSavedIsToldInABox)
{
    ShownBox box;
    whileModal([&] { action("&Save hotpixel list")->trigger(); },
               {[&](QWidget* modal) {
                    modal->findChild<QLineEdit*>()->setText(m_folder.filePath("list.txt"));
                    m_folder.remove(); // between the choice and the writing
                    qobject_cast<QDialog*>(modal)->accept();
                },
                [&](QWidget* modal) { box = pressInBox(modal, QMessageBox::Ok); }});
    EXPECT_EQ(box.text, "Can't open file for writing.");
    EXPECT_EQ(box.icon, QMessageBox::Critical);
    EXPECT_EQ(box.buttons, QMessageBox::Ok);
    EXPECT_FALSE(box.hasParent);
}

TEST_F(MainWindowList, ContextMenuFollowsSelectionAndContents)
{
    badpixelView()->clearSelection();
    EXPECT_EQ(contextMenu(badpixelView()), QStringList({"&Add hotpixel", "Clear user hotpixel"}));
    select(2);
    EXPECT_EQ(contextMenu(badpixelView()),
              QStringList({"&Add hotpixel", "&Delete hotpixel", "Clear user hotpixel"}));
    action("Clear user hotpixel")->trigger();
    badpixelView()->clearSelection();
    EXPECT_EQ(contextMenu(badpixelView()), QStringList({"&Add hotpixel"}));
    close();
    EXPECT_EQ(contextMenu(badpixelView()), QStringList({"(&Add hotpixel)"}));
}

TEST_F(MainWindowList, UsageBoxNamesTheShortcuts)
{
    const ShownBox box = answerBox(QMessageBox::Close, [&] { action("&Usage")->trigger(); });
    EXPECT_EQ(box.title, "Usage");
    EXPECT_EQ(
        box.text,
        "Vorn Hotpixel Editor - Usage\n\nNavigation:\n\nRight Mouse Button: Drag to move "
        "image\nArrow Keys: Click once into Magnifier to move focus pixel by "
        "pixel\n\nShortcuts:\n\nCtrl+A\t Add a hotpixel to the list\nDel\t Removes a hotpixel "
        "from the list\n");
    EXPECT_EQ(box.icon, QMessageBox::NoIcon);
    EXPECT_EQ(box.buttons, QMessageBox::Close);
    EXPECT_TRUE(box.hasParent);
    EXPECT_TRUE(box.flags.testFlag(Qt::MSWindowsFixedSizeDialogHint));
}

TEST_F(MainWindowList, AboutBoxNamesYearsAndMaker)
{
    const ShownBox box = answerBox(QMessageBox::Close, [&] { action("&About")->trigger(); });
    EXPECT_EQ(box.title, "About");
    EXPECT_EQ(box.text.split('\n').size(), 3);
    EXPECT_EQ(box.text.split('\n').first(), "Vorn Hotpixel Editor");
    EXPECT_TRUE(box.hasPixmap);
    EXPECT_EQ(box.buttons, QMessageBox::Close);
    EXPECT_TRUE(box.hasParent);
    EXPECT_TRUE(box.flags.testFlag(Qt::MSWindowsFixedSizeDialogHint));
}

} // namespace
