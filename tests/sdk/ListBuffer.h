// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// List buffers as hotpixelCommand moves them: 16-bit words, the number of entries n, then n pairs
/// x, y. In a test a list is its coordinates, x and y in turn; or a container of anything that has
/// x and y, as fields or as functions.
namespace listbuffer {

using Words = std::vector<std::uint16_t>;

/// The list buffer of @p coordinates.
Words encode(Words coordinates);

/// The coordinates in @p buffer, of which the first word says how many entries it has.
Words decode(const void* buffer);

/// The size of @p words in bytes.
std::int32_t sizeOf(const Words& words);

template <typename List>
Words coordinates(const List& list)
{
    Words words;
    for (const auto& entry : list) {
        if constexpr (requires { entry.x(); }) {
            words.push_back(static_cast<std::uint16_t>(entry.x()));
            words.push_back(static_cast<std::uint16_t>(entry.y()));
        } else {
            words.push_back(entry.x);
            words.push_back(entry.y);
        }
    }
    return words;
}

/// Copies the list buffer of @p list into @p buffer, which is large enough.
template <typename List>
void write(const List& list, void* buffer)
{
    auto* target = static_cast<std::uint16_t*>(buffer);
    for (const std::uint16_t word : encode(coordinates(list))) {
        *target++ = word;
    }
}

/// The entries in @p buffer, each made from x and y.
template <typename List>
List read(const void* buffer)
{
    const Words words = decode(buffer);
    List list;
    for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
        list.push_back({words[i], words[i + 1]});
    }
    return list;
}

} // namespace listbuffer
