// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelListFormat.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <string_view>

class QIODevice;

/// How a list is read.
struct PixelListReadOptions
{
    QSize size;           ///< of the sensor in pixels; empty when nobody told it
    bool lenient = false; ///< lines that hold no entry are left out, instead of being refused
};

/// A list as it was read.
struct PixelListReading
{
    PixelList pixels;
    std::uint64_t badLines = 0; ///< how many lines were left out
    QStringList firstBadLines;  ///< what is wrong with the first ten of them, a line each
    QStringList notes;          ///< in numbers, what the file says that this list does not
};

namespace pixellists {

/// How many bad lines PixelListReading::firstBadLines tells of.
constexpr qsizetype MostBadLinesTold = 10;

/// Longer lines are of no list.
constexpr std::size_t LongestLine = 4096;

/// Reads a list of pixels.
///
/// @param device open for reading, and not in text mode
/// @param fileName how it is called in messages
/// @param format not of images
/// @throws PixelListError "FILE, line N: expected ..., not ..." for a line that holds no entry,
///         unless @c lenient is set; "FILE: ..." for what has no lines, more than MostPixels
///         entries, and rows, columns and rectangles without a size.
PixelListReading readPixelList(QIODevice& device, const QString& fileName,
                               const PixelListFormat& format, const PixelListReadOptions& options);

} // namespace pixellists

/// What the reader of a format takes its lines from and gives its pixels to.
class PixelListInput
{
public:
    PixelListInput(QIODevice& device, QString fileName, const PixelListFormat& format,
                   const PixelListReadOptions& options, PixelListReading& reading);

    /// The next line without its end, which holds until the next call; false at the end of the
    /// file. A line that is too long is refused as a whole.
    [[nodiscard]] bool nextLine(std::string_view& line);

    /// The whole file, for what is not made of lines.
    /// @throws PixelListError for more than @p most bytes.
    [[nodiscard]] QByteArray wholeFile(qint64 most);

    /// From now on lines may have @p bytes at most.
    void setLongestLine(std::size_t bytes) { m_longestLine = bytes; }

    /// The number of the line that nextLine() gave last, from 1.
    [[nodiscard]] std::uint64_t lineNumber() const { return m_lineNumber; }

    void add(const ListedPixel& pixel);

    // All pixels of a part of the sensor. What lies beside it is left out and counted.

    void addRow(unsigned y);
    void addColumn(unsigned x);
    /// @param x2, y2 not less than the others; both belong to it
    void addRectangle(unsigned x1, unsigned x2, unsigned y1, unsigned y2);

    /// Says that the last line holds no entry.
    /// @throws PixelListError unless such lines are left out.
    void refuse();
    /// The same for a line that is to hold something else.
    /// @param expected what, as in "expected x and y"
    void refuse(const QString& expected);
    /// Whether the next refusal says more than that there is one more.
    [[nodiscard]] bool tellsBadLines() const;
    /// The same for what nextLine() does not know.
    /// @param found how it stands there
    void refuseAt(std::uint64_t line, const QString& expected, std::string_view found);

    /// Says something for PixelListReading::notes.
    void note(const QString& text);

    /// Adds what has been counted to the notes.
    void finish();

private:
    [[noreturn]] void fail(const QString& text) const;
    void makeRoom(std::uint64_t pixels);
    bool readLine();

    QIODevice& m_device;
    const QString m_fileName;
    const PixelListFormat& m_format;
    const PixelListReadOptions& m_options;
    PixelListReading& m_reading;
    std::size_t m_longestLine = pixellists::LongestLine;
    std::uint64_t m_lineNumber = 0;
    std::uint64_t m_outside = 0;
    QByteArray m_line;
};
