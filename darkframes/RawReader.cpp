// SPDX-License-Identifier: MIT
#include "darkframes/RawReader.h"

#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"
#include "darkframes/TiffHeader.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <libraw/libraw.h>
#include <memory>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(RawReader)
};

using darkframes::refuse;

/// LibRaw takes a DNG file whose end is missing as long as it finds the pixels.
void checkEnd(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(fileName, file.errorString());
    }
    const std::optional<TiffHeader> header = TiffHeader::read(file);
    if (header && header->isDng && !header->complete) {
        refuse(fileName, Text::tr("truncated"));
    }
}

/// The filters of the four pixels at the top left of the visible area.
/// @return nothing when the pattern is another one than that of 2 × 2 pixels.
std::optional<Mosaic> mosaicOf(LibRaw& raw)
{
    const libraw_iparams_t& parameters = raw.imgdata.idata;
    if (parameters.filters == 0) {
        return parameters.colors == 1 ? std::optional(Mosaic::mono()) : std::nullopt;
    }
    constexpr unsigned LeastPattern = 1000; // less are the numbers of other arrangements
    if (parameters.filters < LeastPattern) {
        return std::nullopt;
    }
    constexpr int Rows = 8;
    for (int y = 2; y < Rows; ++y) {
        for (const int x : {0, 1}) {
            if (raw.COLOR(y, x) != raw.COLOR(y % 2, x)) {
                return std::nullopt;
            }
        }
    }
    QString colours;
    for (const int y : {0, 1}) {
        for (const int x : {0, 1}) {
            const int colour = raw.COLOR(y, x);
            if (colour < 0 || colour > 3) {
                return std::nullopt;
            }
            colours.append(QLatin1Char(parameters.cdesc[colour]));
        }
    }
    return Mosaic::fromColours(colours);
}

void noteDamage(void* damaged, const char* /*file*/, int /*position*/)
{
    *static_cast<bool*>(damaged) = true;
}

void check(const QString& fileName, int result)
{
    if (result == LIBRAW_SUCCESS) {
        return;
    }
    if (result == LIBRAW_IO_ERROR || result == LIBRAW_DATA_ERROR) {
        refuse(fileName, Text::tr("truncated or damaged"));
    }
    if (result == LIBRAW_FILE_UNSUPPORTED) {
        refuse(fileName, Text::tr("not a camera raw file that LibRaw knows"));
    }
    refuse(fileName, QString::fromLatin1(libraw_strerror(result)));
}

} // namespace

Frame darkframes::readRaw(const QString& fileName)
{
    checkEnd(fileName);
    // It is too large for the stack.
    const auto raw = std::make_unique<LibRaw>();
    bool damaged = false;
    raw->set_dataerror_handler(&noteDamage, &damaged);
    check(fileName, raw->open_file(QFile::encodeName(fileName).constData()));

    const libraw_image_sizes_t& sizes = raw->imgdata.sizes;
    checkClaimedSize(fileName, sizes.raw_width, sizes.raw_height, 1,
                     static_cast<quint64>(QFileInfo(fileName).size()), DeflateRatio);
    if (raw->is_floating_point() != 0) {
        refuse(fileName, Text::tr("a raw file of floating point numbers; whole ones are read"));
    }
    std::optional<Mosaic> mosaic = mosaicOf(*raw);
    if (!mosaic || raw->is_fuji_rotated() != 0) {
        refuse(fileName, Text::tr("neither monochrome nor with colour filters in a pattern of "
                                  "2 × 2 pixels"));
    }
    check(fileName, raw->unpack());
    if (damaged) {
        refuse(fileName, Text::tr("truncated or damaged"));
    }
    const ushort* values = raw->imgdata.rawdata.raw_image;
    if (values == nullptr) {
        refuse(fileName, Text::tr("holds no values as the sensor gave them"));
    }
    if (sizes.left_margin + sizes.width > sizes.raw_width ||
        sizes.top_margin + sizes.height > sizes.raw_height || sizes.width == 0 ||
        sizes.height == 0) {
        refuse(fileName, Text::tr("damaged: its visible area does not lie on its sensor"));
    }
    QImage image(sizes.width, sizes.height, QImage::Format_Grayscale16);
    if (image.isNull()) {
        refuse(fileName, Text::tr("not enough memory"));
    }
    const std::size_t pitch = sizes.raw_pitch / sizeof(ushort);
    for (int y = 0; y < image.height(); ++y) {
        const std::size_t row = static_cast<std::size_t>(y) + sizes.top_margin;
        std::memcpy(image.scanLine(y), values + row * pitch + sizes.left_margin,
                    sizes.width * sizeof(ushort));
    }
    return {std::move(image), std::move(mosaic)};
}

QString darkframes::rawReaderName()
{
    return QStringLiteral("LibRaw ") + QString::fromLatin1(LibRaw::version());
}
