// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListModel.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int UserEntries = 5000;
constexpr int FileLines = 1000000;

QPoint randomPosition(std::mt19937& random)
{
    std::uniform_int_distribution<int> coordinate(0, 5000);
    const int x = coordinate(random);
    return {x, coordinate(random)};
}

/// A list file of as many lines as asked for, at random positions.
class ListFile
{
public:
    explicit ListFile(int lines)
    {
        QFile file(name());
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("Can't write %s", qPrintable(name()));
        }
        QTextStream stream(&file);
        std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed): repeatable
        for (int line = 0; line < lines; ++line) {
            const QPoint position = randomPosition(random);
            stream << position.x() << ' ' << position.y() << " 1\n";
        }
    }

    [[nodiscard]] QString name() const { return m_folder.filePath("list.txt"); }

private:
    QTemporaryDir m_folder;
};

void addEntries(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state) {
        BadpixelListModel model;
        model.setMaxUserEntries(UserEntries);
        std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed): repeatable
        while (model.rowCount() < UserEntries) {
            model.addBadpixel(randomPosition(random));
        }
    }
    state.SetItemsProcessed(state.iterations() * UserEntries);
}
BENCHMARK(addEntries)->Unit(benchmark::kMillisecond);

/// The whole list is walked: nothing is there.
void findNothing(benchmark::State& state)
{
    const ListFile file(UserEntries);
    BadpixelListModel model;
    model.loadFromFile(file.name());
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(model.findBadpixel({60000, 60000}, 1));
    }
}
BENCHMARK(findNothing)->Unit(benchmark::kMicrosecond);

void loadFile(benchmark::State& state)
{
    const ListFile file(FileLines);
    for ([[maybe_unused]] auto iteration : state) {
        BadpixelListModel model;
        model.loadFromFile(file.name());
    }
    state.SetItemsProcessed(state.iterations() * FileLines);
}
BENCHMARK(loadFile)->Unit(benchmark::kMillisecond);

/// The peer of loadFile(): the toolkit's text stream, line by line.
void loadFileByTextStream(benchmark::State& state)
{
    const ListFile list(FileLines);
    for ([[maybe_unused]] auto iteration : state) {
        QFile file(list.name());
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            qFatal("Can't read %s", qPrintable(list.name()));
        }
        QTextStream stream(&file);
        QString line;
        while (stream.readLineInto(&line)) {
            QTextStream fields(&line);
            unsigned x = 0;
            unsigned y = 0;
            unsigned pixelClass = 0;
            fields >> x >> y >> pixelClass;
            benchmark::DoNotOptimize(x + y + pixelClass);
        }
    }
    state.SetItemsProcessed(state.iterations() * FileLines);
}
BENCHMARK(loadFileByTextStream)->Unit(benchmark::kMillisecond);

/// The floor of loadFile(): reading the bytes.
void readBytes(benchmark::State& state)
{
    const ListFile list(FileLines);
    for ([[maybe_unused]] auto iteration : state) {
        QFile file(list.name());
        if (!file.open(QIODevice::ReadOnly)) {
            qFatal("Can't read %s", qPrintable(list.name()));
        }
        benchmark::DoNotOptimize(file.readAll());
    }
}
BENCHMARK(readBytes)->Unit(benchmark::kMillisecond);

void saveFile(benchmark::State& state)
{
    const ListFile list(FileLines);
    const ListFile target(0);
    BadpixelListModel model;
    model.loadFromFile(list.name());
    for ([[maybe_unused]] auto iteration : state) {
        model.saveAsFile(target.name());
    }
    state.SetItemsProcessed(state.iterations() * FileLines);
}
BENCHMARK(saveFile)->Unit(benchmark::kMillisecond);

void clearUserEntries(benchmark::State& state)
{
    const ListFile file(FileLines);
    BadpixelListModel model;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        model.loadFromFile(file.name());
        state.ResumeTiming();
        model.clearUserBadpixelList();
    }
}
BENCHMARK(clearUserEntries)->Unit(benchmark::kMillisecond);

/// By x; with the argument 1, a list that is sorted already.
void sortEntries(benchmark::State& state)
{
    const ListFile file(FileLines);
    BadpixelListModel model;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        model.clearBadpixelList();
        model.loadFromFile(file.name());
        if (state.range(0) == 1) {
            model.sort(0, Qt::AscendingOrder);
        }
        state.ResumeTiming();
        model.sort(0, Qt::AscendingOrder);
    }
}
BENCHMARK(sortEntries)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
