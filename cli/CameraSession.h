// SPDX-License-Identifier: MIT
#pragma once

#include "camera/Camera.h"
#include "camera/ConnectedCameras.h"

#include <QCoreApplication>
#include <QObject>

struct CommandContext;

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
