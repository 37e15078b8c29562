// SPDX-License-Identifier: MIT
// `cameras`: the connected cameras, as the editor's camera list shows them.

#include "camera/CameraListModel.h"
#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/TextTable.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <vector>

namespace {

class CamerasCommand
{
    Q_DECLARE_TR_FUNCTIONS(CamerasCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& /*switches*/)
    {
        return {};
    }

    static void run(const QStringList& /*values*/, const QCommandLineParser& /*parser*/,
                    CommandContext& context)
    {
        const QList<CameraItem> cameras = camera::connectedCameras(context.sdk());
        Report report(context);
        QJsonArray array;
        std::vector<QStringList> rows{
            {tr("Cam"), tr("Dev"), tr("Model"), tr("SerNo"), tr("Status")}};
        for (const CameraItem& camera : cameras) {
            array.append(cli::cameraObject(camera));
            rows.push_back({QString::number(camera.camId), QString::number(camera.devId),
                            camera.model, camera.serNo, CameraListModel::statusText(camera)});
        }
        report.insert("cameras", array);
        if (!cameras.isEmpty()) {
            report.line(cli::tableText(rows));
        } else if (!context.json) {
            context.console.notice(tr("No camera is connected."));
        }
    }
};

} // namespace

namespace cli::commands {

Command cameras()
{
    return {.name = QStringLiteral("cameras"),
            .arguments = {},
            .summary = CamerasCommand::tr("List the connected cameras."),
            .description = CamerasCommand::tr(
                "Lists the connected cameras. Any other command takes the Dev number or the\n"
                "serial number (SerNo) to name one of them, several of them, or \"all\"; only a\n"
                "free camera can be opened."),
            .options = CamerasCommand::options,
            .run = CamerasCommand::run};
}

} // namespace cli::commands
