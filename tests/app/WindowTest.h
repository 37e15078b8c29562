// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "tests/sdk/ScriptedSdk.h"

#include <QAction>
#include <QDockWidget>
#include <QMessageBox>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class DetectionDialogue;
class DisplayWidget;
class Magnifier;
class QAbstractItemModel;
class QTableView;

/// A window on scripted cameras. It is found and driven from outside, by texts, object names,
/// clicks and keys, as a person or a script would.
class WindowTest : public testing::Test
{
protected:
    WindowTest();
    ~WindowTest() override;

    /// Makes the window anew (the layout of the former one is saved first) and shows it.
    void show();

    /// Selects the camera of @p row and opens it with a double click.
    void open(int row = 0);
    void close();

    /// Sends a frame that is @p grey all over, but @p bright at the given positions, and waits
    /// until the window has it.
    void sendFrame(int grey, const QList<QPoint>& bright = {}, int brightValue = 200);

    /// The part of the window with that name; the first of its kind for none.
    /// Throws std::runtime_error, which fails the test, when there is none.
    template <typename T>
    [[nodiscard]] T* child(const QString& name = {}) const
    {
        T* const found = window->findChild<T*>(name);
        if (found == nullptr) {
            throw std::runtime_error(std::string("The window has no ") +
                                     T::staticMetaObject.className() + " '" + name.toStdString() +
                                     "'.");
        }
        return found;
    }

    /// The action with that text. Throws std::runtime_error, which fails the test, when there is
    /// none.
    [[nodiscard]] QAction* action(const QString& text) const;
    [[nodiscard]] QTableView* cameraView() const;
    [[nodiscard]] QTableView* badpixelView() const;
    [[nodiscard]] DisplayWidget* display() const;
    [[nodiscard]] Magnifier* magnifier() const;
    [[nodiscard]] DetectionDialogue* dialogue() const;
    [[nodiscard]] QString message() const;
    [[nodiscard]] QString label(const char* name) const;

    /// Calls a slot of the window by its name.
    void call(const char* slot);
    void moveMagnifier(QPoint position);

    /// Moves the magnifier there and presses Ctrl+A.
    void add(QPoint position);

    /// The hotpixel list as text, such as "10,20 user".
    [[nodiscard]] QStringList badpixels() const;

    /// The rows that are selected in @p view.
    [[nodiscard]] static QList<int> selectedRows(const QTableView* view);

    /// What the context menu of @p view offers; what is disabled stands in parentheses.
    [[nodiscard]] static QStringList contextMenu(QTableView* view);

    ScriptedSdk sdk;
    std::unique_ptr<MainWindow> window;
};

/// What a message box showed.
struct ShownBox
{
    QString title;
    QString text;
    QString informativeText;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    Qt::WindowFlags flags;
    bool hasParent = false;
    bool hasPixmap = false;
};

/// What @p modal, which is to be a message box, shows; presses @p button in it.
ShownBox pressInBox(QWidget* modal, QMessageBox::StandardButton button);

/// Runs @p act, which is to open a message box, and presses @p button in it.
ShownBox answerBox(QMessageBox::StandardButton button, const std::function<void()>& act);

/// Runs @p act and gives each modal window that it opens to the next of @p answers.
void whileModal(const std::function<void()>& act,
                const std::vector<std::function<void(QWidget*)>>& answers);
