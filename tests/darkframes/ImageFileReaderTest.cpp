// SPDX-License-Identifier: MIT
#include "darkframes/ImageFileReader.h"

#include "tests/darkframes/FrameFiles.h"

#include <QtEndian>

namespace {

using ImageFileReader = FrameFiles;

/// A PNG file's header says another size; its checksum says so, too.
QByteArray withPngSize(QByteArray png, quint32 width, quint32 height)
{
    qToBigEndian(width, png.data() + 16);
    qToBigEndian(height, png.data() + 20);
    quint32 sum = 0xFFFFFFFF;
    for (qsizetype i = 12; i < 29; ++i) {
        sum ^= static_cast<uchar>(png[i]);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    qToBigEndian(~sum, png.data() + 29);
    return png;
}

} // namespace

TEST_F(ImageFileReader, GivesTheValuesOfPngFilesOf8And16Bits)
{
    for (const QImage& image : {narrowFrame(19, 7), wideFrame(19, 7)}) {
        const Frame frame = darkframes::readPng(save("frame.png", image));
        EXPECT_EQ(frame.image.format(), image.format());
        EXPECT_EQ(frame.image.size(), image.size());
        EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
        EXPECT_EQ(frame.mosaic, std::nullopt);
    }
}

TEST_F(ImageFileReader, GivesTheValuesOfTiffFilesOf8And16Bits)
{
    for (const QImage& image : {narrowFrame(19, 7), wideFrame(19, 7)}) {
        const Frame frame = darkframes::readTiff(save("frame.tif", image));
        EXPECT_EQ(frame.image.format(), image.format());
        EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
    }
}

TEST_F(ImageFileReader, GivesTheValuesOfBmpFiles)
{
    const QImage image = narrowFrame(19, 7);
    const Frame frame = darkframes::readBmp(save("frame.bmp", image));
    EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale8);
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
}

TEST_F(ImageFileReader, TakesAPaletteOfGrey)
{
    QImage image(4, 1, QImage::Format_Indexed8);
    QList<QRgb> palette(256, qRgb(1, 2, 3));
    palette[0] = qRgb(9, 9, 9);
    palette[1] = qRgb(200, 200, 200);
    image.setColorTable(palette);
    std::memcpy(image.bits(), "\0\1\1\0", 4);
    const std::vector<std::uint16_t> greys{9, 200, 200, 9};
    EXPECT_EQ(valuesOf(darkframes::readPng(save("grey.png", image)).image), greys);
    EXPECT_EQ(valuesOf(darkframes::readBmp(save("grey.bmp", image)).image), greys);
    // Now the colour is in use.
    image.bits()[2] = 2;
    EXPECT_EQ(errorOf(darkframes::readPng, save("colour.png", image)),
              "FILE: a colour image; a dark frame is grey");
    EXPECT_EQ(errorOf(darkframes::readBmp, save("colour.bmp", image)),
              "FILE: a colour image; a dark frame is grey");
}

TEST_F(ImageFileReader, RefusesColourImages)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    const std::string message = "FILE: a colour image; a dark frame is grey";
    EXPECT_EQ(errorOf(darkframes::readPng, save("colour.png", image)), message);
    EXPECT_EQ(errorOf(darkframes::readTiff, save("colour.tif", image)), message);
    EXPECT_EQ(errorOf(darkframes::readBmp, save("colour.bmp", image)), message);
}

TEST_F(ImageFileReader, RefusesOtherDepths)
{
    QImage image(8, 8, QImage::Format_Mono);
    image.fill(1);
    const std::string message = "FILE: 1 bits a pixel; 8 and 16 are read";
    EXPECT_EQ(errorOf(darkframes::readPng, save("mono.png", image)), message);
    EXPECT_EQ(errorOf(darkframes::readTiff, save("mono.tif", image)), message);
    EXPECT_EQ(errorOf(darkframes::readBmp, save("mono.bmp", image)), message);
}

TEST_F(ImageFileReader, RefusesTruncatedFilesWhereverTheyEnd)
{
    const QImage image = wideFrame(40, 30);
    const QString png = save("frame.png", image);
    const QString tiff = save("frame.tif", image);
    const QString bmp = save("frame.bmp", narrowFrame(40, 30));
    for (const qint64 bytes : {1, 12, 13, 100, 1000, 1150}) {
        EXPECT_THAT(errorOf(darkframes::readPng, truncate(png, bytes)),
                    testing::StartsWith("FILE: truncated"));
        EXPECT_THAT(errorOf(darkframes::readTiff, truncate(tiff, bytes)),
                    testing::StartsWith("FILE: truncated"));
        EXPECT_THAT(errorOf(darkframes::readBmp, truncate(bmp, bytes)),
                    testing::StartsWith("FILE: truncated"));
    }
    for (const qint64 bytes : {2, 10, 20, 30}) {
        const QByteArray start = contentOf(png).left(bytes);
        EXPECT_EQ(errorOf(darkframes::readPng, write("start.png", start)), "FILE: truncated");
        EXPECT_EQ(errorOf(darkframes::readTiff, write("start.tif", contentOf(tiff).left(bytes))),
                  "FILE: truncated");
        EXPECT_EQ(errorOf(darkframes::readBmp, write("start.bmp", contentOf(bmp).left(bytes))),
                  "FILE: truncated");
    }
}

TEST_F(ImageFileReader, RefusesDamagedPixels)
{
    QByteArray png = contentOf(save("frame.png", wideFrame(40, 30)));
    png[png.size() / 2] = static_cast<char>(png[png.size() / 2] ^ 0x55);
    EXPECT_EQ(errorOf(darkframes::readPng, write("damaged.png", png)),
              "FILE: truncated or damaged");
}

TEST_F(ImageFileReader, RefusesPngFilesThatAreTooSmallForTheirSize)
{
    const QByteArray png = contentOf(save("frame.png", wideFrame(40, 30)));
    EXPECT_EQ(errorOf(darkframes::readPng, write("large.png", withPngSize(png, 16000, 16000))),
              "FILE: truncated: it says that it has 16000 × 16000 pixels, which do not fit into "
              "its " +
                  std::to_string(png.size()) + " bytes");
    EXPECT_THAT(errorOf(darkframes::readPng, write("huge.png", withPngSize(png, 70000, 10))),
                testing::HasSubstr("more than a list of hotpixels can be made for"));
    EXPECT_THAT(
        errorOf(darkframes::readPng, write("none.png", withPngSize(png, 0xFFFFFFFF, 0xFFFFFFFF))),
        testing::HasSubstr("more than a list of hotpixels can be made for"));
    EXPECT_EQ(errorOf(darkframes::readPng, write("empty.png", withPngSize(png, 0, 30))),
              "FILE: an image without pixels");
}

TEST_F(ImageFileReader, RefusesBmpFilesThatAreTooSmallForTheirSize)
{
    QByteArray bmp = contentOf(save("frame.bmp", narrowFrame(40, 30)));
    for (const qint32 height : {31, -31, 16000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        qToLittleEndian(height, bmp.data() + 22);
        EXPECT_THAT(errorOf(darkframes::readBmp, write("lie.bmp", bmp)),
                    testing::StartsWith("FILE: "))
            << height;
    }
    qToLittleEndian<qint32>(-30, bmp.data() + 22);
    EXPECT_EQ(errorOf(darkframes::readBmp, write("top-down.bmp", bmp)), "no error");
    qToLittleEndian<qint32>(-40, bmp.data() + 18);
    EXPECT_EQ(errorOf(darkframes::readBmp, write("negative.bmp", bmp)),
              "FILE: an image without pixels");
}

TEST_F(ImageFileReader, RefusesCompressedBmpFiles)
{
    QByteArray bmp = contentOf(save("frame.bmp", narrowFrame(40, 30)));
    bmp[30] = 1;
    EXPECT_THAT(errorOf(darkframes::readBmp, write("rle.bmp", bmp)),
                testing::HasSubstr("compressed"));
}
