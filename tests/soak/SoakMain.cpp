// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"
#include "tests/soak/Soak.h"

#include <QApplication>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

BusDescription soak::bus(const QString& eepromFolder)
{
    CameraDescription mono;
    mono.serial = QStringLiteral("SOAK1");
    mono.model = QStringLiteral("VC-SOAK-M");
    mono.width = 320;
    mono.height = 240;
    mono.lineBlanking = 8000; // slow lines: never more than 100 frames in a simulated second
    mono.hotPixels = 20;
    CameraDescription bayer = mono;
    bayer.serial = QStringLiteral("SOAK2");
    bayer.model = QStringLiteral("VC-SOAK-C");
    bayer.camId = 2;
    bayer.devId = 2;
    bayer.bayer = true;
    bayer.colorMode = 11;
    return {.cameras = {mono, bayer}, .speed = 25.0, .eepromFolder = eepromFolder, .message = {}};
}

bool soak::hasNotGrown(const Footprint& before, const Footprint& after, int eventObjects)
{
    constexpr std::size_t EventObjectBytes = 128; // with what an allocator adds to it
    // The allocators' own leeway. One image kept in each of the 900 counted cycles is 70 MB.
    constexpr std::size_t SlackBytes = std::size_t{8} << 20U;
    const std::size_t allowed =
        static_cast<std::size_t>(eventObjects) * EventObjectBytes + SlackBytes;
    const auto growth =
        static_cast<long long>(after.residentBytes) - static_cast<long long>(before.residentBytes);
    std::printf("growth: %d threads, %lld KiB resident, with %d event objects\n",
                after.threads - before.threads, growth / 1024, eventObjects);
    return after.threads <= before.threads &&
           after.residentBytes <= before.residentBytes + allowed &&
           after.heapBytes <= before.heapBytes + allowed;
}

/// Usage: vorn_soak restless|calm CYCLES [SEED]
int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const int cycles = arguments.value(2).toInt();
    if (cycles < 1) {
        std::fprintf(stderr, "Usage: vorn_soak restless|calm CYCLES [SEED]\n");
        return 2;
    }
    bool good = false;
    if (arguments.value(1) == QLatin1String("restless")) {
        const unsigned seed =
            arguments.size() > 3 ? arguments.value(3).toUInt() : std::random_device()();
        std::printf("seed %u\n", seed);
        std::fflush(stdout);
        good = soak::restlessCameras(cycles, seed);
    } else {
        good = soak::opensAndCloses(cycles);
    }
    std::printf(good ? "good\n" : "NOT GOOD\n");
    return good ? 0 : 1;
}
