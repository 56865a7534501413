#include "host/viewer/panels/camera/CkCameraMenu.h"

#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "zuCore/CkCameraManager.h"

#include <QAction>
#include <QMenu>
#include <QSettings>

namespace {

// Not deleted at once: the action being triggered may be among them.
void clearLater(QMenu* menu) {
    for (QAction* action : menu->actions()) {
        menu->removeAction(action);
        action->setShortcut({});
        action->deleteLater();
    }
}

} // namespace

CkCameraMenu::CkCameraMenu(CkCameraController* pCameras, QMenu* pMenu, QObject* pParent)
    : QObject(pParent), m_pCameras(pCameras) {
    pMenu->setToolTipsVisible(true);
    m_pOpenMenu = pMenu->addMenu(tr("&Open"));
    m_pOpenMenu->setObjectName(QStringLiteral("menuOpenCamera"));
    pMenu->addSeparator();
    m_pStartAction = pMenu->addAction(tr("&Start"), this, &CkCameraMenu::toggleAcquisition);
    m_pStartAction->setObjectName(QStringLiteral("actStartCamera"));
    m_pStartAction->setShortcut(Qt::Key_F5);
    m_pPauseAction = pMenu->addAction(tr("&Pause"), this, [this] {
        if (CkCameraPanel* panel = m_pCameras->panel(m_pCameras->currentCamera())) {
            panel->setPaused(!panel->isPaused());
            refresh();
        }
    });
    m_pPauseAction->setObjectName(QStringLiteral("actPauseCamera"));
    m_pPauseAction->setShortcut(Qt::Key_F6);
    m_pPauseAction->setCheckable(true);
    m_pStepAction = pMenu->addAction(tr("S&ingle Step"), this, [this] {
        if (CkCameraPanel* panel = m_pCameras->panel(m_pCameras->currentCamera())) {
            panel->step();
            refresh();
        }
    });
    m_pStepAction->setObjectName(QStringLiteral("actStepCamera"));
    m_pStepAction->setShortcut(Qt::Key_F7);
    m_pViewAction = pMenu->addAction(tr("&New Picture View"), this,
                                     [this] { m_pCameras->openView(m_pCameras->currentCamera()); });
    m_pViewAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    pMenu->addSeparator();
    m_pCloseAction = pMenu->addAction(tr("Close &Current"), this,
                                      [this] { m_pCameras->closeCamera(m_pCameras->currentCamera()); });
    m_pCloseAction->setObjectName(QStringLiteral("actCloseCamera"));
    m_pCloseAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W));
    m_pCloseMenu = pMenu->addMenu(tr("C&lose"));
    m_pCloseMenu->setObjectName(QStringLiteral("menuCloseCamera"));
    m_pUnplugMenu = pMenu->addMenu(tr("&Unplug"));
    m_pUnplugMenu->setObjectName(QStringLiteral("menuUnplugCamera"));
    m_pPlugInMenu = pMenu->addMenu(tr("Plu&g In"));
    m_pPlugInMenu->setObjectName(QStringLiteral("menuPlugInCamera"));
    pMenu->addSeparator();
    addReopenAction(pMenu);

    CkCameraManager* manager = CkCameraManager::instance();
    connect(manager, &CkCameraManager::availableCamerasChanged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::acquisitionChanged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraClosed, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraUnplugged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraPluggedIn, this, &CkCameraMenu::refresh);
    connect(m_pCameras, &CkCameraController::cameraReady, this, &CkCameraMenu::refresh);
    connect(m_pCameras, &CkCameraController::currentCameraChanged, this, &CkCameraMenu::refresh);
    connect(pMenu, &QMenu::aboutToShow, this, &CkCameraMenu::refresh);
    refresh();
}

void CkCameraMenu::addReopenAction(QMenu* pMenu) {
    QAction* reopen = pMenu->addAction(tr("&Reopen at Start"));
    reopen->setObjectName(QStringLiteral("actReopenCameras"));
    reopen->setCheckable(true);
    reopen->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_R));
    reopen->setChecked(ViewerSettings::open()->value(ViewerSettings::keyReopenCameras(), true).toBool());
    reopen->setToolTip(
        tr("Open the cameras, recordings and views of this session again when the viewer is started"));
    connect(reopen, &QAction::toggled, this,
            [](bool bOn) { ViewerSettings::open()->setValue(ViewerSettings::keyReopenCameras(), bOn); });
}

void CkCameraMenu::refresh() {
    fillOpenMenu();
    fillHandleMenus();
    void* camera = m_pCameras->currentCamera();
    const bool running = camera != nullptr && CkCameraManager::instance()->isAcquiring(camera);
    const CkCameraPanel* panel = m_pCameras->panel(camera);
    const QString none = tr("There is no current camera: open one, or activate one of its views");
    const bool unplugged = CkCameraManager::instance()->isUnplugged(camera);
    const QString stopped = camera == nullptr ? none
                            : unplugged       ? tr("The camera is unplugged")
                                              : tr("The camera is stopped");
    SkCameraInfo info;
    CkCameraManager::instance()->cameraInfo(camera, info);
    m_pStartAction->setText(running ? tr("&Stop") : tr("&Start"));
    m_pStartAction->setEnabled(camera != nullptr && !unplugged);
    m_pStartAction->setToolTip(camera == nullptr || unplugged ? stopped
                               : running                      ? tr("Stop \"%1\"").arg(info.name)
                                                              : tr("Start \"%1\"").arg(info.name));
    m_pPauseAction->setEnabled(running);
    m_pPauseAction->setChecked(panel != nullptr && panel->isPaused());
    m_pPauseAction->setToolTip(running ? tr("Hold the camera without stopping it") : stopped);
    m_pStepAction->setEnabled(running);
    m_pStepAction->setToolTip(running ? tr("Take one set of pictures and hold") : stopped);
    m_pCloseAction->setEnabled(camera != nullptr);
    m_pCloseAction->setToolTip(camera != nullptr ? tr("Close the current camera with its views") : none);
    m_pViewAction->setEnabled(camera != nullptr);
    m_pViewAction->setToolTip(camera != nullptr ? tr("Another view of the current camera") : none);
}

void CkCameraMenu::fillOpenMenu() {
    clearLater(m_pOpenMenu);
    CkCameraManager* manager = CkCameraManager::instance();
    QStringList openIds;
    for (void* handle : manager->openedCameras()) {
        SkCameraInfo info;
        if (manager->cameraInfo(handle, info)) {
            openIds.append(info.id);
        }
    }
    int number = 0;
    for (const SkCameraInfo& info : manager->availableCameras()) {
        QAction* action = m_pOpenMenu->addAction(QStringLiteral("%1 (%2)").arg(info.name, info.serial));
        action->setData(info.id);
        action->setCheckable(true);
        action->setChecked(openIds.contains(info.id));
        if (++number <= 9) {
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + number)));
        }
        connect(action, &QAction::triggered, this, [this, id = info.id] {
            if (void* handle = m_pCameras->openCamera(id, true)) {
                m_pCameras->start(handle);
            }
            refresh();
        });
    }
    if (number == 0) {
        QAction* none = m_pOpenMenu->addAction(tr("No camera is plugged in"));
        none->setEnabled(false);
        none->setToolTip(tr("Plug in a camera; it appears here by itself"));
    }
}

void CkCameraMenu::fillHandleMenus() {
    for (QMenu* menu : {m_pCloseMenu, m_pUnplugMenu, m_pPlugInMenu}) {
        clearLater(menu);
    }
    CkCameraManager* manager = CkCameraManager::instance();
    for (void* handle : manager->openedCameras()) {
        SkCameraInfo info;
        if (!manager->cameraInfo(handle, info)) {
            continue;
        }
        m_pCloseMenu->addAction(info.name, this, [this, handle] { m_pCameras->closeCamera(handle); });
        if (!manager->isUnplugged(handle)) {
            m_pUnplugMenu->addAction(info.name, this, [this, handle] { m_pCameras->unplugCamera(handle); });
        }
    }
    for (const SkCameraInfo& info : manager->camerasHeldApart()) {
        m_pPlugInMenu->addAction(info.name, this, [this, id = info.id] { m_pCameras->plugCameraIn(id); });
    }
    const auto enableIfFilled = [](QMenu* menu, const QString& sHint, const QString& sWhy) {
        menu->setEnabled(!menu->isEmpty());
        menu->menuAction()->setToolTip(menu->isEmpty() ? sWhy : sHint);
    };
    enableIfFilled(m_pCloseMenu, tr("Close a camera with its views"), tr("No camera is open"));
    enableIfFilled(m_pUnplugMenu,
                   tr("As if its cable had been pulled: its views keep their pictures and wait"),
                   tr("No camera is open"));
    enableIfFilled(m_pPlugInMenu, tr("Let an unplugged camera go on"), tr("No camera is unplugged"));
}

void CkCameraMenu::toggleAcquisition() {
    void* camera = m_pCameras->currentCamera();
    if (camera == nullptr) {
        return;
    }
    if (CkCameraManager::instance()->isAcquiring(camera)) {
        m_pCameras->stop(camera);
    } else {
        m_pCameras->start(camera);
    }
}
