// SPDX-License-Identifier: MIT
#include "darkframes/FitsReader.h"

#include "tests/darkframes/FrameFiles.h"

#include <QFile>

#include <fitsio.h>
#include <stdexcept>
#include <zlib.h>

namespace {

using FitsReader = FrameFiles;

constexpr int Width = 40;
constexpr int Height = 30;

std::vector<double> numbers(const QImage& image)
{
    const auto values = valuesOf(image);
    return {values.begin(), values.end()};
}

/// Written by CFITSIO in one of its compressions. @param header "primary" leaves the image behind
/// an empty first part
QString writeCompressed(const QString& fileName, const QImage& image, int compression)
{
    fitsfile* file = nullptr;
    int status = 0;
    std::array<long, 2> axes{image.width(), image.height()};
    auto values = valuesOf(image);
    if (fits_create_file(&file, QFile::encodeName(fileName).constData(), &status) != 0) {
        throw std::runtime_error("the test's file can't be made");
    }
    fits_set_compression_type(file, compression, &status);
    fits_create_img(file, USHORT_IMG, 2, axes.data(), &status);
    fits_write_img(file, TUSHORT, 1, static_cast<LONGLONG>(values.size()), values.data(), &status);
    fits_close_file(file, &status);
    EXPECT_EQ(status, 0);
    return fileName;
}

QByteArray gzipped(const QByteArray& content)
{
    QByteArray packed(
        static_cast<qsizetype>(compressBound(static_cast<uLong>(content.size()))) + 64, 0);
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray input = content;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

} // namespace

TEST_F(FitsReader, ReadsUnsignedNumbersOf16BitsByTheirZero)
{
    const QImage image = wideFrame(Width, Height);
    const Frame frame = darkframes::readFits(write("frame.fits", fits16(image)));
    EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(frame.image.size(), image.size());
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
    EXPECT_EQ(frame.mosaic, std::nullopt);
}

TEST_F(FitsReader, HasRow0OfTheFileAsRow0)
{
    const Frame frame = darkframes::readFits(write("frame.fits", fits(2, 2, 8, {1, 2, 3, 4})));
    EXPECT_EQ(frame.image.constScanLine(0)[1], 2);
    EXPECT_EQ(frame.image.constScanLine(1)[0], 3);
}

TEST_F(FitsReader, ReadsBytesAsAFrameOf8Bits)
{
    const QImage image = narrowFrame(Width, Height);
    const Frame frame =
        darkframes::readFits(write("frame.fits", fits(Width, Height, 8, numbers(image))));
    EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale8);
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
}

TEST_F(FitsReader, ReadsEveryDepthWhoseValuesAreWhole)
{
    const QImage image = wideFrame(Width, Height);
    for (const int bitpix : {32, 64, -32, -64}) {
        const Frame frame =
            darkframes::readFits(write("frame.fits", fits(Width, Height, bitpix, numbers(image))));
        EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale16) << bitpix;
        EXPECT_EQ(valuesOf(frame.image), valuesOf(image)) << bitpix;
    }
}

TEST_F(FitsReader, AppliesScaleAndZero)
{
    const QStringList cards{"BZERO   =                  100", "BSCALE  =                  2.5"};
    const Frame frame =
        darkframes::readFits(write("frame.fits", fits(3, 1, 16, {0, 2, 4000}, cards)));
    EXPECT_EQ(valuesOf(frame.image), (std::vector<std::uint16_t>{100, 105, 10100}));
}

TEST_F(FitsReader, RefusesValuesThatAreNotWholeNumbersOf16Bits)
{
    const std::string message = "FILE: holds values that are not whole numbers from 0 to 65535";
    const auto error = [this](int bitpix, double value, const QStringList& cards = {}) {
        return errorOf(darkframes::readFits,
                       write("wrong.fits", fits(2, 1, bitpix, {1, value}, cards)));
    };
    EXPECT_EQ(error(-32, 0.5), message);
    EXPECT_EQ(error(-64, -1), message);
    EXPECT_EQ(error(-64, 65536), message);
    EXPECT_EQ(error(-64, 1e300), message);
    EXPECT_EQ(error(32, -1), message);
    EXPECT_EQ(error(32, 65536), message);
    EXPECT_EQ(error(16, -1), message);
    EXPECT_EQ(error(16, 3, {"BSCALE  =                  0.5"}), message);
    EXPECT_THAT(error(-32, std::nan("")), testing::StartsWith("FILE: holds"));
}

TEST_F(FitsReader, RefusesUndefinedPixels)
{
    const QStringList cards{"BLANK   =                    7"};
    EXPECT_EQ(errorOf(darkframes::readFits, write("blank.fits", fits(3, 1, 16, {1, 7, 2}, cards))),
              "FILE: holds undefined pixels");
    EXPECT_EQ(errorOf(darkframes::readFits, write("whole.fits", fits(3, 1, 16, {1, 8, 2}, cards))),
              "no error");
}

TEST_F(FitsReader, ReadsCompressedImagesBehindAnEmptyPart)
{
    const QImage image = wideFrame(Width, Height);
    for (const int compression : {RICE_1, GZIP_1, GZIP_2}) {
        const QString file =
            writeCompressed(path(QString::number(compression) + ".fits"), image, compression);
        EXPECT_EQ(valuesOf(darkframes::readFits(file).image), valuesOf(image)) << compression;
    }
}

TEST_F(FitsReader, RefusesHeadersThatCfitsioWouldBelieve)
{
    const QByteArray good =
        contentOf(writeCompressed(path("good.fits"), wideFrame(16, 16), RICE_1));
    const auto errorWith = [&](const QByteArray& before, const QByteArray& after) {
        QByteArray content = good;
        const auto position = content.indexOf(before);
        EXPECT_GT(position, 0) << before.toStdString();
        content.replace(position, 80, after.leftJustified(80, ' '));
        return errorOf(darkframes::readFits, write("bad.fits", content));
    };
    // A division by zero in CFITSIO, and an overflow of memory that is no number's.
    EXPECT_EQ(errorWith("ZTILE1  =", "ZTILE1  =                    0"),
              "FILE: damaged (ZTILE1 is out of range)");
    EXPECT_EQ(errorWith("ZTILE1  =", "ZTILE1  =                   17"),
              "FILE: damaged (ZTILE1 is out of range)");
    EXPECT_EQ(errorWith("ZVAL1   =", "ZVAL1   = 12345678901234567890x1234567890123456789012345"),
              "FILE: damaged (ZVAL1 is no number)");
    EXPECT_EQ(errorWith("ZVAL1   =", "ZVAL1   =                    0"),
              "FILE: damaged (ZVAL1 is out of range)");
    EXPECT_EQ(errorWith("ZNAXIS1 =", "ZNAXIS1 =                 16.5"),
              "FILE: damaged (ZNAXIS1 is no number)");
    EXPECT_EQ(errorWith("TFIELDS =", "TFIELDS =           2000000000"),
              "FILE: damaged (TFIELDS is out of range)");
    EXPECT_EQ(errorWith("PCOUNT  =", "PCOUNT  = 9000000000000000000"),
              "FILE: damaged (PCOUNT is out of range)");
    EXPECT_EQ(errorWith("PCOUNT  =", "PCOUNT  =           2000000000"), "FILE: truncated");
    EXPECT_EQ(errorWith("ZTILE2  =", "ZTILE1  =                    1"),
              "FILE: damaged (ZTILE1 stands twice)");
    EXPECT_EQ(errorWith("NAXIS2  =", "COMMENT"), "FILE: damaged (NAXIS2 is not in its place)");
    EXPECT_EQ(errorWith("ZTILE2  =", "COMMENT \xff"), "FILE: damaged (a header that is no text)");
    EXPECT_EQ(errorOf(darkframes::readFits, write("start.fits", good.left(2 * 2880 - 1))),
              "FILE: truncated");
}

TEST_F(FitsReader, RefusesTilesThatAreDamaged)
{
    for (const int compression : {RICE_1, GZIP_1, GZIP_2}) {
        QByteArray content = contentOf(writeCompressed(path(QString::number(compression) + ".fits"),
                                                       wideFrame(16, 16), compression));
        // The first tile has the length 1 and the start 0, behind the second header.
        const qsizetype table = 2 * 2880;
        QByteArray tiny = content;
        tiny.replace(table, 8, QByteArray("\0\0\0\1\0\0\0\0", 8));
        EXPECT_EQ(errorOf(darkframes::readFits, write("tiny.fits", tiny)), "FILE: damaged (a tile)")
            << compression;
        content.replace(table, 8, QByteArray("\x7f\xff\xff\xff\0\0\0\0", 8));
        EXPECT_EQ(errorOf(darkframes::readFits, write("long.fits", content)),
                  "FILE: damaged (a tile)")
            << compression;
    }
}

TEST_F(FitsReader, ReadsPackedFiles)
{
    const QImage image = wideFrame(Width, Height);
    const QString file = write("frame.fits.gz", gzipped(fits16(image)));
    EXPECT_EQ(valuesOf(darkframes::readFits(file).image), valuesOf(image));
    for (const qint64 bytes : {1, 4, 9, 200}) {
        EXPECT_THAT(errorOf(darkframes::readFits, truncate(file, bytes)),
                    testing::StartsWith("FILE: truncated"));
    }
}

TEST_F(FitsReader, RefusesPackedFilesThatLieAboutTheirSize)
{
    QByteArray packed = gzipped(fits16(wideFrame(Width, Height)));
    for (const char* size : {"\xff\xff\xff\xff", "\xff\xff\xff\x7f", "\x01\x01\x01\x01"}) {
        packed.replace(packed.size() - 4, 4, size, 4);
        EXPECT_EQ(errorOf(darkframes::readFits, write("lie.fits.gz", packed)),
                  "FILE: truncated or damaged");
    }
    packed.replace(packed.size() - 4, 4, "\0\0\0\0", 4);
    EXPECT_EQ(errorOf(darkframes::readFits, write("lie.fits.gz", packed)),
              "FILE: truncated or damaged");
}

TEST_F(FitsReader, ReadsColoursFromTheFile)
{
    const QImage image = wideFrame(4, 2);
    const auto mosaic = [&](const QStringList& cards) {
        return darkframes::readFits(write("frame.fits", fits16(image, cards))).mosaic;
    };
    const QString pattern = "BAYERPAT= 'GRBG    '";
    EXPECT_EQ(mosaic({pattern}), Mosaic::fromColours("GRBG"));
    EXPECT_EQ(mosaic({pattern, "XBAYROFF=                    1"}), Mosaic::fromColours("RGGB"));
    EXPECT_EQ(mosaic({pattern, "YBAYROFF=                    1"}), Mosaic::fromColours("BGGR"));
    EXPECT_EQ(mosaic({pattern, "ROWORDER= 'BOTTOM-UP'"}), Mosaic::bayer());
    EXPECT_EQ(mosaic({pattern, "ROWORDER= 'TOP-DOWN'"}), Mosaic::fromColours("GRBG"));
    EXPECT_EQ(mosaic({"BAYERPAT= 'unknown '"}), Mosaic::bayer());
}

TEST_F(FitsReader, TakesTheFirstImageWithTwoAxes)
{
    // A cube of three colours first.
    QByteArray cube = fitsHeader(4, 2, 8, {});
    cube.replace("NAXIS   =                    2", "NAXIS   =                    3");
    cube.replace(cube.indexOf("END"), 80,
                 QByteArray("NAXIS3  =                    3").leftJustified(80, ' '));
    cube.replace(480, 3, "END");
    cube += QByteArray(2880, 0);
    EXPECT_EQ(errorOf(darkframes::readFits, write("cube.fits", cube)),
              "FILE: holds no image with two axes");

    QByteArray extension =
        fits(4, 2, 8, {1, 2, 3, 4, 5, 6, 7, 8},
             {"PCOUNT  =                    0", "GCOUNT  =                    1"});
    extension.replace(0, 30, "XTENSION= 'IMAGE   '          ");
    EXPECT_EQ(valuesOf(darkframes::readFits(write("second.fits", cube + extension)).image),
              (std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(FitsReader, RefusesTruncatedFilesWhereverTheyEnd)
{
    const QImage image = wideFrame(Width, Height);
    const QString plain = write("plain.fits", fits16(image));
    const QString rice = writeCompressed(path("rice.fits"), image, RICE_1);
    const qint64 padding = 2880 - Width * Height * 2 % 2880;
    for (const qint64 bytes : {padding + 1, padding + 2000, qint64{2880}, qint64{4000}}) {
        EXPECT_THAT(errorOf(darkframes::readFits, truncate(plain, bytes)),
                    testing::StartsWith("FILE: "))
            << bytes;
        EXPECT_NE(errorOf(darkframes::readFits, truncate(rice, bytes)), "no error") << bytes;
    }
    for (const int bytes : {30, 80, 400, 2880}) {
        EXPECT_THAT(
            errorOf(darkframes::readFits, write("start.fits", contentOf(plain).left(bytes))),
            testing::StartsWith("FILE: "))
            << bytes;
    }
}

TEST_F(FitsReader, RefusesFilesThatAreTooSmallForTheirSize)
{
    EXPECT_EQ(errorOf(darkframes::readFits, write("lie.fits", fitsHeader(16000, 16000, 16))),
              "FILE: truncated: it says that it has 16000 × 16000 pixels, which do not fit into "
              "its 0 bytes");
    EXPECT_THAT(
        errorOf(darkframes::readFits, write("lie.fits", fitsHeader(2000000000, 2000000000, 8))),
        testing::StartsWith("FILE: "));
    EXPECT_THAT(errorOf(darkframes::readFits, write("lie.fits", fitsHeader(-5, 10, 8))),
                testing::StartsWith("FILE: "));
    EXPECT_THAT(errorOf(darkframes::readFits, write("lie.fits", fitsHeader(0, 10, 8))),
                testing::StartsWith("FILE: "));
}

TEST_F(FitsReader, TakesNoNameForAnInstruction)
{
    const QImage image = wideFrame(4, 2);
    for (const QString& name :
         {QStringLiteral("a[1].fits"), QStringLiteral("!a.fits"), QStringLiteral("mem:a.fits"),
          QStringLiteral("a+1"), QStringLiteral("a(b).fits"), QStringLiteral("ä ö.fits")}) {
        const Frame frame = darkframes::readFits(write(name, fits16(image)));
        EXPECT_EQ(valuesOf(frame.image), valuesOf(image)) << name.toStdString();
        EXPECT_TRUE(QFile::exists(path(name)));
    }
}
