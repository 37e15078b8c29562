// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraParameter.h"
#include "widgets/BaseParameterWidget.h"

class QSpinBox;

/// Shows and edits an integer property; the slider runs in the property's own units.
///
/// Every change of the spin box is reported at once. Dragging the slider takes the spin box along
/// and reports once, on release. GUI thread.
class ParameterWidget : public BaseParameterWidget
{
    Q_OBJECT

public:
    explicit ParameterWidget(QObject* parent = nullptr);

    [[nodiscard]] QSpinBox* spinBox() const { return m_spinBox; }

    /// What setParam() was given last.
    [[nodiscard]] const CameraParameter<int>& param() const { return m_param; }

signals:
    /// The user's choice.
    void valueChanged(int value);

public slots:
    /// Brings slider and spin box to @p value, without a report.
    void changeValue(int value);

    /// Reports the spin box's value, except from within a slot that brings the controls in line.
    void emitValueChanged();

    /// Takes over range, step and value. A value that changes is reported like a user's choice.
    void setParam(CameraParameter<int>& param);

private:
    CameraParameter<int> m_param;
    QSpinBox* m_spinBox;
};
