// SPDX-License-Identifier: MIT
#include "cli/Interruption.h"

#include <atomic>

#ifdef Q_OS_WIN
#include <QSemaphore>

#include <windows.h>
#else
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

namespace {

// A signal handler knows no object, so what it touches is here.
std::atomic<bool> endRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free);

} // namespace

bool Interruption::requested() const
{
    return endRequested;
}

#ifdef Q_OS_WIN

namespace {

std::atomic<Interruption*> receiver = nullptr;
QSemaphore programEnded;

BOOL WINAPI handleControlEvent(DWORD type)
{
    if (Interruption* interruption = receiver) {
        interruption->request();
    }
    if (type != CTRL_C_EVENT && type != CTRL_BREAK_EVENT) {
        // When this handler returns from any other event, the process ends at once.
        programEnded.tryAcquire(1, 5000);
    }
    return TRUE;
}

} // namespace

Interruption::Interruption(QObject* parent)
    : QObject(parent)
{
    endRequested = false;
    receiver = this;
    SetConsoleCtrlHandler(handleControlEvent, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(handleControlEvent, FALSE);
    receiver = nullptr;
    programEnded.release();
}

void Interruption::request()
{
    if (!endRequested.exchange(true)) {
        QMetaObject::invokeMethod(this, &Interruption::interrupted, Qt::QueuedConnection);
    }
}

bool Interruption::waitForInput(int /*descriptor*/) const
{
    // Reading from a console ends with nothing at Ctrl+C, so there is nothing to wait for here.
    return !requested();
}

#else

namespace {

constexpr std::array EndSignals{SIGINT, SIGTERM, SIGHUP};
std::array<struct sigaction, EndSignals.size()> previousActions{};
struct sigaction previousPipeAction
{};
std::array<int, 2> wakeUpPipe{-1, -1}; ///< a byte in it wakes the event loop and waitForInput()

void handleEndSignal(int /*signal*/)
{
    const int previousError = errno;
    if (!endRequested.exchange(true)) {
        const char byte = 0;
        [[maybe_unused]] const ssize_t written = write(wakeUpPipe[1], &byte, 1);
    }
    errno = previousError;
}

} // namespace

Interruption::Interruption(QObject* parent)
    : QObject(parent)
{
    endRequested = false;
    if (pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qFatal("Can't make a pipe for signals.");
    }
    // The byte stays in the pipe, so whoever waits later is woken at once; the notifier needs it
    // only the first time.
    auto* notifier = new QSocketNotifier(wakeUpPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        emit interrupted();
    });

    struct sigaction action
    {};
    action.sa_handler = handleEndSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < EndSignals.size(); ++index) {
        sigaction(EndSignals[index], &action, &previousActions[index]);
    }
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, &previousPipeAction);
}

Interruption::~Interruption()
{
    sigaction(SIGPIPE, &previousPipeAction, nullptr);
    for (std::size_t index = 0; index < EndSignals.size(); ++index) {
        sigaction(EndSignals[index], &previousActions[index], nullptr);
    }
    close(wakeUpPipe[0]);
    close(wakeUpPipe[1]);
}

void Interruption::request()
{
    handleEndSignal(0);
}

bool Interruption::waitForInput(int descriptor) const
{
    std::array<pollfd, 2> waiting{{{descriptor, POLLIN, 0}, {wakeUpPipe[0], POLLIN, 0}}};
    int ready = 0;
    do {
        ready = poll(waiting.data(), waiting.size(), -1);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && waiting[1].revents == 0;
}

#endif
