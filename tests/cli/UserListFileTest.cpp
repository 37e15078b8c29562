// SPDX-License-Identifier: MIT
#include "cli/Command.h"
#include "cli/ListFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include "tests/harness/AsNobody.h"

#include <sys/stat.h>
#endif

namespace {

using Entries = std::vector<BadpixelEntry>;

class UserListFile : public testing::Test
{
protected:
    [[nodiscard]] QString fileName() const { return m_home.filePath(QStringLiteral("list.txt")); }

    [[nodiscard]] QString folder() const { return m_home.path(); }

    void write(const QByteArray& content) const
    {
        QFile file(fileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    [[nodiscard]] QString failure(const QString& name) const
    {
        try {
            cli::readUserListFile(name);
        } catch (const cli::CommandError& error) {
            return QString::fromUtf8(error.what());
        }
        return {};
    }

private:
    QTemporaryDir m_home;
};

} // namespace

TEST_F(UserListFile, HoldsAnEntryPerLine)
{
    write("12 345 1\n640 2 1\n");
    EXPECT_EQ(cli::readUserListFile(fileName()),
              (Entries{{12, 345, UserPixel}, {640, 2, UserPixel}}));
}

TEST_F(UserListFile, IsAcceptedInEveryFormThatAProgramMayHaveSavedItIn)
{
    const Entries expected{{12, 345, UserPixel}, {640, 2, UserPixel}};
    for (const char* content : {"12 345 1\n640 2 1", "12 345 1\r\n640 2 1\r\n",
                                "\xef\xbb\xbf"
                                "12 345 1\n640 2 1\n",
                                "12\t345 \t1\n 640   2 1 \n", "12 345 1 hot\n640 2 1 hotter\n"}) {
        write(content);
        EXPECT_EQ(cli::readUserListFile(fileName()), expected) << content;
    }
}

TEST_F(UserListFile, MayBeEmpty)
{
    write("");
    EXPECT_TRUE(cli::readUserListFile(fileName()).empty());
}

TEST_F(UserListFile, IsRefusedWithTheNumberOfTheFirstLineThatIsNoUserEntry)
{
    for (const char* line : {"", "5 6", "5 6 0", "5 6 2", "5 6 257", "5 6 -1", "-5 6 1",
                             "65536 6 1", "5 70000 1", "99999999999999999999 6 1", "x y 1", "5,6,1",
                             "5 6 1x", "5.0 6 1", "0x5 6 1", "012x 6 1", "\xff\xfe"}) {
        write(QByteArray("1 2 1\n") + line + "\n3 4 1\n");
        EXPECT_EQ(failure(fileName()),
                  fileName() + QStringLiteral(", line 2: this is no user entry (x, y and the class "
                                              "1)."))
            << line;
    }
}

TEST_F(UserListFile, IsRefusedForANumberWithALeadingZero)
{
    const struct
    {
        const char* line;
        const char* number;
    } cases[] = {{"012 3 1", "012"},         {"5 00 1", "00"},       {"5 6 01", "01"},
                 {"\t070000 1 1", "070000"}, {"5 099 1 hot", "099"}, {"5 6 01\r", "01"}};
    for (const auto& [line, number] : cases) {
        write(QByteArray("1 2 1\n") + line + "\n3 4 1\n");
        EXPECT_EQ(
            failure(fileName()),
            QStringLiteral("%1, line 2: %2 has a leading zero, with which the editor reads it "
                           "as octal.")
                .arg(fileName(), QLatin1String(number)));
    }
}

TEST_F(UserListFile, IsNamedAsItIsCalled)
{
    const QString name = folder() + QStringLiteral("/100%2 %3.txt");
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("1 2 1\n01 2 1\n");
    file.close();
    EXPECT_EQ(failure(name),
              name + QStringLiteral(", line 2: 01 has a leading zero, with which the "
                                    "editor reads it as octal."));
}

TEST_F(UserListFile, TakesTheSmallestAndTheGreatestCoordinates)
{
    write("0 0 1\n65535 65535 1\n");
    EXPECT_EQ(cli::readUserListFile(fileName()),
              (Entries{{0, 0, UserPixel}, {65535, 65535, UserPixel}}));
}

TEST_F(UserListFile, ThatHoldsNulBytesIsRefused)
{
    write(QByteArray("1 2 1\n\0\0\0\n", 10));
    EXPECT_FALSE(failure(fileName()).isEmpty());
}

TEST_F(UserListFile, ThatIsMissingIsNamed)
{
    EXPECT_TRUE(
        failure(fileName())
            .startsWith(QStringLiteral("Can't open file for reading. (%1: ").arg(fileName())));
}

TEST_F(UserListFile, CantBeAFolder)
{
    EXPECT_EQ(failure(folder()), folder() + QStringLiteral(" is a folder, not a list file."));
}

TEST_F(UserListFile, ThatIsMuchTooLargeIsRefusedWithoutReadingIt)
{
    QFile file(fileName());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64{1} << 30));
    EXPECT_EQ(failure(fileName()), fileName() + QStringLiteral(" is too large to be a list file."));
}

#ifdef Q_OS_UNIX
TEST_F(UserListFile, CantBeAPipeThatNobodyWritesInto)
{
    ASSERT_EQ(mkfifo(fileName().toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(failure(fileName()), fileName() + QStringLiteral(" is not a file."));
}

TEST_F(UserListFile, ThatMayNotBeReadIsNamed)
{
    write("1 2 1\n");
    ASSERT_EQ(chmod(qPrintable(folder()), 0777), 0);
    ASSERT_EQ(chmod(qPrintable(fileName()), 0), 0);
    const AsNobody nobody;
    EXPECT_TRUE(
        failure(fileName())
            .startsWith(QStringLiteral("Can't open file for reading. (%1: ").arg(fileName())));
}
#endif

TEST(UserEntries, KeepTheirOrder)
{
    const Entries entries{{9, 9, UserPixel},
                          {1, 1, FactoryPixel},
                          {0, 0, UserPixel},
                          {3, 4, IgnorePixel},
                          {99, 49, UserPixel}};
    const cli::SensorEntries result = cli::userEntriesOf(entries, {100, 50});
    EXPECT_EQ(result.entries, (Entries{{9, 9, UserPixel}, {0, 0, UserPixel}, {99, 49, UserPixel}}));
    EXPECT_EQ(result.beside, 0);
}

TEST(UserEntries, MayLieInTheColumnThatADetectionAddsBehindTheLast)
{
    const Entries entries{{100, 7, UserPixel}, {5, 5, UserPixel}, {100, 49, UserPixel}};
    const cli::SensorEntries result = cli::userEntriesOf(entries, {100, 50});
    EXPECT_EQ(result.entries, entries);
    EXPECT_EQ(result.beside, 2);
}

TEST(UserEntries, MayLieNowhereElseOutside)
{
    for (const BadpixelEntry entry :
         {BadpixelEntry{101, 7, UserPixel}, BadpixelEntry{5, 50, UserPixel},
          BadpixelEntry{100, 50, UserPixel}}) {
        EXPECT_THROW(cli::userEntriesOf(Entries{{1, 1, UserPixel}, entry}, {100, 50}),
                     cli::CommandError);
    }
}

TEST(UserEntries, AreAllThatIsChecked)
{
    const Entries entries{{500, 500, FactoryPixel}, {500, 500, IgnorePixel}};
    EXPECT_TRUE(cli::userEntriesOf(entries, {100, 50}).entries.empty());
}
