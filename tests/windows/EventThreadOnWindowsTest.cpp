// SPDX-License-Identifier: MIT
#include "binding/Recorder.h"
#include "camera/EventThread.h"
#include "camera/OrdinalCameraSdk.h"

#include <QCoreApplication>
#include <QTest>
#include <gtest/gtest.h>

#include <bit>
#include <windows.h>

namespace {

constexpr int LongMsec = 60'000;
constexpr unsigned int SomeHandle = 0x89ABCDEF;
constexpr int SomeEvent = 130;

template <typename Function>
Function ofLibrary(const char* name)
{
    return std::bit_cast<Function>(GetProcAddress(GetModuleHandleW(L"Vorn_api_64.dll"), name));
}

/// The thread as the program has it: its SDK is the library, here the one that records.
class EventThreadOnWindows : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_recorder = {};
        // The receiver lives on this thread, so that the count is only ever touched here.
        QObject::connect(&m_thread, &EventThread::eventhappen, &m_receiver, [this](int event) {
            EXPECT_EQ(event, SomeEvent);
            ++m_count;
        });
        ASSERT_EQ(m_thread.start(SomeHandle, SomeEvent), 0);
    }

    void TearDown() override { stop(); }

    /// The event object that the thread handed to the library.
    [[nodiscard]] void* event() const
    {
        return std::bit_cast<void*>(m_recorder.calls[0].integers[1]);
    }

    void signalFromLibrary() { ofLibrary<RecorderSignal>(RecorderSignalName)(event()); }

    void stop()
    {
        m_thread.stop();
        ASSERT_TRUE(m_thread.wait(LongMsec));
        QCoreApplication::processEvents();
    }

    [[nodiscard]] const Recorder& recorder() const { return m_recorder; }
    [[nodiscard]] const int& count() const { return m_count; }

private:
    Recorder& m_recorder = *ofLibrary<RecorderAccess>(RecorderAccessName)();
    const std::unique_ptr<CameraSdk> m_sdk = createCameraSdk();
    QObject m_receiver;
    EventThread m_thread{*m_sdk};
    int m_count = 0;
};

TEST_F(EventThreadOnWindows, IsWokenByAThreadOfTheLibrary)
{
    signalFromLibrary();
    EXPECT_TRUE(QTest::qWaitFor([this] { return count() == 1; }, LongMsec));
}

TEST_F(EventThreadOnWindows, TellsOfEachSignalOnce)
{
    signalFromLibrary();
    ASSERT_TRUE(QTest::qWaitFor([this] { return count() == 1; }, LongMsec));
    signalFromLibrary();
    ASSERT_TRUE(QTest::qWaitFor([this] { return count() == 2; }, LongMsec));
    stop();
    EXPECT_EQ(count(), 2);
}

TEST_F(EventThreadOnWindows, EndsByItsTimeOutWhenNothingSignalsIt)
{
    // It waits, since it has told of a signal; and as nobody signals again, only the time-out of
    // the wait lets it see that it is stopped.
    signalFromLibrary();
    ASSERT_TRUE(QTest::qWaitFor([this] { return count() == 1; }, LongMsec));
    stop();
    EXPECT_EQ(count(), 1);
}

TEST_F(EventThreadOnWindows, BindsTheEventAndReleasesItAgain)
{
    stop();
    ASSERT_EQ(recorder().callCount, 4U);
    const std::uint32_t ordinals[] = {55, 57, 58, 56};
    for (std::uint32_t call = 0; call < 4; ++call) {
        EXPECT_EQ(recorder().calls[call].ordinal, ordinals[call]);
        EXPECT_EQ(static_cast<std::uint32_t>(recorder().calls[call].integers[0]), SomeHandle);
    }
}

} // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
