// SPDX-License-Identifier: MIT
#include "darkframes/DarkStack.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace {

/// So many frames are read side by side. More would take more streams than a processor foresees.
constexpr std::size_t FramesAtOnce = 8;

/// What a pass over the frames does with its accumulators stays in the cache for the next pass.
constexpr std::size_t PixelsAtOnce = 2048;

/// Adds @p Frames values to each of @p count pixels. The first values are written without reading
/// what was there. Only of parameters the compiler believes that they do not overlap, and only then
/// it makes vector code.
template <std::size_t Frames, bool First, typename Pixel, typename Square>
void fold(const Pixel* const* frames, std::size_t count, std::uint32_t* __restrict sums,
          Square* __restrict squares, Pixel* __restrict least, Pixel* __restrict greatest)
{
    // Eight 8-bit values have a sum of 16 bits, which doubles the width of the vectors.
    using Sum = std::conditional_t<sizeof(Pixel) == 1, std::uint16_t, std::uint32_t>;
    const Pixel* rows[Frames];
    std::copy_n(frames, Frames, rows);
    for (std::size_t i = 0; i < count; ++i) {
        Sum sum = 0;
        Square square = 0;
        Pixel low = First ? std::numeric_limits<Pixel>::max() : least[i];
        Pixel high = First ? Pixel{0} : greatest[i];
        // Unrolled, so that the outer loop becomes vector code.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC unroll 8
#endif
        for (std::size_t frame = 0; frame < Frames; ++frame) {
            const Pixel value = rows[frame][i];
            sum = static_cast<Sum>(sum + value);
            square += std::uint32_t{value} * value;
            low = std::min(low, value);
            high = std::max(high, value);
        }
        sums[i] = First ? sum : sums[i] + sum;
        squares[i] = First ? square : squares[i] + square;
        least[i] = low;
        greatest[i] = high;
    }
}

template <typename Pixel, typename Square>
using Fold = void (*)(const Pixel* const*, std::size_t, std::uint32_t*, Square*, Pixel*, Pixel*);

template <bool First, typename Pixel, typename Square>
Fold<Pixel, Square> foldOf(std::size_t frames)
{
    static constexpr auto Folds = []<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::array<Fold<Pixel, Square>, sizeof...(I)>{&fold<I + 1, First, Pixel, Square>...};
    }
    (std::make_index_sequence<FramesAtOnce>());
    return Folds[frames - 1];
}

/// frames × (sum of squares) − sum²: the variance times frames × (frames − 1). No term has more
/// than 64 bits for as many frames as there may be.
double scaledVariance(std::uint64_t frames, std::uint32_t sum, std::uint64_t squares)
{
    return static_cast<double>(frames * squares - std::uint64_t{sum} * sum);
}

} // namespace

template <typename Pixel, typename Square>
DarkStack::Extremes<Pixel, Square>::Extremes(std::size_t count)
    : squares(count)
    , least(count)
    , greatest(count)
{}

DarkStack::DarkStack(const ImageInfo& info)
    : m_info(info)
    , m_pixelCount(std::size_t{info.width} * info.height)
    , m_sums(m_pixelCount)
    , m_extremes(info.bitsPerPixel == 16 ? std::variant<Narrow, Wide>(Wide(m_pixelCount))
                                         : std::variant<Narrow, Wide>(Narrow(m_pixelCount)))
{}

void DarkStack::check(std::span<const QImage> frames) const
{
    if (frames.size() > MostFrames - m_frameCount) {
        throw std::invalid_argument("too many frames for a stack");
    }
    const QSize size(static_cast<int>(m_info.width), static_cast<int>(m_info.height));
    const QImage::Format format =
        m_info.bitsPerPixel == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
    for (const QImage& frame : frames) {
        if (frame.size() != size || frame.format() != format) {
            throw std::invalid_argument("a frame of another size or depth than the stack");
        }
    }
}

void DarkStack::add(std::span<const QImage> frames)
{
    check(frames);
    std::visit([&](auto& extremes) { addTo(extremes, frames); }, m_extremes);
}

template <typename Pixel, typename Square>
void DarkStack::addTo(Extremes<Pixel, Square>& extremes, std::span<const QImage> frames)
{
    const std::size_t width = m_info.width;
    std::array<const Pixel*, FramesAtOnce> rows{};
    for (std::size_t y = 0; y < m_info.height; ++y) {
        for (std::size_t x = 0; x < width; x += PixelsAtOnce) {
            const std::size_t pixel = y * width + x;
            const std::size_t count = std::min(PixelsAtOnce, width - x);
            bool isFirst = m_frameCount == 0;
            for (std::size_t done = 0; done < frames.size(); done += FramesAtOnce) {
                const std::size_t now = std::min(FramesAtOnce, frames.size() - done);
                for (std::size_t i = 0; i < now; ++i) {
                    const uchar* line = frames[done + i].constScanLine(static_cast<int>(y));
                    rows[i] = reinterpret_cast<const Pixel*>(line) + x;
                }
                const auto add =
                    isFirst ? foldOf<true, Pixel, Square>(now) : foldOf<false, Pixel, Square>(now);
                add(rows.data(), count, m_sums.data() + pixel, extremes.squares.data() + pixel,
                    extremes.least.data() + pixel, extremes.greatest.data() + pixel);
                isFirst = false;
            }
        }
    }
    m_frameCount += static_cast<std::uint32_t>(frames.size());
}

std::uint64_t DarkStack::sumOfSquares(std::size_t pixel) const
{
    return std::visit(
        [pixel](const auto& extremes) { return std::uint64_t{extremes.squares[pixel]}; },
        m_extremes);
}

std::uint16_t DarkStack::least(std::size_t pixel) const
{
    return std::visit(
        [pixel](const auto& extremes) { return std::uint16_t{extremes.least[pixel]}; }, m_extremes);
}

std::uint16_t DarkStack::greatest(std::size_t pixel) const
{
    return std::visit(
        [pixel](const auto& extremes) { return std::uint16_t{extremes.greatest[pixel]}; },
        m_extremes);
}

void DarkStack::greatestOfRow(std::uint32_t y, std::span<std::uint16_t> values) const
{
    std::visit(
        [&](const auto& extremes) {
            std::copy_n(extremes.greatest.data() + std::size_t{y} * m_info.width, values.size(),
                        values.begin());
        },
        m_extremes);
}

double DarkStack::variance(std::size_t pixel) const
{
    if (m_frameCount < 2) {
        return 0;
    }
    const double frames = m_frameCount;
    return scaledVariance(m_frameCount, m_sums[pixel], sumOfSquares(pixel)) /
           (frames * (frames - 1));
}

double DarkStack::sumOfVariances(std::uint32_t y, std::uint32_t x, std::uint32_t step) const
{
    if (m_frameCount < 2) {
        return 0;
    }
    double sum = 0;
    std::visit(
        [&](const auto& extremes) {
            const std::size_t row = std::size_t{y} * m_info.width;
            for (std::size_t i = row + x; i < row + m_info.width; i += step) {
                sum += scaledVariance(m_frameCount, m_sums[i], extremes.squares[i]);
            }
        },
        m_extremes);
    const double frames = m_frameCount;
    return sum / (frames * (frames - 1));
}
