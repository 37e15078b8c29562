// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"

#include <QList>
#include <QString>

/// One connected camera, as the SDK's list describes it.
struct CameraItem
{
    bool opened = false; ///< this program has the camera open
    std::uint32_t camId = 0;
    std::uint32_t devId = 0;  ///< by which the camera is opened
    std::uint32_t word2 = 0;  ///< carried and compared, not shown
    std::uint32_t status = 0; ///< 0 when the camera is free
    QString serNo;
    QString model;

    bool operator==(const CameraItem&) const = default;
};

namespace camera {

/// The connected cameras in the SDK's order, none of them marked as opened.
/// @throws std::runtime_error "Can't get number of cameras." or "Can't get camera list."
[[nodiscard]] QList<CameraItem> connectedCameras(CameraSdk& sdk);

// Its two steps, for who does something else when the first one says that there are none.

/// How many cameras the SDK sees; below 1 when there are none.
/// @throws std::runtime_error "Can't get number of cameras."
[[nodiscard]] std::int32_t numberOfCameras(CameraSdk& sdk);

/// The list of at most @p count cameras, which is at least 1; fewer when some have gone since.
/// @throws std::runtime_error "Can't get camera list."
[[nodiscard]] QList<CameraItem> cameraList(CameraSdk& sdk, std::int32_t count);

} // namespace camera
