// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QPoint>
#include <QVector>

#include <cstdint>
#include <vector>

/// The detection once more, element by element and as slow as it comes. It shares nothing with the
/// detector but the rules.
namespace reference {

/// One step of a walk: the position that is reported and the byte that is read for it.
struct WalkStep
{
    int x;
    int y;
    qsizetype byte;
};

/// The first @p steps steps of the walk that starts at (startX, startY) with the same step in both
/// directions, in an image of this width.
std::vector<WalkStep> walk(int width, int startX, int startY, int step, qsizetype steps);

/// The positions above their plane's limit, in the order in which they are found, duplicates
/// included. @param colorMode 6 or 11.
std::vector<QPoint> hotpixels(int colorMode, const QVector<QImage>& frames, int threshold);

/// @p positions without those that came before, as a list without a limit takes them.
std::vector<QPoint> withoutDuplicates(const std::vector<QPoint>& positions);

} // namespace reference
