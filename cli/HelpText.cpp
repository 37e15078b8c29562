// SPDX-License-Identifier: MIT
#include "cli/HelpText.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace cli {
namespace {

constexpr qsizetype PageWidth = 79;
constexpr qsizetype ItemIndent = 2;
constexpr qsizetype ItemGap = 2;

QString tr(const char* text)
{
    return QCoreApplication::translate("HelpText", text);
}

} // namespace

QString wrapped(const QString& text, qsizetype indent)
{
    const QString margin(indent, u' ');
    QString result;
    for (const QString& paragraph : text.split(u'\n')) {
        QString line = margin;
        for (const QString& word : paragraph.split(u' ', Qt::SkipEmptyParts)) {
            if (line.size() > indent && line.size() + 1 + word.size() > PageWidth) {
                result += line + u'\n';
                line = margin;
            }
            line += line.size() > indent ? u' ' + word : word;
        }
        result += (line == margin ? QString() : line) + u'\n';
    }
    return result;
}

QString itemText(const QList<HelpItem>& items)
{
    qsizetype width = 0;
    for (const HelpItem& item : items) {
        width = std::max(width, item.name.size());
    }
    const qsizetype column = ItemIndent + width + ItemGap;
    QString result;
    for (const HelpItem& item : items) {
        // The name takes the place of the first line's margin.
        const QString name = QString(ItemIndent, u' ') + item.name;
        result += wrapped(item.explanation, column).replace(0, column, name.leftJustified(column));
    }
    return result;
}

QList<HelpItem> optionItems(const QList<QCommandLineOption>& options)
{
    QList<HelpItem> items;
    for (const QCommandLineOption& option : options) {
        QStringList names;
        for (const QString& name : option.names()) {
            names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
        }
        QString text = names.join(QStringLiteral(", "));
        if (!option.valueName().isEmpty()) {
            text += u' ' + option.valueName();
        }
        items.append({text, option.description()});
    }
    return items;
}

QString commandHelp(const QString& call, const QString& description,
                    const QList<QCommandLineOption>& options)
{
    return tr("Usage: %1 [options]").arg(call) + QStringLiteral("\n\n") + wrapped(description, 0) +
           u'\n' + tr("Options:") + u'\n' + itemText(optionItems(options));
}

} // namespace cli
