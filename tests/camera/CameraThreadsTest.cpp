// SPDX-License-Identifier: MIT
#include "tests/camera/CameraFixture.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#ifdef VORN_HELD_WAIT

#include <cerrno>
#include <cstring>
#include <semaphore.h>
#include <unistd.h>

namespace {

// One wait for an event object that lasts as long as the test wants: the linker puts the function
// below into the place of sem_clockwait() for this program.
std::atomic<EventHandle> s_held = nullptr; ///< the event object
std::atomic<bool> s_isHeld = false;        ///< somebody waits for it

// An event object begins with its semaphore, or nearly so. What lies further behind may be the next
// object's.
bool isSemaphoreOf(const sem_t* semaphore, EventHandle event)
{
    const auto offset = reinterpret_cast<const char*>(semaphore) - static_cast<const char*>(event);
    return event != nullptr && offset >= 0 && offset < std::ptrdiff_t{sizeof(sem_t)};
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" int __real_sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* deadline);
extern "C" int __wrap_sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* deadline);

int __wrap_sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* deadline)
{
    if (!isSemaphoreOf(semaphore, s_held)) {
        return __real_sem_clockwait(semaphore, clock, deadline);
    }
    s_isHeld = true;
    while (s_held != nullptr) {
        usleep(1000); // ends a terminated thread, as sem_clockwait() does
    }
    errno = ETIMEDOUT;
    return -1;
}
// NOLINTEND(bugprone-reserved-identifier)

#endif

namespace {

constexpr int LongMsec = 60'000;

// A camera with its event threads running.
class CameraThreads : public CameraFixture
{
protected:
    void SetUp() override
    {
        answers.threads = true;
        makeCamera();
    }

    bool noted(const char* line)
    {
        return QTest::qWaitFor(
            [&] {
                m_calls += sdk.takeCalls();
                return m_calls.contains(QString::fromLatin1(line));
            },
            LongMsec);
    }

    // Runs an action while all events are signalled again and again, so that no thread can miss
    // its 500 ms by having begun to wait just before it was told to stop.
    template <typename Action>
    QStringList callsWhilePulsing(Action action)
    {
        sdk.takeCalls();
        std::atomic<bool> done = false;
        const EventHandle never = createEventObject();
        std::thread pulse([&] {
            while (!done) {
                for (const int id : {2, 8, 9, 128, 129, 130}) {
                    signalEventObject(answers.event(id));
                }
                waitForEventObject(never, 5);
            }
        });
        action();
        done = true;
        pulse.join();
        return sdk.takeCalls();
    }

private:
    QStringList m_calls;
};

TEST_F(CameraThreads, BringEachEventToTheCamera)
{
    signalEventObject(answers.event(130));
    EXPECT_TRUE(noted("-> cameraNewDevice"));
    signalEventObject(answers.event(129));
    EXPECT_TRUE(noted("-> cameraRemovedDevice"));

    camera->open(5);
    signalEventObject(answers.event(2));
    EXPECT_TRUE(noted("-> newImage"));
    EXPECT_EQ(camera->frameCount(), 1);
    signalEventObject(answers.event(9));
    EXPECT_TRUE(noted("-> cameraReconnect"));
    signalEventObject(answers.event(128));
    EXPECT_TRUE(noted("-> cameraRemoved"));
    signalEventObject(answers.event(8));
    EXPECT_TRUE(QTest::qWaitFor([this] { return camera->failedCount() == 1; }, LongMsec));
}

TEST_F(CameraThreads, OfTheOpenCameraEndAtItsClosingButForEventEight)
{
    camera->open(5);
    const QStringList calls = callsWhilePulsing([this] { camera->close(); });
    const qsizetype stopped = calls.indexOf(QStringLiteral("stopLiveVideo(7, 1)"));
    for (const int id : {2, 9, 128}) {
        const qsizetype disabled = calls.indexOf(QStringLiteral("disableEvent(7, %1)").arg(id));
        const qsizetype exited = calls.indexOf(QStringLiteral("exitEvent(7, %1)").arg(id));
        EXPECT_GE(disabled, 0) << id;
        EXPECT_GT(exited, disabled) << id;
        EXPECT_GT(stopped, exited) << id;
    }
    for (const char* call :
         {"disableEvent(7, 8)", "disableEvent(0, 129)", "disableEvent(0, 130)"}) {
        EXPECT_FALSE(calls.contains(QString::fromLatin1(call))) << call;
    }
}

TEST_F(CameraThreads, OfEventEightGoOnAtTheirFirstEventObjectAfterReopening)
{
    camera->open(5);
    const EventHandle first = answers.event(8);
    signalEventObject(first);
    ASSERT_TRUE(QTest::qWaitFor([this] { return camera->failedCount() == 1; }, LongMsec));
    callsWhilePulsing([this] { camera->close(); });
    camera->open(5);
    EXPECT_NE(answers.event(8), first) << "a new one is bound";
    QCoreApplication::processEvents(); // what the pulses left
    const int before = camera->failedCount();
    signalEventObject(first);
    EXPECT_TRUE(QTest::qWaitFor([&] { return camera->failedCount() == before + 1; }, LongMsec));
}

TEST_F(CameraThreads, EndWithTheCameraAndEventEightIsTerminated)
{
    camera->open(5);
    const QStringList calls = callsWhilePulsing([this] { camera.reset(); });
    EXPECT_EQ(calls.mid(0, 5), lines("stopLiveVideo(7, 16384)\n"
                                     "exitCamera(7)\n"
                                     "freeImageMemory(7, memory1, 10)\n"
                                     "freeImageMemory(7, memory2, 20)\n"
                                     "clearSequence(7)\n"));
    for (const char* call : {"exitEvent(7, 2)", "exitEvent(7, 9)", "exitEvent(0, 130)",
                             "exitEvent(0, 129)", "exitEvent(7, 128)"}) {
        EXPECT_TRUE(calls.contains(QString::fromLatin1(call))) << call;
    }
    EXPECT_FALSE(calls.contains(QStringLiteral("disableEvent(7, 8)")));
}

TEST_F(CameraThreads, OfFramesAndReconnectionMayHangInTheSdkAtTheClosing)
{
    camera->open(5);
    const EventHandle never = createEventObject();
    const EventHandle goOn = createEventObject();
    const EventHandle goOnToo = createEventObject();
    answers.onDisableEvent = [goOn, goOnToo](int id) {
        if (id == 2) {
            waitForEventObject(goOn, LongMsec);
        } else if (id == 9) {
            waitForEventObject(goOnToo, LongMsec);
        }
    };
    const QStringList calls = callsWhilePulsing([this] { camera->close(); });
    EXPECT_TRUE(calls.contains(QStringLiteral("-> cameraClosed"))) << "nobody waits for ever";

    // Longer than the camera waits for its threads, so that they still run as they are destroyed;
    // were it shorter, the test would only test less.
    std::thread release([&] {
        waitForEventObject(never, 2000);
        signalEventObject(goOn);
        signalEventObject(goOnToo);
    });
    const QStringList last = callsWhilePulsing([this] { camera.reset(); });
    release.join();
    // The frame thread was given up, so it calls nothing more; the other one only took its time.
    EXPECT_FALSE(last.contains(QStringLiteral("exitEvent(7, 2)")));
    EXPECT_TRUE(last.contains(QStringLiteral("exitEvent(7, 9)")));
}

#ifdef VORN_HELD_WAIT
TEST_F(CameraThreads, OfReconnectionIsNotTerminatedHoweverLongItTakes)
{
    camera->open(5);
    s_isHeld = false;
    s_held = answers.event(9);
    ASSERT_TRUE(QTest::qWaitFor([] { return s_isHeld.load(); }, LongMsec));
    const QStringList calls = callsWhilePulsing([this] { camera->close(); });
    EXPECT_TRUE(calls.contains(QStringLiteral("exitEvent(7, 2)")));
    EXPECT_FALSE(calls.contains(QStringLiteral("exitEvent(7, 9)"))) << "it still waits";
    s_held = nullptr;
    EXPECT_TRUE(noted("exitEvent(7, 9)")) << "and then lets the SDK's event go";
}
#endif

TEST_F(CameraThreads, ThatAreGivenUpReleaseNothingOfTheNextOpening)
{
    camera->open(5);
    const EventHandle goOn = createEventObject();
    const auto first = std::make_shared<std::atomic<bool>>(true);
    answers.onDisableEvent = [goOn, first](int id) {
        if (id == 2 && first->exchange(false)) {
            waitForEventObject(goOn, LongMsec);
        }
    };
    callsWhilePulsing([this] { camera->close(); });
    camera->open(5);
    sdk.takeCalls();
    signalEventObject(goOn);
    const QStringList calls = callsWhilePulsing([] { QTest::qWait(200); });
    EXPECT_FALSE(calls.contains(QStringLiteral("exitEvent(7, 2)")));
}

TEST_F(CameraThreads, ThatNeverComeBackAreLeftToThemselvesAtTheEnd)
{
    camera->open(5);
    const EventHandle goOn = createEventObject();
    const EventHandle cameBack = createEventObject();
    answers.onDisableEvent = [goOn, cameBack](int id) {
        if (id == 2) {
            waitForEventObject(goOn, LongMsec);
            signalEventObject(cameBack);
        }
    };
    callsWhilePulsing([this] { camera.reset(); }); // ends
    EXPECT_FALSE(waitForEventObject(cameBack, 0));
    signalEventObject(goOn);
    ASSERT_TRUE(waitForEventObject(cameBack, LongMsec));
    const QStringList calls = callsWhilePulsing([] { QTest::qWait(200); });
    EXPECT_FALSE(calls.contains(QStringLiteral("exitEvent(7, 2)")));
}

TEST_F(CameraThreads, EventsThatWereQueuedBeforeAnOpeningAreNotThoseOfTheNext)
{
    camera->open(5);
    for (const int id : {2, 9, 128, 8, 130, 129}) {
        signalEventObject(answers.event(id));
    }
    // Until each thread has queued its event; nobody has taken one up.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    callsWhilePulsing([this] { camera->close(); });
    camera->open(5);
    EXPECT_EQ(camera->failedCount(), 0);
    sdk.takeCalls();
    QCoreApplication::processEvents();
    const QStringList calls = sdk.takeCalls();
    EXPECT_EQ(camera->frameCount(), 0);
    EXPECT_FALSE(calls.contains(QStringLiteral("-> newImage")));
    EXPECT_FALSE(calls.contains(QStringLiteral("-> cameraReconnect")));
    EXPECT_FALSE(calls.contains(QStringLiteral("-> cameraRemoved")));
    EXPECT_TRUE(calls.contains(QStringLiteral("-> cameraNewDevice")));
    EXPECT_TRUE(calls.contains(QStringLiteral("-> cameraRemovedDevice")));
    EXPECT_GT(camera->failedCount(), 0);

    signalEventObject(answers.event(2));
    EXPECT_TRUE(noted("-> newImage"));
}

TEST_F(CameraThreads, SurviveManyOpeningsAndClosings)
{
    callsWhilePulsing([this] {
        for (int round = 0; round < 3; ++round) {
            camera->open(5);
            camera->close();
        }
    });
    EXPECT_FALSE(camera->isOpen());
}

} // namespace
