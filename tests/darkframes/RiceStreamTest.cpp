// SPDX-License-Identifier: MIT
#include "darkframes/RiceStream.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace {

bool isWhole(std::initializer_list<std::uint8_t> packed, std::int64_t pixels, int pixelBytes,
             std::int64_t blockPixels = 32)
{
    const std::vector<std::uint8_t> bytes(packed);
    return darkframes::isWholeRiceStream(bytes, pixels, pixelBytes, blockPixels);
}

} // namespace

TEST(RiceStream, NeedsTheFirstPixel)
{
    EXPECT_FALSE(isWhole({}, 1, 1));
    EXPECT_FALSE(isWhole({7}, 1, 1));
    EXPECT_TRUE(isWhole({7, 0}, 1, 1));
    EXPECT_FALSE(isWhole({7, 7}, 1, 2));
    EXPECT_FALSE(isWhole({7, 7, 7, 7}, 1, 4));
}

TEST(RiceStream, TakesABlockWithoutDifferences)
{
    EXPECT_TRUE(isWhole({7, 0b00000000}, 32, 1));
    // The second block's number begins in bit 3 of the byte, the third's crosses its end.
    EXPECT_TRUE(isWhole({7, 0b00000000}, 64, 1));
    EXPECT_FALSE(isWhole({7, 0b00000000}, 65, 1));
}

TEST(RiceStream, TakesDifferencesAsTheyAre)
{
    EXPECT_TRUE(isWhole({7, 0b11100000, 0, 0, 0}, 3, 1));
    EXPECT_FALSE(isWhole({7, 0b11100000, 0, 0}, 3, 1));
    EXPECT_TRUE(isWhole({7, 7, 0b11110000, 0, 0}, 1, 2));
    EXPECT_FALSE(isWhole({7, 7, 0b11110000, 0}, 1, 2));
    EXPECT_TRUE(isWhole({7, 7, 7, 7, 0b11010000, 0, 0, 0, 0}, 1, 4));
    EXPECT_FALSE(isWhole({7, 7, 7, 7, 0b11010000, 0, 0, 0}, 1, 4));
}

TEST(RiceStream, LooksForTheOneOfEachDifference)
{
    // One low bit each: 1x 1x, then one that needs a bit more than there is.
    EXPECT_TRUE(isWhole({7, 0b01010100}, 2, 1));
    EXPECT_FALSE(isWhole({7, 0b01010101}, 3, 1));
    EXPECT_FALSE(isWhole({7, 0b01000000, 0, 0, 0}, 1, 1));
}

TEST(RiceStream, BeginsABlockAfterEachBlock)
{
    EXPECT_FALSE(isWhole({7, 0b00100100}, 2, 1, 1));
    EXPECT_TRUE(isWhole({7, 0b00110011}, 2, 1, 1));
}
