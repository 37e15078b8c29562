// SPDX-License-Identifier: MIT
// `write`: the user entries of a list file into a camera's EEPROM, guarded.

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/GuardedWrite.h"
#include "cli/PixelListFiles.h"

#include <QCoreApplication>

namespace {

class WriteCommand
{
    Q_DECLARE_TR_FUNCTIONS(WriteCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& /*switches*/)
    {
        QList<QCommandLineOption> options{
            cli::formatOption(tr("The format of FILE, where its name does not say it; that of this "
                                 "program's own list files unless told.")),
            cli::sizeOption()};
        options += cli::writeOptions();
        return options;
    }

    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context)
    {
        cli::checkWriteOptions(parser, context);
        const std::vector<BadpixelEntry> entries =
            cli::readListForCamera(values[1], parser, context.console);

        CameraSession session(context, values[0]);
        Report report(context);
        report.line(cli::cameraText(session.description()));
        cli::writeUserEntries(session, entries, parser, context, report);
        report.insert("camera", cli::cameraObject(session.description()));
        report.insert("file", values[1]);
    }
};

} // namespace

namespace cli::commands {

Command write()
{
    return {.name = QStringLiteral("write"),
            .arguments = {QStringLiteral("CAMERA..."), QStringLiteral("FILE")},
            .summary = WriteCommand::tr("Write a list file into a camera."),
            .description = WriteCommand::tr(
                "Replaces the user list in the EEPROM of each CAMERA (a Dev number, a serial\n"
                "number, or \"all\") by the entries of the list file FILE: lines of x, y and the\n"
                "class 1, or any other format that convert knows.\n\n"
                "What changes is shown before. Entries that the list has twice, or that the\n"
                "factory list has, are left out. A list that does not fit is refused. The list\n"
                "that the camera holds is saved to a dated file before. The new one is read back\n"
                "and compared, and where they differ the old one is put back."),
            .options = WriteCommand::options,
            .run = WriteCommand::run,
            .cameras = cli::allButTheLastAreCameras};
}

} // namespace cli::commands
