// SPDX-License-Identifier: MIT
#include "camera/EventThread.h"

namespace {

constexpr int WaitMsec = 500;
constexpr unsigned long EndMsec = 1000;
constexpr unsigned long LetGoMsec = 5000;

} // namespace

EventThread::EventThread(CameraSdk& sdk, QObject* parent)
    : QThread(parent)
    , m_sdk(sdk)
{}

EventThread::~EventThread()
{
    stop();
    wait(LetGoMsec);
}

void EventThread::release(std::unique_ptr<EventThread> thread, QDeadlineTimer deadline)
{
    thread->stop();
    if (!thread->wait(deadline)) {
        thread->disconnect();
        thread->terminate();
        static_cast<void>(thread.release());
    }
}

int EventThread::start(unsigned int handle, int eventId)
{
    if (!m_running && isRunning()) {
        // On its way out: it would take up this start's flag and go on with its old event object,
        // or release the event that is bound here.
        wait(EndMsec);
    }
    m_handle = handle;
    m_eventId = eventId;
    // Also for a thread that runs already, which will never wait for it: see the header.
    m_event = createEventObject();
    m_sdk.initEvent(handle, m_event, eventId);
    if (const int result = m_sdk.enableEvent(handle, eventId); result != 0) {
        return result;
    }
    m_running = true;
    QThread::start();
    return 0;
}

void EventThread::stop()
{
    m_running = false;
}

void EventThread::run()
{
    setTerminationEnabled(false);
    const EventHandle event = m_event;
    while (m_running) {
        if (waitTerminably(event)) {
            emit eventhappen(m_eventId);
        }
    }
    m_running = false;
    m_sdk.disableEvent(m_handle, m_eventId);
    // Given up meanwhile, it would release what the next opening has bound.
    endIfTerminated();
    m_sdk.exitEvent(m_handle, m_eventId);
}

void EventThread::endIfTerminated()
{
    // A termination that was asked for while it was switched off strikes as it is switched on.
    setTerminationEnabled(true);
    setTerminationEnabled(false);
}

bool EventThread::waitTerminably(EventHandle event)
{
    setTerminationEnabled(true);
    const bool signalled = waitForEventObject(event, WaitMsec);
    setTerminationEnabled(false);
    return signalled;
}
