// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Console.h"

#include <QByteArray>

#include <cstdio>
#include <memory>

/// A console whose two outputs can be read, and whose input is empty. It shows UTF-8 wherever the
/// tests run.
class RecordedConsole
{
public:
    explicit RecordedConsole(bool showsUtf8 = true)
        : m_console(m_in.get(), m_out.get(), m_err.get(), showsUtf8)
    {}

    Console& console() { return m_console; }

    [[nodiscard]] QByteArray out() { return contentOf(m_out.get()); }
    [[nodiscard]] QByteArray err() { return contentOf(m_err.get()); }

private:
    struct Close
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Close>;

    static QByteArray contentOf(std::FILE* file)
    {
        std::fflush(file);
        QByteArray content(std::ftell(file), '\0');
        std::rewind(file);
        content.resize(static_cast<qsizetype>(
            std::fread(content.data(), 1, static_cast<std::size_t>(content.size()), file)));
        std::fseek(file, 0, SEEK_END);
        return content;
    }

    File m_in{std::tmpfile()};
    File m_out{std::tmpfile()};
    File m_err{std::tmpfile()};
    Console m_console;
};
