// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

/// What an uncovered simulated camera looks at: a test chart with colour patches, a star, grey
/// steps and a ramp, line pairs down to one pixel, lettering down to one pixel a stroke, and a band
/// that moves from frame to frame. A colour sensor sees it through its mosaic, one colour at each
/// pixel. Immutable; any thread.
class TestScene
{
public:
    /// Draws the chart for a sensor of @p width × @p height pixels; @p label is written on it.
    TestScene(int width, int height, bool bayer, const QString& label);

    /// Copies the reflectances (0 to 255) of line @p y at frame number @p frame to @p row.
    void copyRow(int y, std::uint64_t frame, std::uint8_t* row) const;

    /// The reflectance (0 to 255) at (@p x, @p y) at frame number @p frame.
    [[nodiscard]] std::uint8_t reflectance(int x, int y, std::uint64_t frame) const;

private:
    /// By how many pixels line @p y has moved to the left.
    [[nodiscard]] std::size_t shift(int y, std::uint64_t frame) const;

    std::size_t m_width;
    int m_bandTop;    ///< first line of the moving band
    int m_bandBottom; ///< the line below it
    std::vector<std::uint8_t> m_pixels;
};
