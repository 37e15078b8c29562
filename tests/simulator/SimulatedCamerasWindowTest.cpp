// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCamerasWindow.h"

#include "camera/SdkExtras.h"
#include "tests/simulator/SimulatorFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>

using simulatortest::SimulatorFixture;

namespace {

const QString Mono = QStringLiteral("M1");
const QString Bayer = QStringLiteral("B2");

class SimulatedCamerasWindowTest : public ::testing::Test
{
protected:
    template <typename Widget>
    Widget* find(const char* kind, const QString& serial)
    {
        auto* widget = m_window.findChild<Widget*>(QLatin1String(kind) + '_' + serial);
        EXPECT_NE(widget, nullptr) << kind;
        return widget;
    }
    void click(const char* kind, const QString& serial)
    {
        auto* box = find<QCheckBox>(kind, serial);
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    }

    SimulatorFixture m_fixture;
    SimulatedCamerasWindow m_window{*m_fixture.sdk};
};

TEST_F(SimulatedCamerasWindowTest, StartsWithThePluggedUncoveredCameras)
{
    EXPECT_EQ(m_window.windowTitle(), QStringLiteral("Simulated cameras"));
    for (const QString& serial : {Mono, Bayer}) {
        EXPECT_TRUE(find<QCheckBox>("plugged", serial)->isChecked());
        EXPECT_FALSE(find<QCheckBox>("cover", serial)->isChecked());
        EXPECT_FALSE(find<QCheckBox>("drop", serial)->isChecked());
        EXPECT_FALSE(find<QCheckBox>("held", serial)->isChecked());
        EXPECT_EQ(find<QDoubleSpinBox>("temperature", serial)->value(), 25.0);
    }
}

TEST_F(SimulatedCamerasWindowTest, ItsBoxesActOnTheirCamera)
{
    m_window.show();
    click("plugged", Mono);
    click("cover", Bayer);
    click("drop", Mono);
    click("held", Bayer);
    EXPECT_FALSE(m_fixture.sdk->control(Mono).isPlugged());
    EXPECT_TRUE(m_fixture.sdk->control(Bayer).isPlugged());
    EXPECT_TRUE(m_fixture.sdk->control(Bayer).isCovered());
    EXPECT_FALSE(m_fixture.sdk->control(Mono).isCovered());
    EXPECT_TRUE(m_fixture.sdk->control(Mono).dropsFrames());
    EXPECT_TRUE(m_fixture.sdk->control(Bayer).isHeldElsewhere());
    click("plugged", Mono);
    EXPECT_TRUE(m_fixture.sdk->control(Mono).isPlugged());
}

TEST_F(SimulatedCamerasWindowTest, TheTemperatureIsTyped)
{
    m_window.show();
    auto* temperature = find<QDoubleSpinBox>("temperature", Mono);
    temperature->setFocus();
    temperature->selectAll();
    QTest::keyClicks(temperature, QStringLiteral("41.5"));
    QTest::keyClick(temperature, Qt::Key_Return);
    EXPECT_EQ(m_fixture.sdk->control(Mono).temperature(), 41.5);
    EXPECT_EQ(m_fixture.sdk->control(Bayer).temperature(), 25.0);
}

TEST_F(SimulatedCamerasWindowTest, EveryControlIsReachedByTheTabKey)
{
    m_window.show();
    for (const QString& serial : {Mono, Bayer}) {
        for (const char* kind : {"plugged", "cover", "drop", "held"}) {
            EXPECT_NE(find<QCheckBox>(kind, serial)->focusPolicy() & Qt::TabFocus, 0);
        }
    }
    auto* cover = find<QCheckBox>("cover", Mono);
    cover->setFocus();
    QTest::keyClick(cover, Qt::Key_Space);
    EXPECT_TRUE(m_fixture.sdk->control(Mono).isCovered());
}

TEST_F(SimulatedCamerasWindowTest, FollowsWhatHappensElsewhere)
{
    m_window.show();
    m_fixture.sdk->control(Mono).setCovered(true);
    m_fixture.sdk->control(Bayer).setPlugged(false);
    m_fixture.sdk->control(Bayer).setTemperature(30);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            return find<QCheckBox>("cover", Mono)->isChecked() &&
                   !find<QCheckBox>("plugged", Bayer)->isChecked() &&
                   find<QDoubleSpinBox>("temperature", Bayer)->value() == 30.0;
        },
        simulatortest::GenerousMsec));
}

TEST_F(SimulatedCamerasWindowTest, SaysWhereTheEepromFilesAre)
{
    auto* where = m_window.findChild<QLabel*>(QStringLiteral("eepromFolder"));
    ASSERT_NE(where, nullptr);
    EXPECT_TRUE(where->text().contains(m_fixture.bus.eepromFolder));
    EXPECT_NE(where->textInteractionFlags() & Qt::TextSelectableByMouse, 0);
}

TEST_F(SimulatedCamerasWindowTest, TheProgramEndsWithItsOwnWindow)
{
    QWidget editor;
    editor.show();
    m_window.show();
    QTimer::singleShot(0, &editor, &QWidget::close);
    QTimer::singleShot(simulatortest::GenerousMsec, &editor, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_FALSE(m_window.isVisible());
}

TEST_F(SimulatedCamerasWindowTest, TheProgramGoesOnWithoutIt)
{
    QWidget editor;
    editor.show();
    m_window.show();
    bool wentOn = false;
    QTimer::singleShot(0, &m_window, &QWidget::close);
    QTimer::singleShot(100, &editor, [&] {
        wentOn = !m_window.isVisible();
        editor.close();
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(wentOn);
}

TEST(SdkWindow, IsShownForSimulatedCamerasOnly)
{
    SimulatorFixture fixture;
    const std::unique_ptr<QObject> window = createSdkWindow(*fixture.sdk);
    auto* widget = dynamic_cast<SimulatedCamerasWindow*>(window.get());
    ASSERT_NE(widget, nullptr);
    EXPECT_TRUE(widget->isVisible());
}

TEST(SdkWindow, AMistakeInTheSettingsFileIsShown)
{
    BusDescription bus = simulator::builtInBus();
    bus.message = QStringLiteral("cameras.ini: wrong");
    SimulatedCameraSdk sdk(bus);
    const SimulatedCamerasWindow window(sdk);
    auto* message = window.findChild<QLabel*>(QStringLiteral("message"));
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->text(), bus.message);
}

TEST(SdkSwitches, CoverTheCamera)
{
    SimulatorFixture fixture;
    const std::vector<SdkSwitch> switches = sdkSwitches();
    ASSERT_EQ(switches.size(), 1U);
    EXPECT_EQ(switches[0].name, QStringLiteral("cover"));
    EXPECT_FALSE(switches[0].description.isEmpty());
    switches[0].apply(*fixture.sdk, 2);
    EXPECT_TRUE(fixture.sdk->control(Bayer).isCovered());
    EXPECT_FALSE(fixture.sdk->control(Mono).isCovered());
    switches[0].apply(*fixture.sdk, 99);
    EXPECT_FALSE(fixture.sdk->control(Mono).isCovered());
}

TEST(SimulatedCamerasPlace, IsBesideTheMainWindowWhereverThereIsRoom)
{
    const QRect screen(0, 0, 2000, 1200);
    const QSize size(700, 150);
    struct Case
    {
        QRect main;
        QPoint place;
    };
    for (const auto& [main, place] : {
             Case{{100, 50, 800, 600}, {900, 50}},     // to the right
             Case{{1100, 50, 800, 600}, {400, 50}},    // to the left
             Case{{600, 50, 800, 600}, {600, 650}},    // below
             Case{{600, 500, 800, 650}, {600, 350}},   // above
             Case{{-50, 1000, 800, 600}, {750, 1000}}, // partly off the screen
         }) {
        const simulator::Places places = simulator::placesBeside(main, size, screen);
        EXPECT_EQ(places.main, main.topLeft());
        EXPECT_EQ(places.other, place) << main.left() << ", " << main.top();
    }
}

TEST(SimulatedCamerasPlace, SendsTheMainWindowUpWhereThatMakesRoomBelow)
{
    const simulator::Places places =
        simulator::placesBeside({240, 88, 800, 626}, {760, 150}, {0, 0, 1280, 800});
    EXPECT_EQ(places.main, QPoint(240, 24));
    EXPECT_EQ(places.other, QPoint(240, 650));
}

TEST(SimulatedCamerasPlace, IsTheOppositeCornerOfAScreenWithoutRoomForBoth)
{
    const simulator::Places dense =
        simulator::placesBeside({240, 50, 800, 626}, {750, 150}, {0, 0, 1280, 720});
    EXPECT_EQ(dense.main, QPoint(0, 0));
    EXPECT_EQ(dense.other, QPoint(530, 570));

    const simulator::Places places =
        simulator::placesBeside({0, 0, 1280, 800}, {760, 150}, {0, 0, 1280, 800});
    EXPECT_EQ(places.main, QPoint(0, 0));
    EXPECT_EQ(places.other, QPoint(520, 650));
    // Its upper left corner, with the title bar, is on the screen whatever its size.
    EXPECT_EQ(simulator::placesBeside({0, 0, 640, 480}, {760, 550}, {0, 0, 640, 480}).other,
              QPoint(0, 0));
}

TEST_F(SimulatedCamerasWindowTest, CannotBeClosedByHand)
{
    m_window.show();
    QCloseEvent event; // as a window manager sends it
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&m_window, &event);
    EXPECT_FALSE(event.isAccepted());
}

} // namespace
