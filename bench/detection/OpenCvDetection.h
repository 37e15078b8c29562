// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QVector>

#include <cstddef>

/// The detection as a pipeline of OpenCV's functions: accumulate, divide, and for each plane mean,
/// compare and findNonZero.
/// @param colorMode 6 or 11. @return the number of hot pixels.
std::size_t detectWithOpenCv(int colorMode, const QVector<QImage>& frames, int threshold);
