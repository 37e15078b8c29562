// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

class CameraSession;
class Console;

/// The hotpixel correction of an open camera, which is put back when the object goes, whatever
/// happens.
///
/// A camera does not say whether its correction is on, and opening it switches it off: that is how
/// it is found, and what it is put back to. Main thread.
class Correction
{
    Q_DECLARE_TR_FUNCTIONS(Correction)

public:
    /// @param session of the open camera; both must outlive the object
    /// @throws cli::CommandError when opening the camera could not switch its correction off.
    Correction(CameraSession& session, Console& console);

    /// Switches it off when it is on. A camera that refuses is worth a notice.
    ~Correction();

    Correction(const Correction&) = delete;
    Correction& operator=(const Correction&) = delete;

    /// Switches it on or off; the images of the next two frame times may not show it yet.
    /// @throws cli::CommandError with the camera's reason when it refuses.
    void set(bool on);

    /// Leaves it as it is now.
    void keep() { m_mayBeOn = false; }

private:
    /// @return why the camera refused; empty when it did not.
    [[nodiscard]] QString refusal() const;

    CameraSession& m_session;
    Console& m_console;
    bool m_mayBeOn = false;
};
