// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"

#include <QString>

namespace darkframes {

/// Camera raw files by LibRaw: the sensor's mosaic as it was read, its visible area, nothing
/// subtracted or scaled, as a frame of 16 bits that always says which colour filters there are. See
/// darkframes/ImageFileReader.h for what all readers have in common.
Frame readRaw(const QString& fileName);

/// "LibRaw 0.20.2"
QString rawReaderName();

} // namespace darkframes
