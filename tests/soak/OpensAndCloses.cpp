// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/sdk/FaultyCameraSdk.h"
#include "tests/soak/Soak.h"

#include <QAction>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLabel>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int PatienceMsec = 60'000;

bool trigger(const MainWindow& window, const char* name)
{
    auto* const action = window.findChild<QAction*>(QLatin1String(name));
    const QDeadlineTimer deadline(PatienceMsec);
    while (!action->isEnabled()) {
        if (deadline.hasExpired()) {
            std::printf("%s stays disabled\n", name);
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    action->trigger();
    return true;
}

} // namespace

bool soak::opensAndCloses(int cycles)
{
    const QTemporaryDir folder;
    SimulatedCameraSdk simulated(bus(folder.filePath(QStringLiteral("eeprom"))));
    FaultyCameraSdk sdk(simulated); // for its counts
    bool good = true;
    {
        MainWindow window(sdk);
        window.show();
        const int settling = std::max(1, cycles / 2);
        Footprint settled;
        int settledEvents = 0;
        for (int cycle = 0; cycle < cycles && good; ++cycle) {
            if (cycle == settling) {
                settled = Footprint::atRest();
                settled.print("settled");
                settledEvents = sdk.calls(SdkOperation::InitEvent);
            }
            const int framesBefore = sdk.calls(SdkOperation::GetFrameMemory);
            const QDeadlineTimer deadline(PatienceMsec);
            good = trigger(window, "actionOpen");
            while (good && sdk.calls(SdkOperation::GetFrameMemory) < framesBefore + 3) {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
                QThread::msleep(1);
                good = !deadline.hasExpired();
            }
            good = good && trigger(window, "actionClose") && simulated.openCameras() == 0 &&
                   simulated.imageMemories() == 0;
        }
        const Footprint last = Footprint::atRest(settled.threads);
        last.print("last");
        good =
            good && hasNotGrown(settled, last, sdk.calls(SdkOperation::InitEvent) - settledEvents);
    }
    return good;
}
