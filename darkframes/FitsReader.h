// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"

#include <QString>

namespace darkframes {

/// FITS by CFITSIO: the first image with two axes, compressed or not, in a file that may be packed
/// with gzip. Values are those after BSCALE and BZERO. Images of unsigned bytes give frames of 8
/// bits, all others, whose values have to be whole numbers from 0 to 65535, frames of 16. Row 0 of
/// the file is row 0 of the frame. BAYERPAT says that there are colour filters. See
/// darkframes/ImageFileReader.h for what all readers have in common; but CFITSIO is one for the
/// whole process, so only one thread at a time may call this one.
Frame readFits(const QString& fileName);

/// "CFITSIO 4.2.0"
QString fitsReaderName();

} // namespace darkframes
