#include "host/viewer/shell/CkMainWindow.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkChainFile.h"
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
#include "host/viewer/session/CkChainLoader.h"
#include "host/viewer/shell/CkPanelScrollArea.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
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
#include <QSet>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {
constexpr int kLeftWidth = 350;
constexpr int kRightWidth = 360;
constexpr int kLeastWidth = 200;
constexpr int kLogHeight = 150;
// Of the window's width, where it does not suffice for these and the views.
constexpr double kLargestShare = 0.3;
// What window managers put around a window, title bars of large fonts included.
constexpr QSize kFrame(16, 44);

QList<QAction*> leavesOf(const QMenu* menu) {
    QList<QAction*> leaves;
    for (QAction* action : menu->actions()) {
        if (action->menu() != nullptr) {
            leaves += leavesOf(action->menu());
        } else if (!action->isSeparator()) {
            leaves.append(action);
        }
    }
    return leaves;
}
} // namespace

CkMainWindow::CkMainWindow(QWidget* pParent) : QMainWindow(pParent) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("zuviewer"));
    setAcceptDrops(true);
    m_pArea = new CkViewArea(this);
    m_pCameraTabs = new QTabWidget;
    m_pCameraTabs->setDocumentMode(true);
    m_pCameraTabs->setUsesScrollButtons(true);
    m_pCameraTabs->setElideMode(Qt::ElideRight);
    m_pCameras = new CkCameraController(m_pArea, m_pCameraTabs, this);
    m_pStatusBar = new CkStatusBar(m_pArea, this);
    setStatusBar(m_pStatusBar);
    createDocks();
    createRecordings();
    createFileOpener();
    createFileMenu();
    m_menus.append(menuBar()->addMenu(tr("&Camera")));
    m_pCameraMenu = new CkCameraMenu(m_pCameras, m_menus.last(), this);
    createViewMenu();
    createPictureMenu();
    createChainMenu();
    createRecordingMenu();
    m_menus.append(menuBar()->addMenu(tr("&Plug-ins")));
    createHelpMenu();
    for (QMenu* menu : menuBar()->findChildren<QMenu*>()) {
        menu->setToolTipsVisible(true);
    }

    const auto openView = [this](CkChainable* pBlock) { openViewOn(pBlock); };
    connect(m_pChainPanel, &CkChainPanel::viewRequested, this, openView);
    connect(m_pChainPanel, &CkChainPanel::saveRequested, this, &CkMainWindow::saveChainWithDialog);
    connect(m_pChainPanel, &CkChainPanel::loadRequested, this, &CkMainWindow::openChainWithDialog);
    connect(m_pArea, &CkViewArea::viewAdded, this, &CkMainWindow::equipView);
    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkMainWindow::updateActions);
    connect(m_pArea, &CkViewArea::activeViewChanged, m_pCameraMenu, &CkCameraMenu::refresh);
    updateActions();

    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize available = screen != nullptr ? screen->availableSize() : QSize(1600, 1000);
    resize(QSize(1600, 1000).boundedTo(available - kFrame));
    const int share = int(kLargestShare * width());
    resizeDocks({m_docks[0], m_docks[1]}, {std::min(kLeftWidth, share), std::min(kRightWidth, share)},
                Qt::Horizontal);
    resizeDocks({m_pLogDock}, {kLogHeight}, Qt::Vertical);
    m_defaultState = saveState();
}

CkMainWindow::~CkMainWindow() {
    // Panels look at views and chains: the views go while the panels are still there.
    m_pArea->closeAllViews(false);
}

QDockWidget* CkMainWindow::addDock(const QString& sName, const QString& sTitle, QWidget* pWidget,
                                   Qt::DockWidgetArea area) {
    auto* dock = new QDockWidget(sTitle, this);
    dock->setObjectName(sName);
    dock->setWidget(pWidget);
    addDockWidget(area, dock);
    m_docks.append(dock);
    return dock;
}

void CkMainWindow::createDocks() {
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    addDock(QStringLiteral("dockCameras"), tr("Cameras"), new CkPanelScrollArea(m_pCameraTabs),
            Qt::LeftDockWidgetArea);
    m_pChainPanel = new CkChainPanel(m_pArea);
    addDock(QStringLiteral("dockChain"), tr("Processing Chain"), new CkPanelScrollArea(m_pChainPanel),
            Qt::RightDockWidgetArea);
    m_pLutPanel = new CkLutPanel(m_pArea);
    QDockWidget* const colours = addDock(QStringLiteral("dockColours"), tr("Colours"),
                                         new CkPanelScrollArea(m_pLutPanel), Qt::RightDockWidgetArea);
    m_pQualityPanel = new CkQualityPanel(m_pArea);
    QDockWidget* const quality = addDock(QStringLiteral("dockQuality"), tr("Quality"),
                                         new CkPanelScrollArea(m_pQualityPanel), Qt::RightDockWidgetArea);
    connect(quality, &QDockWidget::visibilityChanged, m_pQualityPanel, &CkQualityPanel::setInSight);
    connect(m_pQualityPanel, &CkQualityPanel::sightWanted, quality, [quality] {
        quality->show();
        quality->raise();
    });
    tabifyDockWidget(colours, quality);
    colours->raise();
    m_pLogPanel = new CkLogPanel;
    m_pLogDock = addDock(QStringLiteral("dockLog"), tr("Log"), m_pLogPanel, Qt::BottomDockWidgetArea);
    m_docks[0]->setMinimumWidth(kLeastWidth);
    m_docks[1]->setMinimumWidth(kLeastWidth);
}

void CkMainWindow::equipPluginMenu() {
    // Plug-ins do not know each other; the window gives out what is free.
    int number = 0;
    for (QMenu* menu : menu(IkAppDelegate::PluginMenu)->findChildren<QMenu*>()) {
        menu->setToolTipsVisible(true);
    }
    for (QAction* action : leavesOf(menu(IkAppDelegate::PluginMenu))) {
        if (action->shortcut().isEmpty() && number < 9) {
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key(Qt::Key_1 + number)));
            ++number;
        }
    }
}

void CkMainWindow::equipView(int iViewId) {
    CkMdiView* view = m_pArea->view(iViewId);
    // In a window of its own there is no menu, but its keys are wanted there, too.
    if (view != nullptr && view->isWindow()) {
        for (const QAction* action : menuBar()->actions()) {
            view->addActions(leavesOf(action->menu()));
        }
    }
}

void CkMainWindow::createRecordings() {
    m_pRecordings = new CkRecordingController(m_pArea, this);
    m_pStatusBar->addPermanentWidget(m_pRecordings->lamp());
    auto* centre = new QWidget(this);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_pArea, 1);
    column->addWidget(m_pRecordings->bar());
    setCentralWidget(centre);
    QDockWidget* dock = addDock(QStringLiteral("dockRecordings"), tr("Recordings"), m_pRecordings->panel(),
                                Qt::BottomDockWidgetArea);
    dock->hide();
    connect(m_pRecordings, &CkRecordingController::panelWanted, dock, &QWidget::show);
    connect(m_pRecordings, &CkRecordingController::openRequested, this, &CkMainWindow::openOrTell);
    connect(m_pCameras, &CkCameraController::cameraReady, this, &CkMainWindow::addRecordButton);
}

void CkMainWindow::addRecordButton(void* pCameraHandle) {
    CkCameraPanel* panel = m_pCameras->panel(pCameraHandle);
    if (panel == nullptr) {
        return;
    }
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_pRecordings->createRecordButton(
        pCameraHandle, [this, pCameraHandle] { m_pCameras->openView(pCameraHandle); }, panel));
    panel->addToolLayout(row);
}

QMenu* CkMainWindow::menu(int iMenuId) const {
    return m_menus.value(iMenuId);
}

bool CkMainWindow::openChainFile(const QString& sFileName, QString& sError) {
    CkCameraManager* manager = CkCameraManager::instance();
    QStringList known;
    for (const SkCameraInfo& info : manager->availableCameras()) {
        known.append(info.id);
    }
    const QList<void*> openBefore = manager->openedCameras();
    for (const QString& id : CkChainFile::camerasIn(sFileName, known)) {
        m_pCameras->openCamera(id, false);
    }
    CkChain* chain = CkChainLoader(sFileName, this).load(sError);
    if (chain != nullptr && CkChainFile::ends(chain).isEmpty()) {
        CkChainManager::instance()->closeChain(chain);
        chain = nullptr;
        sError = tr("%1: the chain is empty.").arg(sFileName);
    }
    if (chain == nullptr) {
        for (void* handle : manager->openedCameras()) {
            if (!openBefore.contains(handle)) {
                m_pCameras->closeCamera(handle);
            }
        }
        return false;
    }
    for (CkChainable* end : CkChainFile::shownEnds(chain, sFileName)) {
        m_pArea->addView(new CkImageView(end));
    }
    chain->start();
    QSet<void*> started;
    for (CkChainable* source : chain->imageSources()) {
        for (void* handle : qobject_cast<CkImageSource*>(source)->cameraHandles()) {
            if (!started.contains(handle)) {
                started.insert(handle);
                m_pCameras->start(handle);
            }
        }
    }
    addRecent(sFileName);
    return true;
}

CkChain* CkMainWindow::activeChain() const {
    const CkMdiView* view = m_pArea->activeView();
    const CkChainable* provider = view != nullptr ? view->dataProvider() : nullptr;
    return provider != nullptr ? provider->chain() : nullptr;
}

bool CkMainWindow::saveChain(const CkChain& chain, const QString& sFileName, QString& sError) {
    if (!CkChainFile::save(&chain, sFileName, sError)) {
        return false;
    }
    addRecent(sFileName);
    return true;
}

bool CkMainWindow::saveChainFile(const QString& sFileName, QString& sError) {
    const CkChain* chain = activeChain();
    sError = tr("The active view shows no chain.");
    return chain != nullptr && saveChain(*chain, sFileName, sError);
}

void CkMainWindow::openViewOn(CkChainable* pBlock) {
    if (pBlock != nullptr && pBlock->chain() != nullptr) {
        m_pArea->addView(new CkImageView(pBlock));
    }
}

void CkMainWindow::setFullScreen(bool bOn) {
    if (bOn != isFullScreen()) {
        setWindowState(windowState() ^ Qt::WindowFullScreen);
    }
    m_pFullScreenAction->setChecked(bOn);
}

void CkMainWindow::restoreLayout() {
    SkWindowLayout::load().applyTo(*this, *m_pArea);
    m_pFullScreenAction->setChecked(isFullScreen());
    m_pArrangeAction->setChecked(m_pArea->arrangesItself());
}

void CkMainWindow::saveLayout() const {
    SkWindowLayout::of(*this, *m_pArea, m_sessionScope).save();
}

void CkMainWindow::resetLayout() {
    restoreState(m_defaultState);
    m_pArea->setArrangesItself(true);
    m_pArrangeAction->setChecked(true);
}

void CkMainWindow::closeEvent(QCloseEvent* pEvent) {
    // Before the views close, which are part of the session.
    if (m_sessionScope != EkSessionScope::Nothing) {
        saveLayout();
    }
    if (!m_pArea->closeAllViews(true)) {
        pEvent->ignore();
        return;
    }
    emit closing();
    pEvent->accept();
}
