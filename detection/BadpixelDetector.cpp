// SPDX-License-Identifier: MIT
#include "detection/BadpixelDetector.h"

#include "detection/FrameMeans.h"

#include <QImage>
#include <QSize>

#include <algorithm>
#include <cstdlib>
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

bool BadpixelDetector::ImageIterator::goesPastTheLine() const
{
    return (image->width() - pattern->startX) % pattern->stepX == 0;
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

void BadpixelDetector::accumulate(unsigned int least)
{
    try {
        makePlanes();
        checkFrames();
        average(least);
    } catch (...) {
        emit detectionFinished();
        throw;
    }
}

void BadpixelDetector::makePlanes()
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
    const auto addPlane = [this](const SamplingPattern& pattern, unsigned rows, unsigned columns) {
        Matrix<unsigned int>::checkSize(rows, columns);
        m_planes.push_back({pattern, std::size_t{columns} * rows});
    };
    switch (m_colorMode) {
    case Mono8:
        addPlane(m_patterns[0], height, width);
        break;
    case RawBayer8:
        for (std::size_t plane = 1; plane < m_patterns.size(); ++plane) {
            addPlane(m_patterns[plane], height >> 1U, width >> 1U);
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

void BadpixelDetector::average(unsigned int least)
{
    std::vector<const quint8*> bytes;
    bytes.reserve(static_cast<std::size_t>(m_images->size()));
    for (const QImage& image : *m_images) {
        bytes.push_back(image.constBits());
    }
    const FrameMeans frameMeans(std::move(bytes));
    const QSize size = m_images->first().size();
    struct Line
    {
        unsigned int evenSum = 0;
        unsigned int oddSum = 0;
        quint8 first = 0;
    };
    std::vector<Line> lines(static_cast<std::size_t>(size.height()));
    m_segments.clear();
    std::size_t byte = 0;
    Segment segment;
    for (segment.y = 0; segment.y < size.height(); ++segment.y) {
        Line& line = lines[static_cast<std::size_t>(segment.y)];
        for (segment.x = 0; segment.x < size.width(); segment.x += Segment::Bytes) {
            segment.count = std::min(Segment::Bytes, size.width() - segment.x);
            const auto count = static_cast<std::size_t>(segment.count);
            const FrameMeans::Run run = frameMeans.run(byte, count, segment.means.data());
            byte += count;
            line.evenSum += run.evenSum;
            line.oddSum += run.oddSum;
            line.first = segment.x == 0 ? segment.means.front() : line.first;
            segment.greatest = run.greatest;
            if (segment.greatest > least) {
                m_segments.push_back(segment);
            }
        }
    }

    for (Plane& plane : m_planes) {
        const SamplingPattern& pattern = plane.pattern;
        ImagePosIterator walk(&m_images->first(), &pattern, nullptr);
        std::size_t left = plane.size;
        for (; left >= walk.stepsOnLine(); walk.advance(walk.stepsOnLine())) {
            left -= walk.stepsOnLine();
            const Line& line = lines[static_cast<std::size_t>(walk.y)];
            plane.sum += pattern.stepX == 1    ? line.evenSum + line.oddSum
                         : pattern.startX == 0 ? line.evenSum
                                               : line.oddSum;
            plane.sum +=
                walk.goesPastTheLine() ? lines[static_cast<std::size_t>(walk.y) + 1].first : 0U;
        }
        for (; left > 0; --left) { // the last line has fewer
            quint8 mean = 0;
            frameMeans.run(static_cast<std::size_t>(walk.byteIndex()), 1, &mean);
            plane.sum += mean;
            walk.advance();
        }
    }
}
