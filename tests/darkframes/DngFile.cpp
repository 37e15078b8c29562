// SPDX-License-Identifier: MIT
#include "tests/darkframes/DngFile.h"

#include <QFile>

#include <array>
#include <tiffio.h>
#include <vector>

namespace {

// Names of tags that libtiff does not have everywhere.
constexpr int CfaRepeatPatternDim = 33421;
constexpr int CfaPattern = 33422;
constexpr int MosaicPhotometric = 32803;
constexpr int LinearRawPhotometric = 34892;

void setMosaic(TIFF* file, const QString& colours)
{
    std::array<uint16_t, 2> size{2, 2};
    std::array<uint8_t, 4> pattern{};
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        pattern[i] =
            static_cast<uint8_t>(QStringLiteral("RGB").indexOf(colours[static_cast<qsizetype>(i)]));
    }
    TIFFSetField(file, CfaRepeatPatternDim, size.data());
    TIFFSetField(file, CfaPattern, 4, pattern.data());
}

void setCamera(TIFF* file)
{
    const std::array<uint8_t, 4> version{1, 4, 0, 0};
    const std::array<uint8_t, 4> backward{1, 1, 0, 0};
    std::array<float, 9> matrix{1, 0, 0, 0, 1, 0, 0, 0, 1};
    TIFFSetField(file, TIFFTAG_MAKE, "Vorn");
    TIFFSetField(file, TIFFTAG_MODEL, "Test");
    TIFFSetField(file, TIFFTAG_UNIQUECAMERAMODEL, "Vorn Test");
    TIFFSetField(file, TIFFTAG_DNGVERSION, version.data());
    TIFFSetField(file, TIFFTAG_DNGBACKWARDVERSION, backward.data());
    TIFFSetField(file, TIFFTAG_COLORMATRIX1, 9, matrix.data());
}

} // namespace

void writeDng(const QString& fileName, const QImage& image, const DngOptions& options)
{
    TIFF* file = TIFFOpen(QFile::encodeName(fileName).constData(), "w");
    const bool mosaic = options.samples == 1 && !options.colours.isEmpty();
    const int width = options.claimedWidth > 0 ? options.claimedWidth : image.width();
    const int height = options.claimedHeight > 0 ? options.claimedHeight : image.height();
    TIFFSetField(file, TIFFTAG_SUBFILETYPE, 0);
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, options.samples);
    TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, mosaic ? MosaicPhotometric : LinearRawPhotometric);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, height);
    setCamera(file);
    if (mosaic) {
        setMosaic(file, options.colours);
    }
    const auto black = static_cast<float>(options.blackLevel);
    const auto white = static_cast<uint32_t>(options.whiteLevel);
    TIFFSetField(file, TIFFTAG_BLACKLEVEL, 1, &black);
    TIFFSetField(file, TIFFTAG_WHITELEVEL, 1, &white);
    if (options.right > 0) {
        const std::array<uint32_t, 4> area{
            static_cast<uint32_t>(options.top), static_cast<uint32_t>(options.left),
            static_cast<uint32_t>(options.bottom), static_cast<uint32_t>(options.right)};
        TIFFSetField(file, TIFFTAG_ACTIVEAREA, area.data());
    }
    std::vector<uint16_t> data;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const quint16*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            data.insert(data.end(), static_cast<std::size_t>(options.samples), line[x]);
        }
    }
    TIFFWriteRawStrip(file, 0, data.data(), static_cast<tmsize_t>(data.size() * sizeof(uint16_t)));
    TIFFClose(file);
}
