// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <iterator>

namespace support {

/// Sorts [@p first, @p end) with the quicksort of the old toolkit, whose order of equal elements
/// the lists of this program are known by. Not stable.
///
/// The middle element of each part, made the median of first, middle and last, is its pivot.
/// @param first, end random-access iterators, of a QList of values or of pointers for example
/// @param lessThan whether its first argument stands before its second; need not be a strict weak
///        order: whatever it answers, the elements afterwards are the elements before
/// Elements only ever change places, so an exception that @p lessThan throws passes through with
/// all elements there, partly sorted. Any thread; O(n log n) on average, O(n²) at worst, with a
/// stack of O(log n).
template <std::random_access_iterator Iterator, typename LessThan>
void quickSort(Iterator first, Iterator end, LessThan lessThan)
{
    while (end - first >= 2) {
        const Iterator last = end - 1;
        const Iterator middle = first + (end - first) / 2;

        if (lessThan(*last, *first)) {
            std::iter_swap(last, first);
        }
        if (end - first == 2) {
            return;
        }
        if (lessThan(*middle, *first)) {
            std::iter_swap(middle, first);
        }
        if (lessThan(*last, *middle)) {
            std::iter_swap(last, middle);
        }
        if (end - first == 3) {
            return;
        }

        std::iter_swap(middle, last);
        Iterator low = first;
        Iterator high = last - 1;
        while (low < high) {
            while (low < high && lessThan(*low, *last)) {
                ++low;
            }
            while (high > low && lessThan(*last, *high)) {
                --high;
            }
            if (low >= high) {
                break;
            }
            std::iter_swap(low, high);
            ++low;
            --high;
        }
        if (lessThan(*low, *last)) {
            ++low;
        }
        std::iter_swap(last, low);

        // The two parts have nothing to do with each other, so which one comes first changes
        // nothing in the result; the smaller one first keeps the stack small on a million entries.
        if (low - first < end - (low + 1)) {
            quickSort(first, low, lessThan);
            first = low + 1;
        } else {
            quickSort(low + 1, end, lessThan);
            end = low;
        }
    }
}

} // namespace support
