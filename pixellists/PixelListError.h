// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <stdexcept>

/// A list that can't be read or written. The text is one line for the person who named it, in
/// UTF-8; where a file is to blame it begins with its name.
class PixelListError : public std::runtime_error
{
public:
    explicit PixelListError(const QString& text)
        : std::runtime_error(text.toStdString())
    {}
};
