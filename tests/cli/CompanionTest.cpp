// SPDX-License-Identifier: MIT
#include "cli/Companion.h"

#include "cli/Interruption.h"
#include "darkframes/FrameFile.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/EepromSdk.h"

#include <QCommandLineParser>
#include <gtest/gtest.h>

namespace {

/// The companion on an SDK that has no cameras and says so.
class CompanionUse : public testing::Test
{
protected:
    int run(const QStringList& arguments,
            const std::vector<Command>& commands = Companion::allCommands())
    {
        const auto makeSdk = [this] {
            ++m_sdks;
            return std::make_unique<EepromSdk>();
        };
        const SdkSwitch cover{QStringLiteral("cover"), QStringLiteral("Cover the camera."),
                              [](CameraSdk&, std::uint32_t) {}};
        Companion companion(makeSdk, {cover}, m_recorded.console(), m_interruption, commands);
        return companion.run(QStringList(QStringLiteral("/usr/bin/vorn-hotpixel")) + arguments);
    }

    static QStringList words(const char* text)
    {
        return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
    }

    RecordedConsole m_recorded;
    Interruption m_interruption;
    int m_sdks = 0;
};

} // namespace

TEST_F(CompanionUse, IsExplainedByHelpOfEachCommandWithoutAnyCamera)
{
    for (const char* command : {"", "cameras", "read", "survey", "detect", "write", "check",
                                "correction", "backups", "restore", "convert", "diff", "merge"}) {
        for (const char* option : {"--help", "-h"}) {
            EXPECT_EQ(run(words(command) + words(option)), Companion::Succeeded) << command;
            const QByteArray text = m_recorded.out();
            EXPECT_TRUE(text.contains("Usage: vorn-hotpixel"));
            EXPECT_TRUE(text.contains("--json"));
            EXPECT_TRUE(text.contains("--version"));
        }
    }
    EXPECT_EQ(m_recorded.err(), QByteArray());
    EXPECT_EQ(m_sdks, 0);
}

TEST_F(CompanionUse, FitsItsHelpIntoALineOf79Characters)
{
    for (const char* command : {"", "cameras", "read", "survey", "detect", "write", "check",
                                "correction", "backups", "restore", "convert", "diff", "merge"}) {
        run(words(command) + words("--help"));
    }
    for (const QByteArray& line : m_recorded.out().split('\n')) {
        EXPECT_LE(QString::fromLocal8Bit(line).size(), 79) << line.constData();
    }
}

TEST_F(CompanionUse, NamesCommandsAndOptionsInItsHelp)
{
    run(words("--help"));
    for (const char* command : {"cameras", "read CAMERA...", "survey CAMERA...|--frames PATH...",
                                "detect CAMERA...|--frames PATH...", "write CAMERA... FILE",
                                "convert IN OUT", "diff LIST LIST", "merge LIST LIST..."}) {
        EXPECT_TRUE(m_recorded.out().contains(command)) << command;
    }
    run(words("detect --help"));
    for (const char* option :
         {"--frames", "--bayer", "--mono", "--threshold <N>", "--sigma <K>", "--flickering",
          "--like-editor", "--clear", "--auto", "--out <FILE>", "--csv <FILE>", "--report <FILE>",
          "--save-frames <DIR>", "--write", "--yes", "--cover"}) {
        EXPECT_TRUE(m_recorded.out().contains(option)) << option;
    }
}

TEST_F(CompanionUse, TellsItsVersionAndWhatItReads)
{
    const QString before = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion(QStringLiteral("4.5.6"));
    EXPECT_EQ(run(words("--version")), Companion::Succeeded);
    EXPECT_EQ(run(words("read --version")), Companion::Succeeded);
    QCoreApplication::setApplicationVersion(before);
    QByteArray expected = "vorn-hotpixel 4.5.6\n";
    for (const QString& reader : darkframes::readerLines()) {
        expected += "reads " + reader.toUtf8() + '\n';
    }
    EXPECT_EQ(expected.count('\n'), 4);
    EXPECT_EQ(m_recorded.out(), expected.repeated(2));
}

TEST_F(CompanionUse, EndsWithStatus2AndOneLineWhenItIsWrong)
{
    const struct
    {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"", "The command is missing. See \"vorn-hotpixel --help\"."},
        {"--json", "The command is missing. See \"vorn-hotpixel --help\"."},
        {"erase 1", "There is no command \"erase\". See \"vorn-hotpixel --help\"."},
        {"--colour", "Unknown option 'colour'. See \"vorn-hotpixel --help\"."},
        {"cameras 1", "\"1\" is too much. See \"vorn-hotpixel cameras --help\"."},
        {"cameras --out x", "Unknown option 'out'. See \"vorn-hotpixel cameras --help\"."},
        {"read", "CAMERA is missing. See \"vorn-hotpixel read --help\"."},
        {"read 1 --out", "Missing value after '--out'. See \"vorn-hotpixel read --help\"."},
        {"read 1 --out=",
         "The name of the file to be saved is empty. See \"vorn-hotpixel read --help\"."},
        {"read 1 --cover", "Unknown option 'cover'. See \"vorn-hotpixel read --help\"."},
        {"write 1", "FILE is missing. See \"vorn-hotpixel write --help\"."},
        {"write 1 f --out x", "Unknown option 'out'. See \"vorn-hotpixel write --help\"."},
        {"write 1 f", "There is no terminal to ask whether to overwrite the camera's list; use "
                      "--yes. See \"vorn-hotpixel write --help\"."},
        {"detect 1 --write", "There is no terminal to ask whether to overwrite the camera's list; "
                             "use --yes. See \"vorn-hotpixel detect --help\"."},
        {"detect 1 --threshold 4", "The threshold has to be a number from 5 to 255, not \"4\". See "
                                   "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --threshold 256", "The threshold has to be a number from 5 to 255, not \"256\". "
                                     "See \"vorn-hotpixel detect --help\"."},
        {"detect 1 --threshold ten", "The threshold has to be a number from 5 to 255, not \"ten\". "
                                     "See \"vorn-hotpixel detect --help\"."},
        {"detect 1 --threshold 5.5", "The threshold has to be a number from 5 to 255, not \"5.5\". "
                                     "See \"vorn-hotpixel detect --help\"."},
        {"detect", "CAMERA|--frames PATH is missing. See \"vorn-hotpixel detect --help\"."},
        {"detect --frames",
         "CAMERA|--frames PATH is missing. See \"vorn-hotpixel detect --help\"."},
        {"detect 1 --mono", "A camera says itself what sensor it has: --bayer and --mono are for "
                            "--frames. See \"vorn-hotpixel detect --help\"."},
        {"detect --frames f --mono --bayer", "--bayer and --mono contradict each other. See "
                                             "\"vorn-hotpixel detect --help\"."},
        {"detect --frames f --threshold 65281",
         "The threshold has to be a number from 5 to 65280, not \"65281\". See \"vorn-hotpixel "
         "detect --help\"."},
        {"detect 1 --threshold 40 --sigma 5", "--threshold and --sigma contradict each other. See "
                                              "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --sigma many", "The number of deviations has to be 0 or more, not \"many\". See "
                                  "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --sigma -1", "The number of deviations has to be 0 or more, not \"-1\". See "
                                "\"vorn-hotpixel detect --help\"."},
        {"detect --frames f --write --yes",
         "--clear, --auto and --write are for a camera, and --frames takes none. See "
         "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --like-editor --sigma 5",
         "The editor knows no --sigma and no --flickering: --like-editor goes without. See "
         "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --like-editor --csv f",
         "--csv and --report show pixels of the sensor, and --like-editor finds others, too. See "
         "\"vorn-hotpixel detect --help\"."},
        {"detect 1 --save-frames=",
         "The name of the folder for the frames is empty. See \"vorn-hotpixel detect --help\"."},
        {"survey 1 --capacity 5", "A camera says itself how many entries it can hold: --capacity "
                                  "is for --frames. See \"vorn-hotpixel survey --help\"."},
        {"survey --frames f --capacity x",
         "The capacity has to be a number from 0 to 65535, not \"x\". See \"vorn-hotpixel survey "
         "--help\"."},
    };
    QByteArray expected;
    for (const auto& [arguments, message] : cases) {
        EXPECT_EQ(run(words(arguments)), Companion::WrongUse) << arguments;
        expected += QByteArray("vorn-hotpixel: ") + message + '\n';
        EXPECT_EQ(m_recorded.err(), expected);
    }
    EXPECT_EQ(m_recorded.out(), QByteArray());
}

TEST_F(CompanionUse, EndsWithStatus1AndOneLineWhenItFails)
{
    EXPECT_EQ(run(words("cameras")), Companion::CommandFailed);
    EXPECT_EQ(run(words("--json cameras")), Companion::CommandFailed);
    EXPECT_EQ(run(words("detect 1 --threshold 5")), Companion::CommandFailed);
    EXPECT_EQ(run(words("detect 1 --threshold 255")), Companion::CommandFailed);
    EXPECT_EQ(m_recorded.err(),
              QByteArray("vorn-hotpixel: Can't get number of cameras.\n").repeated(4));
    EXPECT_EQ(m_recorded.out(), QByteArray());
}

TEST_F(CompanionUse, FailsWhenTheResultsCantBeWritten)
{
    std::FILE* full = std::fopen("/dev/full", "w");
    if (full == nullptr) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    std::FILE* err = std::tmpfile();
    {
        Console console(stdin, full, err);
        Companion companion([] { return std::make_unique<EepromSdk>(); }, {}, console,
                            m_interruption);
        EXPECT_EQ(companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("--help")}),
                  Companion::CommandFailed);
    }
    std::fclose(full);
    std::fclose(err);
}

// What a further command needs is its record alone.
TEST_F(CompanionUse, RunsAnyCommandThatItIsGiven)
{
    const Command compare{.name = QStringLiteral("compare"),
                          .arguments = {QStringLiteral("FIRST"), QStringLiteral("OTHER...")},
                          .summary = QStringLiteral("Compare files."),
                          .description = QStringLiteral("Compares files with each other."),
                          .options =
                              [](const std::vector<SdkSwitch>& switches) {
                                  return QList<QCommandLineOption>{
                                      {QStringLiteral("deep"), QStringLiteral("Look closely.")},
                                      {switches.front().name, switches.front().description}};
                              },
                          .run =
                              [](const QStringList& values, const QCommandLineParser& parser,
                                 CommandContext& context) {
                                  Report report(context.console, context.json);
                                  report.line(values.join(u'|') +
                                              (parser.isSet(QStringLiteral("deep"))
                                                   ? QStringLiteral(" deep")
                                                   : QString()));
                                  report.insert("files", values.size());
                              }};
    EXPECT_EQ(run(words("compare a b"), {compare}), Companion::Succeeded);
    EXPECT_EQ(run(words("compare --deep a b c d"), {compare}), Companion::Succeeded);
    EXPECT_EQ(run(words("compare a b c --json"), {compare}), Companion::Succeeded);
    EXPECT_EQ(m_recorded.out(), QByteArray("a|b\na|b|c|d deep\n{\"files\":3}\n"));
    EXPECT_EQ(m_sdks, 0) << "it did not ask for the SDK";

    EXPECT_EQ(run(words("compare a"), {compare}), Companion::WrongUse);
    EXPECT_EQ(run(words("read 1"), {compare}), Companion::WrongUse);
    EXPECT_EQ(m_recorded.err(),
              QByteArray("vorn-hotpixel: OTHER is missing. See \"vorn-hotpixel compare --help\".\n"
                         "vorn-hotpixel: There is no command \"read\". See \"vorn-hotpixel "
                         "--help\".\n"));
    EXPECT_EQ(run(words("compare --help"), {compare}), Companion::Succeeded);
    EXPECT_TRUE(
        m_recorded.out().contains("Usage: vorn-hotpixel compare FIRST OTHER... [options]\n\n"
                                  "Compares files with each other.\n\n"));
    EXPECT_TRUE(m_recorded.out().contains("--cover"));
}
