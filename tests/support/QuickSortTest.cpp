// SPDX-License-Identifier: MIT
#include "support/QuickSort.h"

#include "tests/harness/SharedData.h"

#include <QFile>
#include <QList>
#include <QTextStream>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

struct Element
{
    int key;
    int position; ///< in the unsorted list
};

QList<Element> elements(const QList<int>& keys)
{
    QList<Element> list;
    for (const int key : keys) {
        list.append({.key = key, .position = static_cast<int>(list.size())});
    }
    return list;
}

bool less(const Element& a, const Element& b)
{
    return a.key < b.key;
}

bool greater(const Element& a, const Element& b)
{
    return b.key < a.key;
}

QList<int> positionsSorted(const QList<int>& keys,
                           const std::function<bool(const Element&, const Element&)>& lessThan)
{
    QList<Element> list = elements(keys);
    support::quickSort(list.begin(), list.end(), lessThan);
    QList<int> positions;
    for (const Element& element : list) {
        positions.append(element.position);
    }
    return positions;
}

// The algorithm step by step on indices, first part first, as it is told in words.
void referenceSort(std::vector<Element>& list, int first, int count,
                   const std::function<bool(const Element&, const Element&)>& lessThan)
{
    const auto at = [&list](int i) -> Element& { return list[static_cast<std::size_t>(i)]; };
    if (count < 2) {
        return;
    }
    const int last = first + count - 1;
    const int middle = first + count / 2;
    if (lessThan(at(last), at(first))) {
        std::swap(at(last), at(first));
    }
    if (count == 2) {
        return;
    }
    if (lessThan(at(middle), at(first))) {
        std::swap(at(middle), at(first));
    }
    if (lessThan(at(last), at(middle))) {
        std::swap(at(last), at(middle));
    }
    if (count == 3) {
        return;
    }
    std::swap(at(middle), at(last));
    int low = first;
    int high = last - 1;
    while (low < high) {
        while (low < high && lessThan(at(low), at(last))) {
            low++;
        }
        while (high > low && lessThan(at(last), at(high))) {
            high--;
        }
        if (!(low < high)) {
            break;
        }
        std::swap(at(low), at(high));
        low++;
        high--;
    }
    if (lessThan(at(low), at(last))) {
        low++;
    }
    std::swap(at(last), at(low));
    referenceSort(list, first, low - first, lessThan);
    referenceSort(list, low + 1, last - low, lessThan);
}

QList<int> positionsOfReference(const QList<int>& keys,
                                const std::function<bool(const Element&, const Element&)>& lessThan)
{
    const QList<Element> source = elements(keys);
    std::vector<Element> list(source.begin(), source.end());
    referenceSort(list, 0, static_cast<int>(list.size()), lessThan);
    QList<int> positions;
    for (const Element& element : list) {
        positions.append(element.position);
    }
    return positions;
}

struct HandWorked
{
    const char* name;
    QList<int> keys;
    QList<int> ascending;
};

// Worked out on paper.
const std::vector<HandWorked>& handWorkedCases()
{
    static const std::vector<HandWorked> cases = {
        {"nothing", {}, {}},
        {"one", {4}, {0}},
        {"two in order", {1, 2}, {0, 1}},
        {"two the other way round", {2, 1}, {1, 0}},
        {"two equal stay", {1, 1}, {0, 1}},
        // Neither of the three comparisons holds.
        {"three equal stay", {1, 1, 1}, {0, 1, 2}},
        // 2a 2b 1: last < first gives 1 2b 2a; nothing else holds. The equal ones are turned round.
        {"three, equal ones turned round", {2, 2, 1}, {2, 1, 0}},
        // 3 1 2: last < first gives 2 1 3; middle < first gives 1 2 3.
        {"three turned", {3, 1, 2}, {1, 2, 0}},
        // a b c d, pivot c goes last: a b d c. low stays at a, high stays at d: swapped, d b a c,
        // low and high meet at b; not less than the pivot; swapped with the pivot: d c a b. Before
        // it one element; behind it a b, in order.
        {"four equal", {1, 1, 1, 1}, {3, 2, 0, 1}},
        // 4 3 2 1: last < first gives 1 3 2 4; middle 2 goes last: 1 3 4 2. low stops at 3, high
        // comes down to it. Swapped with the pivot: 1 2 4 3; then 4 3 gives 3 4.
        {"four the other way round", {4, 3, 2, 1}, {3, 2, 1, 0}},
    };
    return cases;
}

TEST(QuickSort, SortsSmallListsAsWorkedOutByHand)
{
    for (const HandWorked& testCase : handWorkedCases()) {
        EXPECT_EQ(positionsSorted(testCase.keys, less), testCase.ascending) << testCase.name;
    }
}

TEST(QuickSort, SortsTheListsTakenFromTheOldToolkitAsItDid)
{
    QFile file(sharedData("toolkit_sort.txt"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        GTEST_SKIP() << "no recorded lists at " << qPrintable(file.fileName());
    }
    const auto numbers = [](const QString& line) {
        QList<int> list;
        for (const QString& word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            list.append(word.toInt());
        }
        return list;
    };

    QTextStream stream(&file);
    int cases = 0;
    while (!stream.atEnd()) {
        const QString title = stream.readLine();
        if (title.isEmpty()) {
            continue;
        }
        const QList<int> keys = numbers(stream.readLine());
        const QList<int> positions = numbers(stream.readLine());
        ASSERT_EQ(title.section(QLatin1Char(' '), 1).toInt(), keys.size()) << qPrintable(title);
        const bool ascending = title.startsWith(QLatin1String("ascending"));
        ASSERT_TRUE(ascending || title.startsWith(QLatin1String("descending")));
        EXPECT_EQ(positionsSorted(keys, ascending ? less : greater), positions)
            << qPrintable(title);
        ++cases;
    }
    EXPECT_GT(cases, 0);
}

TEST(QuickSort, LeavesEqualElementsAsTheAlgorithmDoesInAnyList)
{
    std::mt19937 random(20);
    for (int round = 0; round < 2000; ++round) {
        const int count = static_cast<int>(random() % 70);
        const auto distinct = 1 + random() % 40;
        QList<int> keys;
        for (int i = 0; i < count; ++i) {
            keys.append(static_cast<int>(random() % distinct));
        }
        ASSERT_EQ(positionsSorted(keys, less), positionsOfReference(keys, less)) << round;
        ASSERT_EQ(positionsSorted(keys, greater), positionsOfReference(keys, greater)) << round;
    }
}

TEST(QuickSort, AgreesWithTheAlgorithmForAComparisonThatIsNoOrder)
{
    std::mt19937 random(21);
    // Compares two different things, as the camera list does.
    const auto oddLess = [](const Element& a, const Element& b) { return a.key < b.position; };
    for (int round = 0; round < 500; ++round) {
        QList<int> keys;
        for (auto i = random() % 40; i > 0; --i) {
            keys.append(static_cast<int>(random() % 30));
        }
        ASSERT_EQ(positionsSorted(keys, oddLess), positionsOfReference(keys, oddLess)) << round;
    }
}

TEST(QuickSort, SortsAListOfPointers)
{
    const int values[] = {3, 1, 2};
    QList<const int*> list = {&values[0], &values[1], &values[2]};
    support::quickSort(list.begin(), list.end(),
                       [](const int* a, const int* b) { return *a < *b; });
    EXPECT_EQ(list, (QList<const int*>{&values[1], &values[2], &values[0]}));
}

TEST(QuickSort, LosesNoElementWhenTheComparisonThrows)
{
    for (int allowed = 0; allowed < 60; ++allowed) {
        QList<int> list = {5, 3, 9, 1, 7, 7, 2, 8, 0, 6, 4, 3};
        QList<int> before = list;
        int calls = 0;
        const auto throwing = [&](int a, int b) {
            if (calls++ == allowed) {
                throw std::runtime_error("Sort Error");
            }
            return a < b;
        };
        try {
            support::quickSort(list.begin(), list.end(), throwing);
        } catch (const std::runtime_error&) {
        }
        std::sort(before.begin(), before.end());
        std::sort(list.begin(), list.end());
        ASSERT_EQ(list, before) << allowed;
    }
}

// The comparisons are answered as an adversary would, so that each part before a pivot is all but
// one or two elements of the whole: the worst case for the stack.
TEST(QuickSort, NeedsLittleStackInTheWorstCase)
{
    constexpr int Count = 6000;
    constexpr int Undecided = -1;
    std::vector<int> ranks(Count, Undecided);
    const auto rank = [&ranks](int i) -> int& { return ranks[static_cast<std::size_t>(i)]; };
    int nextRank = Count;
    int candidate = 0;
    const auto adversary = [&](int a, int b) {
        if (rank(a) == Undecided && rank(b) == Undecided) {
            rank(a == candidate ? a : b) = nextRank--;
        }
        if (rank(a) == Undecided) {
            candidate = a;
        } else if (rank(b) == Undecided) {
            candidate = b;
        }
        return rank(a) < rank(b);
    };
    // The deepest stack shows in the lowest address that a comparison's local variable had.
    std::uintptr_t lowest = std::numeric_limits<std::uintptr_t>::max();
    std::uintptr_t highest = 0;
    const auto measuring = [&](int a, int b) {
        const volatile char local = 0;
        const auto address = reinterpret_cast<std::uintptr_t>(&local);
        lowest = std::min(lowest, address);
        highest = std::max(highest, address);
        return adversary(a, b);
    };
    std::vector<int> list(Count);
    std::iota(list.begin(), list.end(), 0);
    support::quickSort(list.begin(), list.end(), measuring);

    EXPECT_TRUE(
        std::is_sorted(list.begin(), list.end(), [&](int a, int b) { return rank(a) < rank(b); }));
    EXPECT_LT(highest - lowest, 64U * 1024U);
}

} // namespace
