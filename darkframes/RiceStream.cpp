// SPDX-License-Identifier: MIT
#include "darkframes/RiceStream.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::int64_t BitsPerByte = 8;

/// Reads bits, the highest of each byte first.
class Bits
{
public:
    explicit Bits(std::span<const std::uint8_t> bytes)
        : m_bytes(bytes)
    {}

    /// @returns whether there were so many
    bool skip(std::int64_t count)
    {
        m_position += count;
        return m_position <= size();
    }

    std::optional<int> number(int bits)
    {
        int value = 0;
        for (int bit = 0; bit < bits; ++bit) {
            if (m_position >= size()) {
                return std::nullopt;
            }
            value = value * 2 + (next() ? 1 : 0);
        }
        return value;
    }

    /// @returns whether there was a one
    bool skipToBehindOne()
    {
        while (m_position < size()) {
            if (next()) {
                return true;
            }
        }
        return false;
    }

private:
    [[nodiscard]] std::int64_t size() const
    {
        return static_cast<std::int64_t>(m_bytes.size()) * BitsPerByte;
    }

    bool next()
    {
        const auto byte = m_bytes[static_cast<std::size_t>(m_position / BitsPerByte)];
        const auto shift = BitsPerByte - 1 - m_position++ % BitsPerByte;
        return ((byte >> shift) & 1U) != 0;
    }

    std::span<const std::uint8_t> m_bytes;
    std::int64_t m_position = 0;
};

struct Widths
{
    int number;      ///< bits of the number before a block
    int asTheyAreAt; ///< and which of them, less one, stands for differences as they are
};

Widths widthsFor(int pixelBytes)
{
    switch (pixelBytes) {
    case 1:
        return {3, 6};
    case 2:
        return {4, 14};
    default:
        return {5, 25};
    }
}

} // namespace

bool darkframes::isWholeRiceStream(std::span<const std::uint8_t> packed, std::int64_t pixels,
                                   int pixelBytes, std::int64_t blockPixels)
{
    const Widths widths = widthsFor(pixelBytes);
    Bits bits(packed);
    if (!bits.skip(pixelBytes * BitsPerByte)) {
        return false;
    }
    for (std::int64_t rest = pixels; rest > 0; rest -= blockPixels) {
        const auto number = bits.number(widths.number);
        if (!number) {
            return false;
        }
        const int lowBits = *number - 1;
        const std::int64_t count = std::min(rest, blockPixels);
        if (lowBits < 0) {
            continue;
        }
        if (lowBits == widths.asTheyAreAt) {
            if (!bits.skip(count * pixelBytes * BitsPerByte)) {
                return false;
            }
            continue;
        }
        for (std::int64_t pixel = 0; pixel < count; ++pixel) {
            if (!bits.skipToBehindOne() || !bits.skip(lowBits)) {
                return false;
            }
        }
    }
    return true;
}
