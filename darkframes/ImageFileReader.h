// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Frame.h"

#include <QString>

/// The readers of frames, one for each kind of file. All give exactly the values in the file, need
/// no more memory than a frame and the bytes of a row, and check what the file says about its size
/// before they take any. They may be called on any thread, as long as a file is not written
/// meanwhile.
/// @throws FrameError "FILE: " and what is wrong: not to be opened, truncated, not one grey image.
namespace darkframes {

/// PNG of 8 and 16 bits, grey or with a palette of nothing but grey, by the toolkit.
Frame readPng(const QString& fileName);
/// BMP of 8 bits with a palette of nothing but grey, not compressed, by the toolkit.
Frame readBmp(const QString& fileName);
/// TIFF of 8 and 16 bits, with one image, in any compression that the toolkit knows, by the
/// toolkit. The orientation that the file wants is left alone: row 0 is the first that is stored.
Frame readTiff(const QString& fileName);

} // namespace darkframes
