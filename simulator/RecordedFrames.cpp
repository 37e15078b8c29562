// SPDX-License-Identifier: MIT
#include "simulator/RecordedFrames.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <stdexcept>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(RecordedFrames)
};

constexpr qint64 MostBytes = qint64{512} << 20;

[[noreturn]] void refuse(const QString& text)
{
    throw std::runtime_error(text.toStdString());
}

/// The grey value that each byte of an 8-bit image stands for, -1 for a byte that stands for none;
/// empty for an image of another kind.
std::vector<int> greyValues(const QImage& image)
{
    std::vector<int> values;
    if (image.format() == QImage::Format_Grayscale8) {
        values.resize(256);
        std::iota(values.begin(), values.end(), 0);
    } else if (image.format() == QImage::Format_Indexed8) {
        values.assign(256, -1);
        const QList<QRgb> colors = image.colorTable();
        for (qsizetype i = 0; i < std::min<qsizetype>(colors.size(), 256); ++i) {
            const QRgb color = colors[i];
            if (qRed(color) == qGreen(color) && qGreen(color) == qBlue(color)) {
                values[static_cast<std::size_t>(i)] = qRed(color);
            }
        }
    }
    return values;
}

QByteArray readFrame(const QString& fileName, int width, int height)
{
    QImageReader reader(fileName);
    const QImage image = reader.read();
    if (image.isNull()) {
        refuse(Text::tr("%1: %2").arg(fileName, reader.errorString()));
    }
    const QString notGrey = Text::tr("%1: not an 8-bit grey image").arg(fileName);
    const std::vector<int> values = greyValues(image);
    if (values.empty()) {
        refuse(notGrey);
    }
    if (image.width() != width || image.height() != height) {
        refuse(Text::tr("%1: %2 x %3 pixels instead of %4 x %5")
                   .arg(fileName, QString::number(image.width()), QString::number(image.height()),
                        QString::number(width), QString::number(height)));
    }
    QByteArray bytes;
    bytes.reserve(qsizetype{width} * height);
    for (int y = 0; y < height; ++y) {
        const uchar* line = image.constScanLine(y);
        for (int x = 0; x < width; ++x) {
            // Only the colours in use have to be grey: tables are often filled up with anything.
            const int value = values[line[x]];
            if (value < 0) {
                refuse(notGrey);
            }
            bytes.append(static_cast<char>(value));
        }
    }
    return bytes;
}

} // namespace

RecordedFrames::RecordedFrames(const QString& folder, int width, int height)
    : m_width(static_cast<std::size_t>(width))
    , m_height(static_cast<std::size_t>(height))
{
    const QFileInfoList files = QDir(folder).entryInfoList(
        {QStringLiteral("*.png"), QStringLiteral("*.tif"), QStringLiteral("*.tiff")}, QDir::Files,
        QDir::Name);
    if (files.isEmpty()) {
        refuse(Text::tr("There are no recorded frames in %1.").arg(folder));
    }
    if (files.size() * qint64{width} * height > MostBytes) {
        refuse(Text::tr("The recorded frames in %1 take more than %2 MB.")
                   .arg(folder, QString::number(MostBytes >> 20)));
    }
    for (const QFileInfo& file : files) {
        m_frames.push_back(readFrame(file.filePath(), width, height));
    }
}

void RecordedFrames::render(std::uint64_t frame, const SensorSettings& /*settings*/,
                            std::uint8_t* pixels, std::size_t pitch)
{
    const char* bytes = m_frames[frame % m_frames.size()].constData();
    for (std::size_t y = 0; y < m_height; ++y) {
        std::memcpy(pixels + y * pitch, bytes + y * m_width, m_width);
    }
}
