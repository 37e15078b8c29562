// SPDX-License-Identifier: MIT
#include "pixellists/PixelListComparison.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>

namespace pixellists {
namespace {

using Place = std::uint32_t;

/// In the order of rows, then columns.
Place placeOf(const ListedPixel& pixel)
{
    return (Place{pixel.y} << 16U) | pixel.x;
}

bool saysAnother(const ListedPixel& before, const ListedPixel& after)
{
    const bool otherClass = before.listClass != after.listClass &&
                            before.listClass != PixelListClass::None &&
                            after.listClass != PixelListClass::None;
    const bool otherDefect = before.defect != after.defect &&
                             before.defect != PixelDefect::Unknown &&
                             after.defect != PixelDefect::Unknown;
    return otherClass || otherDefect;
}

void count(const ListedPixel& before, const ListedPixel& after, PixelListDifference& result)
{
    ++result.both;
    if (saysAnother(before, after)) {
        result.changed.push_back({before, after});
    }
}

/// Pixels of which each can be taken once.
class Candidates
{
public:
    explicit Candidates(PixelList pixels)
        : m_pixels(std::move(pixels))
        , m_taken(m_pixels.size(), false)
    {
        std::ranges::sort(m_pixels, {}, placeOf);
    }

    /// Takes the nearest one up to @p tolerance columns and rows away, the first of equals.
    /// @return null when there is none.
    const ListedPixel* takeNear(const ListedPixel& pixel, int tolerance)
    {
        std::size_t nearest = m_pixels.size();
        int least = 0;
        const int firstRow = std::max(0, pixel.y - tolerance);
        const int lastRow = std::min<int>(GreatestCoordinate, pixel.y + tolerance);
        for (int y = firstRow; y <= lastRow; ++y) {
            const ListedPixel first{
                .x = static_cast<std::uint16_t>(std::max(0, pixel.x - tolerance)),
                .y = static_cast<std::uint16_t>(y)};
            const auto begin = std::ranges::lower_bound(m_pixels, placeOf(first), {}, placeOf);
            for (auto i = static_cast<std::size_t>(begin - m_pixels.begin());
                 i < m_pixels.size() && m_pixels[i].y == y && m_pixels[i].x <= pixel.x + tolerance;
                 ++i) {
                const int dx = m_pixels[i].x - pixel.x;
                const int dy = y - pixel.y;
                const int distance = dx * dx + dy * dy;
                if (!m_taken[i] && (nearest == m_pixels.size() || distance < least)) {
                    nearest = i;
                    least = distance;
                }
            }
        }
        if (nearest == m_pixels.size()) {
            return nullptr;
        }
        m_taken[nearest] = true;
        m_takenPlaces.insert(placeOf(m_pixels[nearest]));
        return &m_pixels[nearest];
    }

    [[nodiscard]] bool isTaken(const ListedPixel& pixel) const
    {
        return m_takenPlaces.contains(placeOf(pixel));
    }

private:
    PixelList m_pixels;
    std::vector<bool> m_taken;
    std::unordered_set<Place> m_takenPlaces;
};

} // namespace

PixelList withoutRepetitions(std::span<const ListedPixel> pixels)
{
    PixelList result;
    std::unordered_set<Place> known;
    known.reserve(pixels.size());
    for (const ListedPixel& pixel : pixels) {
        if (known.insert(placeOf(pixel)).second) {
            result.push_back(pixel);
        }
    }
    return result;
}

PixelListDifference difference(std::span<const ListedPixel> before,
                               std::span<const ListedPixel> after, unsigned tolerance)
{
    PixelListDifference result;
    const PixelList first = withoutRepetitions(before);
    const PixelList second = withoutRepetitions(after);
    std::unordered_map<Place, const ListedPixel*> inSecond;
    inSecond.reserve(second.size());
    for (const ListedPixel& pixel : second) {
        inSecond.emplace(placeOf(pixel), &pixel);
    }
    for (const ListedPixel& pixel : first) {
        const auto found = inSecond.find(placeOf(pixel));
        if (found == inSecond.end()) {
            result.removed.push_back(pixel);
            continue;
        }
        count(pixel, *found->second, result);
        inSecond.erase(found);
    }
    std::ranges::copy_if(
        second, std::back_inserter(result.added),
        [&inSecond](const ListedPixel& pixel) { return inSecond.contains(placeOf(pixel)); });
    if (tolerance == 0) {
        return result;
    }

    Candidates candidates(result.added);
    std::erase_if(result.removed, [&](const ListedPixel& pixel) {
        const ListedPixel* const other = candidates.takeNear(pixel, static_cast<int>(tolerance));
        if (other != nullptr) {
            count(pixel, *other, result);
            ++result.nearby;
        }
        return other != nullptr;
    });
    std::erase_if(result.added,
                  [&](const ListedPixel& pixel) { return candidates.isTaken(pixel); });
    return result;
}

PixelList merged(std::span<const PixelList> lists, std::size_t votes)
{
    struct Vote
    {
        ListedPixel pixel;
        std::size_t count = 0;
    };
    std::vector<Vote> all;
    std::unordered_map<Place, std::size_t> known;
    for (const PixelList& list : lists) {
        for (const ListedPixel& pixel : withoutRepetitions(list)) {
            const auto [found, isNew] = known.try_emplace(placeOf(pixel), all.size());
            if (isNew) {
                all.push_back({pixel, 0});
            }
            Vote& vote = all[found->second];
            ++vote.count;
            if (vote.pixel.listClass == PixelListClass::None) {
                vote.pixel.listClass = pixel.listClass;
            }
            if (vote.pixel.defect == PixelDefect::Unknown) {
                vote.pixel.defect = pixel.defect;
            }
            if (!vote.pixel.value) {
                vote.pixel.value = pixel.value;
            }
        }
    }
    PixelList result;
    for (const Vote& vote : all) {
        if (vote.count >= votes) {
            result.push_back(vote.pixel);
        }
    }
    return result;
}

} // namespace pixellists
