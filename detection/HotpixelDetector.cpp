// SPDX-License-Identifier: MIT
#include "detection/HotpixelDetector.h"

#include "hotpixel/BadpixelListModel.h"

#include <QImage>
#include <QPoint>

#include <algorithm>
#include <cstddef>

void HotpixelDetector::AddHotpixelIterator::operator()(unsigned int& element, int x, int y)
{
    if (element > limit) {
        model->addBadpixel(QPoint(x, y));
    }
}

HotpixelDetector::HotpixelDetector(int threshold)
    : m_threshold(threshold)
{}

void HotpixelDetector::detect(BadpixelListModel* model)
{
    // A limit is never below the threshold.
    accumulate(static_cast<unsigned int>(std::max(m_threshold, 0)));
    if (m_planes.empty()) {
        throw std::runtime_error(tr("Not instanced.").toStdString());
    }
    for (const Plane& plane : m_planes) {
        report(plane, model);
    }
    emit detectionFinished();
}

void HotpixelDetector::report(const Plane& plane, BadpixelListModel* model) const
{
    const unsigned int limit =
        plane.sum / static_cast<unsigned int>(plane.size) + static_cast<unsigned int>(m_threshold);
    AddHotpixelIterator add(model, limit);
    const SamplingPattern& pattern = plane.pattern;
    const ImagePosIterator walk(&m_images->first(), &pattern, &add);
    const auto isWalked = [&pattern](int y) {
        return y >= pattern.startY && (y - pattern.startY) % pattern.stepY == 0;
    };
    const auto visit = [&](unsigned int mean, int x, int y) {
        if (mean <= limit) {
            return; // as nearly all, and quicker
        }
        const auto line = static_cast<std::size_t>((y - pattern.startY) / pattern.stepY);
        const auto step = static_cast<std::size_t>((x - pattern.startX) / pattern.stepX);
        if (line * walk.stepsOnLine() + step < plane.size) {
            add(mean, x, y);
        }
    };
    for (const Segment& segment : m_segments) {
        if (segment.greatest <= limit) {
            continue;
        }
        // A walk may end a line with the first pixel of the next.
        if (segment.x == 0 && walk.goesPastTheLine() && isWalked(segment.y - 1)) {
            visit(segment.means.front(), walk.image->width(), segment.y - 1);
        }
        if (isWalked(segment.y)) {
            for (int i = pattern.startX; i < segment.count; i += pattern.stepX) {
                visit(segment.means[static_cast<std::size_t>(i)], segment.x + i, segment.y);
            }
        }
    }
}
