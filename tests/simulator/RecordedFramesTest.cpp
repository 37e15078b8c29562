// SPDX-License-Identifier: MIT
#include "simulator/RecordedFrames.h"

#include "tests/harness/SharedData.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr int Width = 5;
constexpr int Height = 3;

QImage greyImage(int first)
{
    QImage image(Width, Height, QImage::Format_Grayscale8);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            image.scanLine(y)[x] = static_cast<uchar>(first + y * Width + x);
        }
    }
    return image;
}

std::vector<std::uint8_t> render(RecordedFrames& frames, std::uint64_t frame)
{
    constexpr std::size_t Pitch = 8;
    std::vector<std::uint8_t> padded(Pitch * Height, 0xee);
    frames.render(frame, {}, padded.data(), Pitch);
    std::vector<std::uint8_t> pixels;
    for (std::size_t y = 0; y < Height; ++y) {
        const auto line = padded.begin() + static_cast<std::ptrdiff_t>(y * Pitch);
        pixels.insert(pixels.end(), line, line + Width);
        EXPECT_EQ(line[Width], 0xee) << "written into the padding";
    }
    return pixels;
}

std::vector<std::uint8_t> ramp(int first)
{
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < Width * Height; ++i) {
        pixels.push_back(static_cast<std::uint8_t>(first + i));
    }
    return pixels;
}

std::string refusal(const QString& folder)
{
    try {
        const RecordedFrames frames(folder, Width, Height);
        return "accepted";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(RecordedFrames, ArePlayedInTheOrderOfTheirNamesAroundAndAround)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(greyImage(100).save(folder.filePath(QStringLiteral("b.png"))));
    ASSERT_TRUE(greyImage(0).save(folder.filePath(QStringLiteral("a.png"))));
    RecordedFrames frames(folder.path(), Width, Height);
    EXPECT_EQ(render(frames, 0), ramp(0));
    EXPECT_EQ(render(frames, 1), ramp(100));
    EXPECT_EQ(render(frames, 2), ramp(0));
    EXPECT_EQ(render(frames, 7), ramp(100));
}

TEST(RecordedFrames, AnIndexedImageCountsByItsColours)
{
    const QTemporaryDir folder;
    QImage image(Width, Height, QImage::Format_Indexed8);
    image.setColorTable({qRgb(200, 200, 200), qRgb(7, 7, 7)});
    image.fill(0);
    image.setPixel(1, 0, 1);
    ASSERT_TRUE(image.convertToFormat(QImage::Format_Indexed8)
                    .save(folder.filePath(QStringLiteral("a.tif"))));
    RecordedFrames frames(folder.path(), Width, Height);
    std::vector<std::uint8_t> expected(Width * Height, 200);
    expected[1] = 7;
    EXPECT_EQ(render(frames, 0), expected);
}

TEST(RecordedFrames, AnEmptyOrMissingFolderIsRefused)
{
    const QTemporaryDir folder;
    EXPECT_EQ(refusal(folder.path()),
              "There are no recorded frames in " + folder.path().toStdString() + ".");
    EXPECT_EQ(refusal(QStringLiteral("/no/such")), "There are no recorded frames in /no/such.");
}

TEST(RecordedFrames, WhatIsWrongWithAFileIsSaid)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("a %2.png"));
    const std::string prefix = name.toStdString() + ": ";

    ASSERT_TRUE(greyImage(0).copy(0, 0, 4, 3).save(name));
    EXPECT_EQ(refusal(folder.path()), prefix + "4 x 3 pixels instead of 5 x 3");

    QImage colour(Width, Height, QImage::Format_RGB32);
    colour.fill(Qt::red);
    ASSERT_TRUE(colour.save(name));
    EXPECT_EQ(refusal(folder.path()), prefix + "not an 8-bit grey image");

    QImage deep(Width, Height, QImage::Format_Grayscale16);
    deep.fill(Qt::gray);
    ASSERT_TRUE(deep.save(name));
    EXPECT_EQ(refusal(folder.path()), prefix + "not an 8-bit grey image");

    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    EXPECT_EQ(refusal(folder.path()).rfind(prefix, 0), 0U);
}

TEST(RecordedFrames, ARealSensorsFramesKeepEveryGreyValue)
{
    const QString folder = sharedData("darkframes/colour_cmos_1280x960");
    if (!QDir(folder).exists()) {
        GTEST_SKIP() << "no recorded dark frames here";
    }
    RecordedFrames frames(folder, 1280, 960);
    std::vector<std::uint8_t> pixels(1280 * 960);
    for (const std::uint64_t frame : {std::uint64_t{0}, std::uint64_t{9}, std::uint64_t{10}}) {
        frames.render(frame, {}, pixels.data(), 1280);
        const QImage image(folder + QStringLiteral("/frame_0%1.png").arg(frame % 10));
        ASSERT_EQ(image.depth(), 8);
        for (int y = 0; y < 960; ++y) {
            const auto line = pixels.begin() + y * 1280;
            ASSERT_TRUE(std::equal(line, line + 1280, image.constScanLine(y))) << "line " << y;
        }
    }
}

} // namespace
