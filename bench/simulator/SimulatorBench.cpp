// SPDX-License-Identifier: MIT
#include "camera/EventObject.h"
#include "simulator/ModelledFrames.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <ctime>
#include <vector>

namespace {

constexpr double FramesPerSecond = 2.0; // the fastest that the program asks for

SensorSettings settingsFor(bool covered)
{
    SensorSettings settings;
    settings.exposureSeconds = covered ? 0.5 : 0.04;
    settings.masterGain = covered ? 50 : 0;
    settings.covered = covered;
    return settings;
}

/// One frame of the built-in camera number range(0), covered or not.
void makeFrame(benchmark::State& state)
{
    const auto index = static_cast<std::size_t>(state.range(0));
    const CameraDescription camera = simulator::builtInBus().cameras[index];
    const SensorSettings settings = settingsFor(state.range(1) != 0);
    const SensorModel model(camera);
    ModelledFrames frames(model);
    const auto width = static_cast<std::size_t>(camera.width);
    std::vector<std::uint8_t> pixels(width * static_cast<std::size_t>(camera.height));
    std::uint64_t frame = 0;
    frames.render(frame++, settings, pixels.data(), width); // draws the scene
    for (auto _ : state) {
        frames.render(frame++, settings, pixels.data(), width);
        benchmark::DoNotOptimize(pixels.data());
    }
    // Seconds of processor time for the frames of one second.
    state.counters["shareOfACoreAt2fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()) / FramesPerSecond,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.SetBytesProcessed(static_cast<std::int64_t>(pixels.size()) * state.iterations());
}
BENCHMARK(makeFrame)
    ->ArgNames({"camera", "covered"})
    ->ArgsProduct({{0, 1, 2}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

/// Live capture of the 20 megapixel camera at 2 frames per second: what the whole process uses.
void liveCapture(benchmark::State& state)
{
    const QTemporaryDir folder;
    BusDescription bus = simulator::builtInBus();
    bus.eepromFolder = folder.path();
    bus.cameras[2].firmwareUpload = false;
    const QString serial = bus.cameras[2].serial;
    const int width = bus.cameras[2].width;
    const int height = bus.cameras[2].height;
    SimulatedCameraSdk sdk(bus);
    CameraSdk::Handle handle = bus.cameras[2].devId | camera::OpenByDevice;
    if (sdk.initCamera(&handle, nullptr) != 0) {
        state.SkipWithError("the camera can't be opened");
        return;
    }
    for (int i = 0; i < 2; ++i) {
        char* memory = nullptr;
        std::int32_t id = 0;
        sdk.allocImageMemory(handle, width, height, 8, &memory, &id);
        sdk.addToSequence(handle, memory, id);
    }
    EventHandle event = createEventObject();
    sdk.initEvent(handle, event, camera::EventFrame);
    sdk.enableEvent(handle, camera::EventFrame);
    sdk.control(serial).setCovered(state.range(0) != 0);
    sdk.startLiveVideo(handle, camera::DontWait);
    constexpr int TimeoutMsec = 10000;
    waitForEventObject(event, TimeoutMsec); // draws the scene

    const std::clock_t before = std::clock();
    for (auto _ : state) {
        waitForEventObject(event, TimeoutMsec);
        char* memory = nullptr;
        sdk.getFrameMemory(handle, 0, 0, &memory);
    }
    const double seconds =
        static_cast<double>(std::clock() - before) / static_cast<double>(CLOCKS_PER_SEC);
    state.counters["shareOfACore"] =
        seconds * FramesPerSecond / static_cast<double>(state.iterations());
    sdk.exitCamera(handle);
}
BENCHMARK(liveCapture)->ArgName("covered")->Arg(0)->Arg(1)->Iterations(8)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
