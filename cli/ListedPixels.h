// SPDX-License-Identifier: MIT
#pragma once

#include "cli/DarkFrames.h"
#include "darkframes/Survey.h"
#include "hotpixel/BadpixelEntry.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

class Camera;

/// The lists of a camera, and what dark frames say about their pixels.
namespace cli {

/// Both lists, as the camera gives them.
struct CameraListsRead
{
    std::vector<BadpixelEntry> factory;
    std::vector<BadpixelEntry> user;
    int capacity = 0; ///< of the user list

    /// @throws std::runtime_error of CameraLists.
    static CameraListsRead of(const Camera& camera);
};

/// What frames show at the place of a list's entry.
enum class ListedState {
    Hot,        ///< above the limit
    Flickering, ///< above it in a frame, but not in the mean
    NotHot,     ///< not above it in any frame
    Outside     ///< the sensor has no pixel there
};

struct ListedPixel
{
    BadpixelEntry entry;
    ListedState state = ListedState::Outside;
    std::optional<double> mean; ///< grey levels; of a pixel of the sensor
};

/// Each entry of the two lists, in their order, the factory list first.
[[nodiscard]] std::vector<ListedPixel>
listedPixels(const CameraListsRead& lists, const DarkFrames& frames, const Findings& findings);

/// "factory" or "user"
[[nodiscard]] QString listName(const BadpixelEntry& entry);

/// "hot", "flickering", "not hot", "outside", for machines
[[nodiscard]] const char* stateName(ListedState state);
/// The same for people.
[[nodiscard]] QString stateText(ListedState state);

/// One decimal, or "-".
[[nodiscard]] QString meanText(const std::optional<double>& mean);

} // namespace cli
