// SPDX-License-Identifier: MIT
#pragma once

#include "camera/SdkExtras.h"

#include <QCommandLineOption>
#include <QCoreApplication>
#include <QList>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class CameraSdk;
class Command;
class Console;
class Interruption;

/// The command-line companion of the editor: finds the sub-command that the arguments name, and
/// runs it.
class Companion
{
    Q_DECLARE_TR_FUNCTIONS(Companion)

public:
    enum Status { Succeeded = 0, CommandFailed = 1, WrongUse = 2 };

    using MakeSdk = std::function<std::unique_ptr<CameraSdk>()>;

    /// @param makeSdk called when a command needs the SDK; help and version don't
    /// @param switches those of this SDK
    Companion(MakeSdk makeSdk, std::vector<SdkSwitch> switches, Console& console,
              Interruption& interruption);
    ~Companion();

    /// Runs the command line @p arguments, whose first one is the program's name. Results go to
    /// standard output, everything else to standard error; a failure is one line there.
    /// @return the exit status of the program.
    int run(const QStringList& arguments);

private:
    int dispatch(const QStringList& arguments);
    void runCommand(const Command& command, const QStringList& arguments);
    void runWithoutCommand(const QStringList& arguments);
    void printHelp(const QList<QCommandLineOption>& options) const;
    void printVersion() const;
    [[nodiscard]] static QList<QCommandLineOption> commonOptions();

    MakeSdk m_makeSdk;
    std::vector<SdkSwitch> m_switches;
    Console& m_console;
    Interruption& m_interruption;
    std::vector<std::unique_ptr<Command>> m_commands;
    QString m_program; ///< its name, for usage lines
};
