// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/FaultyCameraSdk.h"

#include <QStringList>

#include <array>
#include <optional>

/// What came of one session.
struct SessionReport
{
    QStringList complaints; ///< what was not as it must be
    QStringList absent;     ///< steps that the fault kept from their effect, as it may
    bool struck = false;
    std::array<int, SdkOperationCount> calls{};
};

/// A technician's whole day in a window of its own, over a simulated camera whose SDK fails once:
/// the cameras are listed, one is opened, adjusted, corrected and measured, its list is added to,
/// written, saved and loaded, its cable is pulled and put back, it is closed and opened again.
///
/// Where the fault keeps a step from its effect, and only there, the technician helps himself: he
/// closes the camera and opens it again. A step that neither sleeps nor computes its way to an end
/// ends the process with status 3 and a line that names it. GUI thread.
SessionReport runFaultSession(std::optional<SdkFault> fault);
