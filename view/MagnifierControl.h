// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class Magnifier;
class QLabel;
class QSlider;

/// The panel of the magnifier: the enlarged view, a slider for its zoom, and the Bayer colour and
/// the value of the focus pixel. A vertical wheel over the panel turns the zoom.
///
/// GUI thread only. No operation fails.
class MagnifierControl : public QWidget
{
    Q_OBJECT

public:
    explicit MagnifierControl(QWidget* parent = nullptr);

    [[nodiscard]] Magnifier* magnifier() const { return m_magnifier; }

    /// Horizontal, 5 to 100 screen pixels per image pixel.
    [[nodiscard]] QSlider* zoomSlider() const { return m_zoomSlider; }

public slots:
    /// Shows the Bayer colour word and the value, in decimal, of the focus pixel.
    void setPixelInfo(QString bayerColor, int value);

protected:
    /// Moves the zoom slider by one single step for each notch of 120 eighths of a degree, the sum
    /// cut toward zero; a wheel event without a vertical part is left to the parent.
    void wheelEvent(QWheelEvent* event) override;

private:
    // The widget tree owns them.
    Magnifier* m_magnifier;
    QSlider* m_zoomSlider;
    QLabel* m_bayerColorLabel;
    QLabel* m_valueLabel;
};
