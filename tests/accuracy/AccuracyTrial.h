// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/HotPixelSearch.h"
#include "darkframes/Mosaic.h"

#include <QString>

#include <cstdint>

/// How a list of hot pixels compares with the truth. A pixel is clear when its true mean is further
/// than five standard errors of the mean of the frames from where hot ones begin; whether any other
/// is found is chance.
struct Accuracy
{
    std::uint64_t clearHot = 0; ///< pixels that have to be found
    std::uint64_t found = 0;    ///< of those
    std::uint64_t missed = 0;
    std::uint64_t reportedFalsely = 0; ///< clear ones that are not hot, and what is no pixel at all
    std::uint64_t unclear = 0;         ///< others that were reported

    [[nodiscard]] double precision() const;
    [[nodiscard]] double recall() const;
};

/// Why the editor's list is another one than the exact list, and for how many positions.
struct Differences
{
    std::uint64_t behindRows = 0;  ///< only in the editor's: at x = width
    std::uint64_t endLeftOut = 0;  ///< only in the exact one: the walk does not get there
    std::uint64_t otherLimit = 0;  ///< in one of them: the walk's mean of a plane is another one
    std::uint64_t unexplained = 0; ///< has to be 0
};

/// One simulated sensor, looked at by both searches.
struct AccuracyTrial
{
    QString name;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Mosaic mosaic = Mosaic::mono();
    std::uint32_t seed = 0;
    std::uint32_t threshold = 40;

    Accuracy exact;
    Accuracy likeEditor;
    Differences differences;

    /// Simulates the frames and fills in the results.
    void run();
};
