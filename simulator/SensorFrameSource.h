// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/SensorModel.h"

#include <cstddef>
#include <cstdint>

/// Where the raw frames of a simulated sensor come from.
class SensorFrameSource
{
public:
    virtual ~SensorFrameSource() = default;

    /// Fills @p pixels, one byte for each pixel and @p pitch bytes from line to line, with frame
    /// number @p frame (0, 1, ...) of the sensor under @p settings. One thread at a time.
    virtual void render(std::uint64_t frame, const SensorSettings& settings, std::uint8_t* pixels,
                        std::size_t pitch) = 0;
};
