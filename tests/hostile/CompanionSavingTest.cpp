// SPDX-License-Identifier: MIT
#include "tests/cli/process/CompanionFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace {

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "missing";
}

/// No file of this process and of those that it starts grows beyond some bytes, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        // Without this, the signal would end the process instead.
        m_former = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_unlimited);
        rlimit limited = m_unlimited;
        limited.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_unlimited);
        std::signal(SIGXFSZ, m_former);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    void (*m_former)(int) = SIG_DFL;
    rlimit m_unlimited = {};
};

} // namespace

TEST(CompanionSaving, OnAFullDiskKeepsTheOldFileAndSaysSo)
{
    const CompanionFixture fixture(smallCamera());
    ASSERT_EQ(fixture.run(QStringLiteral("read 1")).status, 0);
    ASSERT_TRUE(QDir().mkpath(fixture.file(QStringLiteral("folder"))));
    const QString saved = fixture.write(QStringLiteral("folder/list.txt"), "9 9 1\n");
    Finished refused;
    {
        const FullDisk disk(4);
        refused = fixture.run(QStringLiteral("read 1 --out %1"), saved);
    }
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, QByteArray("vorn-hotpixel-demo: Can't save to ") + saved.toUtf8() +
                               ": Can't write file.\n");
    EXPECT_EQ(contentOf(saved), "9 9 1\n");
    EXPECT_EQ(QFileInfo(saved).dir().entryList(QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("list.txt")});
}

TEST(CompanionSaving, ToADriveThatIsRemovedMeanwhileSaysSo)
{
    const CompanionFixture fixture(smallCamera().replace("speed=40", "speed=1"));
    ASSERT_TRUE(QDir().mkpath(fixture.file(QStringLiteral("drive"))));
    const QString list = fixture.file(QStringLiteral("drive/list.txt"));
    const std::unique_ptr<QProcess> process =
        fixture.start({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--cover"),
                       QStringLiteral("--clear"), QStringLiteral("--out"), list});
    ASSERT_TRUE(CompanionFixture::waitForError(*process, "Taking 10 dark frames"));
    ASSERT_TRUE(QDir(fixture.file(QStringLiteral("drive"))).removeRecursively());
    const Finished finished = CompanionFixture::finish(*process);
    EXPECT_EQ(finished.status, 1);
    EXPECT_TRUE(finished.err.endsWith(QByteArray("Can't save to ") + list.toUtf8() +
                                      ": Can't open file for writing.\n"))
        << finished.err.constData();
    EXPECT_FALSE(QFileInfo::exists(list));
}
