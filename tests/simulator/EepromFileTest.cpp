// SPDX-License-Identifier: MIT
#include "simulator/EepromFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <stdexcept>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

EepromContent sample(std::uint16_t first, std::size_t entries)
{
    EepromContent content{true, {{1, 2}, {3, 4}}, {}};
    for (std::size_t i = 0; i < entries; ++i) {
        content.user.push_back({first, static_cast<std::uint16_t>(i)});
    }
    return content;
}

QByteArray bytesOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void overwrite(const QString& fileName, const QByteArray& bytes)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

class EepromFiles : public ::testing::Test
{
protected:
    QTemporaryDir m_folder;
    EepromFile m_file{m_folder.filePath(QStringLiteral("sub/A1.eeprom"))};
};

TEST_F(EepromFiles, ReadBackWhatWasWritten)
{
    EXPECT_FALSE(m_file.exists());
    const EepromContent content{false, {{0, 0}, {65535, 65535}}, {{7, 9}}};
    m_file.write(content);
    EXPECT_TRUE(m_file.exists());
    EXPECT_EQ(m_file.read(), content);

    m_file.write(sample(5, 0));
    EXPECT_EQ(m_file.read(), sample(5, 0));
}

TEST_F(EepromFiles, AreTextThatAPersonCanRead)
{
    m_file.write({true, {{1, 2}}, {{3, 4}, {5, 6}}});
    const QByteArray bytes = bytesOf(m_file.fileName());
    EXPECT_TRUE(bytes.startsWith("vorn-eeprom 1\nfirmware 1\nfactory 1\n1 2\nuser 2\n3 4\n5 6\n"
                                 "sha256 "))
        << bytes.constData();
}

TEST_F(EepromFiles, EveryFlippedOrMissingByteIsNoticed)
{
    m_file.write(sample(5, 2));
    const QByteArray whole = bytesOf(m_file.fileName());
    for (qsizetype i = 0; i < whole.size(); ++i) {
        QByteArray flipped = whole;
        flipped[i] = static_cast<char>(flipped[i] ^ 4);
        overwrite(m_file.fileName(), flipped);
        EXPECT_THROW(static_cast<void>(m_file.read()), std::runtime_error) << "flipped at " << i;
        overwrite(m_file.fileName(), whole.left(i));
        EXPECT_THROW(static_cast<void>(m_file.read()), std::runtime_error) << "cut at " << i;
    }
}

TEST_F(EepromFiles, AnErrorNamesTheFile)
{
    m_file.write(sample(5, 2));
    overwrite(m_file.fileName(), "nonsense");
    try {
        static_cast<void>(m_file.read());
        FAIL() << "damage was not noticed";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(QString::fromUtf8(error.what()),
                  m_file.fileName() + QStringLiteral(": the EEPROM file is damaged"));
    }
}

TEST_F(EepromFiles, AFolderInTheirPlaceIsAnError)
{
    QDir().mkpath(m_file.fileName());
    EXPECT_THROW(static_cast<void>(m_file.read()), std::runtime_error);
    EXPECT_THROW(m_file.write(sample(1, 1)), std::runtime_error);
    EXPECT_TRUE(QDir(m_file.fileName()).exists());
}

TEST_F(EepromFiles, ADamagedOneIsKeptAside)
{
    m_file.write(sample(5, 2));
    overwrite(m_file.fileName(), "first");
    EXPECT_EQ(m_file.keepAside(), m_file.fileName() + QStringLiteral(".damaged-1"));
    EXPECT_FALSE(m_file.exists());
    overwrite(m_file.fileName(), "second");
    EXPECT_EQ(m_file.keepAside(), m_file.fileName() + QStringLiteral(".damaged-2"));
    EXPECT_EQ(bytesOf(m_file.fileName() + QStringLiteral(".damaged-1")), "first");
    EXPECT_EQ(bytesOf(m_file.fileName() + QStringLiteral(".damaged-2")), "second");
}

TEST_F(EepromFiles, ADamagedOneIsKeptInItsOwnFolderWhateverThatIsCalled)
{
    const EepromFile file(m_folder.filePath(QStringLiteral("100 %2/A1.eeprom")));
    file.write(sample(5, 2));
    EXPECT_EQ(file.keepAside(), file.fileName() + QStringLiteral(".damaged-1"));
    EXPECT_FALSE(file.exists());
}

TEST_F(EepromFiles, LeftoversAreRemovedAndNothingElse)
{
    m_file.write(sample(5, 2));
    const QDir folder = QFileInfo(m_file.fileName()).dir();
    for (const char* name : {"A1.eeprom.aBcDeF", "A1.eeprom.damaged-1", "A2.eeprom.aBcDeF"}) {
        overwrite(folder.filePath(QLatin1String(name)), "x");
    }
    m_file.removeLeftovers();
    EXPECT_EQ(folder.entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("A1.eeprom"), QStringLiteral("A1.eeprom.damaged-1"),
                           QStringLiteral("A2.eeprom.aBcDeF")}));
}

#ifdef Q_OS_UNIX
TEST_F(EepromFiles, HoldTheOldOrTheNewListWhenTheirWriterIsKilled)
{
    constexpr int Kills = 200;
    constexpr int Patience = 5;
    const std::vector<EepromContent> contents{sample(1, 300), sample(2, 150), sample(3, 0)};
    m_file.write(contents[0]);
    int changed = 0;
    int unchangedInARow = 0;
    EepromContent before = contents[0];
    useconds_t longestLife = 4000; // microseconds; more where writers need longer to get anywhere
    for (int kill = 0; kill < Kills; ++kill) {
        const pid_t writer = ::fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            for (std::size_t i = 0;; ++i) {
                m_file.write(contents[i % contents.size()]);
            }
        }
        // From before the first write to amid the later ones.
        ::usleep(longestLife * static_cast<useconds_t>(kill * 37 % 100) / 100);
        ::kill(writer, SIGKILL);
        ASSERT_EQ(::waitpid(writer, nullptr, 0), writer);

        const EepromContent after = m_file.read();
        ASSERT_NE(std::find(contents.begin(), contents.end(), after), contents.end());
        unchangedInARow = after == before ? unchangedInARow + 1 : 0;
        changed += after == before ? 0 : 1;
        before = after;
        if (unchangedInARow > Patience) {
            longestLife *= 2;
            unchangedInARow = 0;
        }
        m_file.removeLeftovers();
        ASSERT_EQ(QFileInfo(m_file.fileName()).dir().entryList(QDir::Files).size(), 1);
    }
    EXPECT_GT(changed, 0) << "no writer ever got to its end";
}
#endif

} // namespace
