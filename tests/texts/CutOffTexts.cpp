// SPDX-License-Identifier: MIT
#include "tests/texts/CutOffTexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QDockWidget>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTableView>
#include <QToolBar>
#include <QWidget>

namespace {

template <typename Widget, typename Function>
void forEachVisible(const QWidget& window, const Function& function)
{
    for (const Widget* widget : window.findChildren<Widget*>()) {
        // What stands behind a tab is not hidden, but nothing of it is seen.
        if (widget->isVisible() && !widget->visibleRegion().isEmpty()) {
            function(*widget);
        }
    }
}

class CutOff
{
public:
    /// Notes @p text when it has less room than it needs.
    void check(const QString& text, int has, int needs)
    {
        if (!text.isEmpty() && has < needs) {
            m_texts.append(QStringLiteral("\"%1\" has %2 and needs %3")
                               .arg(text, QString::number(has), QString::number(needs)));
        }
    }

    void check(const QString& text, const QSize& has, const QSize& needs)
    {
        check(text, has.width(), needs.width());
        check(text, has.height(), needs.height());
    }

    [[nodiscard]] QStringList texts() const { return m_texts; }

private:
    QStringList m_texts;
};

void checkLabel(const QLabel& label, CutOff& cutOff)
{
    if (label.wordWrap()) {
        cutOff.check(label.text(), label.height(), label.heightForWidth(label.width()));
    } else {
        cutOff.check(label.text(), label.size(), label.sizeHint());
    }
}

void checkHeader(const QHeaderView& header, CutOff& cutOff)
{
    for (int section = 0; section < header.count(); ++section) {
        cutOff.check(header.model()->headerData(section, header.orientation()).toString(),
                     header.sectionSize(section), header.sectionSizeHint(section));
    }
}

/// A tab bar that is too narrow shows the beginnings of its texts only.
void checkTabs(const QTabBar& tabs, CutOff& cutOff)
{
    for (int tab = 0; tab < tabs.count(); ++tab) {
        cutOff.check(tabs.tabText(tab), tabs.tabRect(tab).width(),
                     tabs.fontMetrics().horizontalAdvance(tabs.tabText(tab)));
    }
}

/// The title stands to the left of the dock's buttons.
void checkDock(const QDockWidget& dock, CutOff& cutOff)
{
    int room = dock.width();
    for (const auto* button :
         dock.findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly)) {
        room = button->isVisible() ? std::min(room, button->x()) : room;
    }
    cutOff.check(dock.windowTitle(), room,
                 dock.fontMetrics().horizontalAdvance(dock.windowTitle()));
}

/// What finds no room in a tool bar or a menu bar goes into the menu of an extension.
void checkExtension(const QWidget& bar, const char* extension, CutOff& cutOff)
{
    const auto* button = bar.findChild<QWidget*>(QLatin1String(extension));
    if (button != nullptr && button->isVisible()) {
        cutOff.check(QLatin1String(bar.metaObject()->className()), bar.width(),
                     bar.sizeHint().width());
    }
}

} // namespace

QStringList cutOffTexts(const QWidget& window)
{
    CutOff cutOff;
    forEachVisible<QLabel>(window, [&](const QLabel& label) { checkLabel(label, cutOff); });
    forEachVisible<QAbstractButton>(window, [&](const QAbstractButton& button) {
        cutOff.check(button.text(), button.size(), button.sizeHint());
    });
    forEachVisible<QGroupBox>(window, [&](const QGroupBox& box) {
        cutOff.check(box.title(), box.size(), box.minimumSizeHint());
    });
    forEachVisible<QHeaderView>(window,
                                [&](const QHeaderView& header) { checkHeader(header, cutOff); });
    forEachVisible<QTabBar>(window, [&](const QTabBar& tabs) { checkTabs(tabs, cutOff); });
    forEachVisible<QDockWidget>(window, [&](const QDockWidget& dock) { checkDock(dock, cutOff); });
    forEachVisible<QToolBar>(
        window, [&](const QToolBar& bar) { checkExtension(bar, "qt_toolbar_ext_button", cutOff); });
    forEachVisible<QMenuBar>(
        window, [&](const QMenuBar& bar) { checkExtension(bar, "qt_menubar_ext_button", cutOff); });
    return cutOff.texts();
}

QStringList shownTexts(const QWidget& window)
{
    QStringList texts{window.windowTitle()};
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        texts << widget->windowTitle() << widget->toolTip() << widget->accessibleName();
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            texts << label->text();
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            texts << button->text();
        } else if (const auto* box = qobject_cast<const QGroupBox*>(widget)) {
            texts << box->title();
        } else if (const auto* bar = qobject_cast<const QStatusBar*>(widget)) {
            texts << bar->currentMessage();
        } else if (const auto* menu = qobject_cast<const QMenu*>(widget)) {
            texts << menu->title();
        } else if (const auto* table = qobject_cast<const QTableView*>(widget)) {
            for (int column = 0; column < table->model()->columnCount(); ++column) {
                texts << table->model()->headerData(column, Qt::Horizontal).toString();
                for (int row = 0; row < table->model()->rowCount(); ++row) {
                    texts << table->model()->index(row, column).data().toString();
                }
            }
        }
    }
    for (const QAction* action : window.findChildren<QAction*>()) {
        texts << action->text() << action->toolTip();
    }
    return texts;
}
