#include "host/viewer/shell/CkMainWindow.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/camera/CkCameraMenu.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/panels/log/CkLogPanel.h"
#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/panels/quality/CkQualityPanel.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/playback/CkRecordingController.h"
#include "host/viewer/playback/CkRecordingPanel.h"
#include "host/viewer/shell/CkChainFileController.h"
#include "host/viewer/shell/CkFileDropHandler.h"
#include "host/viewer/shell/CkFileMenu.h"
#include "host/viewer/shell/CkHelpMenu.h"
#include "host/viewer/shell/CkPanelDocks.h"
#include "host/viewer/shell/CkPanelScrollArea.h"
#include "host/viewer/shell/CkPictureMenu.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "host/viewer/shell/CkViewMenu.h"
#include "host/viewer/shell/MenuActions.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr QSize kInitialSize(1600, 1000);
// Largest decoration that window managers add, with a title bar in a large font.
constexpr QSize kFrame(16, 44);

} // namespace

CkMainWindow::CkMainWindow(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("zuviewer"));
    m_area = new CkViewArea(this);
    m_cameraTabs = new QTabWidget;
    m_cameraTabs->setDocumentMode(true);
    m_cameraTabs->setUsesScrollButtons(true);
    m_cameraTabs->setElideMode(Qt::ElideRight);
    m_cameras = new CkCameraController(m_area, m_cameraTabs, this);
    m_statusBar = new CkStatusBar(m_area, this);
    setStatusBar(m_statusBar);
    createDocks();
    createRecordings();
    createMenus();
    connectParts();
    updateActions();
    setInitialLayout();
}

CkMainWindow::~CkMainWindow() {
    // Views first: panels refer to views and chains.
    m_area->closeAllViews(false);
}

void CkMainWindow::createDocks() {
    m_docks = new CkPanelDocks(this);
    m_cameraDock = m_docks->add(QStringLiteral("dockCameras"), tr("Cameras"),
                                new CkPanelScrollArea(m_cameraTabs), Qt::LeftDockWidgetArea);
    m_chainPanel = new CkChainPanel(m_area);
    m_chainDock = m_docks->add(QStringLiteral("dockChain"), tr("Processing Chain"),
                               new CkPanelScrollArea(m_chainPanel), Qt::RightDockWidgetArea);
    m_lutPanel = new CkLutPanel(m_area);
    QDockWidget* colours = m_docks->add(QStringLiteral("dockColours"), tr("Colours"),
                                        new CkPanelScrollArea(m_lutPanel), Qt::RightDockWidgetArea);
    m_qualityPanel = new CkQualityPanel(m_area);
    QDockWidget* quality = m_docks->add(QStringLiteral("dockQuality"), tr("Quality"),
                                        new CkPanelScrollArea(m_qualityPanel), Qt::RightDockWidgetArea);
    connect(quality, &QDockWidget::visibilityChanged, m_qualityPanel, &CkQualityPanel::setShownByDock);
    connect(m_qualityPanel, &CkQualityPanel::raiseRequested, quality, [quality] {
        quality->show();
        quality->raise();
    });
    tabifyDockWidget(colours, quality);
    colours->raise();
    m_logPanel = new CkLogPanel;
    m_logDock = m_docks->add(QStringLiteral("dockLog"), tr("Log"), m_logPanel, Qt::BottomDockWidgetArea);
}

void CkMainWindow::createRecordings() {
    m_recordings = new CkRecordingController(m_area, this);
    m_statusBar->addPermanentWidget(m_recordings->recordingIndicator());
    auto* centre = new QWidget(this);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_area, 1);
    column->addWidget(m_recordings->bar());
    setCentralWidget(centre);
    QDockWidget* dock = m_docks->add(QStringLiteral("dockRecordings"), tr("Recordings"),
                                     m_recordings->panel(), Qt::BottomDockWidgetArea);
    dock->hide();
    connect(m_recordings, &CkRecordingController::showPanelRequested, dock, &QWidget::show);
}

void CkMainWindow::createMenus() {
    m_chainFiles = new CkChainFileController(m_area, m_cameras, this);
    m_fileOpener = new CkFileOpener(this);
    m_chainFiles->addFileKind(m_fileOpener);
    m_recordings->addFileKinds(m_fileOpener);
    // Order of IkAppDelegate::EkMenuId.
    m_menus.append(menuBar()->addMenu(tr("&File")));
    m_fileMenu = new CkFileMenu(m_menus.last(), m_fileOpener, m_chainFiles, this);
    m_menus.append(menuBar()->addMenu(tr("&Camera")));
    m_cameraMenu = new CkCameraMenu(m_cameras, m_menus.last(), this);
    m_menus.append(menuBar()->addMenu(tr("&View")));
    m_viewMenu = new CkViewMenu(m_menus.last(), m_area, m_docks, this);
    m_pictureMenu =
        new CkPictureMenu(menuBar()->addMenu(tr("P&icture")), m_area, m_qualityPanel->menuActions(), this);
    createChainMenu();
    createRecordingMenu();
    m_menus.append(menuBar()->addMenu(tr("&Plug-ins")));
    m_menus.append(menuBar()->addMenu(tr("&Help")));
    m_helpMenu = new CkHelpMenu(m_menus.last(), menuBar(), this);
    for (QMenu* menu : menuBar()->findChildren<QMenu*>()) {
        menu->setToolTipsVisible(true);
    }
}

void CkMainWindow::createChainMenu() {
    QMenu* menu = menuBar()->addMenu(tr("Chai&n"));
    menu->addMenu(m_chainPanel->addMenu());
    menu->addActions(m_chainPanel->menuActions());
}

void CkMainWindow::createRecordingMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Recording"));
    menu->setObjectName(QStringLiteral("menuRecording"));
    menu->addActions(m_recordings->menuActions());
    connect(menu, &QMenu::aboutToShow, m_recordings, &CkRecordingController::refresh);
}

void CkMainWindow::connectParts() {
    connect(m_cameras, &CkCameraController::cameraReady, this, &CkMainWindow::addRecordButton);
    connect(m_recordings, &CkRecordingController::openRequested, m_fileMenu, &CkFileMenu::openOrReport);
    connect(new CkFileDropHandler(this), &CkFileDropHandler::filesDropped, m_fileMenu,
            [this](const QStringList& files) {
                for (const QString& file : files) {
                    m_fileMenu->openOrReport(file);
                }
            });
    connect(m_chainPanel, &CkChainPanel::viewRequested, this, &CkMainWindow::openView);
    connect(m_chainPanel, &CkChainPanel::saveRequested, m_fileMenu, &CkFileMenu::saveChainWithDialog);
    connect(m_chainPanel, &CkChainPanel::loadRequested, m_fileMenu, &CkFileMenu::openChainWithDialog);
    connect(m_pictureMenu, &CkPictureMenu::viewChanged, m_lutPanel, &CkLutPanel::refresh);
    connect(m_viewMenu, &CkViewMenu::fullScreenRequested, this, &CkMainWindow::setFullScreen);
    connect(m_viewMenu, &CkViewMenu::logSearchRequested, this, [this] {
        m_logDock->show();
        m_logPanel->focusSearch();
    });
    connect(m_area, &CkViewArea::viewAdded, this, &CkMainWindow::addMenuActions);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkMainWindow::updateActions);
    connect(m_area, &CkViewArea::activeViewChanged, m_cameraMenu, &CkCameraMenu::refresh);
}

void CkMainWindow::setInitialLayout() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize available = screen != nullptr ? screen->availableSize() : kInitialSize;
    resize(kInitialSize.boundedTo(available - kFrame));
    m_docks->setInitialLayout(m_cameraDock, m_chainDock, m_logDock);
}

void CkMainWindow::assignPluginShortcuts() {
    // Plug-ins do not know each other, so the window assigns their shortcuts.
    QMenu* plugins = menu(IkAppDelegate::PluginMenu);
    for (QMenu* submenu : plugins->findChildren<QMenu*>()) {
        submenu->setToolTipsVisible(true);
    }
    MenuActions::assignShortcuts(plugins);
}

void CkMainWindow::addMenuActions(int viewId) {
    CkMdiView* view = m_area->view(viewId);
    // A view in a window of its own has no menu bar, but the shortcuts have to work there, too.
    if (view != nullptr && view->isWindow()) {
        for (const QAction* action : menuBar()->actions()) {
            view->addActions(MenuActions::leavesOf(action->menu()));
        }
    }
}

void CkMainWindow::addRecordButton(void* camera) {
    CkCameraPanel* panel = m_cameras->panel(camera);
    if (panel == nullptr) {
        return;
    }
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_recordings->createRecordButton(
        camera, [this, camera] { m_cameras->openView(camera); }, panel));
    panel->addToolLayout(row);
}

void CkMainWindow::openView(CkChainable* block) {
    if (block != nullptr && block->chain() != nullptr) {
        m_area->addView(new CkImageView(block));
    }
}

void CkMainWindow::updateActions() {
    m_fileMenu->refresh();
    m_viewMenu->refresh();
    m_pictureMenu->refresh();
}

void CkMainWindow::setFullScreen(bool on) {
    if (on != isFullScreen()) {
        setWindowState(windowState() ^ Qt::WindowFullScreen);
    }
    m_viewMenu->setFullScreenChecked(on);
}

void CkMainWindow::restoreLayout() {
    SkWindowLayout::load().applyTo(*this, *m_area);
    m_viewMenu->setFullScreenChecked(isFullScreen());
    m_viewMenu->refresh();
}

void CkMainWindow::saveLayout() const {
    SkWindowLayout::of(*this, *m_area, m_sessionScope).save();
}

void CkMainWindow::closeEvent(QCloseEvent* event) {
    // Before the views are closed, which are part of the session.
    if (m_sessionScope != EkSessionScope::Nothing) {
        saveLayout();
    }
    if (!m_area->closeAllViews(true)) {
        event->ignore();
        return;
    }
    emit closing();
    event->accept();
}
