// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/RowHeader.h"
#include "camera/Camera.h"
#include "res/Resources.h"
#include "ui_MainWindow.h"
#include "view/DisplayWidget.h"
#include "view/Magnifier.h"
#include "view/MagnifierControl.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterBlockWidget.h"
#include "widgets/ParameterWidget.h"

#include <QAction>
#include <QEvent>
#include <QHeaderView>
#include <QIcon>
#include <QItemSelectionModel>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int RefreshMsec = 1000;
constexpr int LayoutVersion = 0;
constexpr QLatin1String GeometryKey("geometry");
constexpr QLatin1String StateKey("state");
constexpr int PixelclassColumn = 2;
constexpr int BadpixelColumnWidth = 40;
constexpr int DockWidth = 330; // room for all columns of the camera list

struct DockRow
{
    const char* objectName; // the saved layout finds the dock by it
    const char* title;
    Qt::DockWidgetAreas areas;
};

constexpr Qt::DockWidgetAreas BesideTheImage = Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea;

/// In the order of MainWindow::Dock, which is the order from top to bottom.
constexpr DockRow DockRows[] = {
    {"CameraListDock", QT_TRANSLATE_NOOP("MainWindow", "Camera list"), BesideTheImage},
    {"BadpixelListDock", QT_TRANSLATE_NOOP("MainWindow", "Hotpixel list"), BesideTheImage},
    {"MagnifierDock", QT_TRANSLATE_NOOP("MainWindow", "Magnifier"), BesideTheImage},
    {"CameraSliderDock", QT_TRANSLATE_NOOP("MainWindow", "Camera properties"),
     Qt::AllDockWidgetAreas},
};

struct StatusRow
{
    const char* objectName;
    int minimumWidth;
};

/// In the order of MainWindow::StatusField, which is the order from left to right.
constexpr StatusRow StatusRows[] = {
    {"statusUserCount", 40}, {"statusFactoryCount", 40}, {"statusX", 44},   {"statusY", 44},
    {"statusFrames", 64},    {"statusFailed", 64},       {"statusFps", 72},
};

/// The settings group that keeps the layout between two runs.
class LayoutSettings : public QSettings
{
public:
    LayoutSettings()
        : QSettings(QStringLiteral("QEM"), QStringLiteral("Vorn"))
    {
        beginGroup(QStringLiteral("VornHotpixelEditor"));
    }
};

/// What the two lists have in common. The owner of @p parent owns the view.
QTableView* makeListView(const char* objectName, QAbstractItemModel& model,
                         QItemSelectionModel& selection, QWidget* parent)
{
    auto* const view = new QTableView(parent);
    view->setObjectName(QLatin1String(objectName));
    view->setVerticalHeader(new RowHeader(view));
    // Before the model is there: switching sorting on would sort it at once.
    view->setSortingEnabled(true);
    view->setModel(&model);
    const std::unique_ptr<QItemSelectionModel> ownSelection(view->selectionModel());
    view->setSelectionModel(&selection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setTabKeyNavigation(false); // Tab leads on to the next control, the arrows between cells
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->verticalHeader()->setDefaultSectionSize(view->verticalHeader()->minimumSectionSize());
    view->verticalHeader()->hide();
    view->horizontalHeader()->setSortIndicatorShown(false);
    view->horizontalHeader()->setHighlightSections(false);
    view->horizontalHeader()->setStretchLastSection(true);
    return view;
}

} // namespace

MainWindow::MainWindow(CameraSdk& sdk, QWidget* parent)
    : QMainWindow(parent)
    , m_form(std::make_unique<Ui::MainWindow>())
    , m_camera(sdk)
    , m_cameraListModel(sdk, RefreshMsec)
    , m_detection(m_badpixelListModel)
{
    res::load();
    m_form->setupUi(this);
    m_form->gridLayout->setContentsMargins(0, 0, 0, 0);
    m_cameraListSelection = std::make_unique<QItemSelectionModel>(&m_cameraListModel);
    m_badpixelListSelection = std::make_unique<QItemSelectionModel>(&m_badpixelListModel);
    m_form->display->setSelectionModel(m_badpixelListSelection.get());
    m_form->display->setModel(&m_badpixelListModel);
    createActions();
    createDocks();
    createToolBar();
    createStatusBar();
    createMenus();
    createConnections();
    restoreLayout();
    dock(Dock::CameraList)->raise();
    m_cameraListModel.updateList();
    setImageAreaVisible(false);
}

MainWindow::~MainWindow()
{
    saveLayout();
    // The docks are destroyed after this object's own part, when its slots are gone.
    if (const QDockWidget* const magnifier = dock(Dock::Magnifier)) {
        disconnect(magnifier, nullptr, this, nullptr);
    }
    m_cameraListSelection.reset();
    m_badpixelListSelection.reset();
    m_form.reset();
}

void MainWindow::createActions()
{
    enum State { Enabled = 1, Checkable = 2, Checked = 4, Invisible = 8 };
    struct ActionRow
    {
        Command command;
        const char* objectName;
        const char* text;
        const char* icon;
        int state;
        void (MainWindow::*triggered)() = nullptr;
        QKeySequence shortcut = {};
    };
    const ActionRow rows[] = {
        {Command::Open, "actionOpen", QT_TR_NOOP("&Open camera"), "openplay", 0,
         &MainWindow::openCamera},
        {Command::Close, "actionClose", QT_TR_NOOP("&Close camera"), "camclose", 0,
         &MainWindow::closeCamera},
        {Command::Highlight, "actionHighlight", QT_TR_NOOP("&Highlight"), "highlight",
         Enabled | Checkable | Checked},
        {Command::Write, "actionWrite", QT_TR_NOOP("&Write hotpixel"), "writeBadpixel", 0,
         &MainWindow::writeBadpixelList},
        {Command::HotpixelCorrection, "actionHotpixelCorrection", QT_TR_NOOP("Hotpixel correction"),
         "badpixelCorrection", Checkable, &MainWindow::onHotpixelCorrection},
        {Command::Add, "actionAdd", QT_TR_NOOP("&Add hotpixel"), "addBadpixel", 0,
         &MainWindow::addNewBadpixel, Qt::CTRL | Qt::Key_A},
        {Command::Delete, "actionDelete", QT_TR_NOOP("&Delete hotpixel"), "deleteBadpixel", 0,
         &MainWindow::deleteBadpixel, Qt::Key_Delete},
        {Command::Clear, "actionClear", QT_TR_NOOP("Clear user hotpixel"), nullptr, Enabled,
         &MainWindow::clearBadpixel},
        {Command::Detect, "actionDetect", QT_TR_NOOP("Detec&t hotpixel"), "detectBadpixel", 0,
         &MainWindow::openDetectDialog},
        {Command::Zoom1To1, "actionZoom1To1", QT_TR_NOOP("1:1"), nullptr,
         Enabled | Checkable | Checked},
        {Command::Zoom2To1, "actionZoom2To1", QT_TR_NOOP("2:1"), nullptr, Enabled | Checkable},
        {Command::Zoom4To1, "actionZoom4To1", QT_TR_NOOP("4:1"), nullptr, Enabled | Checkable},
        {Command::Zoom1To2, "actionZoom1To2", QT_TR_NOOP("1:2"), nullptr, Enabled | Checkable},
        {Command::Zoom1To4, "actionZoom1To4", QT_TR_NOOP("1:4"), nullptr, Enabled | Checkable},
        {Command::ZoomToFit, "actionZoomToFit", QT_TR_NOOP("To fit"), nullptr,
         Checkable | Invisible},
        {Command::Zoom, "actionZoom", QT_TR_NOOP("1:1"), "zoom", 0},
        {Command::Usage, "actionUsage", QT_TR_NOOP("&Usage"), "help", Enabled,
         &MainWindow::openHelpUsageWindow},
        {Command::About, "actionAbout", QT_TR_NOOP("&About"), "information", Enabled,
         &MainWindow::openHelpAboutWindow},
        {Command::SaveList, "actionSaveList", QT_TR_NOOP("&Save hotpixel list"), "writeList",
         Enabled, &MainWindow::saveBadpixelList},
        {Command::LoadList, "actionLoadList", QT_TR_NOOP("&Load hotpixel list"), "openList",
         Enabled, &MainWindow::loadBadpixelList},
        {Command::Exit, "actionExit", QT_TR_NOOP("E&xit"), "exit", Enabled},
        {Command::ViewCameraList, "actionViewCameraList", QT_TR_NOOP("Camera list"), "cameraList",
         Enabled | Checkable | Checked, &MainWindow::onShowHideCameraListDock},
        {Command::ViewBadpixelList, "actionViewBadpixelList", QT_TR_NOOP("Hotpixel list"),
         "badpixelList", Enabled | Checkable | Checked, &MainWindow::onShowHideBadpixelListDock},
        {Command::ViewMagnifier, "actionViewMagnifier", QT_TR_NOOP("Magnifier"), "window_view",
         Enabled | Checkable | Checked, &MainWindow::onShowHideMagnifierDock},
        {Command::ViewCameraProperties, "actionViewCameraProperties",
         QT_TR_NOOP("Camera properties"), "cameraproperties", Enabled | Checkable | Checked,
         &MainWindow::onShowHideCameraSliderDock},
    };
    for (const ActionRow& row : rows) {
        auto* const made = new QAction(tr(row.text), this);
        m_actions[static_cast<std::size_t>(row.command)] = made;
        made->setObjectName(QLatin1String(row.objectName));
        if (row.icon != nullptr) {
            made->setIcon(QIcon(QStringLiteral(":/res/%1.png").arg(QLatin1String(row.icon))));
        }
        made->setShortcut(row.shortcut);
        if (!row.shortcut.isEmpty()) {
            addAction(made); // which works with a tool bar that is hidden, too
        }
        made->setCheckable((row.state & Checkable) != 0);
        made->setChecked((row.state & Checked) != 0);
        made->setEnabled((row.state & Enabled) != 0);
        made->setVisible((row.state & Invisible) == 0);
        if (row.triggered != nullptr) {
            connect(made, &QAction::triggered, this, row.triggered);
        }
    }
    connect(action(Command::Exit), &QAction::triggered, this, &QWidget::close);
}

void MainWindow::createDocks()
{
    createCameraListDock();
    createBadpixelListDock();
    createMagnifierDock();
    createCameraSliderDock();
    tabifyDockWidget(dock(Dock::CameraList), dock(Dock::BadpixelList));
    resizeDocks({dock(Dock::CameraList)}, {DockWidth}, Qt::Horizontal);
    connect(this, &QMainWindow::tabifiedDockWidgetActivated, this, &MainWindow::giveFocusTo);
}

// A list behind another tab must not go on taking the keys: nobody sees what they do there.
void MainWindow::giveFocusTo(const QDockWidget* raised)
{
    if (QWidget* const former = focusWidget()) {
        former->clearFocus(); // where the raised one takes no focus, such as disabled controls
    }
    raised->widget()->setFocus();
}

QDockWidget* MainWindow::buildDock(Dock which)
{
    const DockRow& row = DockRows[static_cast<std::size_t>(which)];
    delete dock(which);
    auto* const made = new QDockWidget(tr(row.title), this);
    made->setObjectName(QLatin1String(row.objectName));
    made->setAllowedAreas(row.areas);
    addDockWidget(Qt::LeftDockWidgetArea, made);
    m_docks[static_cast<std::size_t>(which)] = made;
    return made;
}

void MainWindow::createCameraListDock()
{
    QDockWidget* const built = buildDock(Dock::CameraList);
    m_cameraListView =
        makeListView("CameraListView", m_cameraListModel, *m_cameraListSelection, built);
    m_cameraListView->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(m_cameraListView, &QWidget::customContextMenuRequested, this,
            &MainWindow::showCameraListContextMenu);
    connect(m_cameraListView, &QAbstractItemView::doubleClicked, this, &MainWindow::openCamera);
    built->setWidget(m_cameraListView);
}

void MainWindow::createBadpixelListDock()
{
    QDockWidget* const built = buildDock(Dock::BadpixelList);
    m_badpixelListView =
        makeListView("BadpixelListView", m_badpixelListModel, *m_badpixelListSelection, built);
    m_badpixelListView->horizontalHeader()->setDefaultSectionSize(BadpixelColumnWidth);
    m_badpixelListView->setItemDelegateForColumn(PixelclassColumn, &m_pixelclassDelegate);
    connect(m_badpixelListView, &QWidget::customContextMenuRequested, this,
            &MainWindow::showBadpixelListContextMenu);
    built->setWidget(m_badpixelListView);
}

void MainWindow::createMagnifierDock()
{
    QDockWidget* const built = buildDock(Dock::Magnifier);
    m_magnifierControl = new MagnifierControl(built);
    m_magnifierControl->setObjectName(QStringLiteral("MagnifierControl"));
    Magnifier* const magnifier = m_magnifierControl->magnifier();
    connect(built, &QObject::destroyed, this, &MainWindow::clearMagnifier);
    connect(this, &MainWindow::magnifierPositionChanged, magnifier, &Magnifier::setPosition);
    connect(magnifier, &Magnifier::changePosition, this, &MainWindow::setMagnifierPosition);
    m_magnifierControl->setFocusProxy(magnifier);
    built->setWidget(m_magnifierControl);
    if (m_camera.isOpen()) {
        magnifier->setPosition(m_magnifierPosition);
    }
}

void MainWindow::createCameraSliderDock()
{
    QDockWidget* const built = buildDock(Dock::CameraSlider);
    auto* const block = new ParameterBlockWidget(built);
    block->setObjectName(QStringLiteral("ParameterBlockWidget"));
    block->setEnabled(false);
    connect(block->framerate(), &DoubleParameterWidget::valueChanged, &m_camera,
            &Camera::setFramerate);
    connect(&m_camera, &Camera::framerateChanged, block->framerate(),
            &DoubleParameterWidget::setParam);
    connect(block->exposure(), &DoubleParameterWidget::valueChanged, &m_camera,
            &Camera::setExposure);
    connect(&m_camera, &Camera::exposureChanged, block->exposure(),
            &DoubleParameterWidget::setParam);
    connect(block->mastergain(), &ParameterWidget::valueChanged, &m_camera, &Camera::setMastergain);
    connect(&m_camera, &Camera::mastergainChanged, block->mastergain(), &ParameterWidget::setParam);
    connect(this, &MainWindow::cameraOpened, block, &QWidget::setEnabled);
    built->setWidget(block);
}

void MainWindow::clearMagnifier()
{
    m_magnifierControl = nullptr;
}

QDockWidget* MainWindow::dock(Dock which) const
{
    return m_docks[static_cast<std::size_t>(which)];
}

void MainWindow::toggleDock(Dock which)
{
    if (QDockWidget* const toggled = dock(which)) {
        toggled->setVisible(toggled->isHidden());
    }
}

void MainWindow::onShowHideCameraListDock()
{
    toggleDock(Dock::CameraList);
}

void MainWindow::onShowHideBadpixelListDock()
{
    toggleDock(Dock::BadpixelList);
}

void MainWindow::onShowHideMagnifierDock()
{
    toggleDock(Dock::Magnifier);
}

void MainWindow::onShowHideCameraSliderDock()
{
    toggleDock(Dock::CameraSlider);
}

void MainWindow::onMenuShow()
{
    for (const auto& [command, which] :
         {std::pair(Command::ViewCameraList, Dock::CameraList),
          std::pair(Command::ViewBadpixelList, Dock::BadpixelList),
          std::pair(Command::ViewMagnifier, Dock::Magnifier),
          std::pair(Command::ViewCameraProperties, Dock::CameraSlider)}) {
        action(command)->setChecked(dock(which) != nullptr && !dock(which)->isHidden());
    }
}

QAction* MainWindow::action(Command command) const
{
    return m_actions[static_cast<std::size_t>(command)];
}

template <typename Bar>
void MainWindow::addCommands(Bar* bar, const CommandList& commands)
{
    for (const Command command : commands) {
        if (command == Command::Separator) {
            bar->addSeparator();
        } else {
            bar->addAction(action(command));
        }
    }
}

void MainWindow::createToolBar()
{
    m_zoomMenu = new QMenu(this);
    m_zoomMenu->setObjectName(QStringLiteral("zoomMenu"));
    addCommands(m_zoomMenu, {Command::Zoom1To4, Command::Zoom1To2, Command::Zoom1To1,
                             Command::Zoom2To1, Command::Zoom4To1, Command::ZoomToFit});
    action(Command::Zoom)->setMenu(m_zoomMenu);

    addCommands(m_form->mainToolBar,
                {Command::Open, Command::Close, Command::Separator, Command::HotpixelCorrection,
                 Command::Detect, Command::Write, Command::Add, Command::Delete, Command::Separator,
                 Command::Highlight, Command::Zoom});

    // The zoom action does nothing by itself, so its whole button opens the menu; and it is the one
    // button whose text says something that its icon does not.
    auto* const zoomButton =
        qobject_cast<QToolButton*>(m_form->mainToolBar->widgetForAction(action(Command::Zoom)));
    zoomButton->setPopupMode(QToolButton::InstantPopup);
    zoomButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

void MainWindow::createStatusBar()
{
    for (std::size_t field = 0; field < std::size(StatusRows); ++field) {
        auto* const label = new QLabel(m_form->statusBar);
        label->setObjectName(QLatin1String(StatusRows[field].objectName));
        label->setMinimumWidth(StatusRows[field].minimumWidth);
        m_form->statusBar->addPermanentWidget(label);
        m_statusLabels[field] = label;
    }
    m_statusTimer = new QTimer(this);
    m_statusTimer->setObjectName(QStringLiteral("statusTimer"));
}

QMenu* MainWindow::createMenu(const QString& objectName, const QString& title,
                              const CommandList& commands)
{
    QMenu* const menu = m_form->menuBar->addMenu(title);
    menu->setObjectName(objectName);
    addCommands(menu, commands);
    return menu;
}

void MainWindow::createMenus()
{
    createMenu(QStringLiteral("menuFile"), tr("&File"),
               {Command::Open, Command::Close, Command::Separator, Command::SaveList,
                Command::LoadList, Command::Separator, Command::Exit});
    const QMenu* const view =
        createMenu(QStringLiteral("menuView"), tr("&View"),
                   {Command::ViewCameraList, Command::ViewBadpixelList, Command::ViewMagnifier,
                    Command::ViewCameraProperties, Command::Separator, Command::Highlight});
    createMenu(QStringLiteral("menuHelp"), tr("&Help"),
               {Command::Usage, Command::Separator, Command::About});
    connect(view, &QMenu::aboutToShow, this, &MainWindow::onMenuShow);
}

void MainWindow::createConnections()
{
    DisplayWidget* const display = m_form->display;
    connect(action(Command::Highlight), &QAction::toggled, display, &DisplayWidget::setHighlight);
    connect(m_zoomMenu, &QMenu::triggered, this, &MainWindow::onZoomChanged);

    // The order matters: the lists know of the camera before the window and its actions do.
    connect(&m_camera, &Camera::cameraOpened, &m_cameraListModel, &CameraListModel::setOpenCamera);
    connect(&m_camera, &Camera::cameraOpened, &m_badpixelListModel,
            &BadpixelListModel::getBadpixelList);
    connect(&m_camera, &Camera::cameraOpened, this, &MainWindow::onCameraOpened);
    connect(&m_camera, &Camera::cameraOpened, &m_cameraListModel, &CameraListModel::updateList);
    connect(&m_camera, &Camera::cameraClosed, &m_cameraListModel,
            &CameraListModel::clearOpenCamera);
    connect(&m_camera, &Camera::cameraClosed, &m_cameraListModel, &CameraListModel::updateList);
    connect(&m_camera, &Camera::cameraClosed, &m_badpixelListModel,
            &BadpixelListModel::clearBadpixelList);
    connect(&m_camera, &Camera::cameraClosed, this, &MainWindow::onCameraClosed);
    connect(&m_camera, &Camera::newImage, this, &MainWindow::newImage);
    connect(&m_camera, &Camera::displayError, m_form->statusBar, &QStatusBar::showMessage);
    // At once: the notice of a firmware upload comes right before a call that takes many seconds.
    connect(&m_camera, &Camera::displayError, m_form->statusBar,
            [this] { m_form->statusBar->repaint(); });
    connect(&m_camera, &Camera::cameraNewDevice, &m_cameraListModel, &CameraListModel::updateList);
    connect(&m_camera, &Camera::cameraRemovedDevice, &m_cameraListModel,
            &CameraListModel::updateList);
    connect(&m_camera, &Camera::cameraRemoved, this, &MainWindow::onCameraDisconnect);
    connect(&m_camera, &Camera::cameraReconnect, this, &MainWindow::onCameraReconnect);

    connect(&m_cameraListModel, &CameraListModel::somethingChanged, this,
            &MainWindow::updateCameraActions);
    connect(&m_cameraListModel, &CameraListModel::rowToSelect, this,
            &MainWindow::onSelectCameraRow);
    // Sorting puts another camera under the selection, which stays with its row.
    connect(&m_cameraListModel, &QAbstractItemModel::layoutChanged, this,
            &MainWindow::updateCameraActions);
    connect(m_cameraListSelection.get(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::updateCameraActions);
    connect(m_badpixelListSelection.get(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::updateSelection);
    connect(&m_badpixelListModel, &QAbstractItemModel::dataChanged, this,
            &MainWindow::setSelection);
    // Sorting puts another entry under the selection, which stays with its row.
    connect(&m_badpixelListModel, &QAbstractItemModel::layoutChanged, this, [this] {
        enableDelete(selectedBadpixel());
        redraw();
    });

    connect(display, &DisplayWidget::positionClicked, this, &MainWindow::setMagnifierPosition);
    connect(display, &DisplayWidget::scaleChanged, this, &MainWindow::updateScaleFactor);
    connect(this, &MainWindow::magnifierPositionChanged, this, &MainWindow::updateStatusPosition);
    connect(this, &MainWindow::magnifierPositionChanged, display,
            &DisplayWidget::updateMagnifierPosition);
    connect(m_statusTimer, &QTimer::timeout, this, &MainWindow::updateStatus);
    connectDetectionRun();
}

void MainWindow::restoreLayout()
{
    const LayoutSettings settings;
    restoreGeometry(settings.value(GeometryKey).toByteArray());
    restoreState(settings.value(StateKey).toByteArray(), LayoutVersion);
}

void MainWindow::saveLayout() const
{
    LayoutSettings settings;
    settings.setValue(GeometryKey, saveGeometry());
    settings.setValue(StateKey, saveState(LayoutVersion));
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        m_form->retranslateUi(this);
    }
}

void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (m_magnifierControl != nullptr) {
        m_magnifierControl->magnifier()->keyPressEvent(event);
    }
}
