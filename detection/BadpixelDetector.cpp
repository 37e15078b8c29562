#include "detection/BadpixelDetector.h"

#include <QImage>

#include <cstdlib>

namespace {

/// Bytes that a walk with @p pattern needs for the elements of a matrix of the image's size.
bool holdsTheWalk(const QImage& image)
{
    return image.sizeInBytes() >= qsizetype{image.width()} * image.height();
}

} // namespace

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

void BadpixelDetector::ImageIterator::advance()
{
    x += pattern->stepX;
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
    (*inner)(element, image->constBits() + qsizetype{y} * image->width() + x);
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
        if (m_colorMode == Mono8) {
            average(*m_matrix, m_patterns[0]);
        } else {
            for (std::size_t plane = 0; plane < m_bayerMatrix.size(); ++plane) {
                average(*m_bayerMatrix[plane], m_patterns[plane + 1]);
            }
        }
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

void BadpixelDetector::average(FrameMatrix& matrix, const SamplingPattern& pattern) const
{
    const QImage& first = m_images->first();
    CopyIterator copy;
    ImageValueIterator copyFirst(&first, &pattern, &copy);
    matrix.iterate(copyFirst);

    SumIterator sum;
    for (const QImage& image : m_images->sliced(1)) {
        if (image.size() != first.size()) {
            throw std::runtime_error(tr("Aqcuired images are not the same size.").toStdString());
        }
        if (!holdsTheWalk(image)) {
            throw std::runtime_error(
                tr("Image format for hotpixel detection not supported.").toStdString());
        }
        ImageValueIterator addImage(&image, &pattern, &sum);
        matrix.iterate(addImage);
    }

    DivIterator divide(static_cast<unsigned>(m_images->size()));
    matrix.iterate(divide);
}
