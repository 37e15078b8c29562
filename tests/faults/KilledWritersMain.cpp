// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "hotpixel/BadpixelListFile.h"
#include "simulator/SimulatedCameraSdk.h"
#include "support/Utf8Locale.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <random>
#include <vector>

// Kills writers of list files and of the editor's settings at random moments: every file is then
// the old one or the new one, whole, and the next writer goes on.
//
//     vorn_killed_writers KILLS [SEED]
//
// A writer is this program again: --lists FILE, or --settings. It says "ready" once it has written,
// and goes on writing until it is killed.

namespace {

using Entries = std::vector<BadpixelEntry>;

Entries listOf(std::uint16_t mark, std::uint16_t count)
{
    Entries entries;
    for (std::uint16_t i = 0; i < count; ++i) {
        entries.push_back({mark, i, UserPixel});
    }
    return entries;
}

const std::vector<Entries>& lists()
{
    static const std::vector<Entries> all{listOf(11111, 3000), listOf(222, 1500), {}};
    return all;
}

void sayReady()
{
    std::printf("ready\n");
    std::fflush(stdout);
}

[[noreturn]] void writeLists(const QString& fileName)
{
    for (std::size_t i = 0;; ++i) {
        hotpixel::writeListFile(fileName, lists()[i % lists().size()]);
        if (i == 0) {
            sayReady();
        }
    }
}

// Both fit on the offscreen platform's screen of 800 × 800: a newer Qt makes a window smaller that
// comes back on a screen it does not fit on.
constexpr int WindowWidths[] = {700, 760};

[[noreturn]] void writeSettings()
{
    SimulatedCameraSdk sdk(BusDescription{});
    for (int i = 0;; ++i) {
        {
            MainWindow window(sdk);
            window.resize(WindowWidths[i % 2], 600);
        }
        if (i == 0) {
            sayReady();
        }
    }
}

/// Starts a writer, lets it live for a random while once it is ready, and kills it.
bool runAndKill(const QStringList& arguments, int lifeMsec)
{
    QProcess writer;
    writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    writer.start(QCoreApplication::applicationFilePath(), arguments);
    while (!writer.canReadLine()) {
        if (!writer.waitForReadyRead(120'000)) {
            std::printf("A writer did not get to write.\n");
            return false;
        }
    }
    QThread::usleep(static_cast<unsigned long>(lifeMsec) * 100);
    writer.kill();
    writer.waitForFinished(-1);
    return writer.exitStatus() == QProcess::CrashExit;
}

bool isWholeList(const QString& fileName)
{
    const Entries found = hotpixel::readListFile(fileName);
    for (const Entries& list : lists()) {
        if (found == list) {
            return true;
        }
    }
    return false;
}

bool areWholeSettings(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || !file.readAll().endsWith('\n')) {
        return false;
    }
    const QSettings settings(fileName, QSettings::IniFormat);
    QMainWindow window;
    return settings.status() == QSettings::NoError &&
           window.restoreGeometry(
               settings.value(QStringLiteral("VornHotpixelEditor/geometry")).toByteArray()) &&
           (window.width() == WindowWidths[0] || window.width() == WindowWidths[1]) &&
           window.restoreState(
               settings.value(QStringLiteral("VornHotpixelEditor/state")).toByteArray());
}

int killWriters(int kills, unsigned seed)
{
    constexpr int Longest = 400; // tenths of a millisecond
    const QString list = QDir::home().filePath(QStringLiteral("list.txt"));
    const QString settings = QDir::home().filePath(QStringLiteral("QEM/Vorn.conf"));
    std::printf("seed %u\n", seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> life(0, Longest);
    int torn = 0;
    for (int kill = 0; kill < kills; ++kill) {
        const bool ofList = kill % 2 == 0;
        if (!runAndKill(ofList ? QStringList{QStringLiteral("--lists"), list}
                               : QStringList{QStringLiteral("--settings")},
                        life(random))) {
            return 1;
        }
        if (!(ofList ? isWholeList(list) : areWholeSettings(settings))) {
            ++torn;
            std::printf("kill %d: %s is not whole\n", kill, qPrintable(ofList ? list : settings));
        }
    }
    std::printf("%d writers killed, %d files torn\n", kills, torn);
    return torn == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QByteArray first = argc > 1 ? argv[1] : "";
    if (first == "--lists") {
        const QCoreApplication application(argc, argv);
        writeLists(QCoreApplication::arguments().value(2));
    }
    if (first == "--settings") {
        const QApplication application(argc, argv);
        writeSettings();
    }
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const unsigned seed = arguments.size() > 2 ? arguments[2].toUInt() : std::random_device()();
    return killWriters(arguments.value(1, QStringLiteral("60")).toInt(), seed);
}
