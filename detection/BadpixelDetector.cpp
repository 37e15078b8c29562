// SPDX-License-Identifier: MIT
#include "detection/BadpixelDetector.h"

#include "detection/FrameMeans.h"

#include <QImage>
#include <QSize>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <utility>

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
    m_planes.clear();
    switch (m_colorMode) {
    case Mono8:
        m_planes.push_back({m_patterns[0], std::size_t{width} * height});
        m_means = std::make_unique<Matrix<quint8>>(height, width);
        break;
    case RawBayer8:
        for (std::size_t plane = 1; plane < m_patterns.size(); ++plane) {
            m_planes.push_back({m_patterns[plane], std::size_t{width >> 1U} * (height >> 1U)});
        }
        // Without a line or a column of any site there is no plane.
        m_means = std::make_unique<Matrix<quint8>>(height < 2 ? 0 : height, width < 2 ? 0 : width);
        break;
    default:
        throw ErrColorMode();
    }
    m_greatestMeans.assign(height, 0);
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
    std::vector<const quint8*> bytes;
    bytes.reserve(static_cast<std::size_t>(m_images->size()));
    for (const QImage& image : *m_images) {
        bytes.push_back(image.constBits());
    }
    const detection::FrameMeans frameMeans(std::move(bytes));
    const auto width = static_cast<std::size_t>(m_images->first().width());
    std::vector<detection::LineOfMeans> lines(m_greatestMeans.size());
    const std::span<quint8> means = m_means->run(0, m_means->size());
    for (std::size_t y = 0; y < lines.size(); ++y) {
        lines[y] = frameMeans.line(y * width, width, means.data() + y * width);
        m_greatestMeans[y] = lines[y].greatest;
    }

    for (Plane& plane : m_planes) {
        const SamplingPattern& pattern = plane.pattern;
        const bool goesPastTheLine = (width - pattern.startX) % pattern.stepX == 0;
        ImagePosIterator walk(&m_images->first(), &pattern, nullptr);
        std::size_t left = plane.size;
        for (; left >= walk.stepsOnLine(); walk.advance(walk.stepsOnLine())) {
            left -= walk.stepsOnLine();
            const auto y = static_cast<std::size_t>(walk.y);
            plane.sum += pattern.stepX == 1    ? lines[y].evenSum + lines[y].oddSum
                         : pattern.startX == 0 ? lines[y].evenSum
                                               : lines[y].oddSum;
            plane.sum += goesPastTheLine ? means[(y + 1) * width] : 0U;
        }
        for (; left > 0; --left) { // the last line has fewer
            plane.sum += means[static_cast<std::size_t>(walk.byteIndex())];
            walk.advance();
        }
    }
}
