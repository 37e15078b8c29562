// SPDX-License-Identifier: MIT
#include "cli/Companion.h"

#include "camera/CameraSdk.h"
#include "cli/CamerasCommand.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DetectCommand.h"
#include "cli/HelpText.h"
#include "cli/ReadCommand.h"
#include "cli/WriteCommand.h"

#include <QCommandLineParser>
#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <utility>

namespace {

constexpr auto JsonOption = "json";
constexpr auto HelpOption = "help";
constexpr auto VersionOption = "version";

} // namespace

Companion::Companion(MakeSdk makeSdk, std::vector<SdkSwitch> switches, Console& console,
                     Interruption& interruption)
    : m_makeSdk(std::move(makeSdk))
    , m_switches(std::move(switches))
    , m_console(console)
    , m_interruption(interruption)
{
    m_commands.push_back(std::make_unique<CamerasCommand>());
    m_commands.push_back(std::make_unique<ReadCommand>());
    m_commands.push_back(std::make_unique<DetectCommand>());
    m_commands.push_back(std::make_unique<WriteCommand>());
}

Companion::~Companion() = default;

int Companion::run(const QStringList& arguments)
{
    m_program = QFileInfo(arguments.value(0)).completeBaseName();
    int status = dispatch(arguments.mid(1));
    if (!m_console.flush() && status == Succeeded) {
        m_console.notice(tr("%1: Can't write the results.").arg(m_program));
        status = CommandFailed;
    }
    return status;
}

int Companion::dispatch(const QStringList& arguments)
{
    // Options that stand before the command have no values, so the first other word is the command.
    const auto word = std::ranges::find_if(
        arguments, [](const QString& argument) { return !argument.startsWith(u'-'); });
    const auto command = std::ranges::find_if(m_commands, [&](const auto& candidate) {
        return word != arguments.end() && candidate->name() == *word;
    });
    QString helpCommand = m_program;
    try {
        if (command != m_commands.end()) {
            helpCommand += u' ' + (*command)->name();
            QStringList rest = arguments;
            rest.removeAt(word - arguments.begin());
            runCommand(**command, rest);
            return Succeeded;
        }
        if (word != arguments.end()) {
            throw cli::UsageError(tr("There is no command \"%1\".").arg(*word));
        }
        runWithoutCommand(arguments);
        return Succeeded;
    } catch (const cli::UsageError& error) {
        m_console.notice(tr("%1: %2 See \"%3 --help\".")
                             .arg(m_program, QString::fromUtf8(error.what()), helpCommand));
        return WrongUse;
    } catch (const std::exception& error) {
        m_console.notice(m_program + QStringLiteral(": ") + QString::fromUtf8(error.what()));
        return CommandFailed;
    }
}

void Companion::runWithoutCommand(const QStringList& arguments)
{
    const QList<QCommandLineOption> options = commonOptions();
    QCommandLineParser parser;
    parser.addOptions(options);
    if (!parser.parse(QStringList(m_program) + arguments)) {
        throw cli::UsageError(parser.errorText());
    }
    if (parser.isSet(QLatin1String(HelpOption))) {
        printHelp(options);
    } else if (parser.isSet(QLatin1String(VersionOption))) {
        printVersion();
    } else {
        throw cli::UsageError(tr("The command is missing."));
    }
}

void Companion::runCommand(const Command& command, const QStringList& arguments)
{
    const QList<QCommandLineOption> options = command.options(m_switches) + commonOptions();
    const QStringList expected = command.arguments();
    QCommandLineParser parser;
    parser.addOptions(options);
    if (!parser.parse(QStringList(m_program) + arguments)) {
        throw cli::UsageError(parser.errorText());
    }
    if (parser.isSet(QLatin1String(HelpOption))) {
        const QStringList usage = QStringList{m_program, command.name()} + expected;
        m_console.result(
            cli::commandHelp(usage.join(u' '), command.description(), options).trimmed());
        return;
    }
    if (parser.isSet(QLatin1String(VersionOption))) {
        printVersion();
        return;
    }
    const QStringList values = parser.positionalArguments();
    if (values.size() < expected.size()) {
        throw cli::UsageError(tr("%1 is missing.").arg(expected[values.size()]));
    }
    if (values.size() > expected.size()) {
        throw cli::UsageError(tr("\"%1\" is too much.").arg(values[expected.size()]));
    }
    const std::unique_ptr<CameraSdk> sdk = m_makeSdk();
    CommandContext context{*sdk, m_switches, m_console, m_interruption,
                           parser.isSet(QLatin1String(JsonOption))};
    command.run(values, parser, context);
}

QList<QCommandLineOption> Companion::commonOptions()
{
    return {{QLatin1String(JsonOption), tr("Print the results as one JSON object.")},
            {{QStringLiteral("h"), QLatin1String(HelpOption)}, tr("Print this help.")},
            {{QStringLiteral("v"), QLatin1String(VersionOption)}, tr("Print the version.")}};
}

void Companion::printHelp(const QList<QCommandLineOption>& options) const
{
    QList<cli::HelpItem> items;
    for (const std::unique_ptr<Command>& command : m_commands) {
        const QStringList call = QStringList(command->name()) + command->arguments();
        items.append({call.join(u' '), command->summary()});
    }
    m_console.result(tr("Usage: %1 COMMAND [options]").arg(m_program) + QStringLiteral("\n\n") +
                     tr("Commands:") + u'\n' + cli::itemText(items) + u'\n' + tr("Options:") +
                     u'\n' + cli::itemText(cli::optionItems(options)) + u'\n' +
                     cli::wrapped(tr("CAMERA is a Dev number or a serial number. The help of a "
                                     "command: \"%1 COMMAND --help\". The exit status is 0, 1 when "
                                     "the command failed, or 2 when it was called wrongly.")
                                      .arg(m_program),
                                  0)
                         .trimmed());
}

void Companion::printVersion() const
{
    m_console.result(m_program + u' ' + QCoreApplication::applicationVersion());
}
