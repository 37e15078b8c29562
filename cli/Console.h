// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdio>
#include <mutex>

class Interruption;

/// Where a command talks: results to standard output, notices, errors and the progress line to
/// standard error, questions to the terminal, all in UTF-8. Any thread; a line is never torn by
/// another.
class Console
{
public:
    /// The three streams stay the caller's and must outlive the console.
    Console(std::FILE* in, std::FILE* out, std::FILE* err);

    /// Writes @p text and a line end to standard output.
    void result(const QString& text);

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
    void clearProgressLine();

    std::FILE* m_in;
    std::FILE* m_out;
    std::FILE* m_err;
    bool m_canAsk;
    bool m_showsProgress;
    bool m_failed = false;
    QString m_progressLine; ///< what stands on the terminal now
    std::mutex m_mutex;
};
