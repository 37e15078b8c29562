// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ImageInfo.h"
#include "darkframes/LargeArray.h"

#include <QImage>

#include <cstdint>
#include <span>
#include <variant>

/// What remains of any number of frames: for each pixel the sum of its values, the sum of their
/// squares, the least and the greatest. All are exact. It takes 10 bytes a pixel for frames of 8
/// bits and 16 for frames of 16 bits, however many there are.
///
/// Pixels are numbered row by row, without padding. Thread: it has no lock.
class DarkStack
{
public:
    /// More would overflow the 32 bits of a sum.
    static constexpr std::uint32_t MostFrames = 65537;

    /// @param info of the frames: the size is not 0, the depth 8 or 16
    /// @throws std::bad_alloc
    explicit DarkStack(const ImageInfo& info);

    /// Adds frames, several at a time in less time than one after the other.
    /// @param frames Format_Grayscale8 or, for 16 bits, Format_Grayscale16, of the stack's size
    /// @throws std::invalid_argument, and adds none, when one is not, or when there would be more
    /// than MostFrames.
    void add(std::span<const QImage> frames);

    [[nodiscard]] const ImageInfo& info() const { return m_info; }
    [[nodiscard]] std::uint32_t frameCount() const { return m_frameCount; }
    [[nodiscard]] std::size_t pixelCount() const { return m_pixelCount; }

    /// All of the following need a frame at least.

    /// The sum of the values of each pixel.
    [[nodiscard]] std::span<const std::uint32_t> sums() const
    {
        return {m_sums.data(), m_pixelCount};
    }
    [[nodiscard]] std::span<const std::uint32_t> sumsOfRow(std::uint32_t y) const
    {
        return sums().subspan(std::size_t{y} * m_info.width, m_info.width);
    }
    [[nodiscard]] std::uint64_t sumOfSquares(std::size_t pixel) const;
    [[nodiscard]] std::uint16_t least(std::size_t pixel) const;
    [[nodiscard]] std::uint16_t greatest(std::size_t pixel) const;
    /// @param values gets the greatest value of each pixel of the row; as long as the row.
    void greatestOfRow(std::uint32_t y, std::span<std::uint16_t> values) const;

    /// The unbiased variance of a pixel's values over the frames; 0 for a single frame.
    [[nodiscard]] double variance(std::size_t pixel) const;
    /// The sum of the variances of every @p step-th pixel of a row from @p x on.
    [[nodiscard]] double sumOfVariances(std::uint32_t y, std::uint32_t x, std::uint32_t step) const;

private:
    /// Sums of squares of 16-bit values take 48 bits at most, those of 8-bit values 32.
    template <typename Pixel, typename Square>
    struct Extremes
    {
        explicit Extremes(std::size_t count);

        darkframes::LargeArray<Square> squares;
        darkframes::LargeArray<Pixel> least;
        darkframes::LargeArray<Pixel> greatest;
    };
    using Narrow = Extremes<std::uint8_t, std::uint32_t>;
    using Wide = Extremes<std::uint16_t, std::uint64_t>;

    void check(std::span<const QImage> frames) const;
    template <typename Pixel, typename Square>
    void addTo(Extremes<Pixel, Square>& extremes, std::span<const QImage> frames);

    ImageInfo m_info;
    std::size_t m_pixelCount;
    std::uint32_t m_frameCount = 0;
    darkframes::LargeArray<std::uint32_t> m_sums;
    std::variant<Narrow, Wide> m_extremes;
};
