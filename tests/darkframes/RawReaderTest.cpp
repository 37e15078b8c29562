// SPDX-License-Identifier: MIT
#include "darkframes/RawReader.h"

#include "tests/darkframes/DngFile.h"
#include "tests/darkframes/FrameFiles.h"

namespace {

using RawReader = FrameFiles;

} // namespace

TEST_F(RawReader, GivesTheMosaicAsItWasRead)
{
    const QImage image = wideFrame(64, 48);
    writeDng(path("frame.dng"), image, {});
    const Frame frame = darkframes::readRaw(path("frame.dng"));
    EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(frame.image.size(), image.size());
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
}

TEST_F(RawReader, SubtractsNoBlackLevelAndScalesNothing)
{
    const QImage image = wideFrame(64, 48);
    DngOptions options;
    options.blackLevel = 512;
    options.whiteLevel = 4000;
    writeDng(path("frame.dng"), image, options);
    EXPECT_EQ(valuesOf(darkframes::readRaw(path("frame.dng")).image), valuesOf(image));
}

TEST_F(RawReader, SaysWhichColoursThereAre)
{
    for (const char* colours : {"RGGB", "GRBG", "GBRG", "BGGR"}) {
        DngOptions options;
        options.colours = colours;
        writeDng(path("frame.dng"), wideFrame(64, 48), options);
        EXPECT_EQ(darkframes::readRaw(path("frame.dng")).mosaic, Mosaic::fromColours(colours))
            << colours;
    }
    DngOptions mono;
    mono.colours.clear();
    writeDng(path("mono.dng"), wideFrame(64, 48), mono);
    EXPECT_EQ(darkframes::readRaw(path("mono.dng")).mosaic, Mosaic::mono());
}

TEST_F(RawReader, GivesTheVisibleAreaOnly)
{
    const QImage image = wideFrame(64, 48);
    DngOptions options;
    options.left = 4;
    options.top = 2;
    options.right = 60;
    options.bottom = 46;
    writeDng(path("frame.dng"), image, options);
    const Frame frame = darkframes::readRaw(path("frame.dng"));
    EXPECT_EQ(frame.image.size(), QSize(56, 44));
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image.copy(4, 2, 56, 44)));
    // DNG's pattern begins at the visible area.
    EXPECT_EQ(frame.mosaic, Mosaic::fromColours("RGGB"));
}

TEST_F(RawReader, RefusesTruncatedFiles)
{
    const QImage image = wideFrame(64, 48);
    writeDng(path("frame.dng"), image, {});
    const qint64 size = contentOf(path("frame.dng")).size();
    for (const qint64 bytes : {qint64{1}, qint64{100}, qint64{3000}, size - 4000, size - 100}) {
        EXPECT_THAT(errorOf(darkframes::readRaw, truncate(path("frame.dng"), bytes)),
                    testing::StartsWith("FILE: "))
            << bytes;
    }
}

TEST_F(RawReader, RefusesWhatIsNoRawFile)
{
    EXPECT_EQ(errorOf(darkframes::readRaw, write("text.dng", QByteArray(3000, 'x'))),
              "FILE: not a camera raw file that LibRaw knows");
    EXPECT_EQ(errorOf(darkframes::readRaw, save("image.png", wideFrame(64, 48))),
              "FILE: not a camera raw file that LibRaw knows");
}

TEST_F(RawReader, RefusesColourImages)
{
    DngOptions options;
    options.samples = 3;
    writeDng(path("colour.dng"), wideFrame(64, 48), options);
    EXPECT_EQ(errorOf(darkframes::readRaw, path("colour.dng")),
              "FILE: neither monochrome nor with colour filters in a pattern of 2 × 2 pixels");
}

TEST_F(RawReader, RefusesFilesThatAreTooSmallForTheirSize)
{
    DngOptions options;
    options.claimedWidth = 20000;
    options.claimedHeight = 13000;
    writeDng(path("lie.dng"), wideFrame(64, 48), options);
    EXPECT_THAT(errorOf(darkframes::readRaw, path("lie.dng")),
                testing::StartsWith("FILE: truncated: it says that it has 20000 × 13000 pixels"));
}
