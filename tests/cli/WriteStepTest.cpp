// SPDX-License-Identifier: MIT
#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/ForwardingCameraSdk.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

/// Says when the camera's user list is read, and counts what changes it.
class WatchedSdk final : public ForwardingCameraSdk
{
public:
    WatchedSdk(CameraSdk& sdk, int& changes, std::function<void()> onRead)
        : ForwardingCameraSdk(sdk)
        , m_changes(changes)
        , m_onRead(std::move(onRead))
    {}

    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override
    {
        m_changes += command == camera::SetUserList || command == camera::DeleteUserList ? 1 : 0;
        const std::int32_t result =
            ForwardingCameraSdk::hotpixelCommand(handle, command, buffer, size);
        if (command == camera::GetUserList) {
            m_onRead();
        }
        return result;
    }

private:
    int& m_changes;
    std::function<void()> m_onRead;
};

/// The companion on one simulated camera that is to be written into; @p onRead is called whenever
/// it has read the user list.
struct WritingCompanion
{
    int run(const std::function<void()>& onRead)
    {
        QFile list(home.filePath(QStringLiteral("list.txt")));
        EXPECT_TRUE(list.open(QIODevice::WriteOnly));
        list.write("1 2 1\n3 4 1\n");
        list.close();
        const auto makeSdk = [&] {
            return std::make_unique<WatchedSdk>(simulated, changes, onRead);
        };
        Companion companion(makeSdk, {}, console.console(), interruption);
        return companion.run({QStringLiteral("vorn-hotpixel"), QStringLiteral("write"),
                              QStringLiteral("S1"), list.fileName(), QStringLiteral("--yes")});
    }

    static CameraDescription camera()
    {
        CameraDescription description;
        description.serial = QStringLiteral("S1");
        description.width = 64;
        description.height = 48;
        return description;
    }

    QTemporaryDir home;
    SimulatedCameraSdk simulated{{{camera()}, 1000.0, home.path(), {}}};
    RecordedConsole console;
    Interruption interruption;
    int changes = 0;
};

TEST(WriteStep, WritesTheListWhenNobodyInterrupts)
{
    WritingCompanion companion;
    EXPECT_EQ(companion.run([] {}), 0) << companion.console.err().constData();
    EXPECT_EQ(companion.changes, 1);
}

// The old list is read right before the write, and nothing else happens between the two.
TEST(WriteStep, LooksForAnInterruptionOnceMoreBeforeItWrites)
{
    WritingCompanion companion;
    EXPECT_EQ(companion.run([&] { companion.interruption.request(); }), 1);
    EXPECT_EQ(companion.changes, 0);
    EXPECT_TRUE(companion.console.err().contains("Interrupted.")) << companion.console.err().data();
}

} // namespace
