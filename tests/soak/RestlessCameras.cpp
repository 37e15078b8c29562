// SPDX-License-Identifier: MIT
#include "camera/Camera.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/sdk/FaultyCameraSdk.h"
#include "tests/soak/Soak.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Random = std::mt19937;

int between(Random& random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

/// A thread that does something to one of the cameras at random moments, until it is destroyed.
class Hand
{
public:
    Hand(SimulatedCameraSdk& sdk, Random::result_type seed,
         std::function<void(SimulatedCameraSdk&, const QString&, Random&)> act)
        : m_thread([this, &sdk, seed, act = std::move(act)] {
            Random random(seed);
            const QStringList serials = sdk.serials();
            while (!m_done) {
                act(sdk, serials[between(random, 0, static_cast<int>(serials.size()) - 1)], random);
                std::this_thread::sleep_for(std::chrono::milliseconds(between(random, 1, 40)));
            }
        })
    {}

    ~Hand()
    {
        m_done = true;
        m_thread.join();
    }

    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

private:
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};

void processEventsFor(int msec)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, msec);
        QThread::msleep(1);
    } while (timer.elapsed() < msec);
}

bool processEventsUntil(const std::function<bool()>& condition)
{
    constexpr int Patience = 60'000;
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > Patience) {
            return false;
        }
        processEventsFor(5);
    }
    return true;
}

/// What a person does to an open camera, at random.
void useCamera(Camera& camera, Random& random)
{
    switch (between(random, 0, 5)) {
    case 0:
        camera.setBadPixelCorrection(between(random, 0, 1) == 1);
        break;
    case 1:
        camera.setExposure(between(random, 1, 400));
        break;
    case 2:
        camera.setFramerate(between(random, 1, 2));
        break;
    case 3:
        camera.setAutoConfig();
        break;
    case 4:
        camera.setMastergain(between(random, 0, 100));
        break;
    default:
        break;
    }
}

/// The pixels that a receiver of frames reads are the SDK's own memory: it must be there.
long sumOf(const QImage& image)
{
    long sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* line = image.constScanLine(y);
        sum += line[0] + line[image.width() - 1];
    }
    return sum;
}

} // namespace

bool soak::restlessCameras(int cycles, unsigned seed)
{
    const QTemporaryDir folder;
    SimulatedCameraSdk simulated(bus(folder.filePath(QStringLiteral("eeprom"))));
    FaultyCameraSdk sdk(simulated); // for its count of event objects
    Random random(seed);
    Footprint settled;
    int settledEvents = 0;
    int opened = 0;
    int frames = 0;
    long sum = 0;
    std::set<std::string> refusals;
    bool good = true;
    {
        Camera camera(sdk);
        QObject::connect(&camera, &Camera::newImage, &camera, [&](const QImage& image) {
            sum += sumOf(image);
            frames += image.isNull() ? 0 : 1;
        });
        // Everybody has started once before anything is compared.
        const int settling = std::min(100, std::max(1, cycles / 2));
        const auto atRest = [&](int expectedThreads) {
            camera.close();
            return Footprint::atRest(expectedThreads);
        };
        const auto restlessCycles = [&](int count) {
            const Hand cables(simulated, random(), [](auto& s, const QString& serial, Random& r) {
                s.control(serial).setPlugged(between(r, 0, 3) != 0);
            });
            const Hand covers(simulated, random(), [](auto& s, const QString& serial, Random& r) {
                s.control(serial).setDropFrames(between(r, 0, 3) == 0);
                s.control(serial).setCovered(between(r, 0, 1) == 0);
                s.control(serial).setTemperature(between(r, 0, 60));
            });
            const Hand others(simulated, random(), [](auto& s, const QString& serial, Random& r) {
                s.control(serial).setHeldElsewhere(between(r, 0, 3) == 0);
            });
            for (int cycle = 0; cycle < count; ++cycle) {
                try {
                    // Every other time without closing the one that is open.
                    camera.open(between(random, 1, 2));
                    ++opened;
                } catch (const std::runtime_error& error) {
                    refusals.insert(error.what());
                }
                processEventsFor(between(random, 0, 120));
                try {
                    useCamera(camera, random);
                } catch (const std::runtime_error& error) {
                    refusals.insert(error.what());
                }
                processEventsFor(between(random, 0, 30));
                if (between(random, 0, 1) == 0) {
                    camera.close();
                }
            }
        };
        restlessCycles(settling);
        settled = atRest(0);
        settled.print("settled");
        settledEvents = sdk.calls(SdkOperation::InitEvent);
        restlessCycles(cycles - settling);
        const Footprint last = atRest(settled.threads);
        last.print("last");
        good = hasNotGrown(settled, last, sdk.calls(SdkOperation::InitEvent) - settledEvents);

        // And after all that, a camera works as on the first day.
        for (const QString& serial : simulated.serials()) {
            simulated.control(serial).setPlugged(true);
            simulated.control(serial).setHeldElsewhere(false);
            simulated.control(serial).setDropFrames(false);
        }
        camera.open(1);
        const bool alive = processEventsUntil([&] { return camera.frameCount() >= 3; });
        bool removed = false;
        bool back = false;
        QObject::connect(&camera, &Camera::cameraRemoved, &camera, [&] { removed = true; });
        QObject::connect(&camera, &Camera::cameraReconnect, &camera, [&] { back = true; });
        simulated.control(QStringLiteral("SOAK1")).setPlugged(false);
        const bool noticed = processEventsUntil([&] { return removed; });
        simulated.control(QStringLiteral("SOAK1")).setPlugged(true);
        if (!alive || !noticed || !processEventsUntil([&] { return back; })) {
            std::printf("The camera does not work any more: frames %d, unplugged %d, back %d\n",
                        alive, noticed, back);
            good = false;
        }
    }
    std::printf("%d cycles, %d openings, %d frames (%ld), refusals:\n", cycles, opened, frames,
                sum);
    for (const std::string& refusal : refusals) {
        std::printf("  %s\n", refusal.c_str());
    }
    if (simulated.openCameras() != 0 || simulated.imageMemories() != 0 || opened == 0) {
        std::printf("%d cameras open, %d image memories left\n", simulated.openCameras(),
                    simulated.imageMemories());
        good = false;
    }
    return good;
}
