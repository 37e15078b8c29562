// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelListFile.h"

#include "hotpixel/BadpixelLineReader.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace hotpixel {
namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(BadpixelListFile)
};

constexpr const char* CantOpenForReading =
    QT_TRANSLATE_NOOP("BadpixelListFile", "Can't open file for reading.");
constexpr const char* CantOpenForWriting =
    QT_TRANSLATE_NOOP("BadpixelListFile", "Can't open file for writing.");
constexpr const char* CantWrite = QT_TRANSLATE_NOOP("BadpixelListFile", "Can't write file.");

[[noreturn]] void fail(const char* text)
{
    throw std::runtime_error(Text::tr(text).toStdString());
}

char* appendNumber(char* position, std::uint16_t number)
{
    constexpr std::ptrdiff_t MaxDigits = 5;
    return std::to_chars(position, position + MaxDigits, number).ptr;
}

bool writeAll(QFileDevice& file, const QByteArray& content)
{
    return file.write(content) == content.size() && file.flush();
}

/// A device must not be replaced by a file of its name.
void writeDevice(const QString& filename, const QByteArray& content)
{
    QFile device(filename);
    if (!device.open(QIODevice::WriteOnly)) {
        fail(CantOpenForWriting);
    }
    if (!writeAll(device, content)) {
        fail(CantWrite);
    }
}

/// For a file that no other one can take the place of. What makes it longer is written first: only
/// that needs room on the disk, and it can be cut off again.
void overwrite(const QString& filename, const QByteArray& content)
{
    QFile file(filename);
    // A buffer would be written once more as the file is closed, behind what was cut off.
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        fail(CantOpenForWriting);
    }
    const qint64 oldSize = file.size();
    if (content.size() > oldSize &&
        (!file.seek(oldSize) || !writeAll(file, content.mid(oldSize)))) {
        file.resize(oldSize);
        fail(CantWrite);
    }
    if (!file.seek(0) || !writeAll(file, content.left(oldSize)) || !file.resize(content.size())) {
        fail(CantWrite);
    }
}

bool isPipe(const QFileInfo& file)
{
    std::error_code ignored;
    return std::filesystem::is_fifo(file.filesystemFilePath(), ignored);
}

} // namespace

QByteArray listFileContent(std::span<const BadpixelEntry> entries)
{
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly | QIODevice::Text);
    std::array<char, sizeof "65535 65535 1\n"> line{};
    for (const BadpixelEntry& entry : entries) {
        if (entry.pixelClass != UserPixel) {
            continue;
        }
        char* end = appendNumber(line.data(), entry.x);
        *end++ = ' ';
        end = std::copy_n(" 1\n", 3, appendNumber(end, entry.y));
        buffer.write(line.data(), end - line.data());
    }
    return content;
}

void checkListFile(const QString& filename)
{
    const QFileInfo target(filename);
    if (target.exists()) {
        // Opening a device may be an event to it.
        if (target.isDir() || isPipe(target) || !target.isWritable()) {
            fail(CantOpenForWriting);
        }
        return;
    }
    if (filename.isEmpty()) {
        fail(CantOpenForWriting);
    }
    QFile file(filename);
    if (!target.isSymLink() &&
        !(file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.remove())) {
        fail(CantOpenForWriting);
    }
}

void writeListFile(const QString& filename, std::span<const BadpixelEntry> entries)
{
    writeFile(filename, listFileContent(entries));
}

void writeFile(const QString& filename, const QByteArray& content)
{
    const QFileInfo target(filename);
    // Opening a pipe would wait for someone who reads from it.
    if (filename.isEmpty() || isPipe(target)) {
        fail(CantOpenForWriting);
    }
    if (target.exists() && !target.isFile()) {
        writeDevice(filename, content);
        return;
    }
    QSaveFile file(filename);
    if (!file.open(QIODevice::WriteOnly)) {
        overwrite(filename, content);
        return;
    }
    if (!writeAll(file, content)) {
        fail(CantWrite);
    }
    // The new file is complete, so what fails now is its name: the old file is a mount point,
    // somebody else's in a sticky folder, or open elsewhere; or there can be no file of this name.
    if (!file.commit()) {
        overwrite(filename, content);
    }
}

std::vector<BadpixelEntry> readList(QIODevice& device)
{
    BadpixelLineReader reader;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QByteArray bytes(0x10000, Qt::Uninitialized);
    bool begun = false;
    for (qint64 size = 0; (size = device.read(bytes.data(), bytes.size())) > 0;) {
        const QByteArrayView chunk(bytes.constData(), size);
        if (!begun) {
            begun = true;
            if (const auto encoding = QStringConverter::encodingForData(chunk)) {
                decoder = QStringDecoder(*encoding);
            }
        }
        const QString text = decoder.decode(chunk);
        reader.read(text);
    }
    return reader.finish(begun);
}

std::vector<BadpixelEntry> readListFile(const QString& filename)
{
    // Pipes and devices need not ever end, or begin.
    QFile file(filename);
    if (!QFileInfo(filename).isFile() || !file.open(QIODevice::ReadOnly)) {
        fail(CantOpenForReading);
    }
    return readList(file);
}

} // namespace hotpixel
