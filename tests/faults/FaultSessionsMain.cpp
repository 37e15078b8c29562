// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"
#include "tests/faults/FaultSession.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

// Every call of the SDK in a long session of the editor fails once, each in a session of its own.
//
//     vorn_fault_sessions [STRIDE [FIRST]]   of all faults every STRIDE-th, from number FIRST on
//
// The sessions run in processes of their own, several at a time since they mostly wait; a crash
// or a hang takes only its own process with it and is told with the fault's name. Such a process is
// given the faults as arguments: OPERATION:CALL:GARBAGE, or "none".

namespace {

constexpr std::size_t ProcessesPerCore = 3;

QString textOf(const SdkFault& fault)
{
    return QStringLiteral("%1:%2:%3")
        .arg(static_cast<int>(fault.operation))
        .arg(fault.call)
        .arg(fault.garbage ? 1 : 0);
}

std::optional<SdkFault> faultOf(const QString& text)
{
    const QStringList fields = text.split(u':');
    if (fields.size() != 3) {
        return {};
    }
    return SdkFault{static_cast<SdkOperation>(fields[0].toInt()), fields[1].toInt(),
                    fields[2] == QLatin1String("1")};
}

QString describe(const QString& text)
{
    const std::optional<SdkFault> fault = faultOf(text);
    return fault ? QStringLiteral("%1, call %2%3")
                       .arg(QLatin1String(name(fault->operation).data()))
                       .arg(fault->call)
                       .arg(fault->garbage ? QStringLiteral(", with garbage") : QString())
                 : QStringLiteral("no fault");
}

int runSessions(int argc, char** argv)
{
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    const QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QApplication::arguments();
    bool good = true;
    for (qsizetype i = 2; i < arguments.size(); ++i) {
        std::printf("BEGIN %s\n", qPrintable(arguments[i]));
        std::fflush(stdout);
        const std::optional<SdkFault> fault = faultOf(arguments[i]);
        const SessionReport report = runFaultSession(fault);
        for (const QString& complaint : report.complaints) {
            std::printf("COMPLAINT %s\n", qPrintable(complaint));
            good = false;
        }
        for (const QString& absent : report.absent) {
            std::printf("ABSENT %s\n", qPrintable(absent));
        }
        if (!fault) {
            for (std::size_t operation = 0; operation < SdkOperationCount; ++operation) {
                std::printf("CALLS %d %d\n", static_cast<int>(operation), report.calls[operation]);
            }
        }
        std::printf("END %d\n", report.struck ? 1 : 0);
        std::fflush(stdout);
    }
    return good ? 0 : 1;
}

struct Tally
{
    int struck = 0;
    int missed = 0; ///< a session with fewer calls than the one that was counted
    int helped = 0; ///< faults after which the camera had to be closed and opened again
    int complaints = 0;
    std::vector<int> calls = std::vector<int>(SdkOperationCount);
};

void evaluate(const QProcess& process, const QByteArray& output, Tally& tally)
{
    QString current;
    bool ended = true;
    bool helped = false;
    for (const QByteArray& line : output.split('\n')) {
        const QList<QByteArray> words = line.trimmed().split(' ');
        if (words[0] == "BEGIN") {
            current = QString::fromUtf8(words.value(1));
            ended = false;
            helped = false;
        } else if (words[0] == "COMPLAINT") {
            ++tally.complaints;
            std::printf("%s: %s\n", qPrintable(describe(current)), line.mid(10).constData());
        } else if (words[0] == "ABSENT") {
            helped = true;
        } else if (words[0] == "CALLS") {
            tally.calls[words.value(1).toUInt()] = words.value(2).toInt();
        } else if (words[0] == "END") {
            ended = true;
            tally.helped += helped ? 1 : 0;
            ++(words.value(1) == "1" ? tally.struck : tally.missed);
        }
    }
    const bool crashed = process.exitStatus() != QProcess::NormalExit || process.exitCode() > 1;
    if (!ended || crashed) {
        ++tally.complaints;
        std::printf("%s: the process ended with status %d\n%s\n", qPrintable(describe(current)),
                    process.exitCode(), output.right(6000).constData());
    }
    std::fflush(stdout);
}

std::unique_ptr<QProcess> start(const QStringList& faults)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QCoreApplication::applicationFilePath(),
                   QStringList{QStringLiteral("--sessions")} + faults);
    return process;
}

int runAll(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int stride = std::max(1, arguments.value(1, QStringLiteral("1")).toInt());
    const int first = arguments.value(2).toInt();

    Tally tally;
    const std::unique_ptr<QProcess> faultless = start({QStringLiteral("none")});
    faultless->waitForFinished(-1);
    evaluate(*faultless, faultless->readAll(), tally);
    if (tally.complaints > 0) {
        return 1;
    }
    tally.missed = 0;
    int calls = 0;
    QStringList all;
    for (std::size_t i = 0; i < SdkOperationCount; ++i) {
        const auto operation = static_cast<SdkOperation>(i);
        calls += tally.calls[i];
        for (int call = 1; call <= tally.calls[i]; ++call) {
            all.append(textOf({operation, call, false}));
            if (hasOutParameters(operation)) {
                all.append(textOf({operation, call, true}));
            }
        }
    }
    QStringList chosen;
    for (qsizetype i = first; i < all.size(); i += stride) {
        chosen.append(all[i]);
    }
    std::printf("%d calls in a session; %d faults, of which %d are injected\n", calls,
                static_cast<int>(all.size()), static_cast<int>(chosen.size()));
    std::fflush(stdout);

    // Few sessions in each process, so that no process keeps all others waiting in the end.
    constexpr qsizetype FaultsPerProcess = 8;
    const auto most = ProcessesPerCore * static_cast<std::size_t>(QThread::idealThreadCount());
    std::vector<std::unique_ptr<QProcess>> running;
    qsizetype next = 0;
    while (next < chosen.size() || !running.empty()) {
        while (running.size() < most && next < chosen.size()) {
            running.push_back(start(chosen.mid(next, FaultsPerProcess)));
            next += FaultsPerProcess;
        }
        running.front()->waitForFinished(-1);
        evaluate(*running.front(), running.front()->readAll(), tally);
        running.erase(running.begin());
    }
    std::printf("%d faults injected, %d not reached, %d made it necessary to open the camera "
                "again, %d complaints\n",
                tally.struck, tally.missed, tally.helped, tally.complaints);
    return tally.complaints == 0 && tally.struck > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const bool isSession = argc > 1 && QByteArray(argv[1]) == "--sessions";
    return isSession ? runSessions(argc, argv) : runAll(argc, argv);
}
