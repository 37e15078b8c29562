// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/HotPixelSearch.h"
#include "darkframes/Mosaic.h"
#include "darkframes/PixelClusters.h"
#include "darkframes/PlaneStatistics.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// What a stack of dark frames shows of a sensor before anybody decides on a threshold.
struct Survey
{
    ImageInfo info;
    std::uint32_t frames = 0;
    Mosaic mosaic = Mosaic::mono();
    /// The whole sensor, and on Bayer sensors the four planes behind it.
    std::vector<PlaneStatistics> planes;

    /// @param stack of one frame at least
    static Survey of(const DarkStack& stack, const Mosaic& mosaic);

    /// Those that a search goes through: the whole sensor of a monochrome one, the four planes of a
    /// Bayer sensor.
    [[nodiscard]] std::span<const PlaneStatistics> searchPlanes() const;

    /// How many pixels a search with this threshold finds in @p plane, one of planes. In the whole
    /// sensor it finds what it finds in the planes that it goes through, each of which has a mean
    /// of its own.
    [[nodiscard]] std::uint64_t countAbove(const PlaneStatistics& plane,
                                           std::uint32_t threshold) const;
};

/// How hot a pixel has to be to be found.
struct HotRule
{
    /// In grey levels above the plane's mean; 40 of 8 bits or as many of 16.
    std::uint32_t threshold = 0;
    /// In robust deviations above the plane's median; instead of the threshold.
    std::optional<double> sigma;
};

/// What a search found in a stack.
struct Findings
{
    HotRule rule;
    std::vector<HotLimit> limits;
    HotPixels pixels;
    PixelClusters clusters;

    static Findings of(const DarkStack& stack, const Survey& survey, const HotRule& rule);
};

/// What a list can take, and the threshold that makes use of it.
struct ListRoom
{
    std::uint64_t capacity = 0;
    std::uint64_t taken = 0; ///< by entries that stay
    std::optional<FillingThreshold> filling;
};
