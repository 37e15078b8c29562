// SPDX-License-Identifier: MIT
#include "darkframes/FrameFile.h"

#include "darkframes/FrameError.h"
#include "darkframes/ImageFileReader.h"
#include "darkframes/PgmReader.h"
#include "darkframes/TiffHeader.h"
#ifdef VORN_HAS_CFITSIO
#include "darkframes/FitsReader.h"
#endif
#ifdef VORN_HAS_LIBRAW
#include "darkframes/RawReader.h"
#endif

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <array>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FrameFile)
};

using darkframes::refuse;

constexpr std::array ImageSuffixes{"png", "tif", "tiff", "bmp", "pgm"};
constexpr std::array FitsSuffixes{"fit", "fits", "fts", "fit.fz", "fits.fz", "fit.gz", "fits.gz"};
constexpr std::array RawSuffixes{"3fr", "ari", "arw", "cr2", "cr3", "crw", "dcr", "dng",
                                 "erf", "fff", "gpr", "iiq", "k25", "kdc", "mef", "mos",
                                 "mrw", "nef", "nrw", "orf", "pef", "raf", "raw", "rw2",
                                 "rwl", "sr2", "srf", "srw", "x3f"};

template <typename Suffixes>
bool endsWithOneOf(const QString& fileName, const Suffixes& suffixes)
{
    return std::ranges::any_of(suffixes, [&fileName](const char* suffix) {
        return fileName.endsWith(u'.' + QLatin1String(suffix), Qt::CaseInsensitive);
    });
}

bool isFrameName(const QString& fileName)
{
    return endsWithOneOf(fileName, ImageSuffixes) || endsWithOneOf(fileName, FitsSuffixes) ||
           endsWithOneOf(fileName, RawSuffixes);
}

Frame readFitsFile(const QString& fileName)
{
#ifdef VORN_HAS_CFITSIO
    return darkframes::readFits(fileName);
#else
    refuse(fileName, Text::tr("a FITS file, and this build was made without CFITSIO"));
#endif
}

Frame readRawFile(const QString& fileName)
{
#ifdef VORN_HAS_LIBRAW
    return darkframes::readRaw(fileName);
#else
    refuse(fileName, Text::tr("a camera raw file, and this build was made without LibRaw"));
#endif
}

bool isRawTiff(QFile& file)
{
    const std::optional<TiffHeader> header = TiffHeader::read(file);
    return header && header->cameraRaw;
}

QStringList filesIn(const QString& folder)
{
    QStringList files;
    const QStringList names = QDir(folder).entryList(QDir::Files, QDir::Unsorted);
    for (const QString& name : names) {
        if (isFrameName(name)) {
            files.append(QDir(folder).filePath(name));
        }
    }
    if (files.isEmpty()) {
        refuse(folder, Text::tr("there are no frames in this folder"));
    }
    return files;
}

QStringList filesLike(const QString& pattern)
{
    const QFileInfo info(pattern);
    const QDir folder = info.dir();
    QStringList files;
    const QStringList names = folder.entryList({info.fileName()}, QDir::Files, QDir::Unsorted);
    for (const QString& name : names) {
        files.append(folder.path() == QLatin1String(".") && !pattern.startsWith(QLatin1String("./"))
                         ? name
                         : folder.filePath(name));
    }
    if (files.isEmpty()) {
        refuse(pattern, Text::tr("there is no such file"));
    }
    return files;
}

} // namespace

Frame darkframes::readFrame(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists()) {
        refuse(fileName, Text::tr("there is no such file"));
    }
    // Pipes and devices have no size to check, and some of them no end.
    if (!info.isFile()) {
        refuse(fileName, Text::tr("not a file"));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(fileName, file.errorString());
    }
    const QByteArray start = file.peek(16);
    if (start.isEmpty()) {
        refuse(fileName, Text::tr("empty"));
    }
    if (endsWithOneOf(fileName, RawSuffixes)) {
        return readRawFile(fileName);
    }
    if (start.startsWith("SIMPLE  =") || start.startsWith("\x1f\x8b")) {
        return readFitsFile(fileName);
    }
    if (start.startsWith("\x89PNG\r\n\x1a\n")) {
        return readPng(fileName);
    }
    if (start.startsWith("BM")) {
        return readBmp(fileName);
    }
    if (start.startsWith("II") || start.startsWith("MM")) {
        return isRawTiff(file) ? readRawFile(fileName) : readTiff(fileName);
    }
    if (start.startsWith("P5") || start.startsWith("P2")) {
        return readPgm(fileName);
    }
    if (start.startsWith("P3") || start.startsWith("P6")) {
        refuse(fileName, Text::tr("a colour image; a dark frame is grey"));
    }
    refuse(fileName, Text::tr("not an image of a kind that is read here"));
}

QStringList darkframes::frameFiles(const QStringList& paths)
{
    QStringList files;
    for (const QString& path : paths) {
        const QFileInfo info(path);
        if (info.isDir()) {
            files.append(filesIn(path));
        } else if (info.exists()) {
            files.append(path);
        } else if (info.fileName().contains(u'*') || info.fileName().contains(u'?') ||
                   info.fileName().contains(u'[')) {
            files.append(filesLike(path));
        } else {
            refuse(path, Text::tr("there is no such file"));
        }
    }
    std::ranges::sort(files);
    // A frame that counts twice makes the others' noise smaller.
    QSet<QString> known;
    files.removeIf([&known](const QString& file) {
        const QString path = QFileInfo(file).canonicalFilePath();
        const bool again = known.contains(path);
        known.insert(path);
        return again;
    });
    return files;
}

QStringList darkframes::readerLines()
{
    QStringList lines{QStringLiteral("PNG, TIFF, BMP, PGM")};
#ifdef VORN_HAS_CFITSIO
    lines.append(Text::tr("FITS by %1").arg(fitsReaderName()));
#else
    lines.append(Text::tr("FITS not at all (made without CFITSIO)"));
#endif
#ifdef VORN_HAS_LIBRAW
    lines.append(Text::tr("camera raw files by %1").arg(rawReaderName()));
#else
    lines.append(Text::tr("camera raw files not at all (made without LibRaw)"));
#endif
    return lines;
}
