// SPDX-License-Identifier: MIT
#include "darkframes/PgmReader.h"

#include "tests/darkframes/FrameFiles.h"

namespace {

using PgmReader = FrameFiles;

} // namespace

TEST_F(PgmReader, KeepsAll16Bits)
{
    const QImage image = wideFrame(23, 9);
    const Frame frame = darkframes::readPgm(write("frame.pgm", pgm(image, 65535)));
    EXPECT_EQ(frame.image.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(valuesOf(frame.image), valuesOf(image));
}

TEST_F(PgmReader, DoesNotScaleValuesToTheirGreatest)
{
    EXPECT_EQ(
        valuesOf(darkframes::readPgm(write("12bit.pgm", "P5 2 1 4095\n\x01\x02\x0f\xff")).image),
        (std::vector<std::uint16_t>{0x102, 4095}));
    const Frame narrow = darkframes::readPgm(write("7bit.pgm", "P5 2 1 127\n\x01\x7f"));
    EXPECT_EQ(narrow.image.format(), QImage::Format_Grayscale8);
    EXPECT_EQ(valuesOf(narrow.image), (std::vector<std::uint16_t>{1, 127}));
}

TEST_F(PgmReader, ReadsNumbersAsText)
{
    EXPECT_EQ(valuesOf(darkframes::readPgm(
                           write("text.pgm",
                                 "P2\n# made by hand\n3 2 # size\n1000\n1 2 3\n4 5 # five\n 1000"))
                           .image),
              (std::vector<std::uint16_t>{1, 2, 3, 4, 5, 1000}));
}

TEST_F(PgmReader, RefusesWhatIsTruncated)
{
    const QString file = write("frame.pgm", pgm(wideFrame(23, 9), 65535));
    for (const qint64 bytes : {1, 2, 100}) {
        EXPECT_THAT(errorOf(darkframes::readPgm, truncate(file, bytes)),
                    testing::StartsWith("FILE: truncated"));
    }
    EXPECT_THAT(errorOf(darkframes::readPgm, write("text.pgm", "P2 3 2 9 1 2 3 4 5 ")),
                testing::StartsWith("FILE: truncated"));
    EXPECT_THAT(errorOf(darkframes::readPgm, write("text.pgm", "P2 100 100 9 1 2 3 4 5 6")),
                testing::StartsWith("FILE: truncated: it says that it has 100 × 100 pixels"));
}

TEST_F(PgmReader, RefusesHeadersThatSayNothingOrLie)
{
    for (const char* header :
         {"P5", "P5 ", "P5 10", "P5 10 10", "P5 10 10 0\n", "P5 10 10 65536\n", "P5 -1 10 255\n",
          "P5 x 10 255\n", "P5 99999999999999999999 10 255\n", "P5 # nothing but a comment"}) {
        EXPECT_EQ(errorOf(darkframes::readPgm, write("lie.pgm", header)),
                  "FILE: damaged: its header says no size and depth of an image")
            << header;
    }
    EXPECT_THAT(errorOf(darkframes::readPgm, write("lie.pgm", "P5 16000 16000 65535\n1234")),
                testing::StartsWith("FILE: truncated: it says"));
    EXPECT_THAT(errorOf(darkframes::readPgm, write("lie.pgm", "P5 90000000 9 255\n1234")),
                testing::HasSubstr("more than a list of hotpixels"));
    EXPECT_EQ(errorOf(darkframes::readPgm, write("lie.pgm", "P5 0 9 255\n1234")),
              "FILE: an image without pixels");
}

TEST_F(PgmReader, RefusesValuesAboveTheGreatestThatIsNamed)
{
    const std::string message = "FILE: a value is greater than the greatest one that it names";
    EXPECT_EQ(errorOf(darkframes::readPgm, write("a.pgm", "P5 1 1 100\n\x65")), message);
    EXPECT_EQ(errorOf(darkframes::readPgm, write("a.pgm", "P5 1 1 256\n\x02\x01")), message);
    EXPECT_EQ(errorOf(darkframes::readPgm, write("a.pgm", "P2 1 1 100\n101\n")), message);
}
