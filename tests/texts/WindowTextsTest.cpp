// SPDX-License-Identifier: MIT
#include "detection/DetectionDialogue.h"
#include "simulator/SimulatedCameraSdk.h"
#include "simulator/SimulatedCamerasWindow.h"
#include "tests/app/WindowTest.h"
#include "tests/texts/CollectedTexts.h"
#include "tests/texts/CutOffTexts.h"
#include "tests/texts/LongerLanguage.h"
#include "widgets/ParameterWidget.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Fails for each of @p texts that still has English words. The list's own words and the models of
/// the cameras are the same in every language.
void expectTranslated(const QStringList& texts)
{
    static const QRegularExpression Kept(
        QStringLiteral("\\b(user|factory|ignore|VX-1300|VX-2000|VS-5|S1)\\b|/\\S+"));
    static const QRegularExpression EnglishWord(QStringLiteral("[A-Za-z]{2,}"));
    for (const QString& text : texts) {
        EXPECT_FALSE(EnglishWord.match(QString(text).remove(Kept)).hasMatch())
            << "not translated: " << qPrintable(text);
    }
}

/// All that the window shows is translated and has the room that it needs.
void expectReadable(const QWidget& window)
{
    QTest::qWait(1); // a layout follows its texts in the event loop
    expectTranslated(shownTexts(window));
    EXPECT_EQ(cutOffTexts(window).join(u'\n').toStdString(), std::string());
}

/// Speaks before the window is made.
struct Speaking
{
    LongerLanguage language;
};

/// The main jobs in a language in which every text is different and half as long again. What
/// comes of them is what comes of them in English.
class WindowInAnotherLanguage : protected Speaking, public WindowTest
{
protected:
    void SetUp() override { open(); }
    void TearDown() override { expectCollected(language.asked()); }

    void trigger(const char* name) const { child<QAction>(name)->trigger(); }

    void chooseFile(const char* actionName, const QString& name) const
    {
        whileModal([&] { trigger(actionName); }, {[&](QWidget* modal) {
                       auto* const chooser = qobject_cast<QFileDialog*>(modal);
                       ASSERT_NE(chooser, nullptr);
                       EXPECT_TRUE(chooser->nameFilters().value(0).endsWith("(*.txt)"));
                       expectTranslated({chooser->windowTitle()});
                       chooser->findChild<QLineEdit*>()->setText(name);
                       static_cast<QDialog*>(chooser)->accept();
                   }});
    }

    void startDetection() const
    {
        trigger("actionDetect");
        QTest::mouseClick(dialogue()->buttonBox()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    }

    void sendDarkFrames(const QList<QPoint>& hot)
    {
        for (int i = 0; i < 11; ++i) {
            sendFrame(20, hot);
        }
    }

    QTemporaryDir m_folder;
};

TEST_F(WindowInAnotherLanguage, OpensAndClosesACamera)
{
    EXPECT_TRUE(sdk.isOpen());
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user"}));
    EXPECT_TRUE(child<QAction>("actionClose")->isEnabled());
    EXPECT_FALSE(child<QAction>("actionOpen")->isEnabled());
    trigger("actionClose");
    EXPECT_FALSE(sdk.isOpen());
    EXPECT_TRUE(badpixels().isEmpty());
}

TEST_F(WindowInAnotherLanguage, AddsAndDeletesAndWrites)
{
    add({30, 31});
    add({40, 41});
    badpixelView()->selectRow(2);
    trigger("actionDelete");
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "30,31 user", "40,41 user"}));
    const ShownBox box = answerBox(QMessageBox::Yes, [this] { trigger("actionWrite"); });
    expectTranslated({box.text, box.informativeText});
    EXPECT_EQ(sdk.devices[0].user, QList<QPoint>({{30, 31}, {40, 41}}));
}

TEST_F(WindowInAnotherLanguage, DetectsHotpixels)
{
    startDetection();
    EXPECT_FALSE(dialogue()->buttonBox()->isEnabled());
    expectReadable(*dialogue());
    sendDarkFrames({{31, 21}, {50, 40}});
    EXPECT_TRUE(dialogue()->buttonBox()->isEnabled());
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user", "50,40 user",
                                        "31,21 user"}));
    EXPECT_EQ(dialogue()->countLabel()->text(),
              LongerLanguage::longer("Hotpixel detected: ") + '2');
    expectReadable(*dialogue());
}

// The one control flow that once depended on a text: too many hotpixels are counted to the end.
TEST_F(WindowInAnotherLanguage, CountsHotpixelsBeyondTheListsLimit)
{
    startDetection();
    sendDarkFrames({{31, 21}, {50, 40}, {51, 41}, {52, 42}, {53, 43}, {54, 44}});
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user"}));
    EXPECT_EQ(dialogue()->countLabel()->text(),
              LongerLanguage::longer("Hotpixel detected: ") + '6');
    expectReadable(*dialogue());
}

TEST_F(WindowInAnotherLanguage, SaysWhyADetectionStopped)
{
    startDetection();
    sendFrame(20);
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([this] { return dialogue()->buttonBox()->isEnabled(); }, 20000));
    EXPECT_EQ(dialogue()->messageLabel()->text(),
              LongerLanguage::longer("The camera was disconnected."));
    expectReadable(*dialogue());
}

TEST_F(WindowInAnotherLanguage, SavesAndLoadsTheList)
{
    add({30, 31});
    const QString fileName = m_folder.filePath("list.txt");
    chooseFile("actionSaveList", fileName);
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    EXPECT_EQ(file.readAll(), QByteArray("10 20 1\n30 31 1\n"));
    file.close();

    trigger("actionClear");
    EXPECT_EQ(badpixels().size(), 2);
    chooseFile("actionLoadList", fileName);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user", "30,31 user"}));
}

TEST_F(WindowInAnotherLanguage, SortsByEachColumn)
{
    for (QTableView* view : {cameraView(), badpixelView()}) {
        for (int column = 0; column < view->model()->columnCount(); ++column) {
            view->sortByColumn(column, Qt::AscendingOrder);
            view->sortByColumn(column, Qt::DescendingOrder);
        }
    }
    EXPECT_EQ(message(), QString());
    EXPECT_EQ(cameraView()->model()->rowCount(), 2);
    EXPECT_EQ(badpixels().size(), 3);
}

TEST_F(WindowInAnotherLanguage, ShowsWholeTextsWithACameraAndWithout)
{
    sendFrame(20);
    moveMagnifier({30, 31});
    for (const char* const front : {"BadpixelListDock", "CameraListDock"}) {
        child<QDockWidget>(front)->raise();
        expectReadable(*window);
    }
    trigger("actionClose");
    expectReadable(*window);
}

TEST_F(WindowInAnotherLanguage, ShowsWholeMessages)
{
    for (int i = 0; i < 5; ++i) {
        add({30 + i, 31});
    }
    EXPECT_EQ(message(), LongerLanguage::longer("Can't add more than %1 hotpixel entries.").arg(5));
    expectReadable(*window);

    sdk.devices[1].status = 0;
    sdk.devices[1].openFailure = "initCamera";
    trigger("actionClose");
    cameraView()->selectRow(1);
    trigger("actionOpen");
    expectReadable(*window);
}

TEST_F(WindowInAnotherLanguage, HasHelpThatIsTranslated)
{
    for (const char* const help : {"actionUsage", "actionAbout"}) {
        const ShownBox box = answerBox(QMessageBox::Close, [&] { trigger(help); });
        expectTranslated({box.title, box.text});
    }
}

} // namespace

TEST(SimulatedCamerasInAnotherLanguage, HaveAWindowWithWholeTexts)
{
    const LongerLanguage language;
    const QTemporaryDir home;
    CameraDescription description;
    description.serial = QStringLiteral("S1");
    description.model = QStringLiteral("VS-5");
    SimulatedCameraSdk sdk({{description}, 1.0, home.path(), {}});
    SimulatedCamerasWindow window(sdk);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    expectReadable(window);
    QTest::mouseClick(window.findChild<QCheckBox*>("cover_S1"), Qt::LeftButton);
    EXPECT_TRUE(sdk.control(QStringLiteral("S1")).isCovered());
    expectCollected(language.asked());
}
