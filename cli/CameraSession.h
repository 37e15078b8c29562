// SPDX-License-Identifier: MIT
#pragma once

#include "camera/Camera.h"
#include "camera/ConnectedCameras.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QString>

struct CommandContext;

namespace cli {

/// "Model, SerNo 123, Dev 4"
QString cameraText(const CameraItem& camera);

/// {"cam", "dev", "model", "serNo", "status"}
QJsonObject cameraObject(const CameraItem& camera);

/// The camera whose "Dev" number or serial number is @p name.
/// @throws CommandError when there is none, or more than one.
CameraItem chooseCamera(const QList<CameraItem>& cameras, const QString& name);

} // namespace cli

/// A camera that is open for as long as the object lives. What it has to say that stops nothing
/// becomes a notice. Main thread.
class CameraSession
{
    Q_DECLARE_TR_FUNCTIONS(CameraSession)

public:
    /// Opens @p camera.
    /// @throws cli::CommandError when another program has it, or the end was asked for meanwhile.
    /// @throws std::runtime_error of Camera::open().
    CameraSession(CommandContext& context, CameraItem camera);

    /// Opens the camera that @p name names.
    /// @throws cli::CommandError also when there is no such camera.
    /// @throws std::runtime_error of camera::connectedCameras().
    CameraSession(CommandContext& context, const QString& name);

    [[nodiscard]] Camera& camera() { return m_camera; }
    [[nodiscard]] const CameraItem& description() const { return m_description; }

    /// @throws cli::CommandError when the end was asked for.
    void checkInterruption() const;

private:
    CommandContext& m_context;
    Camera m_camera;
    CameraItem m_description;
};
