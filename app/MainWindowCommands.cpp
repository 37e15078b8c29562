// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "detection/DetectionDialogue.h"
#include "ui_MainWindow.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"
#include "view/MagnifierControl.h"

#include <QAction>
#include <QCursor>
#include <QDir>
#include <QFileDialog>
#include <QItemSelectionModel>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPixmap>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

#include <algorithm>
#include <exception>

namespace {

constexpr double StatusResetMarker = 1111.0;
constexpr int MessageMsec = 2000;
constexpr int StatusMsec = 1500;
constexpr int ExactPosition = 1; // findBadpixel() looks closer than this
constexpr int PixelclassColumn = 2;

constexpr Qt::WindowFlags FixedSizeDialog = Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint;

/// No camera is selected, or the selected row has just gone.
bool isEmpty(const CameraItem& camera)
{
    return !camera.opened && camera.devId == 0 && camera.status == 0;
}

/// Scrolls so that an image position comes into view: the bar stands at its maximum for a position
/// at @p shownLength / @p scaleFactor, a whole number.
void scrollTo(QScrollBar* bar, int position, int shownLength, int scaleFactor)
{
    if (bar->maximum() == 0 || scaleFactor <= 0) {
        return;
    }
    const auto imageLength =
        static_cast<unsigned>(shownLength) / static_cast<unsigned>(scaleFactor);
    if (imageLength == 0) {
        return;
    }
    bar->setValue(static_cast<int>(static_cast<qint64>(position) * bar->maximum() / imageLength));
}

} // namespace

template <typename Step>
void MainWindow::reportErrors(const Step& step)
{
    try {
        step();
    } catch (const std::exception& error) {
        showMessage(QString::fromUtf8(error.what()));
    }
}

/// Draws the image once, at its end, for whatever a command does to list and selection meanwhile: a
/// large image takes its time, and no user sees the steps between.
class MainWindow::OneRedraw
{
public:
    explicit OneRedraw(MainWindow& window)
        : m_window(window)
    {
        m_window.m_redrawsHeld = true;
    }
    ~OneRedraw()
    {
        m_window.m_redrawsHeld = false;
        m_window.redraw();
    }
    OneRedraw(const OneRedraw&) = delete;
    OneRedraw& operator=(const OneRedraw&) = delete;

private:
    MainWindow& m_window;
};

void MainWindow::redraw()
{
    ++m_redraws;
    if (!m_redrawsHeld) {
        m_form->display->redrawImage();
    }
}

void MainWindow::showMessage(const QString& text)
{
    m_form->statusBar->showMessage(text, MessageMsec);
}

void MainWindow::setStatus(StatusField field, const QString& text)
{
    m_statusLabels[static_cast<std::size_t>(field)]->setText(text);
}

void MainWindow::setImageAreaVisible(bool visible)
{
    m_form->display->widget()->setVisible(visible);
}

CameraItem MainWindow::selectedCamera() const
{
    const QModelIndexList indexes = m_cameraListSelection->selectedIndexes();
    return m_cameraListModel.item(indexes.isEmpty() ? -1 : indexes.first().row());
}

QModelIndex MainWindow::selectedBadpixel() const
{
    const QModelIndexList indexes = m_badpixelListSelection->selectedIndexes();
    return indexes.isEmpty() ? QModelIndex() : indexes.first();
}

void MainWindow::updateCameraActions()
{
    const CameraItem camera = selectedCamera();
    action(Command::Open)->setEnabled(camera.status == 0);
    for (const Command command : {Command::Close, Command::HotpixelCorrection, Command::Detect,
                                  Command::Add, Command::Write, Command::Zoom}) {
        action(command)->setEnabled(camera.opened);
    }
}

void MainWindow::openCamera()
{
    const CameraItem camera = selectedCamera();
    if (isEmpty(camera) || camera.status != 0) {
        return;
    }
    reportErrors([&] {
        m_statusReset = StatusResetMarker;
        m_camera.open(static_cast<int>(camera.devId));
        // A control that stood at the cap already has nothing to answer when the camera comes with
        // a higher rate, and would show what the camera does not do.
        if (m_camera.framerate().value > m_camera.framerate().max) {
            m_camera.setFramerate(m_camera.framerate().max);
        }
        m_camera.setBadPixelCorrection(action(Command::HotpixelCorrection)->isChecked());
        onZoomChanged(action(Command::Zoom1To1));
        m_camera.startLive();
    });
    // After a failure, too: it may have come when the camera was open already, and before that the
    // camera that was open is closed.
    if (m_camera.isOpen()) {
        showOpenCamera();
    } else {
        showNoCamera();
    }
    setMagnifierPosition({0, 0});
}

void MainWindow::showOpenCamera()
{
    m_form->display->clear();
    m_form->display->setHighlight(action(Command::Highlight)->isChecked());
    setImageAreaVisible(true);
    m_statusTimer->start(StatusMsec);
}

void MainWindow::showNoCamera()
{
    m_statusTimer->stop();
    m_form->display->clear();
    setImageAreaVisible(false);
    if (m_magnifierControl != nullptr) {
        m_magnifierControl->magnifier()->clear();
    }
    setStatus(StatusField::Frames, tr("Frames: %1").arg(0));
    setStatus(StatusField::Failed, tr("Failed: %1").arg(0));
    setStatus(StatusField::FramesPerSecond, tr("FPS: ") + QString::number(0));
}

void MainWindow::closeCamera()
{
    const CameraItem camera = selectedCamera();
    if (isEmpty(camera) || camera.devId != m_camera.cameraId()) {
        return;
    }
    m_camera.close();
    m_statusReset = StatusResetMarker;
    showNoCamera();
    setMagnifierPosition({0, 0});
}

void MainWindow::onCameraOpened(Camera* /*camera*/)
{
    stopDetection(tr("Detection stopped."));
    emit cameraOpened(true);
}

void MainWindow::onCameraClosed()
{
    stopDetection(tr("Detection stopped."));
    emit cameraOpened(false);
}

void MainWindow::onCameraDisconnect()
{
    m_statusReset = StatusResetMarker;
    setImageAreaVisible(false);
    QImage nothing;
    newImage(nothing);
    m_form->display->clear();
    stopDetection(tr("The camera was disconnected."));
}

void MainWindow::onCameraReconnect()
{
    m_cameraListModel.updateList();
    int reconnectedRow = -1;
    int openRow = -1;
    for (int row = 0; row < m_cameraListModel.rowCount(); ++row) {
        const CameraItem camera = m_cameraListModel.item(row);
        if (camera.status != 0 && !camera.opened) { // it reads "in use"
            reconnectedRow = row;
        }
        if (camera.devId == m_camera.cameraId()) {
            openRow = row;
        }
    }
    // A camera that has just come back reads "in use" until the next refresh, unless the list was
    // refreshed before this event came: then no row may read so.
    m_cameraListView->selectRow(reconnectedRow >= 0 ? reconnectedRow : openRow);
    setImageAreaVisible(true);
}

void MainWindow::onSelectCameraRow(int row)
{
    // The user's own selection is never overridden.
    if (!m_cameraListSelection->hasSelection()) {
        m_cameraListView->selectRow(row);
    }
}

void MainWindow::onHotpixelCorrection()
{
    m_camera.setBadPixelCorrection(action(Command::HotpixelCorrection)->isChecked());
}

void MainWindow::newImage(QImage& image)
{
    reportErrors([&] {
        if (m_magnifierControl != nullptr) {
            m_magnifierControl->magnifier()->setImage(image);
        }
        m_form->display->setImage(image);
        switch (m_detection.addFrame(image)) {
        case DetectionRun::Step::Idle:
        case DetectionRun::Step::Collected:
            break;
        case DetectionRun::Step::Ready:
            detectBadpixel();
            break;
        case DetectionRun::Step::NotDark:
            QMessageBox::critical(this, tr("Detection failed"),
                                  tr("Too many Hotpixel have been found.\n"
                                     "Please make sure that the sensor is completely obscured."));
            if (m_detectionDialogue != nullptr) {
                m_detectionDialogue->abortDetect();
            }
            break;
        }
    });
}

void MainWindow::updateStatus()
{
    int userCount = 0;
    for (int row = 0; row < m_badpixelListModel.rowCount(); ++row) {
        userCount += m_badpixelListModel.badpixelAt(row).pixelClass == UserPixel ? 1 : 0;
    }
    // behaviour.md: f-counts-the-rest
    const int otherCount = m_badpixelListModel.rowCount() - userCount;
    setStatus(StatusField::UserCount, tr("U: %1").arg(userCount));
    setStatus(StatusField::FactoryCount, tr("F: %1").arg(otherCount));
    setStatus(StatusField::Frames, tr("Frames: %1").arg(m_camera.frameCount()));
    setStatus(StatusField::Failed, tr("Failed: %1").arg(m_camera.failedCount()));
    setStatus(StatusField::FramesPerSecond,
              tr("FPS: ") + QString::number(m_camera.getFramerate(), 'f', 2));
}

void MainWindow::updateStatusPosition(QPoint position)
{
    setStatus(StatusField::X, tr("x: %1").arg(position.x()));
    setStatus(StatusField::Y, tr("y: %1").arg(position.y()));
}

void MainWindow::updateStatusBadpixel()
{
    // The counts follow the status timer; nothing is left to do here.
}

void MainWindow::updateScaleFactor(int scale)
{
    m_scaleFactor = scale;
    if (scale != 1 && scale != 2) {
        return;
    }
    onZoomChanged(action(scale == 1 ? Command::Zoom1To1 : Command::Zoom2To1));
    showMessage(tr("The image is too big and will be resized"));
}

void MainWindow::onZoomChanged(QAction* act)
{
    struct ZoomStep
    {
        Command command;
        double displayScale;
        int scaleFactor;
    };
    // behaviour.md: factor-1
    constexpr ZoomStep Steps[] = {
        {Command::Zoom1To1, 1.0, 1}, {Command::Zoom2To1, 2.0, 2},  {Command::Zoom4To1, 4.0, 4},
        {Command::Zoom1To2, 0.5, 1}, {Command::Zoom1To4, 0.25, 1}, {Command::ZoomToFit, 0.0, 0},
    };
    m_statusReset = StatusResetMarker;
    for (const ZoomStep& step : Steps) {
        const bool chosen = action(step.command) == act;
        action(step.command)->setChecked(chosen);
        if (chosen) {
            action(Command::Zoom)->setText(act->text());
            m_form->display->setScale(step.displayScale);
            m_scaleFactor = step.scaleFactor;
        }
    }
}

void MainWindow::setMagnifierPosition(QPoint position)
{
    // The upper bound comes last (behaviour.md: minus-one).
    m_magnifierPosition = {std::min(std::max(position.x(), 0), m_camera.imageWidth() - 1),
                           std::min(std::max(position.y(), 0), m_camera.imageHeight() - 1)};
    // behaviour.md: unclamped-lookup
    const QModelIndex entry = m_badpixelListModel.findBadpixel(position, ExactPosition);
    if (entry.isValid()) {
        m_badpixelListSelection->select(entry, QItemSelectionModel::ClearAndSelect |
                                                   QItemSelectionModel::Rows);
    } else {
        m_badpixelListSelection->clearSelection();
    }
    emit magnifierPositionChanged(m_magnifierPosition);
}

void MainWindow::updateSelection(QItemSelection selected, QItemSelection deselected)
{
    // The toolkit tells of such a change for every row that is removed above the selected one.
    if (selected.isEmpty() && deselected.isEmpty()) {
        return;
    }
    const QModelIndexList indexes = selected.indexes();
    const QModelIndex index = indexes.isEmpty() ? QModelIndex() : indexes.first();
    setSelection(index, index);
}

void MainWindow::setSelection(QModelIndex topLeft, QModelIndex /*bottomRight*/)
{
    const int redrawsBefore = m_redraws;
    if (topLeft.isValid()) {
        const BadpixelEntry entry = m_badpixelListModel.badpixelAt(topLeft.row());
        // Selects the entry's row, which comes back here at most once: then nothing changes.
        setMagnifierPosition({entry.x, entry.y});
        const QWidget* const shown = m_form->display->widget();
        scrollTo(m_form->display->verticalScrollBar(), entry.y, shown->height(), m_scaleFactor);
        scrollTo(m_form->display->horizontalScrollBar(), entry.x, shown->width(), m_scaleFactor);
        m_badpixelListView->scrollTo(topLeft);
    }
    enableDelete(topLeft);
    // Where the magnifier's new position selected the entry first, the image shows all of it by
    // now.
    if (m_redraws == redrawsBefore) {
        redraw();
    }
}

void MainWindow::enableDelete(const QModelIndex& selected)
{
    const QString shownClass = selected.siblingAtColumn(PixelclassColumn).data().toString();
    action(Command::Delete)
        ->setEnabled(selected.isValid() && shownClass != QLatin1String("factory"));
}

void MainWindow::addNewBadpixel()
{
    reportErrors([&] {
        if (m_badpixelListModel.addBadpixel(m_magnifierPosition)) {
            m_badpixelListSelection->select(
                m_badpixelListModel.index(m_badpixelListModel.rowCount() - 1, 0),
                QItemSelectionModel::ClearAndSelect);
        }
    });
}

void MainWindow::deleteBadpixel()
{
    const QModelIndex selected = selectedBadpixel();
    if (selected.isValid()) {
        m_badpixelListModel.removeRow(selected.row());
    }
}

void MainWindow::clearBadpixel()
{
    const OneRedraw once(*this);
    forgetCurrentBadpixel();
    m_badpixelListModel.clearUserBadpixelList();
}

void MainWindow::forgetCurrentBadpixel()
{
    // User entries are removed row by row. When the table's current row goes, the table selects the
    // next one, and the magnifier would follow from entry to entry.
    m_badpixelListSelection->clearCurrentIndex();
}

void MainWindow::writeBadpixelList()
{
    QMessageBox question(this);
    question.setIcon(QMessageBox::Warning);
    question.setText(tr("This action will completely overwrite the user defined hotpixel list in "
                        "the EEPROM of the camera."));
    question.setInformativeText(tr("Do you want to continue?"));
    question.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    if (question.exec() == QMessageBox::Yes) {
        reportErrors([&] { m_badpixelListModel.writeBadpixelList(&m_camera); });
    }
}

void MainWindow::saveBadpixelList()
{
    exchangeFile(QFileDialog::getSaveFileName(this, tr("Save hotpixel list"), QDir::homePath(),
                                              tr("Text files (*.txt)")),
                 [this](const QString& fileName) { m_badpixelListModel.saveAsFile(fileName); });
}

void MainWindow::loadBadpixelList()
{
    exchangeFile(QFileDialog::getOpenFileName(this, tr("Open hotpixel list"), QDir::homePath(),
                                              tr("Text files (*.txt)")),
                 [this](const QString& fileName) {
                     const OneRedraw once(*this);
                     forgetCurrentBadpixel();
                     m_badpixelListModel.loadFromFile(fileName);
                 });
}

template <typename Exchange>
void MainWindow::exchangeFile(const QString& fileName, const Exchange& exchange)
{
    if (fileName.isEmpty()) {
        return;
    }
    try {
        exchange(fileName);
    } catch (const std::exception& error) {
        QMessageBox box(QMessageBox::Critical, QString(), QString::fromUtf8(error.what()),
                        QMessageBox::Ok);
        box.exec();
    }
}

void MainWindow::openDetectDialog()
{
    // A new one each time; the former ones stay children of the window, with their connections.
    m_detectionDialogue = new DetectionDialogue(this);
    connect(m_detectionDialogue, &DetectionDialogue::startDetect, this,
            &MainWindow::startDetectingBadpixel);
    connect(m_detectionDialogue, &DetectionDialogue::stopDetect, this,
            [this] { stopDetection(tr("Detection stopped.")); });
    connect(&m_badpixelListModel, &BadpixelListModel::pixelAdded, m_detectionDialogue,
            &DetectionDialogue::addDetectedPixel);
    m_detectionDialogue->open();
}

void MainWindow::startDetectingBadpixel(bool clear, int threshold)
{
    if (clear) {
        clearBadpixel();
    }
    m_detection.start(clear, threshold);
}

void MainWindow::detectBadpixel()
{
    m_detection.evaluate(m_camera.colorMode());
}

// Frames of two cameras must never meet in one run, nor may a run wait for a camera that is gone.
void MainWindow::stopDetection(const QString& reason)
{
    m_detection.cancel();
    if (m_detectionDialogue != nullptr && m_detectionDialogue->isRunning()) {
        m_detectionDialogue->abortDetect();
        m_detectionDialogue->setMessage(reason);
    }
}

void MainWindow::connectDetectionRun()
{
    connect(&m_detection, &DetectionRun::progressed, this, [this](int percent) {
        if (m_detectionDialogue != nullptr) {
            m_detectionDialogue->updateProgress(percent);
        }
        emit detectionProgress(percent);
    });
    connect(&m_detection, &DetectionRun::detectionFinished, this, &MainWindow::detectionFinished);
    connect(&m_detection, &DetectionRun::foundWithoutLimit, this, [this](int count) {
        if (m_detectionDialogue != nullptr) {
            m_detectionDialogue->addDetectedPixel(count);
        }
    });
    connect(&m_detection, &DetectionRun::failed, this, [this](const QString& text) {
        showMessage(text);
        if (m_detectionDialogue != nullptr) {
            m_detectionDialogue->setMessage(tr("%1 Please restart detection.").arg(text));
        }
    });
    connect(&m_detection, &DetectionRun::finished, this, [this] {
        if (m_detectionDialogue != nullptr) {
            m_detectionDialogue->finishDetect();
        }
    });
}

void MainWindow::showCameraListContextMenu(QPoint /*pos*/)
{
    QMenu menu(this);
    menu.addActions({action(Command::Open), action(Command::Close)});
    menu.exec(QCursor::pos());
}

void MainWindow::showBadpixelListContextMenu(QPoint /*pos*/)
{
    QMenu menu(this);
    menu.addAction(action(Command::Add));
    if (selectedBadpixel().isValid()) {
        menu.addAction(action(Command::Delete));
    }
    if (m_badpixelListModel.rowCount() > m_badpixelListModel.factoryCount()) {
        menu.addAction(action(Command::Clear));
    }
    menu.exec(QCursor::pos());
}

void MainWindow::openHelpUsageWindow()
{
    const auto keys = [this](Command command) {
        return action(command)->shortcut().toString(QKeySequence::NativeText);
    };
    QMessageBox box(QMessageBox::NoIcon, tr("Usage"),
                    tr("Vorn Hotpixel Editor - Usage\n\n"
                       "Navigation:\n\n"
                       "Right Mouse Button: Drag to move image\n"
                       "Arrow Keys: Click once into Magnifier to move focus pixel by pixel\n\n"
                       "Shortcuts:\n\n"
                       "%1\t Add a hotpixel to the list\n"
                       "%2\t Removes a hotpixel from the list\n")
                        .arg(keys(Command::Add), keys(Command::Delete)),
                    QMessageBox::Close, this, FixedSizeDialog);
    box.exec();
}

void MainWindow::openHelpAboutWindow()
{
    QMessageBox box(QMessageBox::NoIcon, tr("About"), tr("Vorn Hotpixel Editor\n2026\nQEM"),
                    QMessageBox::Close, this, FixedSizeDialog);
    box.setIconPixmap(QPixmap(QStringLiteral(":/res/QEM_LOGO_GREY_93_40.bmp")));
    box.exec();
}
