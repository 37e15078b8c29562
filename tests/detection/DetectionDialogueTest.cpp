// SPDX-License-Identifier: MIT
#include "detection/DetectionDialogue.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

const Qt::WindowFlags IdleFlags = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;

class DetectionDialogueTest : public testing::Test
{
protected:
    DetectionDialogueTest()
    {
        m_dialogue.open();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_dialogue));
    }

    QPushButton* startButton() { return m_dialogue.buttonBox()->button(QDialogButtonBox::Ok); }
    QPushButton* closeButton() { return m_dialogue.buttonBox()->button(QDialogButtonBox::Close); }
    QSpinBox* spinBox() { return m_dialogue.thresholdWidget()->spinBox(); }
    QSlider* slider() { return m_dialogue.thresholdWidget()->slider(); }
    QLabel* thresholdLabel() { return m_dialogue.thresholdWidget()->label(); }

    void clickStart() { QTest::mouseClick(startButton(), Qt::LeftButton); }

    void typeThreshold(const QString& text)
    {
        spinBox()->selectAll();
        QTest::keyClicks(spinBox(), text);
    }

    void expectRunning(bool running)
    {
        EXPECT_EQ(m_dialogue.windowFlags(),
                  running ? IdleFlags | Qt::CustomizeWindowHint : IdleFlags);
        EXPECT_TRUE(m_dialogue.isVisible());
        const std::vector<QWidget*> controls{startButton(),    closeButton(), m_dialogue.clearBox(),
                                             thresholdLabel(), slider(),      spinBox()};
        for (const QWidget* control : controls) {
            EXPECT_EQ(control->isEnabled(), !running) << control->objectName().toStdString();
        }
        EXPECT_EQ(m_dialogue.statusLabel()->text(), running ? "Please Wait..." : "");
    }

    QWidget m_window;
    DetectionDialogue m_dialogue{&m_window};
    const QSignalSpy m_started{&m_dialogue, &DetectionDialogue::startDetect};
};

int topOf(const QWidget* widget)
{
    return widget->mapTo(widget->window(), QPoint(0, 0)).y();
}

int leftOf(const QWidget* widget)
{
    return widget->mapTo(widget->window(), QPoint(0, 0)).x();
}

} // namespace

TEST_F(DetectionDialogueTest, HasTitleFlagsAndWidth)
{
    EXPECT_STREQ(m_dialogue.metaObject()->className(), "DetectionDialogue");
    EXPECT_EQ(m_dialogue.parentWidget(), &m_window);
    EXPECT_EQ(m_dialogue.windowTitle(), "Hotpixel detection");
    EXPECT_EQ(m_dialogue.windowFlags(), IdleFlags);
    EXPECT_EQ(m_dialogue.minimumWidth(), 400);
    EXPECT_TRUE(m_dialogue.isModal());
}

TEST_F(DetectionDialogueTest, ShowsItsWidgetsFromTopToBottom)
{
    const auto labels = m_dialogue.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.first()->text(), "Cover the sensor completely during capturing!\n");

    const auto boxes = m_dialogue.findChildren<QGroupBox*>();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0]->title(), "Preferences");
    EXPECT_EQ(boxes[1]->title(), "Detection");

    const std::vector<QWidget*> topToBottom{labels.first(),
                                            boxes[0],
                                            spinBox(),
                                            m_dialogue.clearBox(),
                                            boxes[1],
                                            m_dialogue.statusLabel(),
                                            m_dialogue.progressBar(),
                                            m_dialogue.countLabel(),
                                            m_dialogue.messageLabel(),
                                            m_dialogue.buttonBox()};
    for (std::size_t i = 1; i < topToBottom.size(); ++i) {
        EXPECT_LT(topOf(topToBottom[i - 1]), topOf(topToBottom[i])) << i;
    }
    EXPECT_LT(leftOf(thresholdLabel()), leftOf(slider()));
    EXPECT_LT(leftOf(slider()), leftOf(spinBox()));
    for (const QWidget* widget :
         {static_cast<QWidget*>(slider()), static_cast<QWidget*>(m_dialogue.clearBox())}) {
        EXPECT_TRUE(boxes[0]->isAncestorOf(widget));
    }
    for (const QWidget* widget : {static_cast<QWidget*>(m_dialogue.statusLabel()),
                                  static_cast<QWidget*>(m_dialogue.progressBar()),
                                  static_cast<QWidget*>(m_dialogue.countLabel()),
                                  static_cast<QWidget*>(m_dialogue.messageLabel())}) {
        EXPECT_TRUE(boxes[1]->isAncestorOf(widget));
    }
}

TEST_F(DetectionDialogueTest, StartsWithTheseTextsAndValues)
{
    EXPECT_EQ(thresholdLabel()->text(), "Threshold");
    EXPECT_EQ(spinBox()->value(), 40);
    EXPECT_EQ(spinBox()->singleStep(), 1);
    EXPECT_EQ(slider()->value(), 40);
    EXPECT_EQ(slider()->minimum(), 5);
    EXPECT_EQ(slider()->maximum(), 255);
    EXPECT_EQ(m_dialogue.clearBox()->text(), "Clear old hotpixel list");
    EXPECT_FALSE(m_dialogue.clearBox()->isChecked());
    EXPECT_EQ(startButton()->text(), "Start");
    EXPECT_EQ(m_dialogue.buttonBox()->orientation(), Qt::Horizontal);
    EXPECT_EQ(m_dialogue.buttonBox()->standardButtons(),
              QDialogButtonBox::Ok | QDialogButtonBox::Close);
    EXPECT_EQ(m_dialogue.statusLabel()->text(), "");
    EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 0");
    EXPECT_EQ(m_dialogue.messageLabel()->text(), "");
    EXPECT_EQ(m_dialogue.progressBar()->minimum(), 0);
    EXPECT_EQ(m_dialogue.progressBar()->maximum(), 100);
    expectRunning(false);
}

TEST_F(DetectionDialogueTest, RefusesThresholdsBelow5AndAbove255)
{
    EXPECT_EQ(spinBox()->minimum(), 5);
    EXPECT_EQ(spinBox()->maximum(), 255);
    typeThreshold("255");
    EXPECT_EQ(spinBox()->value(), 255);
    QTest::keyClick(spinBox(), Qt::Key_Up);
    EXPECT_EQ(spinBox()->value(), 255);
    typeThreshold("256");
    EXPECT_LE(spinBox()->value(), 255);
    typeThreshold("5");
    EXPECT_EQ(spinBox()->value(), 5);
    QTest::keyClick(spinBox(), Qt::Key_Down);
    EXPECT_EQ(spinBox()->value(), 5);
}

TEST_F(DetectionDialogueTest, StartHandsOverTheSettings)
{
    typeThreshold("77");
    EXPECT_EQ(slider()->value(), 77);
    QTest::keyClick(m_dialogue.clearBox(), Qt::Key_Space);
    clickStart();
    ASSERT_EQ(m_started.count(), 1);
    EXPECT_TRUE(m_started.first().at(0).toBool());
    EXPECT_EQ(m_started.first().at(1).toInt(), 77);
}

TEST_F(DetectionDialogueTest, StartHandsOverItsDefaults)
{
    clickStart();
    ASSERT_EQ(m_started.count(), 1);
    EXPECT_FALSE(m_started.first().at(0).toBool());
    EXPECT_EQ(m_started.first().at(1).toInt(), 40);
}

TEST_F(DetectionDialogueTest, IsInItsRunningStateWhenItSignalsTheStart)
{
    bool called = false;
    QObject::connect(&m_dialogue, &DetectionDialogue::startDetect, &m_dialogue, [&] {
        called = true;
        expectRunning(true);
    });
    clickStart();
    EXPECT_TRUE(called);
}

TEST_F(DetectionDialogueTest, DisablesItsControlsDuringARun)
{
    clickStart();
    expectRunning(true);
    clickStart();
    EXPECT_EQ(m_started.count(), 1);
    QTest::mouseClick(closeButton(), Qt::LeftButton);
    EXPECT_TRUE(m_dialogue.isVisible());
    EXPECT_TRUE(m_dialogue.isModal()) << "new window flags keep the modality";
}

TEST_F(DetectionDialogueTest, EscapeAsksToStopDuringARunAndClosesOtherwise)
{
    const QSignalSpy stopped(&m_dialogue, &DetectionDialogue::stopDetect);
    clickStart();
    QTest::keyClick(&m_dialogue, Qt::Key_Escape);
    EXPECT_EQ(stopped.count(), 1);
    expectRunning(true);
    m_dialogue.abortDetect();
    QTest::keyClick(&m_dialogue, Qt::Key_Escape);
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_FALSE(m_dialogue.isVisible());
}

TEST_F(DetectionDialogueTest, TitleBarAsksToStopDuringARunAndClosesOtherwise)
{
    const QSignalSpy stopped(&m_dialogue, &DetectionDialogue::stopDetect);
    clickStart();
    EXPECT_FALSE(m_dialogue.windowHandle()->close());
    EXPECT_EQ(stopped.count(), 1);
    expectRunning(true);
    m_dialogue.finishDetect();
    EXPECT_TRUE(m_dialogue.windowHandle()->close());
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_FALSE(m_dialogue.isVisible());
}

TEST_F(DetectionDialogueTest, ShowsTheWholeOfItsLongestMessageAtItsLeastWidth)
{
    m_dialogue.resize(1, 1);
    const QLabel* const line = m_dialogue.messageLabel();
    for (const char* text : {"Color mode for hotpixel detection not supported. Please restart "
                             "detection.",
                             "Can't add more than 32767 hotpixel entries. Please restart "
                             "detection."}) {
        m_dialogue.setMessage(text);
        const QSize needed =
            line->fontMetrics()
                .boundingRect(QRect(0, 0, line->width(), 1000), Qt::TextWordWrap, line->text())
                .size();
        EXPECT_TRUE(QTest::qWaitFor([&] { return line->height() >= needed.height(); })) << text;
        EXPECT_LE(needed.width(), line->width()) << text;
        EXPECT_EQ(m_dialogue.width(), 400);
        EXPECT_TRUE(m_dialogue.rect().contains(
            line->geometry().translated(line->parentWidget()->mapTo(&m_dialogue, QPoint(0, 0)))));
    }
}

TEST_F(DetectionDialogueTest, CloseHidesIt)
{
    QTest::mouseClick(closeButton(), Qt::LeftButton);
    EXPECT_FALSE(m_dialogue.isVisible());
}

TEST_F(DetectionDialogueTest, AddsUpTheCount)
{
    clickStart();
    m_dialogue.addDetectedPixel(1);
    m_dialogue.addDetectedPixel(1);
    EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 2");
    m_dialogue.addDetectedPixel(40);
    EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 42");
}

TEST_F(DetectionDialogueTest, ShowsTheProgress)
{
    m_dialogue.updateProgress(30);
    EXPECT_EQ(m_dialogue.progressBar()->value(), 30);
}

TEST_F(DetectionDialogueTest, FinishKeepsResultErrorAndProgress)
{
    clickStart();
    m_dialogue.updateProgress(100);
    m_dialogue.addDetectedPixel(3);
    m_dialogue.setMessage("It failed. Please restart detection.");
    m_dialogue.finishDetect();
    expectRunning(false);
    EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 3");
    EXPECT_EQ(m_dialogue.messageLabel()->text(), "It failed. Please restart detection.");
    EXPECT_EQ(m_dialogue.progressBar()->value(), 100);
}

TEST_F(DetectionDialogueTest, AbortPutsTheProgressBackTo0)
{
    clickStart();
    m_dialogue.updateProgress(30);
    m_dialogue.abortDetect();
    expectRunning(false);
    EXPECT_EQ(m_dialogue.progressBar()->value(), 0);
}

TEST_F(DetectionDialogueTest, StartingTwiceResetsCountAndErrorEachTime)
{
    for (int run = 0; run < 2; ++run) {
        clickStart();
        EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 0");
        EXPECT_EQ(m_dialogue.messageLabel()->text(), "");
        m_dialogue.addDetectedPixel(3);
        m_dialogue.setMessage("It failed. Please restart detection.");
        m_dialogue.finishDetect();
    }
    EXPECT_EQ(m_started.count(), 2);
}

TEST_F(DetectionDialogueTest, CountsPixelsThatAreAddedWhileNothingRuns)
{
    // The list's additions by hand reach an open dialogue as well.
    m_dialogue.addDetectedPixel(1);
    EXPECT_EQ(m_dialogue.countLabel()->text(), "Hotpixel detected: 1");
}

TEST(DetectionDialogue, CanBeDeletedBeforeItIsShown)
{
    const auto dialogue = std::make_unique<DetectionDialogue>(nullptr);
    EXPECT_FALSE(dialogue->isVisible());
}
