// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QStringView>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Makes entries of the text of a list file, one for each line.
///
/// It reads three unsigned integers from each line as QTextStream reads them from a string that
/// holds the line: with its prefixes, its wrap-around, and its standing still at what is no number,
/// which makes 0 of this field and of all that follow. Reading goes on behind a sign or a 0x
/// without digits, but not behind 0b without one, nor behind a 0 before a digit that is octal and
/// not ASCII.
///
/// The text may come in pieces that end anywhere; nothing is kept of a line but its three numbers,
/// while a text stream would hold the whole of it, however long it is.
class BadpixelLineReader
{
public:
    /// The next piece of text. Carriage returns are skipped.
    void read(QStringView text);

    /// The entries, at the end of a file that @p hadContent or was empty. A last line without a
    /// line end counts, and content that has no characters is one empty line.
    [[nodiscard]] std::vector<BadpixelEntry> finish(bool hadContent);

private:
    enum class State {
        Space,  ///< between numbers
        Zero,   ///< behind a first 0, which may be a number or the begin of a prefix
        Prefix, ///< behind 0x, 0b or an octal 0, before the first digit
        Sign,   ///< behind a sign, before the first digit
        Digits, ///< behind the first digit
        Ignore, ///< nothing of this line counts any more
    };

    /// Takes a character that belongs to the number being read, or to the space before it, or that
    /// stops the reading of this line; false when the number ends before the character.
    bool continueNumber(QChar character);
    bool continueZero(QChar character);
    void beginNumber(QChar character);
    bool addDigit(QChar character);
    void endNumber();
    void endLine();

    std::vector<BadpixelEntry> m_entries;
    std::array<std::uint64_t, 3> m_fields{};
    std::size_t m_fieldCount = 0;
    std::uint64_t m_value = 0;
    int m_base = 10;
    bool m_negative = false;
    bool m_lineBegun = false;
    State m_state = State::Space;
};
