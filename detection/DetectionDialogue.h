// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/ParameterWidget.h"

#include <QDialog>
#include <QString>

#include <memory>

class QCheckBox;
class QDialogButtonBox;
class QEvent;
class QLabel;
class QProgressBar;
class QVBoxLayout;

/// Asks for the settings of a detection run, and shows its progress and its result.
///
/// From Start to finishDetect() or abortDetect() a run lasts: the controls are disabled and the
/// title bar has no close button. Escape then asks for the run to be stopped, and so does closing
/// by a window manager that offers it all the same; without a run both close the dialogue. GUI
/// thread.
class DetectionDialogue : public QDialog
{
    Q_OBJECT

public:
    explicit DetectionDialogue(QWidget* parent);
    ~DetectionDialogue() override;

    /// The line that says why a run failed or was stopped; the next start empties it. A text that
    /// is longer than a line makes the dialogue higher, never wider.
    void setMessage(const QString& text);

    /// Whether a run lasts.
    [[nodiscard]] bool isRunning() const { return m_running; }

    [[nodiscard]] ParameterWidget* thresholdWidget() const { return m_thresholdWidget.get(); }
    [[nodiscard]] QCheckBox* clearBox() const { return m_clearBox; }
    [[nodiscard]] QDialogButtonBox* buttonBox() const { return m_buttonBox; }
    [[nodiscard]] QLabel* statusLabel() const { return m_statusLabel; }
    [[nodiscard]] QLabel* countLabel() const { return m_countLabel; }
    [[nodiscard]] QLabel* messageLabel() const { return m_messageLabel; }
    [[nodiscard]] QProgressBar* progressBar() const { return m_progressBar; }

signals:
    /// The user wants a run. @param clear remove the user entries first. @param threshold 5 … 255
    void startDetect(bool clear, int threshold);

    /// The user wants the run that lasts to be stopped. The dialogue waits for abortDetect().
    void stopDetect();

public slots:
    /// @param percent 0 … 100
    void updateProgress(int percent);

    /// Ends the run; its count and its error line stay visible.
    void finishDetect();

    /// finishDetect(), with the progress bar back at 0.
    void abortDetect();

    /// Adds to the count of the current run.
    void addDetectedPixel(int count);

    /// What Escape and the title bar do: stopDetect() during a run, closes otherwise.
    void reject() override;

protected:
    bool event(QEvent* event) override;

private slots:
    void detect();

private:
    void addPreferences(QVBoxLayout* layout);
    void addProgress(QVBoxLayout* layout);
    void setRunning(bool running);
    void showCount();
    void growToMessage();

    std::unique_ptr<ParameterWidget> m_thresholdWidget;
    QCheckBox* m_clearBox;
    QDialogButtonBox* m_buttonBox;
    QLabel* m_statusLabel;
    QLabel* m_countLabel;
    QLabel* m_messageLabel;
    QProgressBar* m_progressBar;
    int m_detectedCount = 0;
    bool m_running = false;
};
