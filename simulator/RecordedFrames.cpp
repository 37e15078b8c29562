#include "simulator/RecordedFrames.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageReader>

#include <array>
#include <cstring>
#include <stdexcept>

namespace {

constexpr qint64 MostBytes = qint64{512} << 20;

QString translated(const char* text)
{
    return QCoreApplication::translate("RecordedFrames", text);
}

[[noreturn]] void refuse(const QString& text)
{
    throw std::runtime_error(text.toStdString());
}

/// What each byte of an 8-bit image stands for; only images that are grey throughout have this.
bool greyValues(const QImage& image, std::array<char, 256>& values)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<char>(i);
    }
    if (image.format() == QImage::Format_Grayscale8) {
        return true;
    }
    if (image.format() != QImage::Format_Indexed8) {
        return false;
    }
    const QList<QRgb> colors = image.colorTable();
    for (qsizetype i = 0; i < colors.size(); ++i) {
        const QRgb color = colors[i];
        if (qRed(color) != qGreen(color) || qGreen(color) != qBlue(color)) {
            return false;
        }
        values[static_cast<std::size_t>(i)] = static_cast<char>(qRed(color));
    }
    return true;
}

QByteArray readFrame(const QString& fileName, int width, int height)
{
    QImageReader reader(fileName);
    const QImage image = reader.read();
    if (image.isNull()) {
        refuse(translated("%1: %2").arg(fileName, reader.errorString()));
    }
    std::array<char, 256> values{};
    if (!greyValues(image, values)) {
        refuse(translated("%1: not an 8-bit grey image").arg(fileName));
    }
    if (image.width() != width || image.height() != height) {
        refuse(translated("%1: %2 x %3 pixels instead of %4 x %5")
                   .arg(fileName)
                   .arg(image.width())
                   .arg(image.height())
                   .arg(width)
                   .arg(height));
    }
    QByteArray bytes;
    bytes.reserve(qsizetype{width} * height);
    for (int y = 0; y < height; ++y) {
        const uchar* line = image.constScanLine(y);
        for (int x = 0; x < width; ++x) {
            bytes.append(values[line[x]]);
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
        refuse(translated("There are no recorded frames in %1.").arg(folder));
    }
    if (files.size() * qint64{width} * height > MostBytes) {
        refuse(translated("The recorded frames in %1 take more than %2 MB.")
                   .arg(folder)
                   .arg(MostBytes >> 20));
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
