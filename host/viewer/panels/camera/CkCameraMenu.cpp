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
    : QObject(pParent), m_cameras(pCameras) {
    pMenu->setToolTipsVisible(true);
    m_openMenu = pMenu->addMenu(tr("&Open"));
    m_openMenu->setObjectName(QStringLiteral("menuOpenCamera"));
    pMenu->addSeparator();
    m_startAction = pMenu->addAction(tr("&Start"), this, &CkCameraMenu::toggleAcquisition);
    m_startAction->setObjectName(QStringLiteral("actStartCamera"));
    m_startAction->setShortcut(Qt::Key_F5);
    m_pauseAction = pMenu->addAction(tr("&Pause"), this, [this] {
        if (CkCameraPanel* panel = m_cameras->panel(m_cameras->currentCamera())) {
            panel->setPaused(!panel->isPaused());
            refresh();
        }
    });
    m_pauseAction->setObjectName(QStringLiteral("actPauseCamera"));
    m_pauseAction->setShortcut(Qt::Key_F6);
    m_pauseAction->setCheckable(true);
    m_stepAction = pMenu->addAction(tr("S&ingle Step"), this, [this] {
        if (CkCameraPanel* panel = m_cameras->panel(m_cameras->currentCamera())) {
            panel->step();
            refresh();
        }
    });
    m_stepAction->setObjectName(QStringLiteral("actStepCamera"));
    m_stepAction->setShortcut(Qt::Key_F7);
    m_viewAction = pMenu->addAction(tr("&New Picture View"), this,
                                    [this] { m_cameras->openView(m_cameras->currentCamera()); });
    m_viewAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    pMenu->addSeparator();
    m_closeAction = pMenu->addAction(tr("Close &Current"), this,
                                     [this] { m_cameras->closeCamera(m_cameras->currentCamera()); });
    m_closeAction->setObjectName(QStringLiteral("actCloseCamera"));
    m_closeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W));
    m_closeMenu = pMenu->addMenu(tr("C&lose"));
    m_closeMenu->setObjectName(QStringLiteral("menuCloseCamera"));
    m_unplugMenu = pMenu->addMenu(tr("&Unplug"));
    m_unplugMenu->setObjectName(QStringLiteral("menuUnplugCamera"));
    m_plugInMenu = pMenu->addMenu(tr("Plu&g In"));
    m_plugInMenu->setObjectName(QStringLiteral("menuPlugInCamera"));
    pMenu->addSeparator();
    addReopenAction(pMenu);

    CkCameraManager* manager = CkCameraManager::instance();
    connect(manager, &CkCameraManager::availableCamerasChanged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::acquisitionChanged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraClosed, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraUnplugged, this, &CkCameraMenu::refresh);
    connect(manager, &CkCameraManager::cameraPluggedIn, this, &CkCameraMenu::refresh);
    connect(m_cameras, &CkCameraController::cameraReady, this, &CkCameraMenu::refresh);
    connect(m_cameras, &CkCameraController::currentCameraChanged, this, &CkCameraMenu::refresh);
    connect(pMenu, &QMenu::aboutToShow, this, &CkCameraMenu::refresh);
    refresh();
}

void CkCameraMenu::addReopenAction(QMenu* pMenu) {
    QAction* reopen = pMenu->addAction(tr("&Reopen at Start"));
    reopen->setObjectName(QStringLiteral("actReopenCameras"));
    reopen->setCheckable(true);
    reopen->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_R));
    reopen->setChecked(ViewerSettings::open()->value(ViewerSettings::kReopenCamerasKey, true).toBool());
    reopen->setToolTip(
        tr("Open the cameras, recordings and views of this session again when the viewer is started"));
    connect(reopen, &QAction::toggled, this,
            [](bool bOn) { ViewerSettings::open()->setValue(ViewerSettings::kReopenCamerasKey, bOn); });
}

void CkCameraMenu::refresh() {
    fillOpenMenu();
    fillHandleMenus();
    void* camera = m_cameras->currentCamera();
    const bool running = camera != nullptr && CkCameraManager::instance()->isAcquiring(camera);
    const CkCameraPanel* panel = m_cameras->panel(camera);
    const QString none = tr("There is no current camera: open one, or activate one of its views");
    const bool unplugged = CkCameraManager::instance()->isUnplugged(camera);
    const QString stopped = camera == nullptr ? none
                            : unplugged       ? tr("The camera is unplugged")
                                              : tr("The camera is stopped");
    SkCameraInfo info;
    CkCameraManager::instance()->cameraInfo(camera, info);
    m_startAction->setText(running ? tr("&Stop") : tr("&Start"));
    m_startAction->setEnabled(camera != nullptr && !unplugged);
    m_startAction->setToolTip(camera == nullptr || unplugged ? stopped
                              : running                      ? tr("Stop \"%1\"").arg(info.name)
                                                             : tr("Start \"%1\"").arg(info.name));
    m_pauseAction->setEnabled(running);
    m_pauseAction->setChecked(panel != nullptr && panel->isPaused());
    m_pauseAction->setToolTip(running ? tr("Hold the camera without stopping it") : stopped);
    m_stepAction->setEnabled(running);
    m_stepAction->setToolTip(running ? tr("Take one set of pictures and hold") : stopped);
    m_closeAction->setEnabled(camera != nullptr);
    m_closeAction->setToolTip(camera != nullptr ? tr("Close the current camera with its views") : none);
    m_viewAction->setEnabled(camera != nullptr);
    m_viewAction->setToolTip(camera != nullptr ? tr("Another view of the current camera") : none);
}

void CkCameraMenu::fillOpenMenu() {
    clearLater(m_openMenu);
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
        QAction* action = m_openMenu->addAction(QStringLiteral("%1 (%2)").arg(info.name, info.serial));
        action->setData(info.id);
        action->setCheckable(true);
        action->setChecked(openIds.contains(info.id));
        if (++number <= 9) {
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + number)));
        }
        connect(action, &QAction::triggered, this, [this, id = info.id] {
            if (void* handle = m_cameras->openCamera(id, true)) {
                m_cameras->start(handle);
            }
            refresh();
        });
    }
    if (number == 0) {
        QAction* none = m_openMenu->addAction(tr("No camera is plugged in"));
        none->setEnabled(false);
        none->setToolTip(tr("Plug in a camera; it appears here by itself"));
    }
}

void CkCameraMenu::fillHandleMenus() {
    for (QMenu* menu : {m_closeMenu, m_unplugMenu, m_plugInMenu}) {
        clearLater(menu);
    }
    CkCameraManager* manager = CkCameraManager::instance();
    for (void* handle : manager->openedCameras()) {
        SkCameraInfo info;
        if (!manager->cameraInfo(handle, info)) {
            continue;
        }
        m_closeMenu->addAction(info.name, this, [this, handle] { m_cameras->closeCamera(handle); });
        if (!manager->isUnplugged(handle)) {
            m_unplugMenu->addAction(info.name, this, [this, handle] { m_cameras->unplugCamera(handle); });
        }
    }
    for (const SkCameraInfo& info : manager->withheldCameras()) {
        m_plugInMenu->addAction(info.name, this, [this, id = info.id] { m_cameras->plugCameraIn(id); });
    }
    const auto enableIfFilled = [](QMenu* menu, const QString& sHint, const QString& sWhy) {
        menu->setEnabled(!menu->isEmpty());
        menu->menuAction()->setToolTip(menu->isEmpty() ? sWhy : sHint);
    };
    enableIfFilled(m_closeMenu, tr("Close a camera with its views"), tr("No camera is open"));
    enableIfFilled(m_unplugMenu,
                   tr("As if its cable had been pulled: its views keep their pictures and wait"),
                   tr("No camera is open"));
    enableIfFilled(m_plugInMenu, tr("Reconnect an unplugged camera"), tr("No camera is unplugged"));
}

void CkCameraMenu::toggleAcquisition() {
    void* camera = m_cameras->currentCamera();
    if (camera == nullptr) {
        return;
    }
    if (CkCameraManager::instance()->isAcquiring(camera)) {
        m_cameras->stop(camera);
    } else {
        m_cameras->start(camera);
    }
}
