// SPDX-License-Identifier: MIT
#include "hotpixel/BadpixelLineReader.h"

#include <utility>

void BadpixelLineReader::read(QStringView text)
{
    for (qsizetype position = 0; position < text.size(); ++position) {
        if (m_state == State::Ignore) {
            position = text.indexOf(u'\n', position);
            if (position < 0) {
                return;
            }
        }
        const QChar character = text.at(position);
        if (character == u'\r') {
            continue;
        }
        if (character == u'\n') {
            endLine();
            continue;
        }
        m_lineBegun = true;
        // A character that ends a number may begin the next one: "5-3" is 5 and −3.
        if (!continueNumber(character)) {
            endNumber();
            beginNumber(character);
        }
    }
}

std::vector<BadpixelEntry> BadpixelLineReader::finish(bool hadContent)
{
    if (m_lineBegun || (hadContent && m_entries.empty())) {
        endLine();
    }
    return std::exchange(m_entries, {});
}

bool BadpixelLineReader::continueNumber(QChar character)
{
    switch (m_state) {
    case State::Space:
        beginNumber(character);
        return true;
    case State::Zero:
        return continueZero(character);
    case State::Prefix:
        if (!addDigit(character)) {
            if (m_base == 16) {
                return false;
            }
            m_state = State::Ignore;
        }
        return true;
    case State::Sign:
    case State::Digits:
        return addDigit(character);
    case State::Ignore:
        break;
    }
    return true;
}

bool BadpixelLineReader::continueZero(QChar character)
{
    if (character == u'x' || character == u'X') {
        m_base = 16;
        m_state = State::Prefix;
    } else if (character == u'b' || character == u'B') {
        m_base = 2;
        m_state = State::Prefix;
    } else if (character.isDigit() && character.digitValue() <= 7) {
        // Octal, whose digits are ASCII only, while its prefix is recognised by any digit.
        m_base = 8;
        m_state = State::Prefix;
        return continueNumber(character);
    } else {
        return addDigit(character);
    }
    return true;
}

void BadpixelLineReader::beginNumber(QChar character)
{
    if (m_state == State::Ignore || character.isSpace()) {
        return;
    }
    m_base = 10;
    if (character == u'0') {
        m_state = State::Zero;
    } else if (character == u'-' || character == u'+') {
        m_negative = character == u'-';
        m_state = State::Sign;
    } else if (!addDigit(character)) {
        m_state = State::Ignore;
    }
}

bool BadpixelLineReader::addDigit(QChar character)
{
    int digit = -1;
    if (character >= u'0' && character <= u'9') {
        digit = character.unicode() - u'0';
    } else if (m_base == 10) {
        digit = character.isDigit() ? character.digitValue() : -1;
    } else if (character >= u'a' && character <= u'f') {
        digit = character.unicode() - u'a' + 10;
    } else if (character >= u'A' && character <= u'F') {
        digit = character.unicode() - u'A' + 10;
    }
    if (digit < 0 || digit >= m_base) {
        return false;
    }
    m_value = m_value * static_cast<std::uint64_t>(m_base) + static_cast<std::uint64_t>(digit);
    m_state = State::Digits;
    return true;
}

void BadpixelLineReader::endNumber()
{
    if (m_state == State::Digits) {
        // A value that wrapped to the negative side keeps its sign.
        const bool negate = m_negative && static_cast<std::int64_t>(m_value) > 0;
        m_fields[m_fieldCount] = negate ? 0 - m_value : m_value;
    }
    ++m_fieldCount;
    m_value = 0;
    m_negative = false;
    m_state = m_fieldCount < m_fields.size() ? State::Space : State::Ignore;
}

void BadpixelLineReader::endLine()
{
    if (m_state == State::Digits) {
        endNumber();
    }
    m_entries.push_back({static_cast<std::uint16_t>(m_fields[0]),
                         static_cast<std::uint16_t>(m_fields[1]),
                         static_cast<std::uint8_t>(m_fields[2])});
    m_fields = {};
    m_fieldCount = 0;
    m_value = 0;
    m_negative = false;
    m_state = State::Space;
    m_lineBegun = false;
}
