// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelEntryList.h"

#include "tests/hotpixel/PrintEntry.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

namespace {

std::vector<BadpixelEntry> byRow(const BadpixelEntryList& list)
{
    std::vector<BadpixelEntry> entries;
    for (std::size_t row = 0; row < list.size(); ++row) {
        entries.push_back(list[row]);
    }
    return entries;
}

} // namespace

TEST(BadpixelEntryList, HoldsWhatAVectorHoldsAfterEveryChange)
{
    std::mt19937 random(20261120); // NOLINT(bugprone-random-generator-seed): repeatable
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    std::uint16_t next = 0;
    BadpixelEntryList list;
    std::vector<BadpixelEntry> expected;
    const auto place = [&expected](std::size_t row) {
        return expected.begin() + static_cast<std::ptrdiff_t>(row);
    };
    for (int round = 0; round < 20000; ++round) {
        const BadpixelEntry entry{next++, 0, UserPixel};
        switch (below(12)) {
        case 0: {
            const std::size_t row = below(expected.size() + 1);
            const std::size_t count = below(4);
            list.insert(row, count, entry);
            expected.insert(place(row), count, entry);
            break;
        }
        case 1:
            list.append({entry, entry});
            expected.insert(expected.end(), {entry, entry});
            break;
        case 2:
            EXPECT_EQ((std::vector<BadpixelEntry>{list.all().begin(), list.all().end()}), expected);
            break;
        case 3:
            if (below(100) == 0) {
                list.clear();
                expected.clear();
            }
            break;
        case 4:
        case 5:
            list.append(entry);
            expected.push_back(entry);
            break;
        case 6:
            if (!expected.empty()) {
                const std::size_t row = below(expected.size());
                list[row] = entry;
                expected[row] = entry;
            }
            break;
        default:
            if (!expected.empty() && expected.size() > below(40)) {
                const std::size_t row = below(expected.size());
                list.erase(row);
                expected.erase(place(row));
            }
            break;
        }
        ASSERT_EQ(byRow(list), expected) << "round " << round;
    }
}
