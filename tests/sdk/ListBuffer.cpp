// SPDX-License-Identifier: MIT
#include "tests/sdk/ListBuffer.h"

namespace listbuffer {

Words encode(Words coordinates)
{
    coordinates.insert(coordinates.begin(), static_cast<std::uint16_t>(coordinates.size() / 2));
    return coordinates;
}

Words decode(const void* buffer)
{
    const auto* words = static_cast<const std::uint16_t*>(buffer);
    return {words + 1, words + 1 + 2 * std::size_t{words[0]}};
}

std::int32_t sizeOf(const Words& words)
{
    return static_cast<std::int32_t>(words.size() * sizeof(std::uint16_t));
}

} // namespace listbuffer
