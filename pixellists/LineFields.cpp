// SPDX-License-Identifier: MIT
#include "pixellists/LineFields.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace {

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

} // namespace

bool LineFields::takeNumber(unsigned& number, unsigned least, unsigned greatest)
{
    skipBlanks();
    const char* const end = m_rest.data() + m_rest.size();
    unsigned value = 0;
    const auto [rest, error] = std::from_chars(m_rest.data(), end, value);
    if (error != std::errc{} || value < least || value > greatest ||
        (rest != end && *rest != ',' && !isBlank(*rest))) {
        return false;
    }
    number = value;
    m_rest.remove_prefix(static_cast<std::size_t>(rest - m_rest.data()));
    return true;
}

bool LineFields::takePosition(ListedPixel& pixel, unsigned from)
{
    unsigned x = 0;
    unsigned y = 0;
    const unsigned greatest = pixellists::GreatestCoordinate + from;
    if (!takeNumber(x, from, greatest) || !takeNumber(y, from, greatest)) {
        return false;
    }
    pixel.x = static_cast<std::uint16_t>(x - from);
    pixel.y = static_cast<std::uint16_t>(y - from);
    return true;
}

bool LineFields::take(char character)
{
    skipBlanks();
    if (m_rest.empty() || m_rest.front() != character) {
        return false;
    }
    m_rest.remove_prefix(1);
    return true;
}

std::string_view LineFields::takeWord()
{
    skipBlanks();
    const auto end = std::ranges::find_if(m_rest, isBlank);
    const std::string_view word(m_rest.data(), static_cast<std::size_t>(end - m_rest.begin()));
    m_rest.remove_prefix(word.size());
    return word;
}

bool LineFields::atEnd()
{
    skipBlanks();
    return m_rest.empty();
}

void LineFields::skipBlanks()
{
    const auto first = std::ranges::find_if_not(m_rest, isBlank);
    m_rest.remove_prefix(static_cast<std::size_t>(first - m_rest.begin()));
}
