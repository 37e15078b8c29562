// SPDX-License-Identifier: MIT
#include "bench/Measuring.h"
#include "hotpixel/BadpixelListModel.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"

#include <QApplication>
#include <QImage>
#include <QItemSelectionModel>
#include <QPainter>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <string>

namespace {

constexpr int Width = 2592;
constexpr int Height = 1944;
constexpr int Marks = 1000;

/// A frame of 5 megapixels as cameras deliver them, indexed with a grey table or RGB32.
QImage noiseFrame(QImage::Format format)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<uint> level(0, 255);
    QImage frame(Width, Height, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i) {
        frame.setColor(i, qRgb(i, i, i));
    }
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            frame.setPixel(x, y, level(random));
        }
    }
    return frame.convertToFormat(format);
}

void fillList(BadpixelListModel& model)
{
    std::mt19937 random(2);
    std::uniform_int_distribution<int> column(0, Width - 1);
    std::uniform_int_distribution<int> row(0, Height - 1);
    model.setLimitByCamera(false);
    while (model.rowCount() < Marks) {
        model.addBadpixel({column(random), row(random)});
    }
}

/// What cannot be avoided before a picture is scaled: one conversion and the marks.
QImage convertAndMark(const QImage& frame, const BadpixelListModel& model)
{
    QImage picture = frame.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::green);
    for (int row = 0; row < model.rowCount(); ++row) {
        const BadpixelEntry entry = model.badpixelAt(row);
        painter.drawEllipse(
            QRect(QPoint(entry.x - 4, entry.y - 4), QPoint(entry.x + 4, entry.y + 4)));
    }
    return picture;
}

/// Times redraws of a display at `scale` in turn with `reference`, which makes the same picture
/// with the toolkit alone, and reports the medians and their ratio.
template <typename Reference>
void redraw(benchmark::State& state, QImage::Format format, double scale, Reference&& reference)
{
    QImage frame = noiseFrame(format);
    BadpixelListModel model;
    fillList(model);
    QItemSelectionModel selection(&model);
    DisplayWidget display;
    display.setModel(&model);
    display.setSelectionModel(&selection);
    display.setHighlight(true);
    display.setScale(scale);
    display.setImage(frame);

    bench::Times redrawing;
    bench::Times toolkit;
    while (state.KeepRunning()) {
        toolkit.add([&] { return reference(frame, model); });
        state.SetIterationTime(redrawing.add([&] { display.redrawImage(); }));
    }
    state.counters["redraw_ms"] = redrawing.milliseconds();
    state.counters["reference_ms"] = toolkit.milliseconds();
    state.counters["ratio"] = redrawing.seconds() / toolkit.seconds();
}

void redrawAtScaleOne(benchmark::State& state, QImage::Format format)
{
    redraw(state, format, 1.0, convertAndMark);
}

void redrawAtScaleFour(benchmark::State& state, QImage::Format format)
{
    redraw(state, format, 4.0, [](const QImage& frame, const BadpixelListModel& model) {
        return convertAndMark(frame, model)
            .scaled(Width * 4, Height * 4, Qt::KeepAspectRatio, Qt::FastTransformation);
    });
}

/// A figure of the process's memory in bytes, or 0 where the system does not tell.
double memoryOf(const char* key)
{
    std::ifstream status("/proc/self/status");
    const std::string wanted = std::string(key) + ':';
    for (std::string word; status >> word;) {
        if (word == wanted) {
            double kib = 0;
            status >> kib;
            return kib * 1024;
        }
    }
    return 0;
}

/// The largest frame as it comes from a camera, drawn and put on the label. The counter "memory" is
/// the most that it took at any moment beyond the frame, to the size of what the label shows.
void redrawOf20Megapixels(benchmark::State& state, double scale)
{
    constexpr int LargeWidth = 5472;
    constexpr int LargeHeight = 3648;
    QImage frame(LargeWidth, LargeHeight, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i) {
        frame.setColor(i, qRgb(i, i, i));
    }
    std::mt19937 random(3);
    std::generate_n(frame.bits(), frame.sizeInBytes(),
                    [&random] { return static_cast<uchar>(random()); });
    BadpixelListModel model;
    fillList(model);
    DisplayWidget display;
    display.resize(1000, 800);
    display.setModel(&model);
    display.setHighlight(true);
    display.setScale(scale);
    const double before = memoryOf("VmRSS");
    std::ofstream("/proc/self/clear_refs") << 5; // the peak is counted from here on
    display.setImage(frame);
    for (auto _ : state) {
        state.SetIterationTime(bench::secondsOf([&] { display.setImage(frame); }));
    }
    const double shown = 4.0 * LargeWidth * LargeHeight * scale * scale;
    state.counters["memory"] = (memoryOf("VmHWM") - before) / shown;
}

void magnifierMoves(benchmark::State& state)
{
    QImage frame = noiseFrame(QImage::Format_Indexed8);
    Magnifier magnifier;
    magnifier.resize(320, 240);
    magnifier.setZoom(static_cast<int>(state.range(0)));
    magnifier.setImage(frame);
    int step = 0;
    while (state.KeepRunning()) {
        magnifier.setPosition({1000 + ++step % 500, 900});
    }
}

void magnifierGetsAFrame(benchmark::State& state)
{
    QImage frame = noiseFrame(QImage::Format_Indexed8);
    Magnifier magnifier;
    magnifier.resize(320, 240);
    while (state.KeepRunning()) {
        magnifier.setImage(frame);
    }
}

} // namespace

BENCHMARK_CAPTURE(redrawAtScaleOne, Indexed8, QImage::Format_Indexed8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawAtScaleOne, Rgb32, QImage::Format_RGB32)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawAtScaleFour, Indexed8, QImage::Format_Indexed8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawOf20Megapixels, One, 1.0)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawOf20Megapixels, Quarter, 0.25)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawOf20Megapixels, Four, 4.0)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(magnifierMoves)->Arg(5)->Arg(20)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(magnifierGetsAFrame)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
