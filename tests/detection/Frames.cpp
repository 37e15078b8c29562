// SPDX-License-Identifier: MIT
#include "tests/detection/Frames.h"

#include "hotpixel/BadpixelListModel.h"

#include <algorithm>

QImage uniformFrame(int width, int height, int value)
{
    QImage frame(width, height, QImage::Format_Indexed8);
    std::fill_n(frame.bits(), frame.sizeInBytes(), static_cast<uchar>(value));
    return frame;
}

void setPixel(QImage& frame, int x, int y, int value)
{
    frame.scanLine(y)[x] = static_cast<uchar>(value);
}

QVector<QImage> noisyFrames(std::mt19937& random, int width, int height, int count)
{
    std::uniform_int_distribution<int> noise(0, 59);
    std::uniform_int_distribution<int> percent(0, 99);
    std::uniform_int_distribution<int> hot(60, 255);

    const QImage first = uniformFrame(width, height, 0);
    std::vector<int> rates(static_cast<std::size_t>(first.sizeInBytes()));
    for (int& rate : rates) {
        rate = percent(random) == 0 ? hot(random) : 0;
    }
    QVector<QImage> frames;
    for (int i = 0; i < count; ++i) {
        QImage frame = uniformFrame(width, height, 0);
        uchar* bytes = frame.bits();
        for (std::size_t k = 0; k < rates.size(); ++k) {
            bytes[k] = static_cast<uchar>(rates[k] != 0 ? rates[k] : noise(random));
        }
        frames.append(frame);
    }
    return frames;
}

std::vector<QPoint> positionsOf(const BadpixelListModel& list)
{
    std::vector<QPoint> positions;
    for (int row = 0; row < list.rowCount(); ++row) {
        const BadpixelEntry entry = list.badpixelAt(row);
        positions.emplace_back(entry.x, entry.y);
    }
    return positions;
}
