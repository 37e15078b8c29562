// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Turns Ctrl+C and the request to terminate into a signal of the event loop, so that a command can
/// finish what must not be left half done and close its camera.
///
/// While the object lives, SIGINT, SIGTERM and SIGHUP (on Windows the console's control events) end
/// nothing by themselves, and writing into a closed pipe is an error instead of the program's end.
/// One object at a time.
class Interruption final : public QObject
{
    Q_OBJECT

public:
    explicit Interruption(QObject* parent = nullptr);
    ~Interruption() override;

    /// Whether the end was asked for. Any thread.
    [[nodiscard]] bool requested() const;

    /// Asks for the end, as Ctrl+C does. Any thread.
    void request();

    /// Waits until @p descriptor can be read.
    /// @return false when the end was asked for before.
    [[nodiscard]] bool waitForInput(int descriptor) const;

signals:
    /// Emitted once by the event loop of the object's thread after the end was asked for.
    void interrupted();
};
