// SPDX-License-Identifier: MIT
#include "tests/app/WindowTest.h"

#include "detection/DetectionDialogue.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"

#include <QAbstractButton>
#include <QApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QSettings>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QTimer>

WindowTest::WindowTest()
    : sdk({{.devId = 5, .factory = {{3, 4}, {60, 40}}, .user = {{10, 20}}, .maxUserEntries = 5},
           {.devId = 6, .status = 1, .serNo = "4002714002", .model = "VX-2000"}})
{
    QSettings(QStringLiteral("QEM"), QStringLiteral("Vorn")).clear();
    show();
}

WindowTest::~WindowTest() = default;

void WindowTest::show()
{
    window.reset();
    window = std::make_unique<MainWindow>(sdk);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
}

void WindowTest::open(int row)
{
    QTableView* const view = cameraView();
    const QPoint position = view->visualRect(view->model()->index(row, 2)).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, position);
    static_cast<void>(sdk.takeCalls());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, position);
}

void WindowTest::close()
{
    action("&Close camera")->trigger();
}

void WindowTest::sendFrame(int grey, const QList<QPoint>& bright, int brightValue)
{
    QByteArray frame(qsizetype{ScriptedSdk::Width} * ScriptedSdk::Height, static_cast<char>(grey));
    for (const QPoint& position : bright) {
        frame[position.x() + ScriptedSdk::Width * position.y()] = static_cast<char>(brightValue);
    }
    const int before = sdk.framesFetched();
    sdk.sendFrame(frame);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sdk.framesFetched() > before; }, 20000));
}

QAction* WindowTest::action(const QString& text) const
{
    // The zoom button carries the text of the chosen step, and a dock its own toggle action.
    for (QAction* const candidate :
         window->actions() +
             window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (candidate->text() == text && candidate->menu() == nullptr) {
            return candidate;
        }
    }
    throw std::runtime_error("The window has no action '" + text.toStdString() + "'.");
}

QTableView* WindowTest::cameraView() const
{
    return child<QDockWidget>("CameraListDock")->findChild<QTableView*>();
}

QTableView* WindowTest::badpixelView() const
{
    return child<QDockWidget>("BadpixelListDock")->findChild<QTableView*>();
}

DisplayWidget* WindowTest::display() const
{
    return child<DisplayWidget>("display");
}

Magnifier* WindowTest::magnifier() const
{
    return child<Magnifier>();
}

DetectionDialogue* WindowTest::dialogue() const
{
    const auto dialogues = window->findChildren<DetectionDialogue*>();
    return dialogues.isEmpty() ? nullptr : dialogues.last();
}

QString WindowTest::message() const
{
    return child<QStatusBar>("statusBar")->currentMessage();
}

QString WindowTest::label(const char* name) const
{
    return child<QLabel>(name)->text();
}

void WindowTest::call(const char* slot)
{
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), slot, Qt::DirectConnection));
}

void WindowTest::moveMagnifier(QPoint position)
{
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "setMagnifierPosition",
                                          Qt::DirectConnection, Q_ARG(QPoint, position)));
}

void WindowTest::add(QPoint position)
{
    moveMagnifier(position);
    QTest::keyClick(window.get(), Qt::Key_A, Qt::ControlModifier);
}

QStringList WindowTest::badpixels() const
{
    const QAbstractItemModel* const model = badpixelView()->model();
    QStringList entries;
    for (int row = 0; row < model->rowCount(); ++row) {
        entries.append(QStringLiteral("%1,%2 %3")
                           .arg(model->index(row, 0).data().toInt())
                           .arg(model->index(row, 1).data().toInt())
                           .arg(model->index(row, 2).data().toString()));
    }
    return entries;
}

QList<int> WindowTest::selectedRows(const QTableView* view)
{
    QList<int> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedIndexes()) {
        if (!rows.contains(index.row())) {
            rows.append(index.row());
        }
    }
    return rows;
}

QStringList WindowTest::contextMenu(QTableView* view)
{
    QStringList offered;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* const popup = QApplication::activePopupWidget();
        if (popup == nullptr) {
            return;
        }
        for (const QAction* const entry : popup->actions()) {
            offered.append(entry->isEnabled() ? entry->text() : '(' + entry->text() + ')');
        }
        popup->close();
    });
    timer.start(5);
    emit view->customContextMenuRequested(view->rect().center());
    return offered;
}

void whileModal(const std::function<void()>& act,
                const std::vector<std::function<void(QWidget*)>>& answers)
{
    // A dialogue may be open already, and is modal too.
    const QPointer<QWidget> before = QApplication::activeModalWidget();
    std::size_t answered = 0;
    QPointer<QWidget> last;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (modal != nullptr && modal != before && modal != last && answered < answers.size()) {
            last = modal;
            answers[answered++](modal);
        }
    });
    timer.start(5);
    act();
    EXPECT_EQ(answered, answers.size()) << "modal windows were not opened";
}

ShownBox pressInBox(QWidget* modal, QMessageBox::StandardButton button)
{
    auto* const box = qobject_cast<QMessageBox*>(modal);
    if (box == nullptr || box->button(button) == nullptr) {
        ADD_FAILURE() << "no message box with that button";
        modal->close();
        return {};
    }
    ShownBox shown{box->windowTitle(),       box->text(),
                   box->informativeText(),   box->icon(),
                   box->standardButtons(),   box->windowFlags(),
                   box->parent() != nullptr, !box->iconPixmap().isNull()};
    box->button(button)->click();
    return shown;
}

ShownBox answerBox(QMessageBox::StandardButton button, const std::function<void()>& act)
{
    ShownBox shown;
    whileModal(act, {[&](QWidget* modal) { shown = pressInBox(modal, button); }});
    return shown;
}
