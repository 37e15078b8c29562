// SPDX-License-Identifier: MIT
#include "cli/CamerasCommand.h"

#include "camera/CameraListModel.h"
#include "cli/CameraChoice.h"
#include "cli/Console.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t ColumnCount = 5;
using Row = std::array<QString, ColumnCount>;

QString tableText(const std::vector<Row>& rows)
{
    std::array<qsizetype, ColumnCount> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < ColumnCount; ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    QStringList lines;
    for (const Row& row : rows) {
        QString line;
        for (std::size_t column = 0; column + 1 < ColumnCount; ++column) {
            line += row[column].leftJustified(widths[column] + 2);
        }
        lines.append(line + row.back());
    }
    return lines.join(u'\n');
}

} // namespace

QString CamerasCommand::summary() const
{
    return tr("List the connected cameras.");
}

QString CamerasCommand::description() const
{
    return tr("Lists the connected cameras. Any other command takes the Dev number or the serial "
              "number (SerNo) to name one of them; only a free camera can be opened.");
}

void CamerasCommand::run(const QStringList& /*values*/, const QCommandLineParser& /*parser*/,
                         CommandContext& context) const
{
    const QList<CameraItem> cameras = camera::connectedCameras(context.sdk);
    if (context.json) {
        QJsonArray array;
        for (const CameraItem& camera : cameras) {
            array.append(cli::cameraObject(camera));
        }
        context.console.result(
            QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("cameras"), array}})
                                  .toJson(QJsonDocument::Compact)));
        return;
    }
    if (cameras.isEmpty()) {
        context.console.notice(tr("No camera is connected."));
        return;
    }
    std::vector<Row> rows{{tr("Cam"), tr("Dev"), tr("Model"), tr("SerNo"), tr("Status")}};
    for (const CameraItem& camera : cameras) {
        rows.push_back({QString::number(camera.camId), QString::number(camera.devId), camera.model,
                        camera.serNo, CameraListModel::statusText(camera)});
    }
    context.console.result(tableText(rows));
}
