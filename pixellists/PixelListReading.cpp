// SPDX-License-Identifier: MIT
#include "pixellists/PixelListReading.h"

#include "pixellists/PixelListError.h"

#include <QCoreApplication>
#include <QIODevice>

#include <algorithm>
#include <utility>

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(PixelListReading)
};

namespace {

constexpr auto ByteOrderMark = "\xef\xbb\xbf";

/// @p found as a part of one line of a message, whatever it is.
QString quoted(std::string_view found)
{
    constexpr std::size_t Most = 40;
    QString text;
    for (const char character : found.substr(0, Most)) {
        const bool printable = character >= ' ' && character <= '~';
        text += printable ? QLatin1Char(character) : QLatin1Char('?');
    }
    return found.size() > Most ? text + QStringLiteral("...") : text;
}

} // namespace

PixelListReading pixellists::readPixelList(QIODevice& device, const QString& fileName,
                                           const PixelListFormat& format,
                                           const PixelListReadOptions& options)
{
    PixelListReading reading;
    PixelListInput input(device, fileName, format, options, reading);
    format.read(input);
    input.finish();
    return reading;
}

PixelListInput::PixelListInput(QIODevice& device, QString fileName, const PixelListFormat& format,
                               const PixelListReadOptions& options, PixelListReading& reading)
    : m_device(device)
    , m_fileName(std::move(fileName))
    , m_format(format)
    , m_options(options)
    , m_reading(reading)
{}

bool PixelListInput::nextLine(std::string_view& line)
{
    while (readLine()) {
        line = {m_line.constData(), static_cast<std::size_t>(m_line.size())};
        if (m_lineNumber == 1 && line.starts_with(ByteOrderMark)) {
            line.remove_prefix(std::string_view(ByteOrderMark).size());
        }
        if (line.size() <= m_longestLine) {
            return true;
        }
        refuse(Text::tr("a line of at most %1 bytes").arg(m_longestLine));
    }
    return false;
}

bool PixelListInput::readLine()
{
    // Two bytes may belong to the end of the line, three to the byte order mark.
    constexpr qint64 Most = pixellists::LongestLine + 5;
    m_line.resize(Most + 1);
    qint64 length = m_device.readLine(m_line.data(), m_line.size());
    if (length < 0 || (length == 0 && m_device.atEnd())) {
        m_line.clear();
        return false;
    }
    ++m_lineNumber;
    const auto hasEnd = [&] { return length > 0 && m_line[length - 1] == '\n'; };
    if (length == Most && !hasEnd()) {
        // What there is of it is too long already, so nothing is kept of the rest.
        QByteArray skipped(Most + 1, Qt::Uninitialized);
        for (qint64 size = Most; size == Most && skipped[size - 1] != '\n';) {
            size = m_device.readLine(skipped.data(), skipped.size());
        }
    }
    if (hasEnd()) {
        --length;
    }
    if (length > 0 && m_line[length - 1] == '\r') {
        --length;
    }
    m_line.truncate(length);
    return true;
}

QByteArray PixelListInput::wholeFile(qint64 most)
{
    if (m_device.size() > most) {
        fail(Text::tr("%1: is too large to be a list of this format.").arg(m_fileName));
    }
    return m_device.read(m_device.size());
}

void PixelListInput::add(const ListedPixel& pixel)
{
    makeRoom(1);
    m_reading.pixels.push_back(pixel);
}

void PixelListInput::addRow(unsigned y)
{
    addRectangle(0, static_cast<unsigned>(std::max(m_options.size.width(), 1)) - 1, y, y);
}

void PixelListInput::addColumn(unsigned x)
{
    addRectangle(x, x, 0, static_cast<unsigned>(std::max(m_options.size.height(), 1)) - 1);
}

void PixelListInput::addRectangle(unsigned x1, unsigned x2, unsigned y1, unsigned y2)
{
    if (m_options.size.isEmpty()) {
        fail(Text::tr("%1, line %2: rows, columns and rectangles need the sensor's size (--size).")
                 .arg(m_fileName, QString::number(m_lineNumber)));
    }
    const auto pixelsIn = [](std::uint64_t columns, std::uint64_t rows) { return columns * rows; };
    const auto width = static_cast<unsigned>(m_options.size.width());
    const auto height = static_cast<unsigned>(m_options.size.height());
    const unsigned endX = std::min(x2 + 1, width);
    const unsigned endY = std::min(y2 + 1, height);
    const std::uint64_t inside = pixelsIn(endX > x1 ? endX - x1 : 0, endY > y1 ? endY - y1 : 0);
    m_outside += pixelsIn(x2 - x1 + 1, y2 - y1 + 1) - inside;
    makeRoom(inside);
    for (unsigned y = y1; y < endY; ++y) {
        for (unsigned x = x1; x < endX; ++x) {
            m_reading.pixels.push_back(
                {.x = static_cast<std::uint16_t>(x), .y = static_cast<std::uint16_t>(y)});
        }
    }
}

void PixelListInput::refuse()
{
    refuse(m_format.entry);
}

void PixelListInput::refuse(const QString& expected)
{
    refuseAt(m_lineNumber, expected, {m_line.constData(), static_cast<std::size_t>(m_line.size())});
}

void PixelListInput::refuseAt(std::uint64_t line, const QString& expected, std::string_view found)
{
    const QString text = Text::tr("%1, line %2: expected %3, not \"%4\".")
                             .arg(m_fileName, QString::number(line), expected, quoted(found));
    if (!m_options.lenient) {
        fail(text);
    }
    if (tellsBadLines()) {
        m_reading.firstBadLines.append(text);
    }
    ++m_reading.badLines;
}

bool PixelListInput::tellsBadLines() const
{
    return !m_options.lenient || m_reading.firstBadLines.size() < pixellists::MostBadLinesTold;
}

void PixelListInput::note(const QString& text)
{
    m_reading.notes.append(text);
}

void PixelListInput::finish()
{
    if (m_outside > 0) {
        note(Text::tr("%1 of rows, columns and rectangles lie outside %2 × %3: left out")
                 .arg(m_outside)
                 .arg(m_options.size.width())
                 .arg(m_options.size.height()));
    }
}

void PixelListInput::fail(const QString& text) const
{
    throw PixelListError(text);
}

void PixelListInput::makeRoom(std::uint64_t pixels)
{
    if (pixels > pixellists::MostPixels - m_reading.pixels.size()) {
        fail(Text::tr("%1: has more than %2 entries.")
                 .arg(m_fileName, QString::number(pixellists::MostPixels)));
    }
}
