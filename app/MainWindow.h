// SPDX-License-Identifier: MIT
#pragma once

#include "camera/Camera.h"
#include "camera/CameraListModel.h"
#include "detection/DetectionRun.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/PixelclassDelegate.h"

#include <QDockWidget>
#include <QImage>
#include <QItemSelection>
#include <QMainWindow>
#include <QModelIndex>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

class CameraSdk;
class DetectionDialogue;
class MagnifierControl;
class QAction;
class QEvent;
class QItemSelectionModel;
class QKeyEvent;
class QLabel;
class QMenu;
class QTableView;
class QTimer;

namespace Ui {
class MainWindow;
}

/// The editor's one window: it owns the camera, the two lists, the views and the commands, and
/// joins them by signals and slots. None of them knows another.
///
/// The magnifier position, in image pixels, is the one cursor of the program: clicks into the
/// image, moves of the magnifier and the selection in the hotpixel list all go through
/// setMagnifierPosition(), and "&Add hotpixel" adds the pixel that it is on.
///
/// No exception leaves a slot: what goes wrong is shown in the status bar, or in a message box when
/// a list file can't be opened. GUI thread only.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// Builds the window, brings back the layout of the last run and lists the cameras of @p sdk,
    /// which must outlive the window.
    explicit MainWindow(CameraSdk& sdk, QWidget* parent = nullptr);

    /// Saves the layout. A camera that is open is closed.
    ~MainWindow() override;

signals:
    void cameraOpened(bool opened);
    void magnifierPositionChanged(QPoint position);
    void detectionFinished();
    void detectionProgress(int);

protected:
    void changeEvent(QEvent* event) override;

    /// Hands the keys that no widget wanted to the magnifier, which moves with the arrow keys.
    void keyPressEvent(QKeyEvent* event) override;

protected slots:
    // The frame of the window. Each dock is built anew by its slot, the former one is deleted.
    void createCameraListDock();
    void createBadpixelListDock();
    void createMagnifierDock();
    void createCameraSliderDock();
    void clearMagnifier();
    void onShowHideCameraListDock();
    void onShowHideBadpixelListDock();
    void onShowHideMagnifierDock();
    void onShowHideCameraSliderDock();
    void onMenuShow();

    // The camera.
    void openCamera();
    void closeCamera();
    void onCameraOpened(Camera*);
    void onCameraClosed();
    void onCameraReconnect();
    void onCameraDisconnect();
    void onSelectCameraRow(int row);
    void updateCameraActions();
    void onHotpixelCorrection();

    // Images and status.
    void newImage(QImage&);
    void updateStatus();
    void updateStatusPosition(QPoint position);
    void updateStatusBadpixel();
    void updateScaleFactor(int scale);
    void onZoomChanged(QAction* act);

    // The hotpixel list, its selection and the magnifier position.
    void setMagnifierPosition(QPoint position);
    void updateSelection(QItemSelection selected, QItemSelection deselected);
    void setSelection(QModelIndex topLeft, QModelIndex bottomRight);
    void addNewBadpixel();
    void deleteBadpixel();
    void clearBadpixel();
    void writeBadpixelList();
    void saveBadpixelList();
    void loadBadpixelList();

    // The detection run.
    void openDetectDialog();
    void startDetectingBadpixel(bool clear, int threshold);
    void detectBadpixel();

    // Context menus and help.
    void showCameraListContextMenu(QPoint pos);
    void showBadpixelListContextMenu(QPoint pos);
    void openHelpUsageWindow();
    void openHelpAboutWindow();

private:
    enum class Command : std::size_t {
        Open,
        Close,
        Highlight,
        Write,
        HotpixelCorrection,
        Add,
        Delete,
        Clear,
        Detect,
        Zoom1To1,
        Zoom2To1,
        Zoom4To1,
        Zoom1To2,
        Zoom1To4,
        ZoomToFit,
        Zoom,
        Usage,
        About,
        SaveList,
        LoadList,
        Exit,
        ViewCameraList,
        ViewBadpixelList,
        ViewMagnifier,
        ViewCameraProperties,
        Separator, // in menus and tool bars; the last, so it counts the actions too
    };

    using CommandList = std::vector<Command>;

    enum class StatusField : std::size_t {
        UserCount,
        FactoryCount,
        X,
        Y,
        Frames,
        Failed,
        FramesPerSecond,
        Count,
    };

    class OneRedraw;

    enum class Dock : std::size_t { CameraList, BadpixelList, Magnifier, CameraSlider, Count };

    void createActions();
    void createDocks();
    void createToolBar();
    void createStatusBar();
    void createMenus();
    QMenu* createMenu(const QString& objectName, const QString& title, const CommandList& commands);
    void createConnections();
    void connectDetectionRun();
    void restoreLayout();
    void saveLayout() const;

    [[nodiscard]] QAction* action(Command command) const;
    template <typename Bar>
    void addCommands(Bar* bar, const CommandList& commands);
    [[nodiscard]] QDockWidget* dock(Dock which) const;
    QDockWidget* buildDock(Dock which);
    void toggleDock(Dock which);
    void setStatus(StatusField field, const QString& text);
    void showMessage(const QString& text);
    template <typename Step>
    void reportErrors(const Step& step);

    [[nodiscard]] CameraItem selectedCamera() const;
    [[nodiscard]] QModelIndex selectedBadpixel() const;
    void forgetCurrentBadpixel();
    void stopDetection(const QString& reason);
    void setImageAreaVisible(bool visible);
    void showOpenCamera();
    void showNoCamera();
    void giveFocusTo(const QDockWidget* raised);
    void redraw();
    void enableDelete(const QModelIndex& selected);
    template <typename Exchange>
    void exchangeFile(const QString& fileName, const Exchange& exchange);

    std::unique_ptr<Ui::MainWindow> m_form;
    int m_scaleFactor = 1;
    double m_statusReset = 1111.0; // written whenever the status starts anew; nothing reads it
    Camera m_camera;
    CameraListModel m_cameraListModel;
    BadpixelListModel m_badpixelListModel;
    DetectionRun m_detection;
    std::unique_ptr<QItemSelectionModel> m_cameraListSelection;
    std::unique_ptr<QItemSelectionModel> m_badpixelListSelection;
    QPoint m_magnifierPosition;
    int m_redraws = 0; // asked for since the start
    bool m_redrawsHeld = false;
    std::array<QPointer<QDockWidget>, static_cast<std::size_t>(Dock::Count)> m_docks;
    QTableView* m_cameraListView = nullptr;
    QTableView* m_badpixelListView = nullptr;
    MagnifierControl* m_magnifierControl = nullptr;
    PixelclassDelegate m_pixelclassDelegate;
    std::array<QLabel*, static_cast<std::size_t>(StatusField::Count)> m_statusLabels = {};
    std::array<QAction*, static_cast<std::size_t>(Command::Separator)> m_actions = {};
    QTimer* m_statusTimer = nullptr;
    QMenu* m_zoomMenu = nullptr;
    DetectionDialogue* m_detectionDialogue = nullptr;
};
