// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelList.h"

#include <cstddef>
#include <span>
#include <vector>

/// A pixel that two lists have, of which they say different things.
struct ChangedPixel
{
    ListedPixel before;
    ListedPixel after;

    friend bool operator==(const ChangedPixel&, const ChangedPixel&) = default;
};

/// What makes one list another one.
struct PixelListDifference
{
    PixelList added;   ///< in the order of the second list
    PixelList removed; ///< in the order of the first one
    /// Pixels whose class, or whether they are hot or cold, is another one in the second list; in
    /// the order of the first. What only one of them says is no change.
    std::vector<ChangedPixel> changed;
    std::size_t both = 0;   ///< pixels that both lists have, changed ones included
    std::size_t nearby = 0; ///< those of them that lie beside each other within the tolerance

    [[nodiscard]] bool isEmpty() const
    {
        return added.empty() && removed.empty() && changed.empty();
    }
};

namespace pixellists {

/// Lists are not compared with a greater tolerance.
constexpr unsigned GreatestTolerance = 100;

/// @p pixels without those whose place has been listed before.
PixelList withoutRepetitions(std::span<const ListedPixel> pixels);

/// Compares two lists, in which only the first entry for a place counts.
///
/// @param tolerance a pixel of the first list that the second one does not have is the nearest one
///        there that the first one does not have, up to this many columns and rows away; each is
///        one other at most. Up to GreatestTolerance.
PixelListDifference difference(std::span<const ListedPixel> before,
                               std::span<const ListedPixel> after, unsigned tolerance = 0);

/// The pixels that at least @p votes of the lists have, in the order in which they come first. Each
/// is as the first list has it; what that one does not say of it, the next one that does.
PixelList merged(std::span<const PixelList> lists, std::size_t votes = 1);

} // namespace pixellists
