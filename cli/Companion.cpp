// SPDX-License-Identifier: MIT
#include "cli/Companion.h"

#include "camera/CameraSdk.h"
#include "cli/Console.h"
#include "cli/SeveralCameras.h"
#include "darkframes/FrameFile.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <exception>
#include <utility>

// The commands, in the order of the help: cli::commands::NAME() of each is in a source of its own.
#define VORN_COMMANDS(COMMAND)                                                                     \
    COMMAND(cameras)                                                                               \
    COMMAND(read)                                                                                  \
    COMMAND(survey)                                                                                \
    COMMAND(detect)                                                                                \
    COMMAND(write)                                                                                 \
    COMMAND(check)                                                                                 \
    COMMAND(correction)                                                                            \
    COMMAND(backups)                                                                               \
    COMMAND(restore)                                                                               \
    COMMAND(convert)                                                                               \
    COMMAND(diff)                                                                                  \
    COMMAND(merge)

namespace cli::commands {

#define VORN_DECLARE(name) Command name();
VORN_COMMANDS(VORN_DECLARE)
#undef VORN_DECLARE

} // namespace cli::commands

namespace {

constexpr auto JsonOption = "json";
constexpr auto HelpOption = "help";
constexpr auto VersionOption = "version";
constexpr auto Repeated = "...";

/// The values that the arguments of a command get.
/// @throws cli::UsageError when they are too few or too many.
void checkCount(const QStringList& values, const QStringList& arguments)
{
    const auto isNecessary = [](const QString& argument) { return !argument.startsWith(u'['); };
    if (values.size() < std::ranges::count_if(arguments, isNecessary)) {
        QString missing = arguments[values.size()];
        throw cli::UsageError(
            Companion::tr("%1 is missing.").arg(missing.remove(QLatin1String(Repeated))));
    }
    const bool anyNumber = std::ranges::any_of(arguments, [](const QString& argument) {
        return argument.contains(QLatin1String(Repeated));
    });
    if (values.size() > arguments.size() && !anyNumber) {
        throw cli::UsageError(Companion::tr("\"%1\" is too much.").arg(values[arguments.size()]));
    }
}

/// @p arguments as a shell takes them.
QString commandLineOf(const QStringList& arguments)
{
    static const QRegularExpression Special(QStringLiteral("[^A-Za-z0-9_./:=,+@%-]"));
    QStringList words;
    for (QString word : arguments) {
        if (word.isEmpty() || word.contains(Special)) {
            word = u'\'' + word.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
        }
        words.append(word);
    }
    return words.join(u' ');
}

} // namespace

Companion::Companion(MakeSdk makeSdk, std::vector<SdkSwitch> switches, Console& console,
                     Interruption& interruption, std::vector<Command> commands)
    : m_makeSdk(std::move(makeSdk))
    , m_switches(std::move(switches))
    , m_console(console)
    , m_interruption(interruption)
    , m_commands(std::move(commands))
{}

std::vector<Command> Companion::allCommands()
{
#define VORN_CALL(name) cli::commands::name(),
    return {VORN_COMMANDS(VORN_CALL)};
#undef VORN_CALL
}

int Companion::run(const QStringList& arguments)
{
    m_program = QFileInfo(arguments.value(0)).completeBaseName();
    m_commandLine = commandLineOf(QStringList(m_program) + arguments.mid(1));
    m_failedStatus = CommandFailed;
    int status = dispatch(arguments.mid(1));
    // A status that says something else than that all is well may be a result itself.
    if (!m_console.flush() && status != m_failedStatus && status != WrongUse) {
        m_console.notice(tr("%1: Can't write the results.").arg(m_program));
        status = m_failedStatus;
    }
    return status;
}

int Companion::dispatch(const QStringList& arguments)
{
    // Options that stand before the command have no values, so the first other word is the command.
    const auto word = std::ranges::find_if(
        arguments, [](const QString& argument) { return !argument.startsWith(u'-'); });
    const auto command = std::ranges::find_if(m_commands, [&](const auto& candidate) {
        return word != arguments.end() && candidate.name == *word;
    });
    QString helpCommand = m_program;
    try {
        if (command != m_commands.end()) {
            helpCommand += u' ' + command->name;
            QStringList rest = arguments;
            rest.removeAt(word - arguments.begin());
            m_failedStatus = command->failedStatus;
            return runCommand(*command, rest);
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
        return m_failedStatus;
    }
}

void Companion::runWithoutCommand(const QStringList& arguments)
{
    const auto callOf = [](const Command& command) {
        return (QStringList(command.name) + command.arguments).join(u' ');
    };
    qsizetype width = 0;
    for (const Command& command : m_commands) {
        width = std::max(width, callOf(command).size());
    }
    QString description = tr("Commands:") + u'\n';
    for (const Command& command : m_commands) {
        description +=
            QStringLiteral("  %1  %2\n").arg(callOf(command).leftJustified(width), command.summary);
    }
    description += u'\n' + tr("CAMERA is a Dev number or a serial number, several of them, or\n"
                              "\"all\". The help of a command: \"%1 COMMAND --help\".\n"
                              "The exit status is 0, 1 when the command failed, or 2 when it was\n"
                              "called wrongly.")
                               .arg(m_program);
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    if (parse(parser, m_program + u' ' + tr("COMMAND [options]"), arguments)) {
        throw cli::UsageError(tr("The command is missing."));
    }
}

int Companion::runCommand(const Command& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.addOptions(command.options(m_switches));
    parser.setApplicationDescription(command.description);
    const QStringList usage = QStringList{m_program, command.name} + command.arguments;
    if (!parse(parser, usage.join(u' ') + u' ' + tr("[options]"), arguments)) {
        return Succeeded;
    }
    const QStringList values = parser.positionalArguments();
    checkCount(values, command.arguments);

    std::unique_ptr<CameraSdk> sdk;
    const auto sdkOnDemand = [&]() -> CameraSdk& {
        if (!sdk) {
            sdk = m_makeSdk();
        }
        return *sdk;
    };
    CommandContext context{sdkOnDemand,
                           m_switches,
                           m_console,
                           m_interruption,
                           parser.isSet(QLatin1String(JsonOption)),
                           m_commandLine};
    const qsizetype cameras = command.cameras(values, parser);
    if (cli::nameSeveral(values.first(cameras))) {
        cli::runForEach(command, values.first(cameras), values.sliced(cameras), parser, context);
    } else {
        command.run(values, parser, context);
    }
    return context.status;
}

bool Companion::parse(QCommandLineParser& parser, const QString& usage,
                      const QStringList& arguments)
{
    parser.addOptions(
        {{QLatin1String(JsonOption),
          tr("Print the results as one JSON object, with several cameras as one on a line each.")},
         {{QStringLiteral("h"), QLatin1String(HelpOption)}, tr("Print this help.")},
         {{QStringLiteral("v"), QLatin1String(VersionOption)}, tr("Print the version.")}});
    if (!parser.parse(QStringList(m_program) + arguments)) {
        throw cli::UsageError(parser.errorText());
    }
    if (parser.isSet(QLatin1String(HelpOption))) {
        // The parser's own first line names the whole path of the program, and no command.
        m_console.result(tr("Usage: %1").arg(usage) + QStringLiteral("\n\n") +
                         parser.helpText().section(u'\n', 1).trimmed());
        return false;
    }
    if (parser.isSet(QLatin1String(VersionOption))) {
        m_console.result(m_program + u' ' + QCoreApplication::applicationVersion());
        for (const QString& reader : darkframes::readerLines()) {
            m_console.result(tr("reads %1").arg(reader));
        }
        return false;
    }
    return true;
}
