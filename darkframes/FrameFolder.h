// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace darkframes {

/// "frame_0000.png" and the like; names of up to 10000 frames stand in the order of their numbers.
QString frameFileName(std::uint32_t number);

/// Saves a frame as a PNG file with exactly its values. The file is there when it is complete, or
/// as it was before.
/// @param frame Format_Grayscale8, Format_Grayscale16, or Format_Indexed8, whose bytes are the
/// values whatever its palette says
/// @throws FrameError "FILE: " and why it could not be written
void saveFrame(const QImage& frame, const QString& fileName);

} // namespace darkframes
