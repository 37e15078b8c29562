// SPDX-License-Identifier: MIT
#include "cli/CameraSession.h"

#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/SeveralCameras.h"

#include <QFileInfo>

#include <utility>

namespace {

/// As CameraListModel::statusText() has it for people.
const char* statusWord(const CameraItem& camera)
{
    if (camera.status == 0) {
        return "free";
    }
    return camera.opened ? "opened" : "in use";
}

constexpr auto SettingsFile = "./VornHotpixelEditor.ini"; ///< as Camera::open() loads it

} // namespace

QString cli::cameraText(const CameraItem& camera)
{
    return CameraSession::tr("%1, SerNo %2, Dev %3")
        .arg(camera.model, camera.serNo, QString::number(camera.devId));
}

QJsonObject cli::cameraObject(const CameraItem& camera)
{
    return {{QStringLiteral("cam"), static_cast<qint64>(camera.camId)},
            {QStringLiteral("dev"), static_cast<qint64>(camera.devId)},
            {QStringLiteral("model"), camera.model},
            {QStringLiteral("serNo"), camera.serNo},
            {QStringLiteral("status"), QLatin1String(statusWord(camera))}};
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
                CameraSession::tr(
                    "\"%1\" is the Dev number of one camera and the serial number of another.")
                    .arg(name));
        }
        found = &camera;
    }
    if (found == nullptr) {
        throw CommandError(
            CameraSession::tr("No camera with the Dev number or serial number \"%1\" is connected.")
                .arg(name));
    }
    return *found;
}

CameraSession::CameraSession(CommandContext& context, const QString& name)
    : CameraSession(context, cli::chosenCamera(context, name))
{}

CameraSession::CameraSession(CommandContext& context, CameraItem camera)
    : m_context(context)
    , m_camera(context.sdk())
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
