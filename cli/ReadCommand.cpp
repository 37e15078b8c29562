// SPDX-License-Identifier: MIT
// `read`: the factory and the user list in a camera's EEPROM.

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/PixelListFiles.h"
#include "cli/SeveralCameras.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

constexpr auto OutOption = "out";

class ReadCommand
{
    Q_DECLARE_TR_FUNCTIONS(ReadCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& /*switches*/)
    {
        return {{QLatin1String(OutOption), tr("Save the user list to the list file FILE."),
                 QStringLiteral("FILE")},
                cli::outputFormatOption()};
    }

    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context)
    {
        const QString fileName =
            cli::outputName(parser, OutOption, cli::outputSuffix(parser), context);
        const bool save = parser.isSet(QLatin1String(OutOption));
        const PixelListFormat& format = cli::outputFormat(fileName, parser);
        if (save) {
            cli::checkListOutput(fileName, format);
        }

        CameraSession session(context, values.front());
        const CameraLists lists(session.camera());
        const int capacity = lists.maxUserEntries();
        const std::vector<BadpixelEntry> factory = lists.factoryEntries();
        const std::vector<BadpixelEntry> user = lists.userEntries();
        Report report(context);
        const auto list = [&report](const char* key, const QString& title,
                                    const std::vector<BadpixelEntry>& entries) {
            report.insert(key, cli::entryArray(entries));
            report.line(title);
            if (!entries.empty()) {
                report.line(cli::entryColumns(entries));
            }
        };
        report.insert("camera", cli::cameraObject(session.description()));
        report.insert("capacity", capacity);
        report.line(cli::cameraText(session.description()));
        list("factory", tr("Factory list: %1").arg(cli::entryCount(factory.size())), factory);
        list("user",
             tr("User list: %1, at most %2").arg(cli::entryCount(user.size())).arg(capacity), user);
        report.setSummary(tr("%1 factory, %2 user").arg(factory.size()).arg(user.size()));
        if (save) {
            const QSize sensor(session.camera().imageWidth(), session.camera().imageHeight());
            const QString account = cli::saveUserEntries(
                fileName, format, user, {.size = sensor, .camera = session.description().model},
                report);
            report.line(tr("User list saved to %1").arg(fileName));
            if (!account.isEmpty()) {
                report.line(account);
            }
        }
    }
};

} // namespace

namespace cli::commands {

Command read()
{
    return {.name = QStringLiteral("read"),
            .arguments = {QStringLiteral("CAMERA...")},
            .summary = ReadCommand::tr("Read the hotpixel lists from a camera."),
            .description = ReadCommand::tr(
                "Reads the factory list and the user list from the EEPROM of each CAMERA (a Dev\n"
                "number, a serial number, or \"all\"). With several of them --out names a folder,\n"
                "and each list is saved there under the serial number."),
            .options = ReadCommand::options,
            .run = ReadCommand::run,
            .cameras = cli::allAreCameras};
}

} // namespace cli::commands
