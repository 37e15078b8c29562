// SPDX-License-Identifier: MIT
#include "simulator/ProcessLock.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <array>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using Result = ProcessLock::Result;

class ProcessLockOnAFile : public testing::Test
{
protected:
    [[nodiscard]] QString fileName() const { return m_home.filePath(QStringLiteral("lock")); }

private:
    QTemporaryDir m_home;
};

} // namespace

TEST_F(ProcessLockOnAFile, IsHeldByOneObjectAtATime)
{
    ProcessLock first(fileName());
    ProcessLock second(fileName());
    EXPECT_EQ(first.tryLock(0), Result::Taken);
    EXPECT_EQ(first.tryLock(0), Result::Held);
    EXPECT_EQ(second.tryLock(0), Result::Held);
    second.unlock();
    EXPECT_EQ(second.tryLock(0), Result::Held);
    first.unlock();
    EXPECT_EQ(second.tryLock(0), Result::Taken);
}

TEST_F(ProcessLockOnAFile, IsGivenBackByItsDestruction)
{
    {
        ProcessLock lock(fileName());
        EXPECT_EQ(lock.tryLock(0), Result::Taken);
    }
    EXPECT_EQ(ProcessLock(fileName()).tryLock(0), Result::Taken);
}

TEST_F(ProcessLockOnAFile, DoesNotMindWhatIsInTheFile)
{
    for (const QByteArray& content : {QByteArray(), QByteArray("1\ninit\nhere\n")}) {
        QFile file(fileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        EXPECT_EQ(ProcessLock(fileName()).tryLock(0), Result::Taken);
    }
}

TEST_F(ProcessLockOnAFile, IsImpossibleWhereThereCanBeNoFile)
{
    EXPECT_EQ(ProcessLock(fileName() + QStringLiteral("/no/folder")).tryLock(0),
              Result::Impossible);
}

#ifdef Q_OS_UNIX
TEST_F(ProcessLockOnAFile, IsGivenBackWhenItsHolderIsKilled)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    ProcessLock lock(fileName());
    const pid_t child = fork();
    if (child == 0) {
        const char taken = lock.tryLock(0) == Result::Taken ? 'y' : 'n';
        [[maybe_unused]] const ssize_t written = write(ends[1], &taken, 1);
        while (true) {
            pause();
        }
    }
    ASSERT_GT(child, 0);
    char taken = 0;
    EXPECT_EQ(read(ends[0], &taken, 1), 1);
    EXPECT_EQ(taken, 'y');
    EXPECT_EQ(lock.tryLock(0), Result::Held);
    EXPECT_EQ(kill(child, SIGKILL), 0);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_EQ(lock.tryLock(0), Result::Taken);
    close(ends[0]);
    close(ends[1]);
}
#endif
