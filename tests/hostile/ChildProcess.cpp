// SPDX-License-Identifier: MIT
#include "tests/hostile/ChildProcess.h"

#include <QByteArray>
#include <QFile>

#include <array>
#include <exception>
#include <sys/wait.h>
#include <unistd.h>

namespace hostile {
namespace {

/// A figure in KiB of /proc/self/status.
std::int64_t memory(const QByteArray& field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith(field + ':')) {
                return line.mid(field.size() + 1).simplified().split(' ').first().toLongLong();
            }
        }
    }
    return -1;
}

std::string resultOf(const std::function<std::string()>& work)
{
    try {
        return work();
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

ChildReport runInChild(const std::function<std::string()>& work)
{
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0) {
        return {};
    }
    const pid_t child = fork();
    if (child == 0) {
        const std::int64_t before = memory("VmRSS");
        const std::string text = resultOf(work);
        const std::string report = std::to_string(memory("VmHWM") - before) + ' ' + text;
        const bool written =
            write(ends[1], report.data(), report.size()) == static_cast<ssize_t>(report.size());
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    QByteArray report;
    std::array<char, 4096> block = {};
    for (ssize_t size = 0; (size = read(ends[0], block.data(), block.size())) > 0;) {
        report.append(block.data(), size);
    }
    close(ends[0]);
    int status = -1;
    const bool ended = child > 0 && waitpid(child, &status, 0) == child && status == 0;
    const qsizetype blank = report.indexOf(' ');
    return {report.mid(blank + 1).toStdString(), report.left(blank).toLongLong(), ended};
}

} // namespace hostile
