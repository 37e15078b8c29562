// SPDX-License-Identifier: MIT
#pragma once

#include "camera/SdkExtras.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

class CameraSdk;
class Console;
class Interruption;
class QCommandLineParser;

/// What a sub-command works with; all of it outlives the command's run.
struct CommandContext
{
    CameraSdk& sdk;
    const std::vector<SdkSwitch>& switches;
    Console& console;
    Interruption& interruption;
    bool json; ///< results for machines
};

/// One sub-command of the companion.
class Command
{
public:
    virtual ~Command() = default;

    /// How it is called.
    [[nodiscard]] virtual QString name() const = 0;

    /// One line for the list of commands.
    [[nodiscard]] virtual QString summary() const = 0;

    /// Paragraphs for its own help.
    [[nodiscard]] virtual QString description() const = 0;

    /// The names of its arguments, all of them necessary.
    [[nodiscard]] virtual QStringList arguments() const { return {}; }

    /// Its options, besides those that every command has; @p switches are those of the SDK.
    [[nodiscard]] virtual QList<QCommandLineOption>
    options(const std::vector<SdkSwitch>& switches) const;

    /// Does the work. GUI thread; runs the event loop where it has to wait.
    /// @param values as many as arguments() names
    /// @param parser what was given of options()
    /// @throws cli::UsageError for options that make no sense.
    /// @throws std::exception with one line for the user when it fails.
    virtual void run(const QStringList& values, const QCommandLineParser& parser,
                     CommandContext& context) const = 0;
};
