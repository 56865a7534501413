#include "host/viewer/panels/camera/CkCameraController.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QTabWidget>

CkCameraController::CkCameraController(CkViewArea* pArea, QTabWidget* pPanels, QObject* pParent)
    : QObject(pParent), m_area(pArea), m_tabs(pPanels) {
    CkCameraManager* manager = CkCameraManager::instance();
    connect(manager, &CkCameraManager::newCameraConnected, this, &CkCameraController::addPanel);
    connect(manager, &CkCameraManager::cameraAboutToClose, this, &CkCameraController::removeViewsAndPanel);
    connect(manager, &CkCameraManager::cameraLost, this, [this](const QString& sName) {
        report(tr("Camera \"%1\" was lost. Its views wait for it.").arg(sName));
    });
    connect(manager, &CkCameraManager::cameraPluggedIn, this, [](void* pHandle) {
        SkCameraInfo info;
        CkCameraManager::instance()->cameraInfo(pHandle, info);
        qInfo("%s", qUtf8Printable(tr("Camera \"%1\" is back.").arg(info.name)));
    });
    connect(m_tabs, &QTabWidget::currentChanged, this, &CkCameraController::activateViewOfShownPanel);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkCameraController::showPanelOfActiveView);
    // A chain without a view is not needed any more.
    connect(m_area, &CkViewArea::viewClosed, this, [this](int, const QPointer<CkChain>& chain) {
        if (!chain) {
            return;
        }
        for (const CkMdiView* view : m_area->views()) {
            const CkChainable* provider = view->dataProvider();
            if (provider != nullptr && provider->chain() == chain) {
                return;
            }
        }
        CkChainManager::instance()->closeChain(chain);
    });
}

CkCameraController::~CkCameraController() = default;

void* CkCameraController::openCamera(const QString& sId, bool bWithView, QString* psError) {
    m_withView = bWithView;
    QString error;
    void* handle = CkCameraManager::instance()->openCamera(sId, &error);
    m_withView = true;
    if (handle == nullptr) {
        report(tr("Camera \"%1\" cannot be opened: %2").arg(sId, error));
        if (psError != nullptr) {
            *psError = error;
        }
    }
    return handle;
}

void CkCameraController::addPanel(void* pHandle) {
    if (m_panels.value(pHandle)) {
        return;
    }
    auto* panel = new CkCameraPanel(pHandle, m_tabs);
    m_panels.insert(pHandle, panel);
    SkCameraInfo info;
    CkCameraManager::instance()->cameraInfo(pHandle, info);
    m_tabs->setTabToolTip(m_tabs->addTab(panel, info.name), info.name);
    m_tabs->setCurrentWidget(panel);
    connect(panel, &CkCameraPanel::startRequested, this, [this](void* pCamera) { start(pCamera); });
    connect(panel, &CkCameraPanel::stopRequested, this, &CkCameraController::stop);
    connect(panel, &CkCameraPanel::newViewRequested, this, &CkCameraController::openView);
    if (m_withView) {
        openView(pHandle);
    }
    emit cameraReady(pHandle);
}

int CkCameraController::openView(void* pHandle) {
    CkChainManager* chains = CkChainManager::instance();
    if (!CkCameraManager::instance()->isOpen(pHandle)) {
        return -1;
    }
    CkChain* chain = chains->createChain();
    if (chain == nullptr) {
        report(tr("No new processing chain can be made."));
        return -1;
    }
    auto* source = new CkCameraSource(pHandle);
    if (!chains->insertAfter(chain, source, nullptr)) {
        delete source;
        chains->closeChain(chain);
        report(tr("The camera cannot be put into a processing chain."));
        return -1;
    }
    auto* view = new CkImageView(source);
    m_area->addView(view);
    if (CkCameraManager::instance()->isAcquiring(pHandle)) {
        chain->start();
    }
    return view->viewId();
}

bool CkCameraController::start(void* pHandle, QString* psError) {
    CkCameraManager* manager = CkCameraManager::instance();
    void* handle = pHandle != nullptr ? pHandle : currentCamera();
    if (handle == nullptr || !manager->isOpen(handle)) {
        if (psError != nullptr) {
            *psError = tr("There is no such camera.");
        }
        return false;
    }
    const QList<int> views = viewsOf(handle);
    if (views.isEmpty()) {
        openView(handle);
    } else if (!views.contains(m_area->activeViewId())) {
        m_area->setActiveView(views.first());
    }
    for (CkChain* chain : chainsOf(handle)) {
        if (!chain->started()) {
            chain->start();
        }
    }
    QString error;
    if (!manager->isAcquiring(handle) && !manager->startAcquisition(handle, &error)) {
        report(tr("The camera cannot be started: %1").arg(error));
        if (psError != nullptr) {
            *psError = error;
        }
        return false;
    }
    return true;
}

bool CkCameraController::stop(void* pHandle) {
    CkCameraManager* manager = CkCameraManager::instance();
    void* handle = pHandle != nullptr ? pHandle : currentCamera();
    if (handle == nullptr || !manager->isOpen(handle)) {
        return false;
    }
    manager->stopAcquisition(handle);
    manager->setPaused(handle, false); // so that the next start delivers frames
    for (CkChain* chain : chainsOf(handle)) {
        chain->stop();
    }
    return true;
}

void CkCameraController::closeCamera(void* pHandle) {
    CkCameraManager::instance()->closeCamera(pHandle);
}

void CkCameraController::unplugCamera(void* pHandle) {
    CkCameraManager::instance()->unplugCamera(pHandle);
}

void CkCameraController::plugCameraIn(const QString& sId) {
    QString error;
    if (!CkCameraManager::instance()->plugCameraIn(sId, &error)) {
        report(tr("Camera \"%1\" does not go on: %2").arg(sId, error));
    }
}

void CkCameraController::closeAllCameras() {
    for (void* handle : CkCameraManager::instance()->openedCameras()) {
        closeCamera(handle);
    }
}

void CkCameraController::removeViewsAndPanel(void* pHandle) {
    // Views first: while they close, plug-ins may still query their camera.
    const QList<CkChain*> chains = chainsOf(pHandle);
    for (const int id : viewsOf(pHandle)) {
        m_area->closeView(id, false);
    }
    for (CkChain* chain : chains) {
        CkChainManager::instance()->closeChain(chain);
    }
    if (CkCameraPanel* panel = m_panels.take(pHandle)) {
        m_tabs->removeTab(m_tabs->indexOf(panel));
        panel->hide();
        // Not deleted at once: the click that led here may come from the panel itself. Its editors must not
        // outlive the camera.
        panel->detach();
        panel->deleteLater();
    }
}

void* CkCameraController::cameraOfActiveView() const {
    const CkMdiView* view = m_area->activeView();
    const QList<void*> handles = view != nullptr ? view->cameraHandles() : QList<void*>();
    return !handles.isEmpty() && CkCameraManager::instance()->isOpen(handles.first()) ? handles.first()
                                                                                      : nullptr;
}

void* CkCameraController::currentCamera() const {
    if (void* camera = cameraOfActiveView()) {
        return camera;
    }
    const auto* shown = qobject_cast<const CkCameraPanel*>(m_tabs->currentWidget());
    return shown != nullptr && m_panels.value(shown->cameraHandle()) == shown ? shown->cameraHandle()
                                                                              : nullptr;
}

// The current panel has to belong to the camera of the active view, so that its Stop button stops the picture
// that the user is looking at.
void CkCameraController::showPanelOfActiveView() {
    if (CkCameraPanel* shown = panel(cameraOfActiveView())) {
        m_tabs->setCurrentWidget(shown);
    }
    emit currentCameraChanged();
}

void CkCameraController::activateViewOfShownPanel() {
    const auto* shown = qobject_cast<const CkCameraPanel*>(m_tabs->currentWidget());
    void* const camera = shown != nullptr ? shown->cameraHandle() : nullptr;
    const CkMdiView* active = m_area->activeView();
    const QList<int> views = camera != nullptr ? viewsOf(camera) : QList<int>();
    if (!views.isEmpty() && (active == nullptr || !views.contains(active->viewId()))) {
        m_area->setActiveView(views.last());
    }
    emit currentCameraChanged();
}

CkCameraPanel* CkCameraController::panel(void* pHandle) const {
    return m_panels.value(pHandle);
}

QList<CkChain*> CkCameraController::chainsOf(void* pHandle) const {
    QList<CkChain*> result;
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        for (CkChainable* block : chain->imageSources()) {
            const auto* source = qobject_cast<CkImageSource*>(block);
            if (source != nullptr && source->cameraHandles().contains(pHandle)) {
                result.append(chain);
                break;
            }
        }
    }
    return result;
}

QList<int> CkCameraController::viewsOf(void* pHandle) const {
    QList<int> result;
    for (const CkMdiView* view : m_area->views()) {
        if (view->cameraHandles().contains(pHandle)) {
            result.append(view->viewId());
        }
    }
    return result;
}

void CkCameraController::report(const QString& sText) const {
    qWarning("%s", qUtf8Printable(sText));
}
