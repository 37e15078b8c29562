// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <stdexcept>

namespace cli {

/// What ends a command with one line on standard error and status 1.
class CommandError : public std::runtime_error
{
public:
    explicit CommandError(const QString& text)
        : std::runtime_error(text.toStdString())
    {}
};

/// A command line that makes no sense: status 2.
class UsageError final : public CommandError
{
public:
    using CommandError::CommandError;
};

} // namespace cli
