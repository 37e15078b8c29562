// SPDX-License-Identifier: MIT
#pragma once

#include "support/Utf8Locale.h"

#include <QJsonObject>
#include <QString>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

class Interruption;
struct CameraShare;
struct CommandContext;

/// Where a command talks: results to standard output, notices, errors and the progress line to
/// standard error, questions to the terminal, all in UTF-8. Where people's locale shows no UTF-8,
/// they read "x" for "×" and "-" for "–"; machines read the same everywhere. Any thread; a line is
/// never torn by another.
class Console
{
public:
    /// The three streams stay the caller's and must outlive the console.
    Console(std::FILE* in, std::FILE* out, std::FILE* err,
            bool showsUtf8 = support::environmentShowsUtf8());

    /// Writes @p text and a line end to standard output.
    void result(const QString& text);

    /// Writes @p object on one line to standard output.
    void json(const QJsonObject& object);

    /// Writes @p text and a line end to standard error.
    void notice(const QString& text);

    /// Replaces the progress line, which stands below everything else; an empty text removes it.
    /// @param text at most progressWidth() characters
    void setProgressLine(const QString& text);

    /// How long a progress line may be on the terminal as it is now, so that it and what a key that
    /// is pressed meanwhile shows (as ^C) stay on one line.
    [[nodiscard]] qsizetype progressWidth() const;

    /// Whether somebody can see a progress line: standard error is a terminal.
    [[nodiscard]] bool showsProgress() const { return m_showsProgress; }

    /// Whether somebody can answer: standard input is a terminal.
    [[nodiscard]] bool canAsk() const { return m_canAsk; }

    /// Asks and waits for an answer.
    /// @return true for "y" and "yes"; false for everything else, the end of the input, and when
    ///         @p interruption comes first.
    [[nodiscard]] bool confirm(const QString& question, const Interruption& interruption);

    /// Hands everything on to the system.
    /// @return false when a result could not be written, as on a full disk or a closed pipe.
    [[nodiscard]] bool flush();

private:
    void write(std::FILE* stream, const QString& text);
    void writeForPeople(std::FILE* stream, QString text);
    void clearProgressLine();

    std::FILE* m_in;
    std::FILE* m_out;
    std::FILE* m_err;
    bool m_showsUtf8;
    bool m_canAsk;
    bool m_showsProgress;
    bool m_failed = false;
    QString m_progressLine; ///< what stands on the terminal now
    std::mutex m_mutex;
};

/// The results of a command: lines for people as they come, or one object for machines when the
/// report goes, also when it does with an exception. The object of one of several cameras goes to
/// its CameraShare instead of the console.
class Report
{
public:
    /// @param console must outlive the report
    /// @param json whether machines read it
    Report(Console& console, bool json)
        : m_console(console)
        , m_json(json)
    {}

    /// As the context says it, which must outlive the report.
    explicit Report(CommandContext& context);

    /// Nothing is printed of an object that nothing was inserted into.
    ~Report();

    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    void line(const QString& text);
    void insert(const char* key, const QJsonValue& value);

    /// What the table of several cameras says about this one, in a few words.
    void setSummary(const QString& text);

private:
    Console& m_console;
    const bool m_json;
    CameraShare* const m_share = nullptr;
    QJsonObject m_object;
};

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
