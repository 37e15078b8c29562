// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "bench/Measuring.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMetaObject>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

/// The window on a camera of 20 megapixels that stores as many entries as a list has.
class OpenWindow
{
public:
    explicit OpenWindow(int entries)
    {
        CameraDescription camera;
        camera.serial = QStringLiteral("BENCH1");
        camera.width = 5472;
        camera.height = 3648;
        camera.frameRate = 0.1; // no frame comes in between
        camera.slowestFrame = 1000;
        camera.userEntries = 1;
        camera.userCapacity = 65535;
        BusDescription bus;
        bus.cameras = {camera};
        bus.eepromFolder = m_folder.filePath(QStringLiteral("eeprom"));
        m_sdk = std::make_unique<SimulatedCameraSdk>(bus);
        m_window = std::make_unique<MainWindow>(*m_sdk);
        m_window->show();
        call("openCamera");
        call("clearBadpixel");
        QImage frame(camera.width, camera.height, QImage::Format_Indexed8);
        frame.fill(20);
        for (int grey = 0; grey < 256; ++grey) {
            frame.setColor(grey, qRgb(grey, grey, grey));
        }
        QMetaObject::invokeMethod(m_window.get(), "newImage", Qt::DirectConnection,
                                  Q_ARG(QImage&, frame));
        QFile file(listFile());
        static_cast<void>(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < entries; ++i) {
            file.write(QByteArray::number(i * 7919 % 5472) + ' ' +
                       QByteArray::number(i * 104729 % 3648) + " 1\n");
        }
        file.close();
        load();
    }

    void call(const char* slot)
    {
        QMetaObject::invokeMethod(m_window.get(), slot, Qt::DirectConnection);
    }

    /// Through the file dialogue, as a person does.
    void load()
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            if (auto* const dialogue = m_window->findChild<QFileDialog*>()) {
                timer.stop();
                dialogue->findChild<QLineEdit*>()->setText(listFile());
                static_cast<QDialog*>(dialogue)->accept();
            }
        });
        timer.start(1);
        call("loadBadpixelList");
    }

    [[nodiscard]] QString listFile() const { return m_folder.filePath(QStringLiteral("list.txt")); }

    [[nodiscard]] QTableView* view() const
    {
        return m_window->findChild<QDockWidget*>(QStringLiteral("BadpixelListDock"))
            ->findChild<QTableView*>();
    }

    MainWindow& window() { return *m_window; }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<SimulatedCameraSdk> m_sdk;
    std::unique_ptr<MainWindow> m_window;
};

/// Arguments: entries of the list. @p prepare is not measured.
void command(benchmark::State& state, void (*prepare)(OpenWindow&), void (*act)(OpenWindow&))
{
    OpenWindow window(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        prepare(window);
        QCoreApplication::processEvents();
        // With what it leaves to the event loop.
        state.SetIterationTime(bench::secondsOf([&] {
            act(window);
            QCoreApplication::processEvents();
        }));
    }
}

void fillAndSelectLast(OpenWindow& window)
{
    if (window.view()->model()->rowCount() < 10) {
        window.load();
    }
    window.view()->selectRow(window.view()->model()->rowCount() - 1);
}

void sortOrder(OpenWindow& window)
{
    static Qt::SortOrder order = Qt::AscendingOrder;
    order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    window.view()->sortByColumn(0, order);
}

} // namespace

#define COMMAND(name, prepare, act)                                                                \
    BENCHMARK_CAPTURE(command, name, prepare, act)                                                 \
        ->Arg(10)                                                                                  \
        ->Arg(1000)                                                                                \
        ->Arg(5000)                                                                                \
        ->Arg(50000)                                                                               \
        ->Iterations(7)                                                                            \
        ->UseManualTime()                                                                          \
        ->Unit(benchmark::kMillisecond)

COMMAND(clear, fillAndSelectLast, [](OpenWindow& window) { window.call("clearBadpixel"); });
COMMAND(clearOfADetection, fillAndSelectLast, [](OpenWindow& window) {
    QMetaObject::invokeMethod(&window.window(), "startDetectingBadpixel", Qt::DirectConnection,
                              Q_ARG(bool, true), Q_ARG(int, 40));
});
COMMAND(load, fillAndSelectLast, [](OpenWindow& window) { window.load(); });
COMMAND(sort, fillAndSelectLast, sortOrder);
COMMAND(classDelegate, fillAndSelectLast, [](OpenWindow& window) {
    QAbstractItemModel* const model = window.view()->model();
    model->setData(model->index(model->rowCount() / 2, 2), QStringLiteral("factory"));
});
COMMAND(selectByKey, fillAndSelectLast, [](OpenWindow& window) {
    window.view()->selectRow(window.view()->model()->rowCount() / 2);
});

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
