// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <stdexcept>

/// What BadpixelListModel::addBadpixel() throws at its limit.
class ListFull final : public std::runtime_error
{
public:
    /// @param text for the user
    /// @param limit how many entries there may be
    /// @param count how many there are, as far as they count against the limit; not below it
    ListFull(const QString& text, int limit, std::int64_t count)
        : std::runtime_error(text.toStdString())
        , m_limit(limit)
        , m_count(count)
    {}

    /// The limit that applied, which need not be the one that the text names.
    [[nodiscard]] int limit() const { return m_limit; }
    [[nodiscard]] std::int64_t count() const { return m_count; }

private:
    int m_limit;
    std::int64_t m_count;
};
