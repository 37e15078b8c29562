// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

class Console;

/// A progress bar on the terminal for as long as the object lives, from the second second on; so
/// what is done sooner shows none. Drawn by a thread of its own, since the work may block.
class ProgressBar
{
public:
    /// @param total steps of the work, or 0 when it can't be told how far it is
    ProgressBar(Console& console, QString label, int total = 0);
    ~ProgressBar();

    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Tells that @p done of the steps are done. Any thread.
    void setDone(int done) { m_done = done; }

private:
    void draw();

    Console& m_console;
    const QString m_label;
    const int m_total;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    std::atomic<int> m_done = 0;
    bool m_ended = false;
    std::mutex m_mutex; ///< guards m_ended
    std::condition_variable m_wakeUp;
    std::thread m_thread;
};

namespace cli {

/// One state of the bar: "Label [####......] 4/10". With no @p total a mark that moves with @p tick
/// instead. It takes at most @p width characters: where they are few, the bar becomes shorter, then
/// it is left out, then the label is cut off.
QString progressLine(const QString& label, int done, int total, int tick, qsizetype width = 79);

} // namespace cli
