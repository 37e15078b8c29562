#pragma once

#include "detection/Matrix.h"

#include <QObject>
#include <QVector>
#include <QtGlobal>

#include <array>
#include <memory>
#include <stdexcept>

class BadpixelListModel;
class QImage;

/// Averages dark frames for a detector of bad pixels, which derives from it.
///
/// In the monochrome mode all pixels make one matrix; in the raw Bayer mode each of the four colour
/// sites of the mosaic makes a plane of its own. The work on pixels is done by the visitors below,
/// one kind for each pass. GUI thread.
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
    /// the first pixel of the next line. Both are deliberate: the elements from the second line on
    /// are shifted against the image, and the averaging and the reporting pass have to agree on it.
    class ImageIterator : public Matrix<unsigned int>::Iterator
    {
    public:
        int x;
        int y;
        const QImage* image;
        const SamplingPattern* pattern;

    protected:
        ImageIterator(const QImage* image, const SamplingPattern* pattern);
        ~ImageIterator() = default;

        void advance();
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
    using FrameMatrix = Matrix<unsigned int>;

    /// Averages the frames into the matrices that the colour mode asks for; emits
    /// detectionFinished() before an exception leaves it.
    void accumulate();

    /// The frames' truncated mean for each element of @p matrix, walked with @p pattern.
    void average(FrameMatrix& matrix, const SamplingPattern& pattern) const;

    int m_colorMode = RawBayer8;
    const QVector<QImage>* m_images = nullptr;
    std::unique_ptr<FrameMatrix> m_matrix;                     ///< of the monochrome mode
    std::array<std::unique_ptr<FrameMatrix>, 4> m_bayerMatrix; ///< of patterns 1 to 4
    const std::array<SamplingPattern, 5> m_patterns;

private:
    void makeMatrices();
};
