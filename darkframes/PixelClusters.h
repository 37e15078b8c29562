// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/HotPixelSearch.h"
#include "darkframes/Mosaic.h"

#include <cstdint>
#include <span>
#include <vector>

/// Hot pixels that touch each other, in the directions of rows, columns and diagonals, where the
/// neighbour is the next pixel of the same colour. A camera's correction takes a pixel's value from
/// those neighbours, so it handles these badly.
struct PixelCluster
{
    std::uint32_t pixels = 0; ///< two at least
    std::uint16_t left = 0;   ///< the columns and rows that it reaches to, all included
    std::uint16_t top = 0;
    std::uint16_t right = 0;
    std::uint16_t bottom = 0;
};

struct PixelClusters
{
    /// The largest first, those of one size from the top down.
    std::vector<PixelCluster> clusters;
    /// For each hot pixel, in their order, whether it belongs to a cluster.
    std::vector<bool> isClustered;

    /// How many hot pixels belong to clusters.
    [[nodiscard]] std::uint64_t pixels() const;
};

namespace darkframes {

/// @param hot plane by plane, row by row in each, as findHotPixels() gives them
PixelClusters findClusters(std::span<const PixelPosition> hot, const Mosaic& mosaic);

} // namespace darkframes
