// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QJsonArray>
#include <QSize>
#include <QString>

#include <span>

/// How positions of hotpixels and sizes of sensors are shown.
namespace cli {

/// "(x, y)" for each entry, in columns of a line of 79 characters, each line indented by two
/// blanks; no line end behind the last. Empty for no entries.
QString entryColumns(std::span<const BadpixelEntry> entries);

/// [[x, y], …]
QJsonArray entryArray(std::span<const BadpixelEntry> entries);

/// "1 entry", "2 entries" and the like for user and factory entries.
QString entryCount(std::size_t count);

/// "64 × 48"; "64 x 48" where the person's locale has no such sign.
QString sizeText(const QSize& size);

} // namespace cli
