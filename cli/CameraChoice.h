// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ConnectedCameras.h"

#include <QJsonObject>
#include <QString>

namespace cli {

/// "Model, SerNo 123, Dev 4"
QString cameraText(const CameraItem& camera);

/// {"cam", "dev", "model", "serNo", "status"}
QJsonObject cameraObject(const CameraItem& camera);

/// The camera whose "Dev" number or serial number is @p name.
/// @throws CommandError when there is none, or more than one.
CameraItem chooseCamera(const QList<CameraItem>& cameras, const QString& name);

} // namespace cli
