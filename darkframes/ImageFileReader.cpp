// SPDX-License-Identifier: MIT
#include "darkframes/ImageFileReader.h"

#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"
#include "darkframes/TiffHeader.h"

#include <QCoreApplication>
#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ImageFileReader)
};

using darkframes::refuse;

QString truncated()
{
    return Text::tr("truncated");
}

QString notGrey()
{
    return Text::tr("a colour image; a dark frame is grey");
}

QString wrongDepth(unsigned bits)
{
    return Text::tr("%1 bits a pixel; 8 and 16 are read").arg(bits);
}

void open(QFile& file)
{
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(file.fileName(), file.errorString());
    }
}

/// @p image with its grey values instead of indices into a palette.
QImage withoutPalette(const QString& fileName, const QImage& image)
{
    std::array<int, 256> greys{};
    greys.fill(-1);
    const QList<QRgb> colours = image.colorTable();
    for (qsizetype i = 0; i < std::min<qsizetype>(colours.size(), 256); ++i) {
        const QRgb colour = colours[i];
        if (qRed(colour) == qGreen(colour) && qGreen(colour) == qBlue(colour) &&
            qAlpha(colour) == 255) {
            greys[static_cast<std::size_t>(i)] = qRed(colour);
        }
    }
    QImage grey(image.size(), QImage::Format_Grayscale8);
    if (grey.isNull()) {
        refuse(fileName, Text::tr("not enough memory"));
    }
    for (int y = 0; y < image.height(); ++y) {
        const uchar* from = image.constScanLine(y);
        uchar* to = grey.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            // Only the colours in use have to be grey: palettes are often filled up with anything.
            const int value = greys[from[x]];
            if (value < 0) {
                refuse(fileName, notGrey());
            }
            to[x] = static_cast<uchar>(value);
        }
    }
    return grey;
}

/// The size of the image is known to fit to the file.
Frame readByToolkit(const QString& fileName, const QByteArray& format)
{
    // The toolkit's own limit is a substitute for knowing how many pixels a file can have.
    constexpr int MostMegabytes = static_cast<int>(darkframes::MostPixels * 4 >> 20U);
    if (QImageReader::allocationLimit() < MostMegabytes) {
        QImageReader::setAllocationLimit(MostMegabytes);
    }
    QImageReader reader(fileName, format);
    reader.setAutoDetectImageFormat(false);
    QImage image = reader.read();
    if (image.isNull()) {
        refuse(fileName, reader.supportsOption(QImageIOHandler::Size)
                             ? Text::tr("truncated or damaged")
                             : Text::tr("files of this kind can't be read here"));
    }
    switch (image.format()) {
    case QImage::Format_Grayscale8:
    case QImage::Format_Grayscale16:
        return {std::move(image), std::nullopt};
    case QImage::Format_Indexed8:
        return {withoutPalette(fileName, image), std::nullopt};
    default:
        refuse(fileName, notGrey());
    }
}

/// The parts of a PNG file follow each other up to the last one, as their lengths say.
bool hasAllChunks(QFile& file)
{
    constexpr qint64 SignatureBytes = 8;
    constexpr qint64 BytesAround = 12; // length, name and checksum
    qint64 position = SignatureBytes;
    while (position + BytesAround <= file.size()) {
        file.seek(position);
        const QByteArray start = file.read(8);
        if (start.size() < 8) {
            return false;
        }
        if (start.endsWith("IEND")) {
            return true;
        }
        position += BytesAround + qFromBigEndian<quint32>(start.constData());
    }
    return false;
}

} // namespace

Frame darkframes::readPng(const QString& fileName)
{
    QFile file(fileName);
    open(file);
    const QByteArray header = file.read(26);
    if (header.size() < 26 || header.mid(12, 4) != "IHDR") {
        refuse(fileName, truncated());
    }
    const auto width = qFromBigEndian<quint32>(header.constData() + 16);
    const auto height = qFromBigEndian<quint32>(header.constData() + 20);
    const auto bits = static_cast<unsigned>(static_cast<uchar>(header[24]));
    const auto kind = static_cast<unsigned>(static_cast<uchar>(header[25]));
    constexpr unsigned Grey = 0;
    constexpr unsigned Palette = 3;
    constexpr unsigned GreyWithAlpha = 4;
    if (kind == GreyWithAlpha) {
        refuse(fileName, Text::tr("an image with transparency; a dark frame has none"));
    }
    if (kind != Grey && kind != Palette) {
        refuse(fileName, notGrey());
    }
    if (bits != 8 && bits != 16) {
        refuse(fileName, wrongDepth(bits));
    }
    checkClaimedSize(fileName, width, height, bits / 8, static_cast<quint64>(file.size()),
                     DeflateRatio);
    if (!hasAllChunks(file)) {
        refuse(fileName, truncated());
    }
    file.close();
    return readByToolkit(fileName, "png");
}

Frame darkframes::readBmp(const QString& fileName)
{
    QFile file(fileName);
    open(file);
    const QByteArray header = file.read(54);
    if (header.size() < 54) {
        refuse(fileName, truncated());
    }
    const auto offset = qFromLittleEndian<quint32>(header.constData() + 10);
    const auto width = qFromLittleEndian<qint32>(header.constData() + 18);
    const auto signedHeight = qint64{qFromLittleEndian<qint32>(header.constData() + 22)};
    const auto bits = qFromLittleEndian<quint16>(header.constData() + 28);
    const auto compression = qFromLittleEndian<quint32>(header.constData() + 30);
    // Rows from the top down have a negative height.
    const qint64 height = std::abs(signedHeight);
    if (bits != 8) {
        refuse(fileName, bits < 8 ? wrongDepth(bits) : notGrey());
    }
    if (compression != 0) {
        refuse(fileName, Text::tr("a compressed BMP file; only one without compression is read"));
    }
    const qint64 bytesInRow = (qint64{width} + 3) / 4 * 4;
    const qint64 dataBytes = std::max<qint64>(0, file.size() - qint64{offset});
    checkClaimedSize(fileName, width, height, 1, static_cast<quint64>(dataBytes), 1);
    if (bytesInRow * height > dataBytes) {
        refuse(fileName, truncated());
    }
    file.close();
    return readByToolkit(fileName, "bmp");
}

Frame darkframes::readTiff(const QString& fileName)
{
    QFile file(fileName);
    open(file);
    const std::optional<TiffHeader> header = TiffHeader::read(file);
    if (!header) {
        refuse(fileName, truncated());
    }
    constexpr quint32 WhiteIsZero = 0;
    constexpr quint32 BlackIsZero = 1;
    constexpr quint32 Palette = 3;
    const quint32 photometric = header->photometric;
    if (header->samplesPerPixel != 1 ||
        (photometric != WhiteIsZero && photometric != BlackIsZero && photometric != Palette)) {
        refuse(fileName, notGrey());
    }
    if (header->sampleFormat == 3) {
        refuse(fileName, Text::tr("a TIFF file of floating point numbers; whole ones are read"));
    }
    if (header->bitsPerSample != 8 && header->bitsPerSample != 16) {
        refuse(fileName, wrongDepth(header->bitsPerSample));
    }
    if (header->sampleFormat != 1) {
        refuse(fileName, Text::tr("a TIFF file of signed numbers; unsigned ones are read"));
    }
    if (header->bitsPerSample == 16 && photometric != BlackIsZero) {
        refuse(fileName, Text::tr("a TIFF file of 16 bits in which 0 is not black"));
    }
    if (header->images > 1) {
        refuse(fileName, Text::tr("a TIFF file of several images; each frame is a file"));
    }
    checkClaimedSize(fileName, header->width, header->height, header->bitsPerSample / 8,
                     header->complete ? header->dataBytes : static_cast<quint64>(file.size()),
                     header->compression == 1 ? 1 : CompressionRatio);
    if (!header->complete) {
        refuse(fileName, truncated());
    }
    file.close();
    return readByToolkit(fileName, "tiff");
}
