// SPDX-License-Identifier: MIT
#pragma once

#include "detection/Matrix.h"

#include <QObject>
#include <QVector>
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <vector>

class BadpixelListModel;
class QImage;

/// Averages dark frames for a detector of bad pixels, which derives from it.
///
/// In the monochrome mode all pixels make one matrix; in the raw Bayer mode each of the four colour
/// sites of the mosaic makes a plane of its own. What is done to a pixel is said by the visitors
/// below, one kind for each pass, element by element. A detection does what they say in one pass
/// over the bytes of the frames: elements are paired with bytes, and the mean of a byte is the same
/// for all elements that it is paired with. Of the means only those are kept that can be asked for,
/// which are few. GUI thread.
class BadpixelDetector : public QObject
{
    Q_OBJECT

public:
    /// The camera's colour modes that frames can have.
    enum ColorMode { Mono8 = 6, RawBayer8 = 11 };

    /// Where a walk through an image starts and how far it steps, in pixels.
    struct SamplingPattern
    {
        quint8 startX;
        quint8 startY;
        quint8 stepX;
        quint8 stepY;
    };

    /// "Color mode for hotpixel detection not supported."
    class ErrColorMode : public std::runtime_error
    {
    public:
        ErrColorMode();
    };

    /// What is done to an element and the byte of the pixel that it is paired with.
    class PixelValIterator
    {
    public:
        virtual void operator()(unsigned int& element, const unsigned char* pixel) = 0;

    protected:
        ~PixelValIterator() = default;
    };

    /// What is done to an element and the position of the pixel that it is paired with.
    class PixelPosIterator
    {
    public:
        virtual void operator()(unsigned int& element, int x, int y) = 0;

    protected:
        ~PixelPosIterator() = default;
    };

    /// Walks an image in step with the elements of a matrix.
    ///
    /// The pixel at (x, y) is byte y * width + x of the image, as if its lines had no padding. And
    /// a line is left only when x is greater than the width, so x == width is visited, which is
    /// the first pixel of the next line (behaviour.md: walk-past-the-line).
    class ImageIterator : public Matrix<unsigned int>::Iterator
    {
    public:
        int x;
        int y;
        const QImage* image;
        const SamplingPattern* pattern;

        /// The byte of the pixel at the current position, counted from the start of the image.
        [[nodiscard]] qsizetype byteIndex() const;

        /// How many steps the walk has on its current line, from the current position on.
        [[nodiscard]] std::size_t stepsOnLine() const;

        /// Whether the last step on a line is the one to x == width.
        [[nodiscard]] bool goesPastTheLine() const;

        /// Goes on by @p steps, 1 … stepsOnLine().
        void advance(std::size_t steps = 1);

    protected:
        ImageIterator(const QImage* image, const SamplingPattern* pattern);
        ~ImageIterator() = default;
    };

    /// Hands each element to a visitor together with its pixel.
    class ImageValueIterator final : public ImageIterator
    {
    public:
        ImageValueIterator(const QImage* image, const SamplingPattern* pattern,
                           PixelValIterator* inner);
        void operator()(unsigned int& element) override;

        PixelValIterator* inner;
    };

    /// Hands each element to a visitor together with its position.
    class ImagePosIterator final : public ImageIterator
    {
    public:
        ImagePosIterator(const QImage* image, const SamplingPattern* pattern,
                         PixelPosIterator* inner);
        void operator()(unsigned int& element) override;

        PixelPosIterator* inner;
    };

    /// The element becomes the pixel's value.
    class CopyIterator final : public PixelValIterator
    {
    public:
        void operator()(unsigned int& element, const unsigned char* pixel) override
        {
            element = *pixel;
        }
    };

    /// Adds the pixel's value to the element.
    class SumIterator final : public PixelValIterator
    {
    public:
        void operator()(unsigned int& element, const unsigned char* pixel) override
        {
            element += *pixel;
        }
    };

    /// Divides the element, truncating.
    class DivIterator final : public Matrix<unsigned int>::Iterator
    {
    public:
        explicit DivIterator(unsigned int divisorOfAll)
            : divisor(divisorOfAll)
        {}
        void operator()(unsigned int& element) override { element /= divisor; }

        unsigned int divisor;
    };

    /// For frames of the raw Bayer mode, until setImages() says otherwise.
    BadpixelDetector();
    ~BadpixelDetector() override;

    /// @param colorMode the camera's colour mode number.
    /// @param images the dark frames, 8 bits per pixel and indexed, all of one size; borrowed, and
    ///        to be kept until the detection is over.
    void setImages(int colorMode, const QVector<QImage>* images);

    /// Adds the positions of all bad pixels to @p model, and emits detectionFinished().
    ///
    /// What it added before an exception stays.
    /// @throws std::runtime_error "No images acquired for hotpixel detection.", "Image format for
    ///         hotpixel detection not supported." or "Aqcuired images are not the same size.";
    /// @throws ErrColorMode for any mode but 6 and 11;
    /// @throws std::length_error "Matrix has no size" for frames without a pixel (in mode 11 with
    ///         less than 2 × 2). detectionFinished() is emitted before each of these.
    /// @throws std::runtime_error whatever BadpixelListModel::addBadpixel() throws; then without
    ///         detectionFinished().
    virtual void detect(BadpixelListModel* model) = 0;

signals:
    void detectionFinished();

protected:
    /// A plane of the frames: which bytes it is made of, and what their means sum up to.
    struct Plane
    {
        SamplingPattern pattern;
        std::size_t size = 0; ///< elements, of a matrix with a row for each line of the mosaic
        unsigned int sum = 0; ///< of its elements, wrapping
    };

    /// Some of the means of a line.
    struct Segment
    {
        static constexpr int Bytes = 128;

        int x = 0; ///< of the first one, a multiple of Bytes
        int y = 0;
        int count = 0; ///< Bytes, or what is left of the line
        quint8 greatest = 0;
        std::array<quint8, Bytes> means = {};
    };

    /// Averages the frames and sums the planes that the colour mode asks for; emits
    /// detectionFinished() before an exception leaves it.
    /// @param least kept are the segments with a mean above it
    void accumulate(unsigned int least);

    int m_colorMode = RawBayer8;
    const QVector<QImage>* m_images = nullptr;
    std::vector<Segment> m_segments; ///< in the order of the lines
    std::vector<Plane> m_planes;
    const std::array<SamplingPattern, 5> m_patterns;

private:
    void makePlanes();
    void checkFrames() const;
    void average(unsigned int least);
};
