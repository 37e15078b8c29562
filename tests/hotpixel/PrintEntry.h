// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <ostream>

/// How GoogleTest shows an entry.
inline void PrintTo(const BadpixelEntry& entry, std::ostream* out)
{
    *out << '(' << entry.x << ' ' << entry.y << ' ' << int{entry.pixelClass} << ')';
}
