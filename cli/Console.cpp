// SPDX-License-Identifier: MIT
#include "cli/Console.h"

#include "cli/Command.h"
#include "cli/Interruption.h"
#include "cli/SeveralCameras.h"

#include <QByteArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <utility>

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace {

constexpr qsizetype GreatestBarWidth = 30;
constexpr qsizetype LeastBarWidth = 6; ///< a shorter one shows nothing
constexpr qsizetype MarkWidth = 3;

int descriptorOf(std::FILE* stream)
{
#ifdef Q_OS_WIN
    return _fileno(stream);
#else
    return fileno(stream);
#endif
}

bool isTerminal(std::FILE* stream)
{
#ifdef Q_OS_WIN
    return _isatty(descriptorOf(stream)) != 0;
#else
    return isatty(descriptorOf(stream)) != 0;
#endif
}

/// The columns of the terminal behind @p stream; 80 when it does not say.
qsizetype terminalWidth(std::FILE* stream)
{
    constexpr qsizetype UnknownWidth = 80;
#ifdef Q_OS_WIN
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(descriptorOf(stream)));
    return GetConsoleScreenBufferInfo(console, &info) != 0 ? info.dwSize.X : UnknownWidth;
#else
    winsize size{};
    const bool known = ioctl(descriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : UnknownWidth;
#endif
}

} // namespace

Console::Console(std::FILE* in, std::FILE* out, std::FILE* err, bool showsUtf8)
    : m_in(in)
    , m_out(out)
    , m_err(err)
    , m_showsUtf8(showsUtf8)
    , m_canAsk(isTerminal(in))
    , m_showsProgress(isTerminal(err))
{}

void Console::result(const QString& text)
{
    const std::lock_guard lock(m_mutex);
    clearProgressLine();
    writeForPeople(m_out, text + u'\n');
}

void Console::json(const QJsonObject& object)
{
    const std::lock_guard lock(m_mutex);
    clearProgressLine();
    write(m_out, QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
}

void Console::notice(const QString& text)
{
    const std::lock_guard lock(m_mutex);
    clearProgressLine();
    // Results that came before have to stand before it where both go to one terminal.
    std::fflush(m_out);
    writeForPeople(m_err, text + u'\n');
    std::fflush(m_err);
}

void Console::setProgressLine(const QString& text)
{
    const std::lock_guard lock(m_mutex);
    if (!m_showsProgress || text == m_progressLine) {
        return;
    }
    clearProgressLine();
    writeForPeople(m_err, text);
    std::fflush(m_err);
    m_progressLine = text;
}

qsizetype Console::progressWidth() const
{
    // ^C, and the last column, behind which some terminals begin a new line at once.
    constexpr qsizetype KeptFree = 3;
    return std::max<qsizetype>(1, terminalWidth(m_err) - KeptFree);
}

bool Console::confirm(const QString& question, const Interruption& interruption)
{
    {
        const std::lock_guard lock(m_mutex);
        clearProgressLine();
        std::fflush(m_out);
        writeForPeople(m_err, question + QStringLiteral(" [y/N] "));
        std::fflush(m_err);
    }
    std::array<char, 64> line{};
    if (!interruption.waitForInput(descriptorOf(m_in)) ||
        std::fgets(line.data(), static_cast<int>(line.size()), m_in) == nullptr) {
        notice(QString());
        return false;
    }
    const QString answer = QString::fromLocal8Bit(line.data()).trimmed().toLower();
    return answer == QStringLiteral("y") || answer == QStringLiteral("yes");
}

bool Console::flush()
{
    const std::lock_guard lock(m_mutex);
    clearProgressLine();
    std::fflush(m_err);
    if (std::fflush(m_out) != 0) {
        m_failed = true;
    }
    return !m_failed;
}

void Console::write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stream) != size && stream == m_out) {
        m_failed = true;
    }
}

void Console::writeForPeople(std::FILE* stream, QString text)
{
    if (!m_showsUtf8) {
        text.replace(u'×', u'x').replace(u'–', u'-');
    }
    write(stream, text);
}

void Console::clearProgressLine()
{
    if (m_progressLine.isEmpty()) {
        return;
    }
    // Blanks instead of an escape sequence: every terminal knows them. All over the line, since
    // what was typed meanwhile stands behind the text.
    write(m_err, u'\r' + QString(terminalWidth(m_err) - 1, u' ') + u'\r');
    std::fflush(m_err);
    m_progressLine.clear();
}

Report::Report(CommandContext& context)
    : m_console(context.console)
    , m_json(context.json)
    , m_share(context.share)
{}

Report::~Report()
{
    if (m_share != nullptr) {
        m_share->object = m_object;
    } else if (m_json && !m_object.isEmpty()) {
        m_console.json(m_object);
    }
}

void Report::line(const QString& text)
{
    if (!m_json) {
        m_console.result(text);
    }
}

void Report::insert(const char* key, const QJsonValue& value)
{
    m_object.insert(QLatin1String(key), value);
}

void Report::setSummary(const QString& text)
{
    if (m_share != nullptr) {
        m_share->summary = text;
    }
}

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
