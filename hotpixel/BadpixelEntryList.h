// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <cstddef>
#include <span>
#include <vector>

/// The entries of the hotpixel list, in order, as values in one block of memory.
///
/// Removals leave a gap where they happened, and the next one moves only the entries between there
/// and its own place. So walking a list upward and removing on the way, which is how the user
/// entries are cleared, takes time in proportion to the list and not to its square.
class BadpixelEntryList
{
public:
    [[nodiscard]] std::size_t size() const { return m_storage.size() - m_gapSize; }

    /// The entry at @p row, which must be below size().
    [[nodiscard]] const BadpixelEntry& operator[](std::size_t row) const
    {
        return m_storage[row < m_gapBegin ? row : row + m_gapSize];
    }
    [[nodiscard]] BadpixelEntry& operator[](std::size_t row)
    {
        return m_storage[row < m_gapBegin ? row : row + m_gapSize];
    }

    /// All entries, valid until the list changes.
    [[nodiscard]] std::span<const BadpixelEntry> all() const;
    [[nodiscard]] std::span<BadpixelEntry> all();

    void append(const BadpixelEntry& entry);
    void append(std::vector<BadpixelEntry>&& entries);

    /// Puts @p count copies of @p entry before @p row, which is at most size().
    void insert(std::size_t row, std::size_t count, const BadpixelEntry& entry);

    /// Removes the entry at @p row, which must be below size().
    void erase(std::size_t row);

    void clear();

private:
    void closeGap() const;

    // Closing the gap changes no entry and no row, so reading may do it.
    mutable std::vector<BadpixelEntry> m_storage;
    mutable std::size_t m_gapBegin = 0;
    mutable std::size_t m_gapSize = 0;
};
