// SPDX-License-Identifier: MIT
#include "cli/Correction.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"

Correction::Correction(CameraSession& session, Console& console)
    : m_session(session)
    , m_console(console)
{
    if (const QString reason = refusal(); !reason.isEmpty()) {
        throw cli::CommandError(
            tr("The camera's correction could not be switched off: %1").arg(reason));
    }
}

Correction::~Correction()
{
    if (!m_mayBeOn) {
        return;
    }
    m_session.camera().setBadPixelCorrection(false);
    if (const QString reason = refusal(); !reason.isEmpty()) {
        m_console.notice(
            tr("The camera's correction could not be switched off again: %1").arg(reason));
    }
}

void Correction::set(bool on)
{
    m_mayBeOn = m_mayBeOn || on;
    m_session.camera().setBadPixelCorrection(on);
    if (const QString reason = refusal(); !reason.isEmpty()) {
        throw cli::CommandError(
            on ? tr("The camera's correction could not be switched on: %1").arg(reason)
               : tr("The camera's correction could not be switched off: %1").arg(reason));
    }
    m_mayBeOn = on;
}

QString Correction::refusal() const
{
    const Camera& camera = m_session.camera();
    const int result = camera.correctionResult();
    return result == 0 ? QString() : QString::fromLatin1(camera.errorText(result));
}
