// SPDX-License-Identifier: MIT
#include "darkframes/FrameStacker.h"

#include "darkframes/FrameError.h"
#include "tests/darkframes/TestFrames.h"

#include <gtest/gtest.h>

namespace {

Frame frame(int width, int height, int bits, std::optional<Mosaic> mosaic = std::nullopt,
            unsigned seed = 1)
{
    return {TestFrames::random(width, height, bits, 1, seed).image(0), std::move(mosaic)};
}

template <typename Call>
std::string messageOf(Call call)
{
    try {
        call();
    } catch (const FrameError& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(FrameStacker, AddsUpAllFrames)
{
    for (const int bits : {8, 16}) {
        for (const int frames : {1, 2, 3, 8, 9, 19}) {
            const TestFrames random = TestFrames::random(6, 4, bits, frames, 3);
            FrameStacker stacker;
            for (int i = 0; i < frames; ++i) {
                EXPECT_EQ(stacker.frameCount(), unsigned(i));
                stacker.add("frame", {random.image(std::size_t(i)), std::nullopt});
            }
            const DarkStack& stack = stacker.finish(1);
            const DarkStack expected = random.stack();
            EXPECT_EQ(stack.frameCount(), unsigned(frames));
            EXPECT_TRUE(std::ranges::equal(stack.sums(), expected.sums()));
        }
    }
}

TEST(FrameStacker, RefusesAFrameOfAnotherSizeOrDepth)
{
    FrameStacker stacker;
    stacker.add("a.png", frame(6, 4, 8));
    EXPECT_EQ(messageOf([&] { stacker.add("b.png", frame(6, 5, 8)); }),
              "b.png: 6 × 5 pixels of 8 bits, and not 6 × 4 pixels of 8 bits as a.png");
    EXPECT_EQ(messageOf([&] { stacker.add("c.png", frame(6, 4, 16)); }),
              "c.png: 6 × 4 pixels of 16 bits, and not 6 × 4 pixels of 8 bits as a.png");
    EXPECT_EQ(stacker.frameCount(), 1U);
}

TEST(FrameStacker, RefusesAFrameOfAnotherPattern)
{
    FrameStacker stacker;
    stacker.add("a.fits", frame(6, 4, 16, Mosaic::fromColours("RGGB")));
    EXPECT_EQ(
        messageOf([&] { stacker.add("b.fits", frame(6, 4, 16, Mosaic::fromColours("GRBG"))); }),
        "b.fits: Bayer, GRBG, and not Bayer, RGGB as a.fits");
    EXPECT_EQ(messageOf([&] { stacker.add("c.fits", frame(6, 4, 16, Mosaic::mono())); }),
              "c.fits: monochrome, and not Bayer, RGGB as a.fits");
    // To say nothing, or not which colours, is no contradiction.
    stacker.add("d.fits", frame(6, 4, 16));
    stacker.add("e.fits", frame(6, 4, 16, Mosaic::bayer()));
    EXPECT_EQ(stacker.mosaic(), Mosaic::fromColours("RGGB"));
}

TEST(FrameStacker, BelievesWhatItIsToldBeforeWhatFramesSay)
{
    FrameStacker mono(Mosaic::mono());
    mono.add("a.dng", frame(6, 4, 16, Mosaic::fromColours("RGGB")));
    mono.add("b.dng", frame(6, 4, 16, Mosaic::fromColours("GRBG")));
    EXPECT_EQ(mono.mosaic(), Mosaic::mono());

    FrameStacker bayer(Mosaic::bayer());
    bayer.add("a.dng", frame(6, 4, 16, Mosaic::mono()));
    EXPECT_EQ(bayer.mosaic(), Mosaic::bayer());
    bayer.add("b.dng", frame(6, 4, 16, Mosaic::fromColours("RGGB")));
    EXPECT_EQ(bayer.mosaic(), Mosaic::fromColours("RGGB"));
    EXPECT_NE(messageOf([&] { bayer.add("c.dng", frame(6, 4, 16, Mosaic::fromColours("BGGR"))); }),
              "no error");
}

TEST(FrameStacker, KnowsNoPatternAsLongAsNobodySays)
{
    FrameStacker stacker;
    stacker.add("a.png", frame(6, 4, 8));
    EXPECT_EQ(stacker.mosaic(), std::nullopt);
    stacker.add("b.fits", frame(6, 4, 8, Mosaic::mono()));
    EXPECT_EQ(stacker.mosaic(), Mosaic::mono());
}

TEST(FrameStacker, RefusesOneFrameWhereTwoAreNecessary)
{
    FrameStacker stacker;
    EXPECT_EQ(messageOf([&] { stacker.finish(1); }), "there are no frames");
    stacker.add("a.png", frame(6, 4, 8));
    EXPECT_EQ(messageOf([&] { stacker.finish(2); }),
              "a.png: one frame only; at least 2 are necessary");
    EXPECT_EQ(stacker.finish(1).frameCount(), 1U);
}

TEST(FrameStacker, RefusesMoreFramesThanCanBeAddedUp)
{
    FrameStacker stacker;
    for (std::uint32_t i = 0; i < DarkStack::MostFrames; ++i) {
        stacker.add("a.png", {QImage(1, 1, QImage::Format_Grayscale8), std::nullopt});
    }
    EXPECT_EQ(messageOf([&] { stacker.add("b.png", frame(1, 1, 8)); }),
              "b.png: more than 65537 frames can't be added up");
    EXPECT_EQ(stacker.finish(1).frameCount(), DarkStack::MostFrames);
}
