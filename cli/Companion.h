// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Command.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

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
    /// @param commands in the order of the help
    Companion(MakeSdk makeSdk, std::vector<SdkSwitch> switches, Console& console,
              Interruption& interruption, std::vector<Command> commands = allCommands());

    /// Every command that there is.
    [[nodiscard]] static std::vector<Command> allCommands();

    /// Runs the command line @p arguments, whose first one is the program's name. Results go to
    /// standard output, everything else to standard error; a failure is one line there.
    /// @return the exit status of the program.
    int run(const QStringList& arguments);

private:
    int dispatch(const QStringList& arguments);
    /// @return the status that the command ends with.
    int runCommand(const Command& command, const QStringList& arguments);
    void runWithoutCommand(const QStringList& arguments);

    /// Reads the options that every command has and those that the parser knows already; does what
    /// those two ask for that end everything else.
    /// @return whether there is more to do.
    [[nodiscard]] bool parse(QCommandLineParser& parser, const QString& usage,
                             const QStringList& arguments);

    MakeSdk m_makeSdk;
    std::vector<SdkSwitch> m_switches;
    Console& m_console;
    Interruption& m_interruption;
    std::vector<Command> m_commands;
    int m_failedStatus = CommandFailed; ///< that of the command
    QString m_program;                  ///< its name, for usage lines
    QString m_commandLine;              ///< with all arguments
};
