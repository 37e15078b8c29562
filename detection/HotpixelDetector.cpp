// SPDX-License-Identifier: MIT
#include "detection/HotpixelDetector.h"

#include "hotpixel/BadpixelListModel.h"

#include <QImage>
#include <QPoint>

#include <algorithm>
#include <cstddef>
#include <span>

namespace {

/// How many elements are looked at together for one above the limit.
constexpr std::size_t Run = 128;

/// Of the bytes, those of another plane between them included.
quint8 greatest(std::span<const quint8> bytes)
{
    quint8 found = 0;
    for (const quint8 byte : bytes) {
        found = std::max(found, byte);
    }
    return found;
}

} // namespace

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
    accumulate();
    if (!m_means) {
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
    const std::span<const quint8> means = m_means->run(0, m_means->size());
    const QImage& image = m_images->first();
    ImagePosIterator walk(&image, &plane.pattern, &add);
    std::size_t left = plane.size;
    while (left > 0) {
        const auto y = static_cast<std::size_t>(walk.y);
        // The walk may end a line with the first pixel of the next.
        const quint8 nextGreatest = y + 1 < m_greatestMeans.size() ? m_greatestMeans[y + 1] : 0;
        const bool nothingOnLine = std::max(m_greatestMeans[y], nextGreatest) <= limit;
        const std::size_t steps =
            std::min(nothingOnLine ? walk.stepsOnLine() : std::min(walk.stepsOnLine(), Run), left);
        const auto begin = static_cast<std::size_t>(walk.byteIndex());
        const std::size_t step = plane.pattern.stepX;
        if (!nothingOnLine && greatest(means.subspan(begin, (steps - 1) * step + 1)) > limit) {
            for (std::size_t i = 0; i < steps; ++i) {
                unsigned int element = means[begin + i * step];
                add(element, walk.x + static_cast<int>(i * step), walk.y);
            }
        }
        walk.advance(steps);
        left -= steps;
    }
}
