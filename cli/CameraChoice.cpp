// SPDX-License-Identifier: MIT
#include "cli/CameraChoice.h"

#include "camera/CameraListModel.h"
#include "cli/CommandError.h"

#include <QCoreApplication>

namespace {

constexpr int RefreshMsec = 1000; ///< never comes to it: the list is read once
constexpr int StatusColumn = 4;

QString tr(const char* text)
{
    return QCoreApplication::translate("CameraChoice", text);
}

} // namespace

QString ConnectedCamera::description() const
{
    return tr("%1, SerNo %2, Dev %3").arg(model, serNo).arg(devId);
}

QJsonObject ConnectedCamera::toJson() const
{
    return {{QStringLiteral("cam"), static_cast<qint64>(camId)},
            {QStringLiteral("dev"), static_cast<qint64>(devId)},
            {QStringLiteral("model"), model},
            {QStringLiteral("serNo"), serNo},
            {QStringLiteral("status"), status}};
}

std::vector<ConnectedCamera> cli::connectedCameras(CameraSdk& sdk)
{
    // The model is silent about its failures, so the count is asked for here, too.
    std::int32_t count = 0;
    if (sdk.getNumberOfCameras(&count) != 0) {
        throw CommandError(tr("Can't get number of cameras."));
    }
    CameraListModel model(sdk, RefreshMsec);
    model.updateList();
    if (count > 0 && model.rowCount() == 0) {
        throw CommandError(tr("Can't get camera list."));
    }

    std::vector<ConnectedCamera> cameras;
    for (int row = 0; row < model.rowCount(); ++row) {
        const CameraItem item = model.item(row);
        cameras.push_back({item.camId, item.devId, item.model, item.serNo,
                           model.data(model.index(row, StatusColumn), Qt::DisplayRole).toString(),
                           item.status == 0});
    }
    return cameras;
}

ConnectedCamera cli::chooseCamera(const std::vector<ConnectedCamera>& cameras, const QString& name)
{
    const ConnectedCamera* found = nullptr;
    for (const ConnectedCamera& camera : cameras) {
        if (camera.serNo != name && QString::number(camera.devId) != name) {
            continue;
        }
        if (found != nullptr) {
            throw CommandError(
                tr("\"%1\" is the Dev number of one camera and the serial number of another.")
                    .arg(name));
        }
        found = &camera;
    }
    if (found == nullptr) {
        throw CommandError(
            tr("No camera with the Dev number or serial number \"%1\" is connected.").arg(name));
    }
    return *found;
}
