// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <QJsonObject>
#include <QString>

#include <vector>

/// One connected camera as the camera list shows it.
struct ConnectedCamera
{
    std::uint32_t camId = 0;
    std::uint32_t devId = 0; ///< the "Dev" number
    QString model;
    QString serNo;
    QString status;    ///< the word of the camera list
    bool free = false; ///< whether it can be opened

    /// "Model, SerNo 123, Dev 4"
    [[nodiscard]] QString description() const;
    [[nodiscard]] QJsonObject toJson() const;
};

namespace cli {

/// The connected cameras in the SDK's order.
/// @throws CommandError "Can't get number of cameras." or "Can't get camera list."
std::vector<ConnectedCamera> connectedCameras(CameraSdk& sdk);

/// The camera whose "Dev" number or serial number is @p name.
/// @throws CommandError when there is none, or more than one.
ConnectedCamera chooseCamera(const std::vector<ConnectedCamera>& cameras, const QString& name);

} // namespace cli
