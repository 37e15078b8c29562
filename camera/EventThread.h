// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "camera/EventObject.h"

#include <QDeadlineTimer>
#include <QThread>

#include <atomic>
#include <memory>

/// Turns one event of the camera SDK into a signal: owns an event object, binds it to an SDK event
/// and waits for it in a thread of its own.
///
/// start() and stop() are called on the thread that owns the object. After stop(), the owner waits
/// for the thread with wait(), at most 500 ms where it may go on without, and terminates it then.
/// Terminating is harmless: it strikes only in the wait for the event object and between two calls
/// of the SDK, where nothing is locked, never in a call nor in the emission of eventhappen(). So a
/// thread that hung in the SDK and was given up calls nothing more when it comes back.
class EventThread final : public QThread
{
    Q_OBJECT

public:
    /// @param sdk must outlive the thread.
    explicit EventThread(CameraSdk& sdk, QObject* parent = nullptr);

    /// Stops the thread and waits for it, at most 5 seconds: one that the SDK does not let go is a
    /// fatal error then. An owner that goes on without it uses release().
    ~EventThread() override;

    /// Ends @p thread: stops it, waits for it until @p deadline and deletes it. One that still
    /// hangs in the SDK is terminated as soon as it comes back, and is never deleted.
    static void release(std::unique_ptr<EventThread> thread, QDeadlineTimer deadline);

    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /// Binds a new event object to an SDK event and runs the thread.
    ///
    /// A thread that runs already goes on waiting for the event object that it took when it began
    /// to run; from then on it reports, and releases in the end, what it was started with last. A
    /// thread that was told to stop, or terminated, is waited for, so that it starts afresh; that
    /// takes 500 ms at most unless the SDK does not let it go.
    /// @param handle the camera's handle, 0 for events that concern no particular camera
    /// @return 0, or the result of CameraSdk::enableEvent; the thread is then not run.
    int start(unsigned int handle, int eventId);

    /// Lets the thread end within 500 ms; does not wait for it. The thread then disables and
    /// releases the SDK event.
    void stop();

signals:
    /// The SDK signalled the event. Emitted in the event thread.
    void eventhappen(int event);

protected:
    void run() override;

private:
    // The only places where a terminated thread ends.
    static bool waitTerminably(EventHandle event);
    static void endIfTerminated();

    CameraSdk& m_sdk;
    std::atomic<unsigned int> m_handle = 0;
    std::atomic<int> m_eventId = 0;
    std::atomic<bool> m_running = false;
    std::atomic<EventHandle> m_event = nullptr;
};
