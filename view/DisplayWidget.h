// SPDX-License-Identifier: MIT
#pragma once

#include "camera/ImageInfo.h"

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QScrollArea>

#include <optional>

class BadpixelListModel;
class QItemSelectionModel;
class QLabel;
Q_MOC_INCLUDE(<QItemSelectionModel>)

/// Shows the latest camera image at a scale or fitted to the widget, on demand with marks over it:
/// one for each entry of the hotpixel list, one for the selected entry, and a cross at the
/// magnifier's position. A drag with the right button pans; a click with the left button selects
/// the hotpixel under the pointer in the list's selection model or reports the clicked position.
///
/// Slots that only store take effect with the next setImage() or redrawImage(). The picture is the
/// pixmap of the label that is the scroll area's widget. Sizes are in logical screen units: at
/// scale 1.0 an image pixel is one unit, whatever the density of the screen.
///
/// GUI thread only. No operation fails.
class DisplayWidget : public QScrollArea
{
    Q_OBJECT

public:
    explicit DisplayWidget(QWidget* parent = nullptr);

    /// Stores the hotpixel list that is marked and searched; null for none. Not owned.
    void setModel(BadpixelListModel* model);

signals:
    /// A left click hit no hotpixel; `position` in image pixels. It lies outside the image when the
    /// click was beside the picture.
    void positionClicked(QPoint position);

    /// The scale had to be halved because the scaled image could not be made; the new scale cut
    /// toward zero.
    void scaleChanged(int scale);

public slots:
    /// Stores the size of the camera's image buffers; nothing else.
    void setBufferSize(ImageInfo info);

    /// Makes `image` the source image and redraws. It is shared, not copied: an image over memory
    /// of somebody else (a camera's frame) needs that memory until the next setImage(), also for a
    /// later redrawImage(). A null image lets go of it, so whoever frees the memory sets a null
    /// image. What the label shows never depends on that memory.
    void setImage(QImage& image);

    /// Empties the picture; the source image stays.
    void clear();

    /// Composes and shows the picture: one conversion, the marks, one scaling unless the size
    /// stays. Without a source image the label keeps what it shows.
    void redrawImage();

    /// Stores whether the marks are drawn; false at first.
    void setHighlight(bool enabled);

    /// Stores the selection of the hotpixel table, whose first index is marked and which clicks
    /// change; null for none. Not owned.
    void setSelectionModel(QItemSelectionModel* selectionModel);

    /// Stores the screen units per image pixel; 1.0 at first, 0.0 fits the picture to the widget.
    void setScale(double scale);

    /// Stores where the magnifier looks, in image pixels; (0, 0) at first.
    void updateMagnifierPosition(QPoint pos);

protected:
    /// Mouse events carry positions of the viewport, as scroll areas hand them on. One that was
    /// sent to the scroll area itself (the pointer is on its frame) is mapped first.
    bool event(QEvent* event) override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

    /// Ignores every key, so that the window gets the arrow keys for the magnifier and the scroll
    /// area doesn't scroll with them.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void drawMarks(QImage& picture) const;
    [[nodiscard]] QSize shownSize(const QSize& size) const;
    [[nodiscard]] QImage scaled(const QImage& picture, QImage& memory) const;
    [[nodiscard]] std::optional<QPoint> imagePosition(const QPointF& viewportPosition) const;
    void click(const QPoint& position);

    QLabel* m_label; // owned by the scroll area
    QImage m_image;
    QImage m_picture; // memory for the next one, while it is shown at another scale
    ImageInfo m_bufferInfo;
    BadpixelListModel* m_model = nullptr;
    bool m_highlight = false;
    QItemSelectionModel* m_selectionModel = nullptr;
    QPoint m_lastMousePos;
    QPoint m_magnifierPos;
    double m_scale = 1.0;
};
