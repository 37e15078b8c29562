// SPDX-License-Identifier: MIT
#include "cli/ProgressBar.h"

#include "cli/Console.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype GreatestBarWidth = 30;
constexpr qsizetype LeastBarWidth = 6; ///< a shorter one shows nothing
constexpr qsizetype MarkWidth = 3;

} // namespace

ProgressBar::ProgressBar(Console& console, QString label, int total)
    : m_console(console)
    , m_label(std::move(label))
    , m_total(total)
{
    if (m_console.showsProgress()) {
        m_thread = std::thread(&ProgressBar::draw, this);
    }
}

ProgressBar::~ProgressBar()
{
    if (m_thread.joinable()) {
        {
            const std::lock_guard lock(m_mutex);
            m_ended = true;
        }
        m_wakeUp.notify_one();
        m_thread.join();
        m_console.setProgressLine(QString());
    }
}

void ProgressBar::draw()
{
    using namespace std::chrono_literals;
    std::unique_lock lock(m_mutex);
    auto next = m_start + 1s;
    int tick = 0;
    while (!m_wakeUp.wait_until(lock, next, [this] { return m_ended; })) {
        m_console.setProgressLine(
            cli::progressLine(m_label, m_done, m_total, tick, m_console.progressWidth()));
        ++tick;
        next += 200ms;
    }
}

QString cli::progressLine(const QString& label, int done, int total, int tick, qsizetype width)
{
    const QString count = total > 0 ? QStringLiteral(" %1/%2").arg(done).arg(total) : QString();
    const qsizetype barWidth = std::min(GreatestBarWidth, width - label.size() - count.size() -
                                                              QStringView(u" []").size());
    if (barWidth < LeastBarWidth) {
        return label.left(width - count.size()) + count;
    }
    QString bar(barWidth, u'.');
    if (total > 0) {
        const qsizetype filled = barWidth * std::clamp(done, 0, total) / total;
        bar.replace(0, filled, QString(filled, u'#'));
    } else {
        // There and back again.
        const qsizetype path = barWidth - MarkWidth;
        const qsizetype step = tick % (2 * path);
        bar.replace(step <= path ? step : 2 * path - step, MarkWidth, QString(MarkWidth, u'#'));
    }
    return QStringLiteral("%1 [%2]%3").arg(label, bar, count);
}
