// SPDX-License-Identifier: MIT
#include "detection/DetectionDialogue.h"
#include "tests/app/WindowTest.h"
#include "view/DisplayWidget.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QWindow>

namespace {

class MainWindowDetection : public WindowTest
{
protected:
    void SetUp() override { open(); }

    /// The progress is counted once for the whole program, so no run stays in the middle.
    void TearDown() override
    {
        for (int i = 0; i < 11 && dialogue() != nullptr && isRunning(); ++i) {
            sendFrame(20);
        }
    }

    /// Opens the dialogue, sets it and presses Start.
    void start(bool clear = false, int threshold = 40)
    {
        action("Detec&t hotpixel")->trigger();
        dialogue()->clearBox()->setChecked(clear);
        dialogue()->thresholdWidget()->spinBox()->setValue(threshold);
        press(QDialogButtonBox::Ok);
    }

    void press(QDialogButtonBox::StandardButton button) const
    {
        QTest::mouseClick(dialogue()->buttonBox()->button(button), Qt::LeftButton);
    }

    /// Ten frames, and the one that ends the collecting.
    void sendDarkFrames(const QList<QPoint>& hot)
    {
        for (int i = 0; i < 11; ++i) {
            sendFrame(20, hot);
        }
    }

    [[nodiscard]] int progress() const { return dialogue()->progressBar()->value(); }
    [[nodiscard]] QString count() const { return dialogue()->countLabel()->text(); }
    [[nodiscard]] QString error() const { return dialogue()->messageLabel()->text(); }
    [[nodiscard]] bool isRunning() const { return !dialogue()->buttonBox()->isEnabled(); }

    /// A frame with @p bytes bytes of the value @p grey and black otherwise.
    void sendBrightBytes(int bytes, int grey)
    {
        QList<QPoint> bright;
        for (int i = 0; i < bytes; ++i) {
            bright.append({i % ScriptedSdk::Width, i / ScriptedSdk::Width});
        }
        sendFrame(0, bright, grey);
    }
};

TEST_F(MainWindowDetection, AddsTheHotpixelsOfTenDarkFrames)
{
    const QSignalSpy finished(window.get(), &MainWindow::detectionFinished);
    const QSignalSpy progressed(window.get(), &MainWindow::detectionProgress);
    start();
    EXPECT_TRUE(isRunning());
    for (int i = 1; i <= 10; ++i) {
        sendFrame(20, {{31, 21}, {50, 40}});
        EXPECT_EQ(progress(), 10 * i);
    }
    // The evaluation starts when the next image arrives, which is not used.
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(badpixels().size(), 3);
    EXPECT_TRUE(finished.isEmpty());
    sendFrame(250);
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user", "50,40 user",
                                        "31,21 user"}));
    EXPECT_EQ(count(), "Hotpixel detected: 2");
    EXPECT_EQ(error(), "");
    EXPECT_EQ(message(), "");
    EXPECT_EQ(finished.size(), 1);
    EXPECT_EQ(progressed.size(), 10);
}

TEST_F(MainWindowDetection, OpensItsDialogueModalToTheWindowAndANewOneEachTime)
{
    action("Detec&t hotpixel")->trigger();
    const DetectionDialogue* const first = dialogue();
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->windowModality(), Qt::WindowModal);
    press(QDialogButtonBox::Close);
    EXPECT_FALSE(first->isVisible());
    action("Detec&t hotpixel")->trigger();
    EXPECT_NE(dialogue(), first);
    EXPECT_EQ(window->findChildren<DetectionDialogue*>().size(), 2);
}

TEST_F(MainWindowDetection, DoesNotAddOrCountAHotpixelThatIsListedAlready)
{
    start();
    sendDarkFrames({{10, 20}, {3, 4}, {31, 21}});
    EXPECT_EQ(badpixels().size(), 4);
    EXPECT_EQ(count(), "Hotpixel detected: 1");
}

TEST_F(MainWindowDetection, ClearsUserEntriesBeforeTheFirstFrame)
{
    start(true);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore"}));
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "31,21 user"}));
}

TEST_F(MainWindowDetection, UsesTheThresholdOfTheDialogue)
{
    start(false, 181);
    sendDarkFrames({{31, 21}}); // 200 in a plane whose mean is 20
    EXPECT_EQ(count(), "Hotpixel detected: 0");
    start(false, 179);
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(count(), "Hotpixel detected: 1");
}

TEST_F(MainWindowDetection, ShowsTheImagesThatItCollects)
{
    const QSignalSpy info(child<QWidget>("MagnifierControl")->findChild<QLabel*>(),
                          SIGNAL(pixelInfoChanged(QString, int)));
    start();
    sendFrame(20);
    EXPECT_EQ(info.size(), 1);
}

TEST_F(MainWindowDetection, AcceptsFiveThousandBrightBytes)
{
    start();
    sendBrightBytes(5000, 101);
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(progress(), 10);
}

TEST_F(MainWindowDetection, AByteOfOneHundredIsNotBright)
{
    start();
    sendBrightBytes(5001, 100);
    EXPECT_TRUE(isRunning());
}

TEST_F(MainWindowDetection, RefusesASceneThatIsNotDark)
{
    start();
    sendFrame(20);
    const ShownBox box = answerBox(QMessageBox::Ok, [&] {
        sendBrightBytes(5001, 101);
        EXPECT_TRUE(QTest::qWaitFor([&] { return progress() == 0; }, 20000));
    });
    EXPECT_EQ(box.title, "Detection failed");
    EXPECT_EQ(box.text, "Too many Hotpixel have been found.\nPlease make sure that the sensor is "
                        "completely obscured.");
    EXPECT_EQ(box.icon, QMessageBox::Critical);
    EXPECT_EQ(box.buttons, QMessageBox::Ok);
    EXPECT_TRUE(box.hasParent);
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(progress(), 0);
    EXPECT_EQ(badpixels().size(), 3);
    // The next run starts from nothing.
    press(QDialogButtonBox::Ok);
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(count(), "Hotpixel detected: 1");
}

TEST_F(MainWindowDetection, TheDialogueIsFreedOnlyAfterTheBoxWasAnswered)
{
    start();
    bool runningBehindTheBox = false;
    whileModal(
        [&] {
            sendFrame(200);
            EXPECT_TRUE(QTest::qWaitFor([&] { return !isRunning(); }, 20000));
        },
        {[&](QWidget* modal) {
            runningBehindTheBox = isRunning() && progress() == 10;
            static_cast<void>(pressInBox(modal, QMessageBox::Ok));
        }});
    EXPECT_TRUE(runningBehindTheBox);
}

TEST_F(MainWindowDetection, AnOverflowOfTheUserListIsCountedAndTakesNothingOver)
{
    close();
    sdk.devices[0].maxUserEntries = 3;
    sdk.devices[0].user = {{10, 20}, {11, 21}};
    open();
    const QSignalSpy finished(window.get(), &MainWindow::detectionFinished);
    start();
    sendDarkFrames({{31, 21}, {50, 40}});
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user", "11,21 user"}));
    EXPECT_EQ(count(), "Hotpixel detected: 2");
    EXPECT_EQ(error(), "Can't add more than 3 hotpixel entries. Please restart detection.");
    EXPECT_EQ(message(), "Can't add more than 3 hotpixel entries.");
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(finished.size(), 1); // by the second detection; the first one did not get there
}

TEST_F(MainWindowDetection, AStartAfterAFailureClearsItsErrorLine)
{
    close();
    sdk.devices[0].maxUserEntries = 1;
    open();
    start();
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(error(), "Can't add more than 1 hotpixel entries. Please restart detection.");
    press(QDialogButtonBox::Ok);
    EXPECT_EQ(error(), "");
    EXPECT_EQ(count(), "Hotpixel detected: 0");
}

TEST_F(MainWindowDetection, AnUnplugStopsTheRunAfterItsEmptyImageWasCounted)
{
    const QSignalSpy progressed(window.get(), &MainWindow::detectionProgress);
    start();
    sendFrame(20);
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRunning(); }, 20000));
    EXPECT_EQ(progressed.last().first().toInt(), 20);
    EXPECT_EQ(progress(), 0);
    EXPECT_EQ(error(), "The camera was disconnected.");
    EXPECT_TRUE(dialogue()->isVisible());

    // Plugged in again, the next run is one of its own.
    sdk.sendEvent(camera::EventReconnected);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !display()->widget()->isHidden(); }, 20000));
    press(QDialogButtonBox::Ok);
    sendDarkFrames({{31, 21}});
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(count(), "Hotpixel detected: 1");
}

TEST_F(MainWindowDetection, AnUnplugThatBringsTheEleventhImageLetsTheRunEndAsAnyOther)
{
    start();
    for (int i = 0; i < 10; ++i) {
        sendFrame(20, {{31, 21}});
    }
    sdk.sendEvent(camera::EventRemoved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRunning(); }, 20000));
    EXPECT_EQ(count(), "Hotpixel detected: 1");
    EXPECT_EQ(error(), "");
    EXPECT_EQ(progress(), 100);
}

TEST_F(MainWindowDetection, EscapeStopsTheRunAndTheNextOneStartsAfresh)
{
    start();
    sendFrame(20, {{50, 40}});
    QTest::keyClick(dialogue(), Qt::Key_Escape);
    EXPECT_FALSE(isRunning());
    EXPECT_TRUE(dialogue()->isVisible());
    EXPECT_EQ(error(), "Detection stopped.");
    EXPECT_EQ(progress(), 0);
    sendFrame(20);
    EXPECT_EQ(progress(), 0);

    press(QDialogButtonBox::Ok);
    EXPECT_EQ(error(), "");
    for (int i = 1; i <= 10; ++i) {
        sendFrame(20, {{31, 21}});
        EXPECT_EQ(progress(), 10 * i);
    }
    sendFrame(20);
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "10,20 user", "31,21 user"}));

    QTest::keyClick(dialogue(), Qt::Key_Escape);
    EXPECT_FALSE(dialogue()->isVisible());
}

TEST_F(MainWindowDetection, TheTitleBarStopsTheRun)
{
    start();
    sendFrame(20);
    dialogue()->windowHandle()->close();
    EXPECT_FALSE(isRunning());
    EXPECT_TRUE(dialogue()->isVisible());
    EXPECT_EQ(error(), "Detection stopped.");
    dialogue()->windowHandle()->close();
    EXPECT_FALSE(dialogue()->isVisible());
}

TEST_F(MainWindowDetection, EscapeIsTheWayOutWhenBothEvaluationsFailed)
{
    sdk.colorMode = camera::ColorModeRgb32;
    close();
    open();
    start();
    sendDarkFrames({});
    EXPECT_EQ(message(), "Image format for hotpixel detection not supported.");
    EXPECT_TRUE(isRunning());
    QTest::keyClick(dialogue(), Qt::Key_Escape);
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(error(), "Detection stopped.");
    // The ten frames are dropped, so the next run collects its own.
    child<QStatusBar>("statusBar")->clearMessage();
    press(QDialogButtonBox::Ok);
    sendFrame(20);
    EXPECT_EQ(message(), "");
    EXPECT_EQ(progress(), 10);
}

TEST_F(MainWindowDetection, ClosingOrOpeningACameraStopsTheRunAndDropsItsFrames)
{
    start();
    sendFrame(20, {{50, 40}});
    close();
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(error(), "Detection stopped.");
    EXPECT_EQ(progress(), 0);
    press(QDialogButtonBox::Ok); // without a camera
    EXPECT_TRUE(isRunning());
    open();
    EXPECT_FALSE(isRunning());
    press(QDialogButtonBox::Ok);
    for (int i = 0; i < 10; ++i) {
        sendFrame(20, {{31, 21}});
    }
    EXPECT_TRUE(isRunning());
    sendFrame(20);
    EXPECT_EQ(count(), "Hotpixel detected: 1");
}

TEST_F(MainWindowDetection, FramesThatAreLeftFromAFailureAreEvaluatedAgain)
{
    sdk.colorMode = camera::ColorModeRgb32;
    close();
    open();
    start();
    sendDarkFrames({});
    EXPECT_EQ(message(), "Image format for hotpixel detection not supported.");
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(error(), "");
    child<QStatusBar>("statusBar")->clearMessage();
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "startDetectingBadpixel",
                                          Qt::DirectConnection, Q_ARG(bool, false),
                                          Q_ARG(int, 40)));
    sendFrame(20);
    EXPECT_EQ(message(), "Image format for hotpixel detection not supported.");
}

TEST_F(MainWindowDetection, RunsWithoutADialogue)
{
    const auto startDetecting = [&] {
        EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "startDetectingBadpixel",
                                              Qt::DirectConnection, Q_ARG(bool, true),
                                              Q_ARG(int, 40)));
    };
    startDetecting();
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(badpixels(), QStringList({"3,4 ignore", "60,40 ignore", "31,21 user"}));
    EXPECT_EQ(dialogue(), nullptr);
    startDetecting();
    bool answered = false;
    whileModal(
        [&] {
            sendFrame(200);
            EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 20000));
        },
        {[&](QWidget* modal) {
            answered = true;
            static_cast<void>(pressInBox(modal, QMessageBox::Ok));
        }});
}

TEST_F(MainWindowDetection, AFullUserListIsToldWithoutADialogue)
{
    close();
    sdk.devices[0].maxUserEntries = 1;
    open();
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "startDetectingBadpixel",
                                          Qt::DirectConnection, Q_ARG(bool, false),
                                          Q_ARG(int, 40)));
    sendDarkFrames({{31, 21}});
    EXPECT_EQ(message(), "Can't add more than 1 hotpixel entries.");
}

TEST_F(MainWindowDetection, ChangesNoSettingOfTheCamera)
{
    static_cast<void>(sdk.takeCalls());
    start();
    sendDarkFrames({{31, 21}});
    QStringList calls = sdk.takeCalls();
    calls.removeAll("getFrameMemory");
    EXPECT_EQ(calls, QStringList());
}

} // namespace
