// SPDX-License-Identifier: MIT
#pragma once

#include "pixellists/PixelList.h"

#include <string_view>

/// The fields of a line of text, from left to right.
class LineFields
{
public:
    /// @param line without its end; must outlive the fields
    explicit LineFields(std::string_view line)
        : m_rest(line)
    {}

    /// Takes a number of decimal digits from @p least to @p greatest, and the blanks before it. It
    /// has to end at a blank, a comma or the end of the line.
    /// @return whether there was one; where not, nothing is taken but blanks.
    [[nodiscard]] bool takeNumber(unsigned& number, unsigned least = 0,
                                  unsigned greatest = pixellists::GreatestCoordinate);

    /// Takes two numbers as x and y.
    /// @param from what the first column and row are called
    [[nodiscard]] bool takePosition(ListedPixel& pixel, unsigned from = 0);

    /// Takes @p character, and the blanks before it.
    [[nodiscard]] bool take(char character);

    /// Takes everything up to the next blank, and the blanks before it.
    [[nodiscard]] std::string_view takeWord();

    /// Whether nothing but blanks is left.
    [[nodiscard]] bool atEnd();

private:
    void skipBlanks();

    std::string_view m_rest;
};
