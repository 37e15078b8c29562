// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListModel.h"
#include "tests/app/WindowTest.h"
#include "view/DisplayWidget.h"

#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

/// The window with a camera open, whose lists hold (3, 4), (60, 40) and the user entry (10, 20).
class HostileWindow : public WindowTest
{
protected:
    HostileWindow()
    {
        sdk.devices.front().maxUserEntries = 100;
        open();
    }

    [[nodiscard]] QString path(const QString& name = QStringLiteral("list.txt")) const
    {
        return m_folder.filePath(name);
    }

    void put(const QByteArray& content) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    /// Loads the file @p name as a person does, and has @p answers for the boxes that follow.
    void load(const QString& name, const std::vector<std::function<void(QWidget*)>>& answers = {})
    {
        std::vector<std::function<void(QWidget*)>> all{[&name](QWidget* modal) {
            modal->findChild<QLineEdit*>()->setText(name);
            qobject_cast<QDialog*>(modal)->accept();
        }};
        all.insert(all.end(), answers.begin(), answers.end());
        whileModal([this] { action("&Load hotpixel list")->trigger(); }, all);
    }

    /// Loads @p name, which is to give one error box.
    [[nodiscard]] ShownBox loadAndFail(const QString& name)
    {
        ShownBox box;
        load(name, {[&box](QWidget* modal) { box = pressInBox(modal, QMessageBox::Ok); }});
        return box;
    }

    [[nodiscard]] BadpixelListModel& model() const
    {
        return *qobject_cast<BadpixelListModel*>(badpixelView()->model());
    }

    /// The window takes frames and commands, and the table shows what the list holds.
    void expectUsable()
    {
        sendFrame(10);
        action("Clear user hotpixel")->trigger();
        moveMagnifier({30, 31});
        action("&Add hotpixel")->trigger();
        EXPECT_EQ(badpixels().last(), QStringLiteral("30,31 user"));
        QApplication::processEvents();
        EXPECT_EQ(badpixelView()->verticalHeader()->count(), model().rowCount());
    }

private:
    QTemporaryDir m_folder;
};

class HostileWindowWithALongList : public HostileWindow, public testing::WithParamInterface<int>
{};

} // namespace

TEST_F(HostileWindow, SaysOnceThatAPipeOrADeviceCantBeRead)
{
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    for (const QString& name : {path("pipe"), QStringLiteral("/dev/zero")}) {
        const ShownBox box = loadAndFail(name);
        EXPECT_EQ(box.text, "Can't open file for reading.") << name.toStdString();
        EXPECT_EQ(box.icon, QMessageBox::Critical);
        EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
    }
    expectUsable();
}

TEST_F(HostileWindow, TakesAnyBytesForAList)
{
    struct Row
    {
        QByteArray content;
        QStringList loaded;
    };
    const Row rows[] = {
        {"1 2 1\n\xff\xfe\x80\n\xc3\n3 4 1\n",
         {"1,2 user", "0,0 ignore", "0,0 ignore", "3,4 user"}},
        {"M\xc3\xbcller 1 1\n5 \xe2\x82\xac 1\n", {"0,0 ignore", "5,0 ignore"}},
        {QByteArray("\xff\xfe"
                    "7\0 \0"
                    "8\0 \0"
                    "1\0\n\0",
                    14),
         {"7,8 user"}},
        {QByteArray("1\0 2 1\n\0\0\0\n9 9 1\n", 17), {"1,0 ignore", "0,0 ignore", "9,9 user"}},
        {"\x7f"
         "ELF 1 2 3",
         {"0,0 ignore"}},
    };
    for (const Row& row : rows) {
        // What the file before has left that is no user entry stays, as it is meant to.
        const qsizetype kept = badpixels().filter(QStringLiteral("ignore")).size();
        put(row.content);
        load(path());
        EXPECT_EQ(badpixels().mid(kept), row.loaded)
            << row.content.toPercentEncoding().toStdString();
    }
    expectUsable();
}

TEST_P(HostileWindowWithALongList, StaysUsable)
{
    const int lines = GetParam();
    put(QByteArray("40 50 1\n").repeated(lines));
    load(path());
    EXPECT_EQ(model().rowCount(), lines + 2);
    QApplication::processEvents();
    EXPECT_EQ(badpixelView()->verticalHeader()->count(), lines + 2);

    sendFrame(10);
    load(path());
    EXPECT_EQ(model().rowCount(), lines + 2);
    sendFrame(20);
    action("Clear user hotpixel")->trigger();
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));

    // Once more with an entry selected, which goes with all others.
    load(path());
    badpixelView()->selectRow(3);
    action("Clear user hotpixel")->trigger();
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
    expectUsable();
}

INSTANTIATE_TEST_SUITE_P(Short, HostileWindowWithALongList, testing::Values(3000));
INSTANTIATE_TEST_SUITE_P(Long, HostileWindowWithALongList, testing::Values(100'000, 1'000'000));
