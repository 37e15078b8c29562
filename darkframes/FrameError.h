// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <stdexcept>

/// A frame, a file or a folder that can't be used. The text is one line for the person who named
/// it, in UTF-8; where a file is to blame it begins with its name.
class FrameError : public std::runtime_error
{
public:
    explicit FrameError(const QString& text)
        : std::runtime_error(text.toStdString())
    {}
};

namespace darkframes {

/// @throws FrameError "FILE: WHAT"
[[noreturn]] inline void refuse(const QString& fileName, const QString& what)
{
    throw FrameError(QStringLiteral("%1: %2").arg(fileName, what));
}

} // namespace darkframes
