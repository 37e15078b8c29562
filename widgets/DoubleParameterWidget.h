// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraParameter.h"
#include "widgets/BaseParameterWidget.h"

class QDoubleSpinBox;

/// Shows and edits a floating-point property; the slider counts steps of the property's increment
/// from its minimum.
///
/// Every change of the spin box is reported at once, snapped to the slider's grid where that moves
/// the slider. Dragging the slider takes the spin box along and reports once, on release.
/// GUI thread.
class DoubleParameterWidget : public BaseParameterWidget
{
    Q_OBJECT

public:
    explicit DoubleParameterWidget(QObject* parent = nullptr);

    [[nodiscard]] QDoubleSpinBox* spinBox() const { return m_spinBox; }

    /// What setParam() was given last.
    [[nodiscard]] const CameraParameter<double>& param() const { return m_param; }

signals:
    /// The user's choice.
    void valueChanged(double value);

public slots:
    /// Brings the slider to the position for @p value of the spin box, and the spin box to the
    /// value of that position when the slider moves.
    void changeValue(double value);

    /// Brings the spin box to the value of the slider's position @p value, without a report.
    void changeValueRelative(int value);

    /// Reports the spin box's value, except from within a slot that brings the controls in line.
    void emitValueChanged();

    /// Takes over range, step and value. A value that changes is reported like a user's choice.
    void setParam(CameraParameter<double>& param);

private:
    CameraParameter<double> m_param;
    QDoubleSpinBox* m_spinBox;
};
