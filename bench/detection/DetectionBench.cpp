// SPDX-License-Identifier: MIT
#include "bench/Measuring.h"
#include "detection/DetectionRun.h"
#include "detection/HotpixelDetector.h"
#include "hotpixel/BadpixelListModel.h"
#ifdef VORN_HAS_OPENCV
#include "bench/detection/OpenCvDetection.h"
#endif

#include <QImage>
#include <QVector>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

constexpr int FrameCount = 10;
constexpr int Hotpixels = 1000;
constexpr int Threshold = 40;

/// Dark frames with noise and the same hot pixels in each.
QVector<QImage> darkFrames(int width, int height, int count)
{
    std::mt19937 random(1);
    QVector<QImage> frames;
    for (int i = 0; i < count; ++i) {
        QImage frame(width, height, QImage::Format_Indexed8);
        std::generate_n(frame.bits(), frame.sizeInBytes(),
                        [&random] { return static_cast<uchar>(random() & 15U); });
        frames.append(frame);
    }
    for (int i = 0; i < Hotpixels; ++i) {
        const auto x = static_cast<int>(random() % static_cast<unsigned>(width));
        const auto y = static_cast<int>(random() % static_cast<unsigned>(height));
        for (QImage& frame : frames) {
            frame.scanLine(y)[x] = 90;
        }
    }
    return frames;
}

int detect(int colorMode, const QVector<QImage>& frames)
{
    BadpixelListModel list;
    list.setLimitByCamera(false);
    HotpixelDetector detector(Threshold);
    detector.setImages(colorMode, &frames);
    detector.detect(&list);
    return list.rowCount();
}

/// Arguments: width, height, colour mode.
void detection(benchmark::State& state)
{
    const QVector<QImage> frames =
        darkFrames(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), FrameCount);
    const auto colorMode = static_cast<int>(state.range(2));
    bench::Times detection;
    bench::Times reading;
#ifdef VORN_HAS_OPENCV
    bench::Times openCv;
#endif
    for (auto _ : state) {
        reading.add([&] { return bench::sumOfWords(frames); });
        state.SetIterationTime(detection.add([&] { return detect(colorMode, frames); }));
#ifdef VORN_HAS_OPENCV
        openCv.add([&] { return detectWithOpenCv(colorMode, frames, Threshold); });
#endif
    }
    state.counters["detect_ms"] = detection.milliseconds();
    state.counters["read_ms"] = reading.milliseconds();
    state.counters["to_read"] = detection.seconds() / reading.seconds();
#ifdef VORN_HAS_OPENCV
    state.counters["opencv_ms"] = openCv.milliseconds();
    state.counters["to_opencv"] = detection.seconds() / openCv.seconds();
#endif
}

/// Arguments: width, height.
void darknessCheck(benchmark::State& state)
{
    const QVector<QImage> frames =
        darkFrames(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), 1);
    bench::Times check;
    bench::Times reading;
    for (auto _ : state) {
        reading.add([&] { return bench::sumOfWords(frames); });
        state.SetIterationTime(check.add([&] { return DetectionRun::isDark(frames.first()); }));
    }
    state.counters["check_ms"] = check.milliseconds();
    state.counters["read_ms"] = reading.milliseconds();
    state.counters["to_read"] = check.seconds() / reading.seconds();
}

} // namespace

BENCHMARK(detection)
    ->ArgNames({"width", "height", "mode"})
    ->ArgsProduct({{1280}, {1024}, {6, 11}})
    ->ArgsProduct({{2592}, {1944}, {6, 11}})
    ->ArgsProduct({{5472}, {3648}, {6, 11}})
    ->UseManualTime()
    ->Iterations(31)
    ->Unit(benchmark::kMillisecond);

BENCHMARK(darknessCheck)
    ->ArgNames({"width", "height"})
    ->Args({1280, 1024})
    ->Args({2592, 1944})
    ->Args({5472, 3648})
    ->UseManualTime()
    ->Iterations(101)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
#ifndef VORN_HAS_OPENCV
    std::fputs("OpenCV was not installed (libopencv-dev), so its pipeline is not measured.\n",
               stderr);
#endif
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
