// SPDX-License-Identifier: MIT
#include "cli/UserListFile.h"

#include "cli/CommandError.h"
#include "cli/EntryText.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace cli {
namespace {

constexpr qint64 MaxFileSize = qint64{16} << 20; ///< several times the largest list

QString tr(const char* text)
{
    return QCoreApplication::translate("UserListFile", text);
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

QString notAnEntry()
{
    return tr("this is no user entry (x, y and the class 1).");
}

/// Takes a number up to @p maximum off the front of @p line. To the editor 012 is the octal 10, so
/// no number with a leading 0 passes: what goes into a camera must not depend on the reader.
/// @return why it is none, or nothing.
QString takeNumber(std::string_view& line, unsigned maximum, unsigned& number)
{
    while (!line.empty() && isBlank(line.front())) {
        line.remove_prefix(1);
    }
    const char* const end = line.data() + line.size();
    const auto [rest, error] = std::from_chars(line.data(), end, number);
    const auto length = static_cast<std::size_t>(rest - line.data());
    if (length == 0 || (rest != end && !isBlank(*rest))) {
        return notAnEntry();
    }
    if (length > 1 && line.front() == '0') {
        return tr("%1 has a leading zero, with which the editor reads it as octal.")
            .arg(QLatin1String(line.data(), static_cast<qsizetype>(length)));
    }
    if (error != std::errc{} || number > maximum) {
        return notAnEntry();
    }
    line.remove_prefix(length);
    return {};
}

/// Makes @p entry of @p line.
/// @return why it is none, or nothing.
QString takeEntry(std::string_view line, BadpixelEntry& entry)
{
    unsigned x = 0;
    unsigned y = 0;
    unsigned pixelClass = 0;
    for (const auto& [number, maximum] :
         {std::pair(&x, 0xffffU), {&y, 0xffffU}, {&pixelClass, 0xffU}}) {
        if (const QString fault = takeNumber(line, maximum, *number); !fault.isEmpty()) {
            return fault;
        }
    }
    if (pixelClass != UserPixel) {
        return notAnEntry();
    }
    entry = {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), UserPixel};
    return {};
}

} // namespace

std::vector<BadpixelEntry> readUserListFile(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (info.isDir()) {
        throw CommandError(tr("%1 is a folder, not a list file.").arg(fileName));
    }
    // A pipe or a device may never end, or never begin.
    if (info.exists() && !info.isFile()) {
        throw CommandError(tr("%1 is not a file.").arg(fileName));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw CommandError(
            tr("Can't open file for reading. (%1: %2)").arg(fileName, file.errorString()));
    }
    if (file.size() > MaxFileSize) {
        throw CommandError(tr("%1 is too large to be a list file.").arg(fileName));
    }
    QByteArray content = file.read(MaxFileSize);
    if (file.error() != QFileDevice::NoError) {
        throw CommandError(tr("Can't read %1: %2").arg(fileName, file.errorString()));
    }
    if (content.startsWith("\xef\xbb\xbf")) {
        content.remove(0, 3);
    }
    if (content.endsWith('\n')) {
        content.chop(1);
    }

    std::vector<BadpixelEntry> entries;
    if (content.isEmpty()) {
        return entries;
    }
    for (const QByteArray& line : content.split('\n')) {
        std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
        if (text.ends_with('\r')) {
            text.remove_suffix(1);
        }
        BadpixelEntry entry;
        if (const QString fault = takeEntry(text, entry); !fault.isEmpty()) {
            throw CommandError(
                tr("%1, line %2: %3").arg(fileName).arg(entries.size() + 1).arg(fault));
        }
        entries.push_back(entry);
    }
    return entries;
}

SensorEntries userEntriesOf(std::span<const BadpixelEntry> entries, const QSize& sensor)
{
    SensorEntries result;
    for (const BadpixelEntry& entry : entries) {
        if (entry.pixelClass != UserPixel) {
            continue;
        }
        if (entry.y >= sensor.height() || entry.x > sensor.width()) {
            throw CommandError(tr("The entry (%1, %2) lies outside the sensor of %3 pixels.")
                                   .arg(entry.x)
                                   .arg(entry.y)
                                   .arg(sizeText(sensor)));
        }
        result.beside += entry.x == sensor.width() ? 1 : 0;
        result.entries.push_back(entry);
    }
    return result;
}

} // namespace cli
