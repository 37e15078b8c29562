// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QLabel>
#include <QPoint>

/// Shows the neighbourhood of one sensor pixel, the focus pixel, each sensor pixel as a square
/// block of zoom × zoom screen pixels, with a green box around the focus pixel and four ticks that
/// point at it. It redraws on every change of image, position or zoom.
///
/// The magnifier does not move by itself: keys and clicks ask for a new position with
/// changePosition(), and whoever owns the position answers with setPosition(). All sizes are in
/// logical screen units, whatever the density of the screen.
///
/// GUI thread only. No operation fails.
class Magnifier : public QLabel
{
    Q_OBJECT

public:
    /// Smallest and greatest zoom, in screen pixels per image pixel.
    static constexpr int MinimumZoom = 1;
    static constexpr int MaximumZoom = 1000;

    explicit Magnifier(QWidget* parent = nullptr);

    /// Screen pixels per image pixel; 20 at first.
    [[nodiscard]] int zoom() const { return m_zoom; }

signals:
    /// After each redraw that drew the focus box: the colour of the focus pixel in the sensor's
    /// RGGB mosaic ("R", "G" or "B", by the parity of its coordinates alone) and its value, 0 to
    /// 255: the blue channel of the RGB32 pixel, which is the grey level of a monochrome image.
    /// Outside the image, where the picture is black, the value is 0.
    void pixelInfoChanged(QString bayerColor, int value);

    /// The user asked for the focus pixel `position`, in image pixels. It may lie outside the
    /// image; the receiver decides.
    void changePosition(QPoint position);

public slots:
    /// An arrow key asks for the neighbouring pixel in its direction; the label handles other keys.
    void keyPressEvent(QKeyEvent* event) override;

    /// A click with the left button asks for the clicked block's pixel to become the focus pixel.
    void mousePressEvent(QMouseEvent* ev) override;

    /// Makes `position`, in image pixels, the focus pixel. It may lie outside the image.
    void setPosition(QPoint position);

    /// Sets the zoom, in screen pixels per image pixel. Values outside MinimumZoom to MaximumZoom
    /// are cut to it: a block has at least one pixel, and a picture at most a few megapixels.
    void setZoom(int zoom);

    /// Shows `image` from now on, kept as RGB32. An RGB32 image over memory of somebody else (a
    /// camera's frame) is not copied, so that memory must stay until the next image is set; a null
    /// image lets go of it and clears the picture.
    void setImage(QImage& image);

    /// Draws the picture; without an image, clears it. Image pixels outside the image are black. A
    /// picture of 20 pixels or less in either direction gets no box and no pixel information.
    void redrawImage();

private:
    QPoint m_position;
    QImage m_image;
    int m_zoom = 20;
};
