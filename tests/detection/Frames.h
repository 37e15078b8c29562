// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QVector>

#include <cstdint>
#include <random>
#include <vector>

class BadpixelListModel;

/// The colour modes that frames can have.
inline constexpr int Mono8 = 6;
inline constexpr int RawBayer8 = 11;

/// An 8-bit indexed frame, every byte of it @p value, the padding of its lines too.
QImage uniformFrame(int width, int height, int value);

/// Sets the pixel at (x, y).
void setPixel(QImage& frame, int x, int y, int value);

/// Noise below 60 with one hot pixel in a hundred, at the same places in all frames; the padding
/// is noise as well.
QVector<QImage> noisyFrames(std::mt19937& random, int width, int height, int count);

/// The positions of all entries, in list order.
std::vector<QPoint> positionsOf(const BadpixelListModel& list);
