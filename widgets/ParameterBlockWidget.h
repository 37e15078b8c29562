// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class DoubleParameterWidget;
class ParameterWidget;
class QGridLayout;

/// The panel of the camera's properties: frame rate, exposure and master gain, a row each with
/// label, slider and spin box. GUI thread.
class ParameterBlockWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ParameterBlockWidget(QWidget* parent = nullptr);

    [[nodiscard]] DoubleParameterWidget* framerate() const { return m_framerate; }
    [[nodiscard]] DoubleParameterWidget* exposure() const { return m_exposure; }
    [[nodiscard]] ParameterWidget* mastergain() const { return m_mastergain; }

private:
    DoubleParameterWidget* m_framerate;
    DoubleParameterWidget* m_exposure;
    ParameterWidget* m_mastergain;
    QGridLayout* m_layout;
};
