// SPDX-License-Identifier: MIT
#include "darkframes/FrameFolder.h"

#include "tests/darkframes/FrameFiles.h"

#include <QDir>

namespace {

using FrameFolder = FrameFiles;

} // namespace

TEST_F(FrameFolder, SavesFramesWithExactlyTheirValues)
{
    for (const QImage& image : {narrowFrame(19, 7), wideFrame(19, 7)}) {
        darkframes::saveFrame(image, path("frame.png"));
        const QImage saved(path("frame.png"));
        EXPECT_EQ(saved.format(), image.format());
        EXPECT_EQ(valuesOf(saved), valuesOf(image));
    }
}

TEST_F(FrameFolder, SavesTheBytesOfACamerasImageWhateverItsPalette)
{
    QImage image(5, 2, QImage::Format_Indexed8);
    for (int i = 0; i < 10; ++i) {
        image.scanLine(i / 5)[i % 5] = static_cast<uchar>(i * 20);
    }
    darkframes::saveFrame(image, path("frame.png"));
    EXPECT_EQ(valuesOf(QImage(path("frame.png"))),
              (std::vector<std::uint16_t>{0, 20, 40, 60, 80, 100, 120, 140, 160, 180}));
}

TEST_F(FrameFolder, LeavesNothingBehindWhatCouldNotBeSaved)
{
    EXPECT_THAT(errorOf([](const QString& file) { darkframes::saveFrame(narrowFrame(2, 2), file); },
                        path("missing/frame.png")),
                testing::StartsWith("FILE: "));
    EXPECT_TRUE(QDir(path("")).entryList(QDir::Files).isEmpty());
}

TEST_F(FrameFolder, NamesFramesInTheirOrder)
{
    EXPECT_EQ(darkframes::frameFileName(0), "frame_0000.png");
    EXPECT_EQ(darkframes::frameFileName(123), "frame_0123.png");
    EXPECT_LT(darkframes::frameFileName(9), darkframes::frameFileName(10));
}
