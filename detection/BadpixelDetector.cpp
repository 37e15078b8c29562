// SPDX-License-Identifier: MIT
#include "detection/BadpixelDetector.h"

#include <QImage>
#include <QSize>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <type_traits>
#include <vector>

namespace {

/// Up to so many bytes have a sum of 16 bits.
constexpr qsizetype MaxFramesOf16BitSums = 257;

/// Calls @p visitor for each element of @p run and every @p step-th byte from @p pixel on.
template <typename Sum, typename Visitor, typename Step>
void visitRun(std::span<Sum> run, const uchar* pixel, Step step, Visitor visitor)
{
    for (Sum& element : run) {
        visitor(element, pixel);
        pixel += step;
    }
}

} // namespace

/// The average of one plane, line by line of its walk. All passes are done over one line, while it
/// is in the cache, before the next line.
class BadpixelDetector::PlaneAverage
{
public:
    PlaneAverage(FrameMatrix& means, const QVector<QImage>& frames, const SamplingPattern& pattern)
        : m_means(means)
        , m_frames(frames)
        , m_walk(&frames.first(), &pattern, &m_copy)
        , m_divide(static_cast<unsigned>(frames.size()))
    {}
    PlaneAverage(const PlaneAverage&) = delete;
    PlaneAverage& operator=(const PlaneAverage&) = delete;

    [[nodiscard]] bool isComplete() const { return m_done == m_means.size(); }

    /// @param sums room for a line.
    template <typename Sum>
    void averageLine(std::vector<Sum>& sums)
    {
        const std::span<quint8> means = m_means.run(m_done, m_walk.stepsOnLine());
        const std::span<Sum> run = std::span(sums).first(means.size());
        visit(run, m_frames.first(), m_copy);
        for (qsizetype i = 1; i < m_frames.size(); ++i) {
            visit(run, m_frames[i], m_sum);
        }
        for (Sum& element : run) {
            m_divide(element);
        }
        std::transform(run.begin(), run.end(), means.begin(),
                       [](Sum mean) { return static_cast<quint8>(mean); });
        m_walk.advance(run.size());
        m_done += run.size();
    }

private:
    template <typename Sum, typename Visitor>
    void visit(std::span<Sum> run, const QImage& frame, Visitor visitor) const
    {
        // All frames have one size, so the walk through the first serves the others. Steps that
        // are constants make vector code.
        const uchar* pixel = frame.constBits() + m_walk.byteIndex();
        switch (m_walk.pattern->stepX) {
        case 1:
            visitRun(run, pixel, std::integral_constant<int, 1>(), visitor);
            break;
        case 2:
            visitRun(run, pixel, std::integral_constant<int, 2>(), visitor);
            break;
        default:
            visitRun(run, pixel, int{m_walk.pattern->stepX}, visitor);
            break;
        }
    }

    FrameMatrix& m_means;
    const QVector<QImage>& m_frames;
    CopyIterator m_copy;
    SumIterator m_sum;
    ImageValueIterator m_walk;
    DivIterator m_divide;
    std::size_t m_done = 0;
};

BadpixelDetector::ErrColorMode::ErrColorMode()
    : std::runtime_error(
          BadpixelDetector::tr("Color mode for hotpixel detection not supported.").toStdString())
{}

BadpixelDetector::ImageIterator::ImageIterator(const QImage* walkedImage,
                                               const SamplingPattern* walkPattern)
    : x(walkPattern->startX)
    , y(walkPattern->startY)
    , image(walkedImage)
    , pattern(walkPattern)
{}

qsizetype BadpixelDetector::ImageIterator::byteIndex() const
{
    return qsizetype{y} * image->width() + x;
}

std::size_t BadpixelDetector::ImageIterator::stepsOnLine() const
{
    return static_cast<std::size_t>((image->width() - x) / pattern->stepX) + 1;
}

void BadpixelDetector::ImageIterator::advance(std::size_t steps)
{
    x += static_cast<int>(steps) * pattern->stepX;
    // Not ">=": see the class. With it, elements and pixels would pair differently.
    if (x > image->width()) {
        x = pattern->startX;
        y += pattern->stepY;
    }
}

BadpixelDetector::ImageValueIterator::ImageValueIterator(const QImage* walkedImage,
                                                         const SamplingPattern* walkPattern,
                                                         PixelValIterator* innerVisitor)
    : ImageIterator(walkedImage, walkPattern)
    , inner(innerVisitor)
{}

void BadpixelDetector::ImageValueIterator::operator()(unsigned int& element)
{
    (*inner)(element, image->constBits() + byteIndex());
    advance();
}

BadpixelDetector::ImagePosIterator::ImagePosIterator(const QImage* walkedImage,
                                                     const SamplingPattern* walkPattern,
                                                     PixelPosIterator* innerVisitor)
    : ImageIterator(walkedImage, walkPattern)
    , inner(innerVisitor)
{}

void BadpixelDetector::ImagePosIterator::operator()(unsigned int& element)
{
    (*inner)(element, x, y);
    advance();
}

BadpixelDetector::BadpixelDetector()
    : m_patterns{{
          {0, 0, 1, 1},
          {0, 0, 2, 2},
          {0, 1, 2, 2},
          {1, 0, 2, 2},
          {1, 1, 2, 2},
      }}
{}

BadpixelDetector::~BadpixelDetector() = default;

void BadpixelDetector::setImages(int colorMode, const QVector<QImage>* images)
{
    m_colorMode = colorMode;
    m_images = images;
}

void BadpixelDetector::accumulate()
{
    try {
        makeMatrices();
        checkFrames();
        average();
    } catch (...) {
        emit detectionFinished();
        throw;
    }
}

void BadpixelDetector::makeMatrices()
{
    if (m_images == nullptr || m_images->isEmpty()) {
        throw std::runtime_error(tr("No images acquired for hotpixel detection.").toStdString());
    }
    const QImage& first = m_images->first();
    if (first.format() != QImage::Format_Indexed8) {
        throw std::runtime_error(
            tr("Image format for hotpixel detection not supported.").toStdString());
    }
    const auto width = static_cast<unsigned>(std::abs(first.width()));
    const auto height = static_cast<unsigned>(std::abs(first.height()));
    switch (m_colorMode) {
    case Mono8:
        m_matrix = std::make_unique<FrameMatrix>(height, width);
        break;
    case RawBayer8:
        for (std::unique_ptr<FrameMatrix>& plane : m_bayerMatrix) {
            plane = std::make_unique<FrameMatrix>(height >> 1U, width >> 1U);
        }
        break;
    default:
        throw ErrColorMode();
    }
}

void BadpixelDetector::checkFrames() const
{
    const QSize size = m_images->first().size();
    for (qsizetype i = 1; i < m_images->size(); ++i) {
        const QImage& image = m_images->at(i);
        if (image.size() != size) {
            throw std::runtime_error(tr("Aqcuired images are not the same size.").toStdString());
        }
        // Any format with a byte for each pixel will do; one with less would be read behind its
        // end.
        if (image.sizeInBytes() < qsizetype{size.width()} * size.height()) {
            throw std::runtime_error(
                tr("Image format for hotpixel detection not supported.").toStdString());
        }
    }
}

void BadpixelDetector::average()
{
    std::deque<PlaneAverage> planes;
    if (m_colorMode == Mono8) {
        planes.emplace_back(*m_matrix, *m_images, m_patterns[0]);
    } else {
        for (std::size_t plane = 0; plane < m_bayerMatrix.size(); ++plane) {
            planes.emplace_back(*m_bayerMatrix[plane], *m_images, m_patterns[plane + 1]);
        }
    }
    if (m_images->size() <= MaxFramesOf16BitSums) {
        averageAs<quint16>(planes);
    } else {
        averageAs<unsigned int>(planes);
    }
}

template <typename Sum>
void BadpixelDetector::averageAs(std::deque<PlaneAverage>& planes) const
{
    std::vector<Sum> sums(static_cast<std::size_t>(m_images->first().width()) + 1);
    bool isComplete = false;
    while (!isComplete) {
        isComplete = true;
        // A line of each plane in turn, since two planes read the same lines of the frames.
        for (PlaneAverage& plane : planes) {
            if (!plane.isComplete()) {
                plane.averageLine(sums);
                isComplete = false;
            }
        }
    }
}
