// SPDX-License-Identifier: MIT
#pragma once

#include "camera/SdkExtras.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>
#include <vector>

class CameraSdk;
class Console;
class Interruption;
class QCommandLineParser;
struct CameraShare;

namespace cli {

/// What ends a command with one line on standard error and its status for failures.
class CommandError : public std::runtime_error
{
public:
    explicit CommandError(const QString& text)
        : std::runtime_error(text.toStdString())
    {}
};

/// A command line that makes no sense: status 2.
class UsageError final : public CommandError
{
public:
    using CommandError::CommandError;
};

} // namespace cli

/// What a sub-command works with; all of it outlives the command's run.
struct CommandContext
{
    std::function<CameraSdk&()> sdk; ///< makes it when it is first asked for
    const std::vector<SdkSwitch>& switches;
    Console& console;
    Interruption& interruption;
    bool json;                    ///< results for machines
    QString commandLine = {};     ///< how the program was called, to be repeated in a shell
    CameraShare* share = nullptr; ///< the camera whose turn it is; null unless there are several
    int status = 0; ///< what a command that has done its work lets the program end with
};

/// One sub-command of the companion.
///
/// A new one is a source of its own, which defines `Command cli::commands::NAME()`, and a line in
/// the table of Companion.cpp.
struct Command
{
    QString name;          ///< how it is called
    QStringList arguments; ///< the names of its arguments; one or more of that whose name ends in
                           ///< "...", none or one of that in brackets
    QString summary;       ///< one line for the list of commands
    QString description;   ///< for its own help, in lines of up to 79 characters

    /// Its options, besides those that every command has; the switches are those of the SDK.
    QList<QCommandLineOption> (*options)(const std::vector<SdkSwitch>& switches);

    /// Does the work, for one camera at a time. Main thread; runs the event loop where it has to
    /// wait. The values are as many as the arguments, the parser has what was given of the options.
    ///
    /// Throws cli::UsageError for options that make no sense, and std::exception with one line for
    /// the user when it fails.
    void (*run)(const QStringList& values, const QCommandLineParser& parser,
                CommandContext& context);

    /// How many of the values, from the first on, name cameras; none of them for a command without.
    /// Whoever has several, or "all", is run for each of them, with its name in their place.
    qsizetype (*cameras)(const QStringList& values, const QCommandLineParser& parser) =
        [](const auto&, const auto&) { return qsizetype{0}; };
    int failedStatus = 1; ///< what the program ends with when the command fails
};

namespace cli {

// How commands tell Companion which of their values name cameras.

/// All of them do.
inline qsizetype allAreCameras(const QStringList& values, const QCommandLineParser& /*parser*/)
{
    return values.size();
}

/// All but the last one do.
inline qsizetype allButTheLastAreCameras(const QStringList& values,
                                         const QCommandLineParser& /*parser*/)
{
    return values.size() - 1;
}

} // namespace cli
