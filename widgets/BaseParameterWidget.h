// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QLabel;
class QSlider;
class QWidget;

/// The label, the slider and the spin box of one numeric property.
///
/// It is no widget itself: it makes its three widgets without a parent, and whoever uses it puts
/// them into a layout, whose window then owns them. Those that were never put anywhere, and those
/// of a window that still lives, go with this object. GUI thread.
class BaseParameterWidget : public QObject
{
    Q_OBJECT

public:
    explicit BaseParameterWidget(QObject* parent = nullptr);
    ~BaseParameterWidget() override;

    [[nodiscard]] QLabel* label() const;

    /// Horizontal, single step 1, page step 4.
    [[nodiscard]] QSlider* slider() const;

    /// Enables or disables the spin box, the label and the slider together.
    void setEnabled(bool enabled);

public slots:
    /// The property's name.
    void setText(QString text);

protected:
    /// Clears a guard flag and emitEnabled for its lifetime, and sets both afterwards.
    ///
    /// The flag is one per synchronising slot, shared by all instances (behaviour.md:
    /// shared-guard).
    class Synchronising
    {
    public:
        Synchronising(bool& guard, bool& emitEnabled);
        ~Synchronising();
        Synchronising(const Synchronising&) = delete;
        Synchronising& operator=(const Synchronising&) = delete;

    private:
        bool& m_guard;
        bool& m_emitEnabled;
    };

    /// Takes the spin box that the derived class made, to own and to enable it with the others.
    void setSpinBox(QWidget* spinBox);

    bool m_emitEnabled = true; ///< false while a slot brings the controls in line

private:
    QPointer<QLabel> m_label;
    QPointer<QSlider> m_slider;
    QPointer<QWidget> m_spinBox;
};
