// SPDX-License-Identifier: MIT
#include "cli/Console.h"

#include "cli/Interruption.h"
#include "tests/cli/RecordedConsole.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>

#ifdef Q_OS_UNIX
#include <array>
#include <unistd.h>
#endif

TEST(Console, KeepsResultsAndNoticesApart)
{
    RecordedConsole recorded;
    recorded.console().result(QStringLiteral("found"));
    recorded.console().notice(QStringLiteral("taking frames"));
    EXPECT_TRUE(recorded.console().flush());
    EXPECT_EQ(recorded.out(), QByteArray("found\n"));
    EXPECT_EQ(recorded.err(), QByteArray("taking frames\n"));
}

TEST(Console, WritesAsciiToPeopleWhoseLocaleShowsNoUtf8)
{
    RecordedConsole recorded(false);
    recorded.console().result(QStringLiteral("64 × 48"));
    recorded.console().notice(QStringLiteral("dead – or cold, 64 × 48"));
    const Interruption interruption;
    EXPECT_FALSE(recorded.console().confirm(QStringLiteral("64 × 48?"), interruption));
    recorded.console().json({{QStringLiteral("size"), QStringLiteral("64 × 48")}});
    EXPECT_EQ(recorded.out(), QByteArray("64 x 48\n{\"size\":\"64 × 48\"}\n"));
    EXPECT_EQ(recorded.err(), QByteArray("dead - or cold, 64 x 48\n64 x 48? [y/N] \n"));
}

TEST(Console, ShowsNoProgressAndAsksNothingWithoutATerminal)
{
    RecordedConsole recorded;
    EXPECT_FALSE(recorded.console().showsProgress());
    EXPECT_FALSE(recorded.console().canAsk());
    recorded.console().setProgressLine(QStringLiteral("[###...]"));
    EXPECT_EQ(recorded.err(), QByteArray());
}

TEST(Console, TakesTheEndOfTheInputForANo)
{
    RecordedConsole recorded;
    const Interruption interruption;
    EXPECT_FALSE(recorded.console().confirm(QStringLiteral("Overwrite?"), interruption));
    EXPECT_EQ(recorded.err(), QByteArray("Overwrite? [y/N] \n"));
}

#ifdef Q_OS_UNIX

TEST(Console, UnderstandsYes)
{
    for (const auto& [answer, expected] : {std::pair("y\n", true),
                                           {"Y\n", true},
                                           {"yes\n", true},
                                           {" Yes \n", true},
                                           {"n\n", false},
                                           {"\n", false},
                                           {"yesterday\n", false},
                                           {"ja\n", false}}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe(ends.data()), 0);
        const std::string_view text(answer);
        ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        std::FILE* in = fdopen(ends[0], "r");
        std::FILE* out = std::tmpfile();
        {
            Console console(in, out, out);
            const Interruption interruption;
            EXPECT_EQ(console.confirm(QStringLiteral("?"), interruption), expected) << answer;
        }
        std::fclose(in);
        std::fclose(out);
    }
}

TEST(Console, StopsWaitingForAnAnswerWhenTheEndIsAskedFor)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    std::FILE* in = fdopen(ends[0], "r");
    std::FILE* out = std::tmpfile();
    {
        Console console(in, out, out);
        Interruption interruption;
        interruption.request();
        EXPECT_FALSE(console.confirm(QStringLiteral("?"), interruption));
    }
    std::fclose(in);
    std::fclose(out);
    close(ends[1]);
}

TEST(Console, NoticesThatResultsCantBeWritten)
{
    std::FILE* full = std::fopen("/dev/full", "w");
    if (full == nullptr) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    RecordedConsole recorded;
    Console console(stdin, full, stderr);
    console.result(QStringLiteral("lost"));
    EXPECT_FALSE(console.flush());
    std::fclose(full);
}

TEST(Interruption, TurnsSignalsIntoAnEventInsteadOfTheEnd)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        Interruption interruption;
        QSignalSpy spy(&interruption, &Interruption::interrupted);
        EXPECT_FALSE(interruption.requested());
        ASSERT_EQ(raise(number), 0);
        EXPECT_TRUE(interruption.requested());
        EXPECT_TRUE(spy.isEmpty());
        EXPECT_TRUE(spy.wait(10'000));
        EXPECT_EQ(spy.count(), 1);
        ASSERT_EQ(raise(number), 0);
        QCoreApplication::processEvents();
        EXPECT_EQ(spy.count(), 1);
    }
}

TEST(Interruption, IgnoresAClosedPipeForAsLongAsItLives)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    {
        const Interruption interruption;
        EXPECT_EQ(write(ends[1], "x", 1), -1);
    }
    close(ends[1]);
    struct sigaction action
    {};
    sigaction(SIGPIPE, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

#endif
