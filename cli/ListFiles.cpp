// SPDX-License-Identifier: MIT
#include "cli/ListFiles.h"

#include "cli/Command.h"
#include "cli/EntryText.h"
#include "cli/SeveralCameras.h"
#include "hotpixel/BadpixelListFile.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <algorithm>
#include <charconv>
#include <exception>
#include <string_view>
#include <utility>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace cli {
namespace {

constexpr qint64 MaxFileSize = qint64{16} << 20; ///< several times the largest list
constexpr int MaxFilesPerSecond = 1000;

/// Where these texts belong.
struct ListFiles
{
    Q_DECLARE_TR_FUNCTIONS(ListFiles)
};

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

QString notAnEntry()
{
    return ListFiles::tr("this is no user entry (x, y and the class 1).");
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
        return ListFiles::tr("%1 has a leading zero, with which the editor reads it as octal.")
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
        if (QString fault = takeNumber(line, maximum, *number); !fault.isEmpty()) {
            return fault;
        }
    }
    if (pixelClass != UserPixel) {
        return notAnEntry();
    }
    entry = {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), UserPixel};
    return {};
}

/// Calls @p work, whose errors don't name the file.
template <typename Work>
void namingTheFile(const QString& fileName, const Work& work)
{
    try {
        work();
    } catch (const std::exception& error) {
        throw CommandError(
            ListFiles::tr("Can't save to %1: %2").arg(fileName, QString::fromUtf8(error.what())));
    }
}

bool putOnDisk(QFile& file)
{
#ifdef Q_OS_WIN
    return file.flush() && _commit(file.handle()) == 0;
#else
    return file.flush() && fsync(file.handle()) == 0;
#endif
}

CommandError failure(const QString& folder, const QString& reason)
{
    return CommandError(ListFiles::tr("Can't save the old list in %1: %2").arg(folder, reason));
}

/// Opens a file without a name yet in @p folder.
void openIn(const QString& folder, QTemporaryFile& file)
{
    const QDir target(folder);
    if (!target.mkpath(QStringLiteral("."))) {
        throw failure(folder, ListFiles::tr("the folder can't be made."));
    }
    file.setFileTemplate(target.filePath(QStringLiteral(".backup-XXXXXX")));
    if (!file.open()) {
        throw failure(folder, file.errorString());
    }
}

} // namespace

void openListFile(const QString& fileName, QFile& file)
{
    const QFileInfo info(fileName);
    if (info.isDir()) {
        throw CommandError(ListFiles::tr("%1 is a folder, not a list file.").arg(fileName));
    }
    // A pipe or a device may never end, or never begin.
    if (info.exists() && !info.isFile()) {
        throw CommandError(ListFiles::tr("%1 is not a file.").arg(fileName));
    }
    file.setFileName(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw CommandError(ListFiles::tr("Can't open file for reading. (%1: %2)")
                               .arg(fileName, file.errorString()));
    }
}

std::vector<BadpixelEntry> readUserListFile(const QString& fileName)
{
    QFile file;
    openListFile(fileName, file);
    if (file.size() > MaxFileSize) {
        throw CommandError(ListFiles::tr("%1 is too large to be a list file.").arg(fileName));
    }
    QByteArray content = file.read(MaxFileSize);
    if (file.error() != QFileDevice::NoError) {
        throw CommandError(ListFiles::tr("Can't read %1: %2").arg(fileName, file.errorString()));
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
            throw CommandError(ListFiles::tr("%1, line %2: %3")
                                   .arg(fileName, QString::number(entries.size() + 1), fault));
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
            throw CommandError(
                ListFiles::tr("The entry (%1, %2) lies outside the sensor of %3 pixels.")
                    .arg(entry.x)
                    .arg(entry.y)
                    .arg(sizeText(sensor)));
        }
        result.beside += entry.x == sensor.width() ? 1 : 0;
        result.entries.push_back(entry);
    }
    return result;
}

void checkOutputFile(const QString& fileName)
{
    const QFileInfo file(fileName);
    if (fileName.isEmpty()) {
        throw UsageError(ListFiles::tr("The name of the file to be saved is empty."));
    }
    if (file.isDir()) {
        throw CommandError(ListFiles::tr("Can't save to %1: it is a folder.").arg(fileName));
    }
    if (!QFileInfo(file.absolutePath()).isDir()) {
        throw CommandError(
            ListFiles::tr("Can't save to %1: there is no such folder.").arg(fileName));
    }
    namingTheFile(fileName, [&] { hotpixel::checkListFile(fileName); });
}

void saveOutputFile(const QString& fileName, const QByteArray& content)
{
    namingTheFile(fileName, [&] { hotpixel::writeFile(fileName, content); });
}

void saveOutputFile(const QString& fileName, std::span<const BadpixelEntry> entries)
{
    namingTheFile(fileName, [&] { hotpixel::writeListFile(fileName, entries); });
}

QString backupFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/VornHotpixelEditor/backups");
}

void checkBackupFolder(const QString& folder)
{
    QTemporaryFile file;
    openIn(folder, file);
}

QString saveBackup(const QString& folder, const QString& serNo, const QDateTime& time,
                   std::span<const BadpixelEntry> entries)
{
    QTemporaryFile file;
    openIn(folder, file);
    const QByteArray content = hotpixel::listFileContent(entries);
    if (file.write(content) != content.size() || !putOnDisk(file)) {
        throw failure(folder, file.errorString());
    }

    // What the disk holds is what counts, so it is read again.
    const std::vector<BadpixelEntry> saved = hotpixel::readListFile(file.fileName());
    if (!std::ranges::equal(saved, entries)) {
        throw failure(folder, ListFiles::tr("the file does not hold what was written."));
    }

    const QDir target(folder);
    const QString name =
        fileNamePart(serNo) + time.toString(QStringLiteral("'-user-list-'yyyyMMdd-HHmmss"));
    for (int number = 1; number <= MaxFilesPerSecond; ++number) {
        const QString suffix = number == 1 ? QString() : QStringLiteral("-%1").arg(number);
        const QString fileName = target.filePath(name + suffix + QStringLiteral(".txt"));
        // Renaming refuses to replace a file, so two programs can't take the same name.
        if (!QFileInfo::exists(fileName) && file.rename(fileName)) {
            file.setAutoRemove(false);
            return QDir::toNativeSeparators(target.absoluteFilePath(fileName));
        }
    }
    throw failure(folder, ListFiles::tr("no name is free."));
}

} // namespace cli
