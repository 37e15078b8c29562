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

/// Takes a number up to @p maximum off the front of @p line. To the editor 012 is the octal 10, so
/// no number with a leading 0 passes: what goes into a camera must not depend on the reader.
bool takeNumber(std::string_view& line, unsigned maximum, unsigned& number)
{
    while (!line.empty() && isBlank(line.front())) {
        line.remove_prefix(1);
    }
    const char* const end = line.data() + line.size();
    const auto [rest, error] = std::from_chars(line.data(), end, number);
    const bool hasLeadingZero = rest - line.data() > 1 && line.front() == '0';
    if (error != std::errc{} || number > maximum || hasLeadingZero ||
        (rest != end && !isBlank(*rest))) {
        return false;
    }
    line.remove_prefix(static_cast<std::size_t>(rest - line.data()));
    return true;
}

bool takeEntry(std::string_view line, BadpixelEntry& entry)
{
    unsigned x = 0;
    unsigned y = 0;
    unsigned pixelClass = 0;
    if (!takeNumber(line, 0xffff, x) || !takeNumber(line, 0xffff, y) ||
        !takeNumber(line, 0xff, pixelClass) || pixelClass != UserPixel) {
        return false;
    }
    entry = {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), UserPixel};
    return true;
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
        if (!takeEntry(text, entry)) {
            throw CommandError(tr("%1, line %2: this is no user entry (x, y and the class 1).")
                                   .arg(fileName)
                                   .arg(entries.size() + 1));
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
