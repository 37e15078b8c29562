// SPDX-License-Identifier: MIT
#include "tests/cli/process/CompanionFixture.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int DeadlineMsec = 120'000;

/// What a terminal of @p columns shows after @p output: its lines, without blanks at their ends.
QByteArrayList screenOf(const QByteArray& output, int columns)
{
    QByteArrayList lines{QByteArray()};
    int column = 0;
    for (const char character : output) {
        if (character == '\r') {
            column = 0;
        } else if (character == '\n') {
            lines.append(QByteArray());
        } else {
            if (column == columns) {
                lines.append(QByteArray());
                column = 0;
            }
            QByteArray& line = lines.back();
            line = line.leftJustified(std::max<qsizetype>(line.size(), column + 1));
            line[column++] = character;
        }
    }
    for (QByteArray& line : lines) {
        while (line.endsWith(' ')) {
            line.chop(1);
        }
    }
    return lines;
}

/// The companion on a terminal of its own.
class TerminalRun
{
public:
    TerminalRun(const CompanionFixture& fixture, const QByteArrayList& arguments,
                std::uint16_t columns = 80)
        : m_columns(columns)
    {
        m_master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(m_master, 0);
        const winsize size{25, columns, 0, 0};
        EXPECT_EQ(ioctl(m_master, TIOCSWINSZ, &size), 0);
        EXPECT_EQ(grantpt(m_master), 0);
        EXPECT_EQ(unlockpt(m_master), 0);
        const QByteArray slave = ptsname(m_master);
        // Everything that allocates is made before the fork.
        QByteArrayList words{CompanionFixture::program().toLocal8Bit()};
        words += arguments;
        std::vector<char*> argv;
        for (QByteArray& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        const QByteArray data = fixture.file(QStringLiteral("data")).toLocal8Bit();
        const QByteArray cameras = fixture.file(QStringLiteral("cameras.ini")).toLocal8Bit();
        const QByteArray eeproms = fixture.file(QStringLiteral("eeprom")).toLocal8Bit();
        qputenv("XDG_DATA_HOME", data);
        qputenv("VORN_SIMULATED_CAMERAS", cameras);
        qputenv("VORN_SIMULATED_EEPROMS", eeproms);
        m_child = fork();
        if (m_child == 0) {
            setsid();
            const int terminal = open(slave.constData(), O_RDWR);
            ioctl(terminal, TIOCSCTTY, 0);
            dup2(terminal, 0);
            dup2(terminal, 1);
            dup2(terminal, 2);
            execv(argv.front(), argv.data());
            _exit(127);
        }
        EXPECT_GT(m_child, 0);
    }

    ~TerminalRun()
    {
        if (m_child > 0) {
            kill(m_child, SIGKILL);
            waitpid(m_child, nullptr, 0);
        }
        close(m_master);
    }

    TerminalRun(const TerminalRun&) = delete;
    TerminalRun& operator=(const TerminalRun&) = delete;

    /// Reads until @p text has appeared; false when the terminal closes before.
    bool waitFor(const QByteArray& text)
    {
        while (!m_shown.contains(text)) {
            if (!readSome()) {
                return false;
            }
        }
        return true;
    }

    void type(const QByteArray& text) const
    {
        EXPECT_EQ(write(m_master, text.constData(), static_cast<std::size_t>(text.size())),
                  text.size());
    }

    /// What Ctrl+C does, but for its echo.
    void interrupt() const { EXPECT_EQ(kill(m_child, SIGINT), 0); }

    /// Waits for the end. @return the exit status, −1 when it did not end by itself.
    int finish()
    {
        while (readSome()) {
        }
        int status = 0;
        EXPECT_EQ(waitpid(m_child, &status, 0), m_child);
        m_child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    [[nodiscard]] const QByteArray& shown() const { return m_shown; }

    /// The lines that stand on the terminal now.
    [[nodiscard]] QByteArrayList screen() const { return screenOf(m_shown, m_columns); }

private:
    bool readSome()
    {
        pollfd waiting{m_master, POLLIN, 0};
        if (poll(&waiting, 1, DeadlineMsec) <= 0) {
            ADD_FAILURE() << "nothing comes: " << m_shown.constData();
            return false;
        }
        std::array<char, 4096> buffer{};
        const ssize_t size = read(m_master, buffer.data(), buffer.size());
        if (size <= 0) {
            return false;
        }
        m_shown.append(buffer.data(), size);
        return true;
    }

    int m_columns;
    int m_master = -1;
    pid_t m_child = -1;
    QByteArray m_shown;
};

QByteArrayList words(const char* text)
{
    return QByteArray(text).split(' ');
}

class CompanionOnATerminal : public testing::Test
{
protected:
    void SetUp() override
    {
        m_fixture.run(QStringLiteral("read 1"));
        m_before = m_fixture.eeprom(QStringLiteral("S1"));
        m_list = m_fixture.write(QStringLiteral("list.txt"), "1 2 1\n");
    }

    [[nodiscard]] QByteArrayList writeArguments() const
    {
        return {"write", "1", m_list.toLocal8Bit()};
    }

    [[nodiscard]] std::vector<BadpixelEntry> eeprom() const
    {
        return m_fixture.eeprom(QStringLiteral("S1"));
    }

    CompanionFixture m_fixture{smallCamera()};
    std::vector<BadpixelEntry> m_before;
    QString m_list;
};

} // namespace

TEST_F(CompanionOnATerminal, AsksBeforeItOverwrites)
{
    TerminalRun run(m_fixture, writeArguments());
    ASSERT_TRUE(run.waitFor(
        "Replace the user list in the camera (3 entries) by the new one (1 entry)? [y/N] "));
    EXPECT_EQ(eeprom(), m_before);
    run.type("y\n");
    EXPECT_EQ(run.finish(), 0) << run.shown().constData();
    EXPECT_EQ(eeprom(), (std::vector<BadpixelEntry>{{1, 2, UserPixel}}));
}

TEST_F(CompanionOnATerminal, OverwritesNothingUnlessTheAnswerIsYes)
{
    TerminalRun run(m_fixture, writeArguments());
    ASSERT_TRUE(run.waitFor("[y/N] "));
    run.type("\n");
    EXPECT_EQ(run.finish(), 1);
    EXPECT_TRUE(run.shown().contains("Nothing was written."));
    EXPECT_EQ(eeprom(), m_before);
    EXPECT_TRUE(m_fixture.backups().isEmpty());
}

TEST_F(CompanionOnATerminal, TakesControlCForANo)
{
    TerminalRun run(m_fixture, writeArguments());
    ASSERT_TRUE(run.waitFor("[y/N] "));
    run.type("\x03");
    EXPECT_EQ(run.finish(), 1);
    EXPECT_TRUE(run.shown().contains("Interrupted."));
    EXPECT_EQ(eeprom(), m_before);
    EXPECT_EQ(m_fixture.run(QStringLiteral("read 1")).status, 0);
}

TEST_F(CompanionOnATerminal, AsksNothingWithYes)
{
    TerminalRun run(m_fixture, writeArguments() << "--yes");
    EXPECT_EQ(run.finish(), 0);
    EXPECT_FALSE(run.shown().contains("[y/N]"));
}

TEST_F(CompanionOnATerminal, ShowsHowFarADetectionIs)
{
    const CompanionFixture slow(smallCamera().replace("speed=40", "speed=2"));
    TerminalRun run(slow, words("detect 1 --cover"));
    EXPECT_TRUE(run.waitFor("Taking dark frames ["));
    EXPECT_TRUE(run.waitFor("/11"));
    EXPECT_EQ(run.finish(), 0) << run.shown().constData();
    // The bar goes when it is done.
    EXPECT_TRUE(run.shown().contains("\r" + QByteArray(10, ' ')));
}

TEST_F(CompanionOnATerminal, LeavesNothingOfTheBarOnANarrowOne)
{
    const CompanionFixture slow(smallCamera().replace("speed=40", "speed=2"));
    for (const std::uint16_t columns : {std::uint16_t{30}, std::uint16_t{45}}) {
        TerminalRun run(slow, words("detect 1 --cover"), columns);
        EXPECT_TRUE(run.waitFor("4/11"));
        const QByteArray bar = run.screen().back();
        EXPECT_TRUE(bar.startsWith("Taking dark frames")) << bar.constData();
        EXPECT_EQ(run.finish(), 0) << run.shown().constData();
        for (const QByteArray& line : run.screen()) {
            EXPECT_FALSE(line.contains('#') || line.contains("/11")) << line.constData();
        }
    }
}

TEST_F(CompanionOnATerminal, LeavesNothingOfTheBarAndOfTheKeysWhenItIsInterrupted)
{
    const CompanionFixture slow(smallCamera().replace("speed=40", "speed=0.5"));
    for (const std::uint16_t columns : {std::uint16_t{45}, std::uint16_t{80}}) {
        TerminalRun run(slow, words("detect 1 --cover"), columns);
        ASSERT_TRUE(run.waitFor("Taking dark frames ["));
        // What Ctrl+C looks like. The key itself would be echoed only after the signal
        // that it sends, and the companion may be quicker than the echo.
        run.type("^C");
        ASSERT_TRUE(run.waitFor("^C"));
        run.interrupt();
        EXPECT_EQ(run.finish(), 1);
        const QByteArrayList screen = run.screen();
        ASSERT_GE(screen.size(), 2);
        EXPECT_EQ(screen[screen.size() - 2], QByteArray("vorn-hotpixel-demo: Interrupted."));
        EXPECT_EQ(screen.back(), QByteArray());
        EXPECT_FALSE(screen.join('\n').contains("^C")) << screen.join('\n').constData();
    }
}

#endif
