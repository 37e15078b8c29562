// SPDX-License-Identifier: MIT
#pragma once

#include "cli/DarkFrames.h"
#include "cli/LiveDetection.h"
#include "darkframes/FoundPixels.h"
#include "darkframes/Survey.h"

#include <span>
#include <vector>

class BadpixelListModel;

/// The searches of `detect` in frames that are there already.
namespace cli {

/// What a search finds that looks at each pixel of the sensor once.
struct ExactDetection
{
    Survey survey;
    Findings findings;
    std::vector<PixelPosition> found; ///< the hot pixels, and those that flicker where asked for

    ExactDetection(const DarkFrames& frames, const HotRule& rule, bool withFlickering);
};

/// Adds what was found to the list, as far as the list does not hold it and the camera can store
/// it.
/// @return Found, or TooMany with what to say
LiveDetection::Result addFound(std::span<const PixelPosition> found, BadpixelListModel& list);

/// What the editor finds in these frames, its walk over the image included; goes into the list,
/// which gets room for everything.
/// @param frames of 8 bits, any number
void detectLikeEditor(const DarkFrames& frames, int threshold, BadpixelListModel& list);

} // namespace cli
