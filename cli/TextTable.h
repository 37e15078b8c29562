// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace cli {

/// Rows of as many cells each, their columns below each other with two blanks in between; no line
/// end behind the last one. Empty for no rows.
QString tableText(const std::vector<QStringList>& rows);

} // namespace cli
