// SPDX-License-Identifier: MIT
#include "cli/PixelListFiles.h"

#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/ListFiles.h"
#include "darkframes/FrameFile.h"
#include "pixellists/Mask.h"
#include "pixellists/PixelListError.h"
#include "pixellists/PixelListWriting.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QRegularExpression>

#include <algorithm>

namespace cli {
namespace {

constexpr auto FormatOption = "format";
constexpr auto SizeOption = "size";
constexpr auto LenientOption = "lenient";

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(PixelListFiles)
};

/// The mask in an image file: a byte is not 0 where the pixel is bad.
Mask readMask(const QString& fileName, std::optional<unsigned> value)
{
    const QImage image = darkframes::readFrame(fileName).image;
    Mask mask{image.size(), {}};
    mask.pixels.reserve(qsizetype{image.width()} * image.height());
    const bool wide = image.format() == QImage::Format_Grayscale16;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* const bytes = image.constScanLine(y);
        const auto* const words = reinterpret_cast<const quint16*>(bytes);
        for (int x = 0; x < image.width(); ++x) {
            const unsigned grey = wide ? words[x] : bytes[x];
            mask.pixels.append((value ? grey == *value : grey != 0) ? '\1' : '\0');
        }
    }
    return mask;
}

QByteArray pngOf(const Mask& mask)
{
    const QImage image(reinterpret_cast<const uchar*>(mask.pixels.constData()), mask.size.width(),
                       mask.size.height(), mask.size.width(), QImage::Format_Grayscale8);
    QByteArray content;
    QBuffer buffer(&content);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) {
        throw CommandError(Text::tr("The mask can't be made into an image."));
    }
    return content;
}

} // namespace

const PixelListFormat& formatOf(const QString& fileName, const QString& told, const QString& option,
                                const PixelListFormat* otherwise)
{
    if (!told.isEmpty()) {
        const PixelListFormat* const format = pixellists::formatNamed(told);
        if (format == nullptr) {
            throw UsageError(Text::tr("There is no format \"%1\"; there are %2.")
                                 .arg(told, pixellists::formatNames()));
        }
        return *format;
    }
    const std::vector<const PixelListFormat*> formats = pixellists::formatsOfFile(fileName);
    if (formats.size() == 1) {
        return *formats.front();
    }
    if (!formats.empty()) {
        QStringList names;
        for (const PixelListFormat* format : formats) {
            names.append(format->name);
        }
        throw UsageError(Text::tr("%1 may be a list of %2; %3 says which.")
                             .arg(fileName, names.join(Text::tr(" or ")), option));
    }
    if (otherwise != nullptr) {
        return *otherwise;
    }
    throw UsageError(Text::tr("The name %1 does not say what format the list has; %2 does.")
                         .arg(fileName, option));
}

const PixelListFormat& editorFormat()
{
    return *pixellists::formatNamed(QStringLiteral("editor"));
}

QString formatLines()
{
    qsizetype width = 0;
    for (const PixelListFormat& format : pixellists::allFormats()) {
        width = std::max(width, format.name.size());
    }
    QStringList lines;
    for (const PixelListFormat& format : pixellists::allFormats()) {
        lines.append(
            QStringLiteral("  %1  %2").arg(format.name.leftJustified(width), format.summary));
    }
    return lines.join(u'\n');
}

QCommandLineOption formatOption(const QString& description)
{
    return {QLatin1String(FormatOption), description, QStringLiteral("FORMAT")};
}

QCommandLineOption outputFormatOption()
{
    return formatOption(Text::tr("The format of what --out saves, where its name does not say it; "
                                 "that of this program's own list files unless told."));
}

const PixelListFormat& outputFormat(const QString& fileName, const QCommandLineParser& parser)
{
    const QString told = parser.value(QLatin1String(FormatOption));
    if (!told.isEmpty() && fileName.isEmpty()) {
        throw UsageError(Text::tr("--format is for what --out saves."));
    }
    return formatOf(fileName, told, QStringLiteral("--format"), &editorFormat());
}

QString outputSuffix(const QCommandLineParser& parser)
{
    const QString told = parser.value(QLatin1String(FormatOption));
    const PixelListFormat& format =
        told.isEmpty() ? editorFormat() : formatOf({}, told, QStringLiteral("--format"));
    return u'.' + format.suffixes.value(0, QStringLiteral("txt"));
}

QCommandLineOption sizeOption()
{
    return {QLatin1String(SizeOption),
            Text::tr("The size of the sensor in pixels, such as "
                     "1280x960."),
            QStringLiteral("WxH")};
}

QSize toldSize(const QCommandLineParser& parser)
{
    if (!parser.isSet(QLatin1String(SizeOption))) {
        return {};
    }
    static const QRegularExpression Pattern(QStringLiteral("^([0-9]{1,5})[xX×]([0-9]{1,5})$"));
    const QString text = parser.value(QLatin1String(SizeOption));
    const QRegularExpressionMatch match = Pattern.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    constexpr int Greatest = pixellists::GreatestCoordinate + 1;
    if (size.isEmpty() || size.width() > Greatest || size.height() > Greatest) {
        throw UsageError(
            Text::tr("The size has to be a width and a height from 1 to %1, such as 1280x960, not "
                     "\"%2\".")
                .arg(QString::number(Greatest), text));
    }
    return size;
}

QCommandLineOption lenientOption()
{
    return {QLatin1String(LenientOption),
            Text::tr("Leave lines out that hold no entry, instead of refusing the list; the first "
                     "ten of them are shown.")};
}

bool isLenient(const QCommandLineParser& parser)
{
    return parser.isSet(QLatin1String(LenientOption));
}

ReadList readList(const QString& fileName, const PixelListFormat& format,
                  const ListReading& reading, Console& console)
{
    ReadList list{.name = fileName, .source = format.name, .size = {}, .pixels = {}, .notes = {}};
    QFile file;
    openListFile(fileName, file);
    if (format.isImage()) {
        file.close();
        const Mask mask = readMask(fileName, reading.maskValue);
        list.size = mask.size;
        try {
            list.pixels = pixellists::pixelsOfMask(mask);
        } catch (const PixelListError& error) {
            throw CommandError(
                QStringLiteral("%1: %2").arg(fileName, QString::fromUtf8(error.what())));
        }
        return list;
    }
    PixelListReading read = pixellists::readPixelList(
        file, fileName, format, {.size = reading.size, .lenient = reading.lenient});
    if (file.error() != QFileDevice::NoError) {
        throw CommandError(Text::tr("Can't read %1: %2").arg(fileName, file.errorString()));
    }
    for (const QString& line : read.firstBadLines) {
        console.notice(line);
    }
    list.pixels = std::move(read.pixels);
    list.badLines = read.badLines;
    list.notes = std::move(read.notes);
    return list;
}

std::vector<BadpixelEntry> readListForCamera(const QString& fileName,
                                             const QCommandLineParser& parser, Console& console)
{
    const PixelListFormat& format = formatOf(fileName, parser.value(QLatin1String(FormatOption)),
                                             QStringLiteral("--format"), &editorFormat());
    const QSize size = toldSize(parser);
    if (&format == &editorFormat()) {
        return readUserListFile(fileName);
    }
    const ReadList list = readList(fileName, format, {.size = size}, console);
    for (const QString& note : list.notes) {
        console.notice(QStringLiteral("%1: %2").arg(fileName, note));
    }
    const auto cold = std::ranges::count(list.pixels, PixelDefect::Cold, &ListedPixel::defect);
    if (cold > 0) {
        console.notice(Text::tr("%1: cold pixels become user entries like hot ones: %2")
                           .arg(fileName, QString::number(cold)));
    }
    return entriesOf(list.pixels);
}

void checkListOutput(const QString& fileName, const PixelListFormat& format)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (format.isImage() && suffix.startsWith(QLatin1String("f")) &&
        format.suffixes.contains(suffix)) {
        throw UsageError(Text::tr("%1: masks are written as PNG files only.").arg(fileName));
    }
    checkOutputFile(fileName);
}

void checkSize(const PixelListFormat& format, const QSize& size)
{
    if (format.needsSize && size.isEmpty()) {
        throw UsageError(
            Text::tr("A list of %1 can't be written without the sensor's size; use --size.")
                .arg(format.name));
    }
}

ListToSave makeList(const QString& fileName, const PixelListFormat& format,
                    std::span<const ListedPixel> pixels, const ListWriting& writing)
{
    checkSize(format, writing.size);
    ListToSave list{.fileName = fileName, .format = &format, .content = {}, .losses = {}};
    if (format.isImage()) {
        const MaskContent mask = pixellists::maskOf(pixels, writing.size, writing.maskValue);
        list.content = pngOf(mask.mask);
        list.written = mask.written;
        list.losses = mask.losses;
        return list;
    }
    PixelListContent content =
        pixellists::pixelListContent(pixels, format,
                                     {.size = writing.size,
                                      .suffix = QFileInfo(fileName).suffix().toLower(),
                                      .camera = writing.camera});
    list.content = std::move(content.bytes);
    list.written = content.written;
    list.losses = std::move(content.losses);
    return list;
}

void saveList(const ListToSave& list, Report& report)
{
    report.line(QStringLiteral("%1: %2").arg(list.fileName, list.format->name));
    for (const QString& loss : list.losses) {
        report.line(QStringLiteral("  ") + loss);
    }
    saveOutputFile(list.fileName, list.content);
}

QString saveUserEntries(const QString& fileName, const PixelListFormat& format,
                        std::span<const BadpixelEntry> entries, const ListWriting& writing,
                        Report& report)
{
    if (&format == &editorFormat()) {
        saveOutputFile(fileName, entries);
        report.insert("saved", fileName);
        return {};
    }
    PixelList pixels = pixelsOf(entries);
    std::erase_if(pixels,
                  [](const ListedPixel& pixel) { return pixel.listClass != PixelListClass::User; });
    for (ListedPixel& pixel : pixels) {
        const auto value = writing.values.find({pixel.x, pixel.y});
        if (format.keepsValues && value != writing.values.end()) {
            pixel.value = value->second;
        }
    }
    const ListToSave list = makeList(fileName, format, pixels, writing);
    saveList(list, report);
    report.insert("saved", fileName);
    report.insert("list", savedObject(list));
    return accountText(pixels.size(), list.written);
}

void reportRead(const ReadList& list, Report& report)
{
    report.line(
        QStringLiteral("%1: %2, %3").arg(list.name, list.source, entryCount(list.pixels.size())));
    if (list.badLines > 0) {
        report.line(QStringLiteral("  ") +
                    (list.badLines == 1 ? Text::tr("1 bad line left out")
                                        : Text::tr("%1 bad lines left out").arg(list.badLines)));
    }
    for (const QString& note : list.notes) {
        report.line(QStringLiteral("  ") + note);
    }
}

QJsonObject readObject(const ReadList& list)
{
    return {{QStringLiteral("name"), list.name},
            {QStringLiteral("source"), list.source},
            {QStringLiteral("entries"), static_cast<qint64>(list.pixels.size())},
            {QStringLiteral("badLines"), static_cast<qint64>(list.badLines)},
            {QStringLiteral("notes"), QJsonArray::fromStringList(list.notes)}};
}

QJsonObject savedObject(const ListToSave& list)
{
    return {{QStringLiteral("name"), list.fileName},
            {QStringLiteral("format"), list.format->name},
            {QStringLiteral("written"), static_cast<qint64>(list.written)},
            {QStringLiteral("losses"), QJsonArray::fromStringList(list.losses)}};
}

QString accountText(std::size_t read, std::size_t written)
{
    return Text::tr("%1 read, %2 written").arg(read).arg(written);
}

PixelList pixelsOf(std::span<const BadpixelEntry> entries)
{
    PixelList pixels;
    pixels.reserve(entries.size());
    for (const BadpixelEntry& entry : entries) {
        const PixelListClass listClass = entry.pixelClass == FactoryPixel ? PixelListClass::Factory
                                         : entry.pixelClass == UserPixel  ? PixelListClass::User
                                                                          : PixelListClass::Ignored;
        pixels.push_back({.x = entry.x, .y = entry.y, .listClass = listClass});
    }
    return pixels;
}

std::vector<BadpixelEntry> entriesOf(std::span<const ListedPixel> pixels)
{
    std::vector<BadpixelEntry> entries;
    entries.reserve(pixels.size());
    for (const ListedPixel& pixel : pixels) {
        entries.push_back({pixel.x, pixel.y, UserPixel});
    }
    return entries;
}

} // namespace cli
