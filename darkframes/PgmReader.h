// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"

#include <QString>

namespace darkframes {

/// PGM of 8 and 16 bits, as numbers or as bytes. It is read here because the toolkit scales the
/// values to 8 bits. A file whose greatest value is above 255 gives a frame of 16 bits; values are
/// never scaled. See darkframes/ImageFileReader.h for what all readers have in common.
Frame readPgm(const QString& fileName);

} // namespace darkframes
