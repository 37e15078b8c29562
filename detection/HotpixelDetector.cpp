#include "detection/HotpixelDetector.h"

#include "hotpixel/BadpixelListModel.h"

#include <QImage>
#include <QPoint>

namespace {

Matrix<unsigned int>& instanced(const std::unique_ptr<Matrix<unsigned int>>& matrix)
{
    if (!matrix) {
        throw std::runtime_error(BadpixelDetector::tr("Not instanced.").toStdString());
    }
    return *matrix;
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
    matrix.iterate(mean);
    return mean.sum / mean.count + static_cast<unsigned int>(m_threshold);
}

void HotpixelDetector::report(FrameMatrix& matrix, const SamplingPattern& pattern,
                              unsigned int limit, BadpixelListModel* model) const
{
    AddHotpixelIterator add(model, limit);
    ImagePosIterator walk(&m_images->first(), &pattern, &add);
    matrix.iterate(walk);
}
