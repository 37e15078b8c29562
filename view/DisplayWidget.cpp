// SPDX-License-Identifier: MIT
#include "view/DisplayWidget.h"

#include "hotpixel/BadpixelListModel.h"
#include "view/Rgb32Picture.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr double MagnifierCrossOpacity = 0.3;
constexpr double SmallestScaleWithCross = 1.0;
constexpr int MarkReach = 4;
constexpr int SelectionMarkReach = 6;
constexpr int SelectionMarkWidth = 3;
constexpr int ClickTolerance = 7;

/// `value` cut toward zero; a scale without bounds must not overflow the int.
int cutToInt(double value)
{
    constexpr double Greatest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, -Greatest, Greatest));
}

/// The logical pixel that the pointer is over. On a dense screen the pointer stands between two of
/// them, and rounding would take the next one.
QPoint pixelUnder(const QPointF& position)
{
    return {cutToInt(std::floor(position.x())), cutToInt(std::floor(position.y()))};
}

/// The square of pixels around an entry's pixel, `reach` pixels to each side.
QRect markRect(const BadpixelEntry& entry, int reach)
{
    return {QPoint(entry.x - reach, entry.y - reach), QPoint(entry.x + reach, entry.y + reach)};
}

/// Shows a picture of its own size.
///
/// On a dense screen, a label with scaled contents keeps a smoothed copy of the whole picture in
/// the screen's pixels: at scale 4.0 that takes seconds and more than a gigabyte. Here only the
/// exposed part is enlarged, and without smoothing, so that a sensor pixel stays a square.
class PictureLabel final : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        const QPixmap picture = pixmap();
        if (picture.isNull() || picture.size() != size()) {
            QLabel::paintEvent(event);
            return;
        }
        QPainter(this).drawPixmap(event->rect(), picture, event->rect());
    }
};

/// Makes each pixel a square of @p factor x @p factor. Each line is made once and copied: it is in
/// the cache then, and writing is all that takes time.
void enlarge(const QImage& picture, int factor, QImage& enlarged)
{
    for (int y = 0; y < picture.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        auto* const line = reinterpret_cast<QRgb*>(enlarged.scanLine(y * factor));
        auto* to = line;
        for (int x = 0; x < picture.width(); ++x) {
            to = std::fill_n(to, factor, from[x]);
        }
        for (int copy = 1; copy < factor; ++copy) {
            std::copy(line, to, reinterpret_cast<QRgb*>(enlarged.scanLine(y * factor + copy)));
        }
    }
}

Qt::GlobalColor markColor(std::uint8_t pixelClass)
{
    switch (pixelClass) {
    case FactoryPixel:
        return Qt::yellow;
    case UserPixel:
        return Qt::green;
    default:
        return Qt::red;
    }
}

} // namespace

DisplayWidget::DisplayWidget(QWidget* parent)
    : QScrollArea(parent)
    , m_label(new PictureLabel)
{
    m_label->setBackgroundRole(QPalette::Base);
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    m_label->setScaledContents(true);
    setBackgroundRole(QPalette::Dark);
    setWidget(m_label);
}

void DisplayWidget::setModel(BadpixelListModel* model)
{
    m_model = model;
}

void DisplayWidget::setBufferSize(ImageInfo info)
{
    m_bufferInfo = info;
}

void DisplayWidget::setImage(QImage& image)
{
    m_image = image;
    redrawImage();
}

void DisplayWidget::clear()
{
    m_label->clear();
}

void DisplayWidget::redrawImage()
{
    if (m_image.isNull()) {
        return;
    }
    // The label gives up its picture, so that its memory serves the next one: most of the time
    // would go into fetching new memory. Unscaled, that is the picture that marks are drawn into;
    // scaled, this one is kept beside it.
    QImage former = m_label->pixmap().toImage();
    m_label->clear();
    QImage kept = std::move(m_picture);
    QImage picture =
        view::toRgb32(m_image, shownSize(m_image.size()) == m_image.size() ? former : kept);
    kept = QImage();
    if (picture.isNull()) {
        return;
    }
    if (m_highlight) {
        drawMarks(picture);
    }
    QImage shown = scaled(picture, former);
    if (shown.isNull()) {
        m_scale /= 2.0;
        shown = scaled(picture, former);
        emit scaleChanged(cutToInt(m_scale));
    }
    if (shown.constBits() != picture.constBits()) {
        m_picture = std::move(picture);
    }
    picture = QImage();

    m_label->setPixmap(QPixmap::fromImage(std::move(shown)));
    m_label->adjustSize();
}

void DisplayWidget::setHighlight(bool enabled)
{
    m_highlight = enabled;
}

void DisplayWidget::setSelectionModel(QItemSelectionModel* selectionModel)
{
    m_selectionModel = selectionModel;
}

void DisplayWidget::setScale(double scale)
{
    m_scale = scale;
}

void DisplayWidget::updateMagnifierPosition(QPoint pos)
{
    m_magnifierPos = pos;
}

void DisplayWidget::drawMarks(QImage& picture) const
{
    QPainter painter(&picture);
    if (m_scale >= SmallestScaleWithCross) {
        painter.setPen(Qt::red);
        painter.setOpacity(MagnifierCrossOpacity);
        painter.drawLine(m_magnifierPos.x(), 0, m_magnifierPos.x(), picture.height());
        painter.drawLine(0, m_magnifierPos.y(), picture.width(), m_magnifierPos.y());
        painter.setOpacity(1.0);
    }
    if (m_model == nullptr) {
        return;
    }

    painter.setRenderHint(QPainter::Antialiasing);
    const int rows = m_model->rowCount();
    // A list file may hold millions of entries, most of them outside of the image.
    constexpr int PenReach = 1;
    const QRect reached = picture.rect().adjusted(-PenReach, -PenReach, PenReach, PenReach);
    std::optional<Qt::GlobalColor> color;
    for (int row = 0; row < rows; ++row) {
        const BadpixelEntry entry = m_model->badpixelAt(row);
        const QRect mark = markRect(entry, MarkReach);
        if (!mark.intersects(reached)) {
            continue;
        }
        if (color != markColor(entry.pixelClass)) {
            color = markColor(entry.pixelClass);
            painter.setPen(*color);
        }
        painter.drawEllipse(mark);
    }

    if (m_selectionModel == nullptr) {
        return;
    }
    const QModelIndexList selected = m_selectionModel->selectedIndexes();
    if (!selected.isEmpty() && selected.constFirst().row() < rows) {
        painter.setPen(QPen(Qt::blue, SelectionMarkWidth));
        painter.drawEllipse(
            markRect(m_model->badpixelAt(selected.constFirst().row()), SelectionMarkReach));
    }
}

QSize DisplayWidget::shownSize(const QSize& size) const
{
    const QSize bounds =
        m_scale == 0.0 ? QSize(width() - 2, height() - 2)
                       : QSize(cutToInt(size.width() * m_scale), cutToInt(size.height() * m_scale));
    return bounds.isEmpty() ? QSize()
                            : size.scaled(bounds, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

QImage DisplayWidget::scaled(const QImage& picture, QImage& memory) const
{
    const QSize size = shownSize(picture.size());
    if (size.isEmpty()) {
        return {};
    }
    if (size == picture.size()) {
        return picture;
    }
    // What QImage::scaled() with Qt::FastTransformation gives, in memory that is there already.
    QImage former = std::exchange(memory, QImage());
    if (!view::isReusable(former, size)) {
        former = QImage(); // before the new one is fetched: an enlarged picture takes a gigabyte
        former = QImage(size, QImage::Format_RGB32);
    }
    if (former.isNull()) {
        return former;
    }
    const int factor = size.width() / picture.width();
    if (size == picture.size() * factor) {
        enlarge(picture, factor, former);
    } else {
        QPainter(&former).drawImage(former.rect(), picture);
    }
    return former;
}

std::optional<QPoint> DisplayWidget::imagePosition(const QPointF& viewportPosition) const
{
    const QPointF position = m_label->mapFromParent(viewportPosition);
    if (m_scale != 0.0) {
        return QPoint(cutToInt(position.x() / m_scale), cutToInt(position.y() / m_scale));
    }
    // Fitted to the widget, what is under the pointer follows from the picture that is shown.
    const QSize shown = m_label->pixmap().size();
    if (shown.isEmpty() || m_image.isNull()) {
        return std::nullopt;
    }
    return QPoint(cutToInt(position.x() * m_image.width() / shown.width()),
                  cutToInt(position.y() * m_image.height() / shown.height()));
}

void DisplayWidget::click(const QPoint& position)
{
    const QModelIndex hit =
        m_model != nullptr ? m_model->findBadpixel(position, ClickTolerance) : QModelIndex();
    if (hit.isValid()) {
        if (m_selectionModel != nullptr) {
            m_selectionModel->select(hit, QItemSelectionModel::ClearAndSelect |
                                              QItemSelectionModel::Rows);
        }
        return;
    }
    if (m_selectionModel != nullptr) {
        m_selectionModel->select(QModelIndex(), QItemSelectionModel::Clear);
    }
    emit positionClicked(position);
}

bool DisplayWidget::event(QEvent* event)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseMove) {
        return QScrollArea::event(event);
    }
    auto* const mouse = static_cast<QMouseEvent*>(event);
    QMouseEvent inViewport(mouse->type(), viewport()->mapFromParent(mouse->position()),
                           mouse->globalPosition(), mouse->button(), mouse->buttons(),
                           mouse->modifiers(), mouse->pointingDevice());
    if (!viewport()->rect().contains(pixelUnder(inViewport.position()))) {
        return QScrollArea::event(event); // on the frame or between the scroll bars: no image there
    }
    if (mouse->type() == QEvent::MouseButtonPress) {
        mousePressEvent(&inViewport);
    } else {
        mouseMoveEvent(&inViewport);
    }
    event->setAccepted(inViewport.isAccepted());
    return true;
}

void DisplayWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::RightButton)) {
        m_lastMousePos = pixelUnder(event->position());
    } else if (event->buttons().testFlag(Qt::LeftButton)) {
        if (const std::optional<QPoint> position = imagePosition(event->position())) {
            click(*position);
        }
    } else {
        event->ignore();
    }
}

void DisplayWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::RightButton)) {
        event->ignore();
        return;
    }
    const QPoint position = pixelUnder(event->position());
    const QPoint travel = m_lastMousePos - position;
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + travel.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + travel.y());
    m_lastMousePos = position;
}

void DisplayWidget::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
}
