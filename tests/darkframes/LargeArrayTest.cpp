// SPDX-License-Identifier: MIT
#include "darkframes/LargeArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

using darkframes::LargeArray;

TEST(LargeArray, HoldsItsValuesOfAnySize)
{
    // On both sides of what is large, and in the middle of a large page.
    for (const std::size_t count : {0U, 1U, 1048575U, 1048576U, 1048577U, 3000001U}) {
        LargeArray<std::uint32_t> values(count);
        std::iota(values.data(), values.data() + count, 7U);
        LargeArray<std::uint32_t> moved(std::move(values));
        for (std::size_t i = 0; i < count; i += 997) {
            ASSERT_EQ(moved[i], i + 7) << count;
        }
    }
}

TEST(LargeArray, RefusesMoreThanAnAddressCanTell)
{
    constexpr std::size_t TooMany = std::numeric_limits<std::size_t>::max() / 2;
    EXPECT_THROW(LargeArray<std::uint32_t>{TooMany}, std::bad_alloc);
}
