// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "simulator/SimulatedCameraSdk.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterBlockWidget.h"

#include <QDir>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace {

/// The window on the four simulated cameras that are there without a settings file of theirs, with
/// a settings file for the camera in the working folder.
class MainWindowSettings : public testing::Test
{
protected:
    MainWindowSettings()
    {
        QDir::setCurrent(m_folder.path());
        BusDescription bus = simulator::readBus();
        bus.eepromFolder = m_folder.filePath("eeprom");
        for (CameraDescription& camera : bus.cameras) {
            camera.heldElsewhere = false; // all four are to be opened
            camera.firmwareUploadMsec = 0;
        }
        m_sdk = std::make_unique<SimulatedCameraSdk>(bus);
        m_window = std::make_unique<MainWindow>(*m_sdk);
        m_window->show();
    }

    ~MainWindowSettings() override
    {
        m_window.reset();
        QDir::setCurrent(m_before);
    }

    static void writeSettings(const QByteArray& text)
    {
        QFile file("VornHotpixelEditor.ini");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    [[nodiscard]] QTableView* cameras() const
    {
        return m_window->findChild<QDockWidget*>("CameraListDock")->findChild<QTableView*>();
    }

    void call(const char* slot)
    {
        EXPECT_TRUE(QMetaObject::invokeMethod(m_window.get(), slot, Qt::DirectConnection));
    }

    /// Opens the camera of @p row, whichever is open now.
    void open(int row)
    {
        cameras()->selectRow(row);
        call("openCamera");
    }

    [[nodiscard]] double shownRate() const { return block()->framerate()->spinBox()->value(); }
    [[nodiscard]] double shownExposure() const { return block()->exposure()->spinBox()->value(); }

    /// What the camera that is open goes on at, by the status bar.
    [[nodiscard]] QString rate()
    {
        call("updateStatus");
        return m_window->findChild<QLabel*>("statusFps")->text();
    }

private:
    [[nodiscard]] ParameterBlockWidget* block() const
    {
        return m_window->findChild<ParameterBlockWidget*>();
    }

    QTemporaryDir m_folder;
    QString m_before = QDir::currentPath();
    std::unique_ptr<SimulatedCameraSdk> m_sdk;
    std::unique_ptr<MainWindow> m_window;
};

TEST_F(MainWindowSettings, ARateAboveTheCapComesDownToItAtEveryOpeningOfEachCamera)
{
    writeSettings("frameRate=6\nexposure=400\n");
    ASSERT_EQ(cameras()->model()->rowCount(), 4);
    for (int opening = 1; opening <= 2; ++opening) {
        for (int row = 0; row < 4; ++row) {
            open(row);
            EXPECT_EQ(shownRate(), 2.0) << "row " << row << ", opening " << opening;
            EXPECT_EQ(rate().toStdString(), "FPS: 2.00")
                << "row " << row << ", opening " << opening;
            // The file's 400 ms are replaced by the camera's default, 40 ms, at each opening; the
            // control snaps that to its slider's grid.
            EXPECT_NEAR(shownExposure(), 40.0, 0.1) << "row " << row << ", opening " << opening;
        }
    }
}

} // namespace
