// SPDX-License-Identifier: MIT
#include "detection/HotpixelDetector.h"

#include "hotpixel/BadpixelListModel.h"

#include <QImage>
#include <QPoint>

#include <algorithm>
#include <array>
#include <memory>
#include <span>

namespace {

/// How many elements are looked at together for one above the limit.
constexpr std::size_t ReportRun = 128;

template <typename T>
T& instanced(const std::unique_ptr<T>& matrix)
{
    if (!matrix) {
        throw std::runtime_error(BadpixelDetector::tr("Not instanced.").toStdString());
    }
    return *matrix;
}

quint8 brightest(std::span<const quint8> run)
{
    quint8 greatest = 0;
    for (const quint8 element : run) {
        greatest = std::max(greatest, element);
    }
    return greatest;
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
    switch (m_colorMode) {
    case Mono8: {
        FrameMatrix& matrix = instanced(m_matrix);
        report(matrix, m_patterns[0], limitOf(matrix), model);
        break;
    }
    case RawBayer8: {
        std::array<unsigned int, 4> limits{};
        for (std::size_t plane = 0; plane < limits.size(); ++plane) {
            limits[plane] = limitOf(instanced(m_bayerMatrix[plane]));
        }
        for (std::size_t plane = 0; plane < limits.size(); ++plane) {
            report(*m_bayerMatrix[plane], m_patterns[plane + 1], limits[plane], model);
        }
        break;
    }
    default:
        throw ErrColorMode();
    }
    emit detectionFinished();
}

unsigned int HotpixelDetector::limitOf(FrameMatrix& matrix) const
{
    MeanIterator mean;
    for (unsigned int element : matrix.run(0, matrix.size())) {
        mean(element);
    }
    return mean.sum / mean.count + static_cast<unsigned int>(m_threshold);
}

void HotpixelDetector::report(FrameMatrix& matrix, const SamplingPattern& pattern,
                              unsigned int limit, BadpixelListModel* model) const
{
    AddHotpixelIterator add(model, limit);
    ImagePosIterator walk(&m_images->first(), &pattern, &add);
    std::size_t done = 0;
    while (done < matrix.size()) {
        const std::span<quint8> run = matrix.run(done, std::min(walk.stepsOnLine(), ReportRun));
        // Most runs have no hot pixel, and finding that out is vector code.
        if (brightest(run) > limit) {
            for (unsigned int element : run) {
                walk(element);
            }
        } else {
            walk.advance(run.size());
        }
        done += run.size();
    }
}
