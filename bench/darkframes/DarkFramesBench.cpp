// SPDX-License-Identifier: MIT
// Stacking ten frames against reading them, that is, adding up all values; and a survey of PNG
// files against decoding them.

#include "bench/Measuring.h"
#include "darkframes/FrameFile.h"
#include "darkframes/FrameFolder.h"
#include "darkframes/FrameStacker.h"
#include "darkframes/SurveyOutput.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <numeric>
#include <random>

namespace {

constexpr int FrameCount = 10;

/// Noise around a tenth of the range, with a hot pixel in ten thousand.
QImage darkFrame(int width, int height, int bits, unsigned seed)
{
    std::mt19937 numbers(seed);
    std::minstd_rand places(7); // the same hot pixels in all frames
    QImage image(width, height,
                 bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    for (int y = 0; y < height; ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < width; ++x) {
            const auto number = static_cast<unsigned>(numbers());
            const bool hot = places() % 10'000 == 0;
            // The sum of four numbers is about normal.
            const unsigned noise = (number & 31U) + (number >> 8U & 31U) + (number >> 16U & 31U) +
                                   (number >> 24U & 31U);
            if (bits == 16) {
                reinterpret_cast<quint16*>(line)[x] =
                    static_cast<quint16>(hot ? 40'000 : 6'000 + noise);
            } else {
                line[x] = static_cast<uchar>(hot ? 160 : 20 + noise / 16);
            }
        }
    }
    return image;
}

QList<QImage> darkFrames(int width, int height, int bits)
{
    QList<QImage> frames;
    for (unsigned i = 0; i < FrameCount; ++i) {
        frames.append(darkFrame(width, height, bits, i));
    }
    return frames;
}

/// The values themselves, one by one.
template <typename Pixel>
std::uint64_t sumOf(const QImage& frame)
{
    const auto* values = reinterpret_cast<const Pixel*>(frame.constBits());
    return std::accumulate(values, values + frame.sizeInBytes() / qsizetype{sizeof(Pixel)},
                           std::uint64_t{0});
}

std::uint64_t sumOfValues(const QList<QImage>& frames)
{
    std::uint64_t sum = 0;
    for (const QImage& frame : frames) {
        sum += frame.format() == QImage::Format_Grayscale16 ? sumOf<quint16>(frame)
                                                            : sumOf<quint8>(frame);
    }
    return sum;
}

std::uint32_t stackAtOnce(const QList<QImage>& frames)
{
    DarkStack stack(darkframes::imageInfo(frames.front()));
    stack.add(frames);
    return stack.sums().back();
}

/// As they come from files: only a few are in memory at a time.
std::uint32_t stackAsTheyCome(const QList<QImage>& frames)
{
    FrameStacker stacker;
    for (const QImage& frame : frames) {
        stacker.add(QStringLiteral("frame"), {frame, std::nullopt});
    }
    return stacker.finish(1).sums().back();
}

/// Arguments: width, height, bits.
void stacking(benchmark::State& state)
{
    const QList<QImage> frames =
        darkFrames(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                   static_cast<int>(state.range(2)));
    bench::Times words;
    bench::Times reading;
    bench::Times atOnce;
    bench::Times asTheyCome;
    for (auto _ : state) {
        words.add([&] { return bench::sumOfWords(frames); });
        reading.add([&] { return sumOfValues(frames); });
        state.SetIterationTime(atOnce.add([&] { return stackAtOnce(frames); }));
        asTheyCome.add([&] { return stackAsTheyCome(frames); });
    }
    state.counters["words_ms"] = words.milliseconds();
    state.counters["read_ms"] = reading.milliseconds();
    state.counters["stack_ms"] = atOnce.milliseconds();
    state.counters["to_read"] = atOnce.seconds() / reading.seconds();
    state.counters["as_they_come_ms"] = asTheyCome.milliseconds();
    state.counters["as_they_come_to_read"] = asTheyCome.seconds() / reading.seconds();
}

qint64 decode(const QStringList& files)
{
    qint64 bytes = 0;
    for (const QString& file : files) {
        bytes += QImageReader(file).read().sizeInBytes();
    }
    return bytes;
}

qsizetype survey(const QStringList& files)
{
    FrameStacker stacker(Mosaic::bayer());
    for (const QString& file : files) {
        stacker.add(file, darkframes::readFrame(file));
    }
    const DarkStack& stack = stacker.finish(2);
    const Survey survey = Survey::of(stack, *stacker.mosaic());
    const std::uint32_t threshold = 40 * darkframes::levelScale(survey.info.bitsPerPixel);
    const Findings findings = Findings::of(stack, survey, {threshold, std::nullopt});
    return darkframes::surveyObject(stack, survey, findings, std::nullopt).size();
}

/// Arguments: width, height, bits.
void surveyOfFiles(benchmark::State& state)
{
    const QTemporaryDir folder;
    for (unsigned i = 0; i < FrameCount; ++i) {
        darkframes::saveFrame(darkFrame(static_cast<int>(state.range(0)),
                                        static_cast<int>(state.range(1)),
                                        static_cast<int>(state.range(2)), i),
                              folder.filePath(darkframes::frameFileName(i)));
    }
    const QStringList files = darkframes::frameFiles({folder.path()});
    bench::Times decoding;
    bench::Times whole;
    for (auto _ : state) {
        decoding.add([&] { return decode(files); });
        state.SetIterationTime(whole.add([&] { return survey(files); }));
    }
    state.counters["decode_ms"] = decoding.milliseconds();
    state.counters["survey_ms"] = whole.milliseconds();
    state.counters["to_decode"] = whole.seconds() / decoding.seconds();
}

/// What a survey of more and more files of 1.3 megapixels takes; the files repeat themselves.
/// Argument: frames.
void surveyOfMoreFiles(benchmark::State& state)
{
    const QTemporaryDir folder;
    for (unsigned i = 0; i < FrameCount; ++i) {
        darkframes::saveFrame(darkFrame(1280, 1024, 8, i),
                              folder.filePath(darkframes::frameFileName(i)));
    }
    const QStringList different = darkframes::frameFiles({folder.path()});
    QStringList files;
    while (files.size() < state.range(0)) {
        files += different;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(survey(files));
    }
}

} // namespace

BENCHMARK(stacking)
    ->ArgNames({"width", "height", "bits"})
    ->ArgsProduct({{1280}, {1024}, {8, 16}})
    ->ArgsProduct({{5472}, {3648}, {8, 16}})
    ->UseManualTime()
    ->Iterations(15)
    ->Unit(benchmark::kMillisecond);

BENCHMARK(surveyOfFiles)
    ->ArgNames({"width", "height", "bits"})
    ->ArgsProduct({{1280}, {1024}, {8, 16}})
    ->ArgsProduct({{5472}, {3648}, {8, 16}})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

BENCHMARK(surveyOfMoreFiles)
    ->ArgName("frames")
    ->RangeMultiplier(10)
    ->Range(10, 1000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
