// SPDX-License-Identifier: MIT
#include "cli/CameraSession.h"

#include "cli/CameraChoice.h"
#include "cli/Command.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/ProgressBar.h"

#include <QFileInfo>

#include <utility>

namespace {

constexpr auto SettingsFile = "./VornHotpixelEditor.ini"; ///< as Camera::open() loads it

} // namespace

CameraSession::CameraSession(CommandContext& context, const QString& name)
    : CameraSession(context, cli::chooseCamera(camera::connectedCameras(context.sdk), name))
{}

CameraSession::CameraSession(CommandContext& context, CameraItem camera)
    : m_context(context)
    , m_camera(context.sdk)
    , m_description(std::move(camera))
{
    if (m_description.status != 0) {
        throw cli::CommandError(tr("The camera (%1) is in use by another program.")
                                    .arg(cli::cameraText(m_description)));
    }
    QObject::connect(&m_camera, &Camera::displayError, &m_camera,
                     [this, settingsTold = false](const QString& text, int /*msec*/) mutable {
                         // The first notice since the file was refused says so. It is optional, so
                         // only one that is there is worth a line.
                         const bool ofSettings =
                             m_camera.settingsResult() == camera::FileNotOpened &&
                             !std::exchange(settingsTold, true);
                         if (!ofSettings || QFileInfo::exists(QLatin1String(SettingsFile))) {
                             m_context.console.notice(text);
                         }
                     });
    const ProgressBar progress(context.console, tr("Opening the camera"));
    m_camera.open(static_cast<int>(m_description.devId));
    checkInterruption();
}

void CameraSession::checkInterruption() const
{
    if (m_context.interruption.requested()) {
        throw cli::CommandError(tr("Interrupted."));
    }
}
