// SPDX-License-Identifier: MIT
#include "cli/ReadCommand.h"

#include "cli/CameraChoice.h"
#include "cli/CameraSession.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/ListOutput.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QJsonDocument>

namespace {

constexpr auto OutOption = "out";

} // namespace

QString ReadCommand::summary() const
{
    return tr("Read the hotpixel lists from a camera.");
}

QString ReadCommand::description() const
{
    return tr("Reads the factory list and the user list from the EEPROM of CAMERA, which is a Dev "
              "number or a serial number.");
}

QList<QCommandLineOption> ReadCommand::options(const std::vector<SdkSwitch>& /*switches*/) const
{
    return {{QLatin1String(OutOption), tr("Save the user list to the list file FILE."),
             QStringLiteral("FILE")}};
}

void ReadCommand::run(const QStringList& values, const QCommandLineParser& parser,
                      CommandContext& context) const
{
    const QString fileName = parser.value(QLatin1String(OutOption));
    const bool save = parser.isSet(QLatin1String(OutOption));
    if (save) {
        cli::checkOutputFile(fileName);
    }

    CameraSession session(context, values.front());
    const CameraLists lists(session.camera());
    const int capacity = lists.maxUserEntries();
    const std::vector<BadpixelEntry> factory = lists.factoryEntries();
    const std::vector<BadpixelEntry> user = lists.userEntries();
    if (save) {
        cli::saveOutputFile(fileName, user);
    }

    if (context.json) {
        QJsonObject result{{QStringLiteral("camera"), cli::cameraObject(session.description())},
                           {QStringLiteral("capacity"), capacity},
                           {QStringLiteral("factory"), cli::entryArray(factory)},
                           {QStringLiteral("user"), cli::entryArray(user)}};
        if (save) {
            result.insert(QStringLiteral("saved"), fileName);
        }
        context.console.result(
            QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact)));
        return;
    }
    const auto print = [&context](const QString& title, const std::vector<BadpixelEntry>& list) {
        context.console.result(title);
        if (!list.empty()) {
            context.console.result(cli::entryColumns(list));
        }
    };
    context.console.result(cli::cameraText(session.description()));
    print(tr("Factory list: %1").arg(cli::entryCount(factory.size())), factory);
    print(tr("User list: %1, at most %2").arg(cli::entryCount(user.size())).arg(capacity), user);
    if (save) {
        context.console.result(tr("User list saved to %1").arg(fileName));
    }
}
