// SPDX-License-Identifier: MIT
#include "cli/CameraChoice.h"

#include "camera/CameraListModel.h"
#include "cli/CommandError.h"

#include <QCoreApplication>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("CameraChoice", text);
}

} // namespace

QString cli::cameraText(const CameraItem& camera)
{
    return tr("%1, SerNo %2, Dev %3").arg(camera.model, camera.serNo).arg(camera.devId);
}

QJsonObject cli::cameraObject(const CameraItem& camera)
{
    return {{QStringLiteral("cam"), static_cast<qint64>(camera.camId)},
            {QStringLiteral("dev"), static_cast<qint64>(camera.devId)},
            {QStringLiteral("model"), camera.model},
            {QStringLiteral("serNo"), camera.serNo},
            {QStringLiteral("status"), CameraListModel::statusText(camera)}};
}

CameraItem cli::chooseCamera(const QList<CameraItem>& cameras, const QString& name)
{
    const CameraItem* found = nullptr;
    for (const CameraItem& camera : cameras) {
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
