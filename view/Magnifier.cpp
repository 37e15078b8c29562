// SPDX-License-Identifier: MIT
#include "view/Magnifier.h"

#include "view/Rgb32Picture.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int GreatestSideWithoutBox = 20;
constexpr int TickLength = 16;

/// The odd number of blocks that covers `length` screen pixels with at least one block to spare, so
/// that the focus pixel has a middle one.
int blocksAcross(int length, int zoom)
{
    const int blocks = length / zoom;
    return blocks + (blocks % 2 != 0 ? 2 : 3);
}

/// How many pixels a click `distance` screen pixels right of (or below) the centre moves the focus.
///
/// To the right, blocks count from half a block beyond the centre; to the left, only whole blocks
/// beyond the first (behaviour.md: click-uneven).
int clickedSteps(int distance, int zoom)
{
    const int half = zoom / 2;
    int steps = 0;
    if (distance < 1) {
        for (int rest = half - distance; rest > zoom; rest -= zoom) {
            --steps;
        }
    } else {
        for (; distance > half; distance -= zoom) {
            ++steps;
        }
    }
    return steps;
}

/// The colour of a pixel in the sensor's RGGB mosaic. The lowest bit is the parity of negative
/// coordinates too.
QString bayerColor(const QPoint& position)
{
    const bool oddColumn = (position.x() & 1) != 0;
    const bool oddRow = (position.y() & 1) != 0;
    if (oddColumn != oddRow) {
        return QStringLiteral("G");
    }
    return oddColumn ? QStringLiteral("B") : QStringLiteral("R");
}

void drawFocusBox(QImage& picture, int zoom)
{
    const int half = zoom / 2;
    const QPoint centre(picture.width() / 2, picture.height() / 2);
    // The stroke runs along left, top, right + 1 and bottom + 1: just outside the focus block.
    const QRect box(QPoint(centre.x() - half - 1, centre.y() - half - 1),
                    QSize(zoom + 1, zoom + 1));

    QPainter painter(&picture);
    painter.setPen(QPen(Qt::green, 1));
    painter.drawRect(box);
    painter.drawLine(centre.x(), box.top() - TickLength, centre.x(), box.top());
    painter.drawLine(centre.x(), box.bottom() + 1, centre.x(), box.bottom() + 1 + TickLength);
    painter.drawLine(box.left() - TickLength, centre.y(), box.left(), centre.y());
    painter.drawLine(box.right() + 1, centre.y(), box.right() + 1 + TickLength, centre.y());
}

} // namespace

Magnifier::Magnifier(QWidget* parent)
    : QLabel(parent)
{
    setBackgroundRole(QPalette::Base);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setScaledContents(false);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignCenter);
}

void Magnifier::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        emit changePosition(m_position + QPoint(-1, 0));
        break;
    case Qt::Key_Up:
        emit changePosition(m_position + QPoint(0, -1));
        break;
    case Qt::Key_Right:
        emit changePosition(m_position + QPoint(1, 0));
        break;
    case Qt::Key_Down:
        emit changePosition(m_position + QPoint(0, 1));
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

void Magnifier::mousePressEvent(QMouseEvent* ev)
{
    if (ev->button() != Qt::LeftButton) {
        QLabel::mousePressEvent(ev);
        return;
    }
    // On a dense screen a pointer stands between two logical pixels; the one it is over counts, not
    // the nearest one.
    const int dx = static_cast<int>(std::floor(ev->position().x())) - width() / 2;
    const int dy = static_cast<int>(std::floor(ev->position().y())) - height() / 2;
    emit changePosition(m_position + QPoint(clickedSteps(dx, m_zoom), clickedSteps(dy, m_zoom)));
}

void Magnifier::setPosition(QPoint position)
{
    m_position = position;
    redrawImage();
}

void Magnifier::setZoom(int zoom)
{
    m_zoom = std::clamp(zoom, MinimumZoom, MaximumZoom);
    redrawImage();
}

void Magnifier::setImage(QImage& image)
{
    m_image = view::toRgb32(image, m_image);
    redrawImage();
}

void Magnifier::redrawImage()
{
    if (m_image.isNull()) {
        clear();
        return;
    }

    const int columns = blocksAcross(width(), m_zoom);
    const int rows = blocksAcross(height(), m_zoom);
    const QImage neighbourhood =
        m_image.copy(m_position.x() - columns / 2, m_position.y() - rows / 2, columns, rows);
    QImage picture = neighbourhood.scaled(m_zoom * columns, m_zoom * rows, Qt::KeepAspectRatio,
                                          Qt::FastTransformation);

    if (picture.width() > GreatestSideWithoutBox && picture.height() > GreatestSideWithoutBox) {
        drawFocusBox(picture, m_zoom);
        // Read from the neighbourhood, not from the image: a focus pixel outside the image is in
        // it.
        const QRgb focusPixel = neighbourhood.pixel(columns / 2, rows / 2);
        emit pixelInfoChanged(bayerColor(m_position), qBlue(focusPixel));
    }
    setPixmap(QPixmap::fromImage(std::move(picture)));
}
