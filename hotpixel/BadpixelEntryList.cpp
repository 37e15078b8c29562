// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelEntryList.h"

#include <algorithm>
#include <utility>

namespace {

auto at(std::vector<BadpixelEntry>& entries, std::size_t index)
{
    return entries.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

std::span<const BadpixelEntry> BadpixelEntryList::all() const
{
    closeGap();
    return m_storage;
}

std::span<BadpixelEntry> BadpixelEntryList::all()
{
    closeGap();
    return m_storage;
}

void BadpixelEntryList::append(const BadpixelEntry& entry)
{
    m_storage.push_back(entry);
}

void BadpixelEntryList::append(std::vector<BadpixelEntry>&& entries)
{
    if (size() == 0) {
        clear();
        m_storage = std::move(entries);
    } else {
        m_storage.insert(m_storage.end(), entries.begin(), entries.end());
    }
}

void BadpixelEntryList::insert(std::size_t row, std::size_t count, const BadpixelEntry& entry)
{
    closeGap();
    m_storage.insert(at(m_storage, row), count, entry);
}

void BadpixelEntryList::erase(std::size_t row)
{
    if (m_gapSize == 0) {
        m_gapBegin = row;
    } else if (row < m_gapBegin) {
        std::move_backward(at(m_storage, row), at(m_storage, m_gapBegin),
                           at(m_storage, m_gapBegin + m_gapSize));
        m_gapBegin = row;
    } else {
        std::move(at(m_storage, m_gapBegin + m_gapSize), at(m_storage, row + m_gapSize),
                  at(m_storage, m_gapBegin));
        m_gapBegin = row;
    }
    ++m_gapSize;
}

void BadpixelEntryList::clear()
{
    m_storage.clear();
    m_gapBegin = 0;
    m_gapSize = 0;
}

void BadpixelEntryList::closeGap() const
{
    if (m_gapSize > 0) {
        m_storage.erase(at(m_storage, m_gapBegin), at(m_storage, m_gapBegin + m_gapSize));
        m_gapBegin = 0;
        m_gapSize = 0;
    }
}
