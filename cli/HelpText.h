// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineOption>
#include <QList>
#include <QString>

/// The pages that --help prints, no wider than 79 characters.
namespace cli {

struct HelpItem
{
    QString name;
    QString explanation;
};

/// @p text in lines that begin with @p indent blanks; a line end behind each.
QString wrapped(const QString& text, qsizetype indent);

/// Names on the left, explanations in a column beside them.
QString itemText(const QList<HelpItem>& items);

/// "--out <FILE>" and the like.
QList<HelpItem> optionItems(const QList<QCommandLineOption>& options);

/// The page of one command: how it is called, what it does, its options.
QString commandHelp(const QString& call, const QString& description,
                    const QList<QCommandLineOption>& options);

} // namespace cli
