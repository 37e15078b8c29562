#include "hotpixel/BadpixelListFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QTextStream>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace hotpixel {
namespace {

constexpr const char* CantOpenForReading =
    QT_TRANSLATE_NOOP("BadpixelListModel", "Can't open file for reading.");
constexpr const char* CantOpenForWriting =
    QT_TRANSLATE_NOOP("BadpixelListModel", "Can't open file for writing.");
constexpr const char* CantWrite = QT_TRANSLATE_NOOP("BadpixelListModel", "Can't write file.");

[[noreturn]] void fail(const char* text)
{
    throw std::runtime_error(QCoreApplication::translate("BadpixelListModel", text).toStdString());
}

void openForWriting(QFileDevice& file)
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        fail(CantOpenForWriting);
    }
}

void writeEntries(QFileDevice& file, std::span<const BadpixelEntry> entries)
{
    QTextStream stream(&file);
    for (const BadpixelEntry& entry : entries) {
        if (entry.pixelClass == UserPixel) {
            stream << entry.x << ' ' << entry.y << " 1\n";
        }
    }
    stream.flush();
    if (stream.status() != QTextStream::Ok || !file.flush()) {
        fail(CantWrite);
    }
}

/// Reads three unsigned integers from each line, character by character, as QTextStream reads them
/// from a string that holds the line: with its prefixes, its wrap-around, and its standing still at
/// what is no number, which makes 0 of this field and of all that follow. It goes on behind a sign
/// or 0x without digits, but not behind 0b or a 0 before a digit that is octal and not ASCII. Keeps
/// nothing of the line but the three numbers.
class LineReader
{
public:
    explicit LineReader(std::vector<BadpixelEntry>& entries)
        : m_entries(entries)
    {}

    /// The next character of the file. Carriage returns count as content of a file, not of a line.
    void read(QChar character)
    {
        if (character == u'\r') {
            return;
        }
        if (character == u'\n') {
            endLine();
            return;
        }
        m_lineBegun = true;
        if (m_state == State::Ignore) {
            return;
        }
        // A character that ends a number may begin the next one: "5-3" is 5 and −3.
        if (!continueNumber(character)) {
            endNumber();
            beginNumber(character);
        }
    }

    /// The end of the file, which held @p content or nothing.
    void end(bool content)
    {
        if (m_lineBegun || (content && m_entries.empty())) {
            endLine();
        }
    }

private:
    enum class State {
        Space,  ///< between numbers
        Zero,   ///< a first 0, which may be a number or the begin of a prefix
        Prefix, ///< behind 0x or 0b, before the first digit
        Sign,   ///< behind a sign, before the first digit
        Digits, ///< behind the first digit
        Ignore, ///< nothing of this line counts any more
    };

    /// Takes a character that belongs to the number being read, or to the space before it, or that
    /// stops the reading of this line; false when the number ends before the character.
    bool continueNumber(QChar character)
    {
        switch (m_state) {
        case State::Space:
            beginNumber(character);
            return true;
        case State::Zero:
            return continueZero(character);
        case State::Prefix:
            if (!addDigit(character)) {
                if (m_base == 16) {
                    return false;
                }
                m_state = State::Ignore;
            }
            return true;
        case State::Sign:
        case State::Digits:
            return addDigit(character);
        case State::Ignore:
            break;
        }
        return true;
    }

    void beginNumber(QChar character)
    {
        if (m_state == State::Ignore || character.isSpace()) {
            return;
        }
        m_base = 10;
        if (character == u'0') {
            m_state = State::Zero;
        } else if (character == u'-' || character == u'+') {
            m_negative = character == u'-';
            m_state = State::Sign;
        } else if (!addDigit(character)) {
            m_state = State::Ignore;
        }
    }

    bool continueZero(QChar character)
    {
        if (character == u'x' || character == u'X') {
            m_base = 16;
            m_state = State::Prefix;
        } else if (character == u'b' || character == u'B') {
            m_base = 2;
            m_state = State::Prefix;
        } else if (character.isDigit() && character.digitValue() <= 7) {
            // Octal, whose digits are ASCII only, while its prefix is recognised by any digit.
            m_base = 8;
            m_state = State::Prefix;
            return continueNumber(character);
        } else {
            return addDigit(character);
        }
        return true;
    }

    bool addDigit(QChar character)
    {
        int digit = -1;
        if (m_base == 10) {
            digit = character.isDigit() ? character.digitValue() : -1;
        } else if (character >= u'0' && character <= u'9') {
            digit = character.unicode() - u'0';
        } else if (character >= u'a' && character <= u'f') {
            digit = character.unicode() - u'a' + 10;
        } else if (character >= u'A' && character <= u'F') {
            digit = character.unicode() - u'A' + 10;
        }
        if (digit < 0 || digit >= m_base) {
            return false;
        }
        m_value = m_value * static_cast<std::uint64_t>(m_base) + static_cast<std::uint64_t>(digit);
        m_state = State::Digits;
        return true;
    }

    void endNumber()
    {
        if (m_state == State::Digits) {
            // A value that wrapped to the negative side keeps its sign.
            const bool negate = m_negative && static_cast<std::int64_t>(m_value) > 0;
            m_fields[m_fieldCount] = negate ? 0 - m_value : m_value;
        }
        ++m_fieldCount;
        m_value = 0;
        m_negative = false;
        m_state = m_fieldCount < m_fields.size() ? State::Space : State::Ignore;
    }

    void endLine()
    {
        if (m_state == State::Digits) {
            endNumber();
        }
        m_entries.push_back({static_cast<std::uint16_t>(m_fields[0]),
                             static_cast<std::uint16_t>(m_fields[1]),
                             static_cast<std::uint8_t>(m_fields[2])});
        m_fields = {};
        m_fieldCount = 0;
        m_value = 0;
        m_negative = false;
        m_state = State::Space;
        m_lineBegun = false;
    }

    std::vector<BadpixelEntry>& m_entries;
    std::array<std::uint64_t, 3> m_fields{};
    std::size_t m_fieldCount = 0;
    std::uint64_t m_value = 0;
    int m_base = 10;
    bool m_negative = false;
    bool m_lineBegun = false;
    State m_state = State::Space;
};

} // namespace

void writeListFile(const QString& filename, std::span<const BadpixelEntry> entries)
{
    const QFileInfo target(filename);
    std::error_code ignored;
    // Opening a pipe would wait for someone who reads from it.
    if (filename.isEmpty() || std::filesystem::is_fifo(target.filesystemFilePath(), ignored)) {
        fail(CantOpenForWriting);
    }
    if (target.exists() && !target.isFile()) {
        // A device must not be replaced by a file of its name.
        QFile device(filename);
        openForWriting(device);
        writeEntries(device, entries);
        return;
    }
    QSaveFile file(filename);
    file.setDirectWriteFallback(true);
    openForWriting(file);
    writeEntries(file, entries);
    if (!file.commit()) {
        fail(CantWrite);
    }
}

std::vector<BadpixelEntry> readListFile(const QString& filename)
{
    // Pipes and devices need not ever end, or begin.
    QFile file(filename);
    if (!QFileInfo(filename).isFile() || !file.open(QIODevice::ReadOnly)) {
        fail(CantOpenForReading);
    }

    std::vector<BadpixelEntry> entries;
    LineReader reader(entries);
    QStringDecoder decoder(QStringDecoder::Utf8);
    QByteArray bytes(64 * 1024, Qt::Uninitialized);
    bool content = false;
    for (qint64 size = 0; (size = file.read(bytes.data(), bytes.size())) > 0;) {
        const QByteArrayView chunk(bytes.constData(), size);
        if (!content) {
            content = true;
            if (const auto encoding = QStringConverter::encodingForData(chunk)) {
                decoder = QStringDecoder(*encoding);
            }
        }
        const QString text = decoder.decode(chunk);
        for (const QChar character : text) {
            reader.read(character);
        }
    }
    reader.end(content);
    return entries;
}

} // namespace hotpixel
