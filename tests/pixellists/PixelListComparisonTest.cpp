// SPDX-License-Identifier: MIT
#include "pixellists/PixelListComparison.h"

#include "tests/pixellists/ListTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>

namespace {

PixelListDifference withTolerance(unsigned tolerance, const PixelList& before,
                                  const PixelList& after)
{
    return pixellists::difference(before, after, tolerance);
}

PixelList inClass(PixelList pixels, PixelListClass listClass)
{
    for (ListedPixel& pixel : pixels) {
        pixel.listClass = listClass;
    }
    return pixels;
}

PixelList randomPlaces(std::uint32_t seed, std::size_t count, int width)
{
    return randomPixels(seed, count, {width, width},
                        *pixellists::formatNamed(QStringLiteral("csv")));
}

bool isAt(const ListedPixel& one, const ListedPixel& other)
{
    return one.x == other.x && one.y == other.y;
}

bool has(const PixelList& pixels, const ListedPixel& pixel)
{
    return std::ranges::any_of(pixels, [&](const ListedPixel& one) { return isAt(one, pixel); });
}

/// Without anything that makes it quick.
PixelList slowRemoved(const PixelList& before, PixelList after, int tolerance)
{
    PixelList left;
    std::ranges::copy_if(before, std::back_inserter(left),
                         [&](const ListedPixel& pixel) { return !has(after, pixel); });
    std::erase_if(after, [&](const ListedPixel& pixel) { return has(before, pixel); });
    PixelList removed;
    for (const ListedPixel& pixel : left) {
        auto nearest = after.end();
        const auto distance = [&](const ListedPixel& other) {
            const int dx = other.x - pixel.x;
            const int dy = other.y - pixel.y;
            return std::array{dx * dx + dy * dy, int{other.y}, int{other.x}};
        };
        for (auto other = after.begin(); other != after.end(); ++other) {
            if (std::max(std::abs(other->x - pixel.x), std::abs(other->y - pixel.y)) <= tolerance &&
                (nearest == after.end() || distance(*other) < distance(*nearest))) {
                nearest = other;
            }
        }
        if (nearest == after.end()) {
            removed.push_back(pixel);
        } else {
            after.erase(nearest);
        }
    }
    return removed;
}

} // namespace

TEST(ComparingLists, FindsNothingInTheSamePixelsInAnyOrder)
{
    const PixelListDifference result =
        withTolerance(0, pixelsAt({{1, 2}, {3, 4}}), pixelsAt({{3, 4}, {1, 2}, {3, 4}}));
    EXPECT_TRUE(result.isEmpty());
    EXPECT_EQ(result.both, 2U);
    EXPECT_TRUE(withTolerance(0, {}, {}).isEmpty());
}

TEST(ComparingLists, FindsWhatWasAddedAndWhatWasRemovedInTheOrderOfTheLists)
{
    const PixelListDifference result = withTolerance(0, pixelsAt({{9, 9}, {1, 2}, {5, 5}, {5, 5}}),
                                                     pixelsAt({{2, 1}, {1, 2}, {0, 7}, {2, 1}}));
    EXPECT_EQ(result.removed, pixelsAt({{9, 9}, {5, 5}}));
    EXPECT_EQ(result.added, pixelsAt({{2, 1}, {0, 7}}));
    EXPECT_EQ(result.both, 1U);
    EXPECT_FALSE(result.isEmpty());
}

TEST(ComparingLists, FindsWhatIsInAnotherClassNow)
{
    const PixelList pixels = pixelsAt({{1, 2}});
    const PixelList user = inClass(pixels, PixelListClass::User);
    const PixelList factory = inClass(pixels, PixelListClass::Factory);
    const PixelListDifference result = withTolerance(0, user, factory);
    EXPECT_EQ(result.changed, (std::vector<ChangedPixel>{{user.front(), factory.front()}}));
    EXPECT_EQ(result.both, 1U);
    EXPECT_FALSE(result.isEmpty());
    // A list that says nothing about classes says nothing else, either.
    EXPECT_TRUE(withTolerance(0, user, pixels).isEmpty());
    EXPECT_TRUE(withTolerance(0, pixels, factory).isEmpty());
}

TEST(ComparingLists, FindsWhatIsColdNow)
{
    PixelList hot = pixelsAt({{1, 2}});
    PixelList cold = hot;
    hot[0].defect = PixelDefect::Hot;
    cold[0].defect = PixelDefect::Cold;
    EXPECT_EQ(withTolerance(0, hot, cold).changed.size(), 1U);
    EXPECT_TRUE(withTolerance(0, pixelsAt({{1, 2}}), cold).isEmpty());
}

TEST(ComparingLists, TakesPixelsThatLieNearForTheSameWithinTheTolerance)
{
    EXPECT_EQ(withTolerance(1, pixelsAt({{5, 5}}), pixelsAt({{7, 5}})).removed.size(), 1U);
    for (const auto& [x, y] : {std::pair(7, 5), {5, 3}, {7, 7}, {3, 3}}) {
        const PixelListDifference result = withTolerance(2, pixelsAt({{5, 5}}), pixelsAt({{x, y}}));
        EXPECT_TRUE(result.isEmpty());
        EXPECT_EQ(result.both, 1U);
        EXPECT_EQ(result.nearby, 1U);
    }
    EXPECT_TRUE(
        withTolerance(3, pixelsAt({{0, 0}, {65535, 65535}}), pixelsAt({{2, 3}, {65532, 65533}}))
            .isEmpty());
}

TEST(ComparingLists, MatchesEachPixelOnceAndTheSamePlaceFirst)
{
    PixelListDifference result = withTolerance(1, pixelsAt({{5, 5}, {6, 5}}), pixelsAt({{6, 5}}));
    EXPECT_EQ(result.removed, pixelsAt({{5, 5}}));
    EXPECT_EQ(result.nearby, 0U);
    result = withTolerance(5, pixelsAt({{5, 5}}), pixelsAt({{9, 5}, {6, 5}, {5, 7}}));
    EXPECT_EQ(result.added, pixelsAt({{9, 5}, {5, 7}}));
}

TEST(ComparingLists, OfRandomPixelsIsAsSlowComparingFindsIt)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        const int width = seed % 3 == 0 ? 12 : 40;
        const auto tolerance = seed % 5;
        const PixelList before = pixellists::withoutRepetitions(randomPlaces(seed, 60, width));
        const PixelList after =
            pixellists::withoutRepetitions(randomPlaces(seed + 1000, 50, width));
        const PixelListDifference result = withTolerance(tolerance, before, after);
        EXPECT_EQ(result.removed, slowRemoved(before, after, static_cast<int>(tolerance))) << seed;
        EXPECT_EQ(result.both + result.removed.size(), before.size());
        EXPECT_EQ(result.both + result.added.size(), after.size());
    }
}

TEST(MergingLists, KeepsEachPixelOnceInTheOrderInWhichTheyCome)
{
    const std::array lists{pixelsAt({{5, 5}, {1, 1}, {5, 5}}), pixelsAt({{0, 0}, {1, 1}}),
                           PixelList{}};
    EXPECT_EQ(pixellists::merged(lists), pixelsAt({{5, 5}, {1, 1}, {0, 0}}));
    EXPECT_TRUE(pixellists::merged({}).empty());
}

TEST(MergingLists, KeepsThePixelsThatEnoughListsHave)
{
    const std::array lists{pixelsAt({{5, 5}, {5, 5}, {1, 1}, {2, 2}}), pixelsAt({{1, 1}, {2, 2}}),
                           pixelsAt({{2, 2}, {7, 7}})};
    EXPECT_EQ(pixellists::merged(lists, 2), pixelsAt({{1, 1}, {2, 2}}));
    EXPECT_EQ(pixellists::merged(lists, 3), pixelsAt({{2, 2}}));
    EXPECT_TRUE(pixellists::merged(lists, 4).empty());
}

TEST(MergingLists, TakesWhatTheFirstListThatKnowsItSaysOfAPixel)
{
    PixelList first = pixelsAt({{1, 1}});
    PixelList second = inClass(pixelsAt({{1, 1}}), PixelListClass::User);
    PixelList third = inClass(pixelsAt({{1, 1}}), PixelListClass::Factory);
    second[0].value = 51.8F;
    third[0].value = 60.0F;
    third[0].defect = PixelDefect::Cold;
    EXPECT_EQ(pixellists::merged(std::array{first, second, third}),
              (PixelList{{.x = 1,
                          .y = 1,
                          .defect = PixelDefect::Cold,
                          .listClass = PixelListClass::User,
                          .value = 51.8F}}));
}

TEST(MergingLists, OfRandomPixelsCountsEachListOnce)
{
    std::vector<PixelList> lists;
    std::map<std::pair<int, int>, std::size_t> votes;
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
        lists.push_back(randomPlaces(seed, 300, 20));
        for (const ListedPixel& pixel : pixellists::withoutRepetitions(lists.back())) {
            ++votes[{pixel.x, pixel.y}];
        }
    }
    for (std::size_t least = 1; least <= 6; ++least) {
        const PixelList result = pixellists::merged(lists, least);
        EXPECT_EQ(
            static_cast<std::ptrdiff_t>(result.size()),
            std::ranges::count_if(votes, [&](const auto& vote) { return vote.second >= least; }));
        for (const ListedPixel& pixel : result) {
            EXPECT_GE((votes[{pixel.x, pixel.y}]), least);
        }
    }
}
