// SPDX-License-Identifier: MIT
#include "tests/darkframes/FrameFiles.h"

#include <QFile>
#include <QtEndian>

#include <cstring>

namespace {

constexpr qsizetype FitsBlock = 2880;

QByteArray card(const QString& text)
{
    return text.toLatin1().leftJustified(80, ' ', true);
}

QByteArray card(const char* key, qint64 value)
{
    return card(QStringLiteral("%1=%2").arg(QLatin1String(key), -8).arg(value, 21));
}

template <typename Stored>
void append(QByteArray& data, Stored value)
{
    std::array<char, sizeof(Stored)> bytes{};
    qToBigEndian(value, bytes.data());
    data.append(bytes.data(), sizeof(Stored));
}

void appendFits(QByteArray& data, int bitpix, double value)
{
    switch (bitpix) {
    case 8:
        append(data, static_cast<quint8>(value));
        break;
    case 16:
        append(data, static_cast<qint16>(value));
        break;
    case 32:
        append(data, static_cast<qint32>(value));
        break;
    case 64:
        append(data, static_cast<qint64>(value));
        break;
    case -32: {
        const auto number = static_cast<float>(value);
        quint32 bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        append(data, bits);
        break;
    }
    default: {
        quint64 bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        append(data, bits);
        break;
    }
    }
}

QByteArray padded(QByteArray bytes, char with)
{
    const qsizetype rest = bytes.size() % FitsBlock;
    return rest == 0 ? bytes : bytes.append(QByteArray(FitsBlock - rest, with));
}

} // namespace

QString FrameFiles::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
    return file.fileName();
}

QString FrameFiles::save(const QString& name, const QImage& image) const
{
    EXPECT_TRUE(image.save(path(name))) << name.toStdString();
    return path(name);
}

QString FrameFiles::truncate(const QString& fileName, qint64 bytes) const
{
    QByteArray content = contentOf(fileName);
    content.chop(bytes);
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return write(QStringLiteral("truncated-%1%2").arg(bytes).arg(fileName.mid(dot)), content);
}

QByteArray FrameFiles::contentOf(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

QByteArray FrameFiles::pgm(const QImage& image, int greatest)
{
    QByteArray bytes = "P5\n# a comment\n" + QByteArray::number(image.width()) + ' ' +
                       QByteArray::number(image.height()) + '\n' + QByteArray::number(greatest) +
                       '\n';
    for (const std::uint16_t value : valuesOf(image)) {
        if (greatest > 255) {
            append(bytes, value);
        } else {
            append(bytes, static_cast<quint8>(value));
        }
    }
    return bytes;
}

QByteArray FrameFiles::fitsHeader(qint64 width, qint64 height, int bitpix, const QStringList& cards)
{
    QByteArray header = card(QStringLiteral("SIMPLE  =                    T")) +
                        card("BITPIX", bitpix) + card("NAXIS", 2) + card("NAXIS1", width) +
                        card("NAXIS2", height);
    for (const QString& each : cards) {
        header += card(each);
    }
    return padded(header + card(QStringLiteral("END")), ' ');
}

QByteArray FrameFiles::fits(int width, int height, int bitpix, const std::vector<double>& values,
                            const QStringList& cards)
{
    QByteArray data;
    for (const double value : values) {
        appendFits(data, bitpix, value);
    }
    return fitsHeader(width, height, bitpix, cards) + padded(data, 0);
}

QByteArray FrameFiles::fits16(const QImage& image, const QStringList& cards)
{
    std::vector<double> values;
    for (const std::uint16_t value : valuesOf(image)) {
        values.push_back(value - 32768.0);
    }
    return fits(image.width(), image.height(), 16, values,
                QStringList{QStringLiteral("BZERO   =                32768"),
                            QStringLiteral("BSCALE  =                    1")} +
                    cards);
}

std::vector<std::uint16_t> valuesOf(const QImage& image)
{
    std::vector<std::uint16_t> values;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            values.push_back(image.format() == QImage::Format_Grayscale16
                                 ? reinterpret_cast<const quint16*>(line)[x]
                                 : line[x]);
        }
    }
    return values;
}

QImage wideFrame(int width, int height)
{
    QImage image(width, height, QImage::Format_Grayscale16);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<quint16*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            // Odd, so that each number of 16 bits comes once.
            line[x] = static_cast<quint16>((y * width + x) * 40503);
        }
    }
    return image;
}

QImage narrowFrame(int width, int height)
{
    QImage image(width, height, QImage::Format_Grayscale8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.scanLine(y)[x] = static_cast<uchar>((y * width + x) * 7);
        }
    }
    return image;
}
