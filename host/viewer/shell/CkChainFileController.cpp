#include "host/viewer/shell/CkChainFileController.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ChainFile.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/session/CkChainLoader.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageSource.h"

#include <QSet>

CkChainFileController::CkChainFileController(CkViewArea* area, CkCameraController* cameras, QWidget* window)
    : QObject(window), m_area(area), m_cameras(cameras), m_window(window) {}

bool CkChainFileController::open(const QString& fileName, QString& error) {
    const CkCameraManager* manager = CkCameraManager::instance();
    const QList<void*> openBefore = manager->openedCameras();
    openCamerasOf(fileName);
    CkChain* chain = CkChainLoader(fileName, m_window).load(error);
    if (chain != nullptr && ChainFile::ends(chain).isEmpty()) {
        CkChainManager::instance()->closeChain(chain);
        chain = nullptr;
        error = tr("%1: the chain is empty.").arg(fileName);
    }
    if (chain == nullptr) {
        for (void* handle : manager->openedCameras()) {
            if (!openBefore.contains(handle)) {
                m_cameras->closeCamera(handle);
            }
        }
        return false;
    }
    for (CkChainable* end : ChainFile::shownEnds(chain, fileName)) {
        m_area->addView(new CkImageView(end));
    }
    chain->start();
    startCamerasOf(*chain);
    emit used(fileName);
    return true;
}

void CkChainFileController::openCamerasOf(const QString& fileName) {
    QStringList known;
    for (const SkCameraInfo& info : CkCameraManager::instance()->availableCameras()) {
        known.append(info.id);
    }
    for (const QString& id : ChainFile::camerasIn(fileName, known)) {
        m_cameras->openCamera(id, false);
    }
}

void CkChainFileController::startCamerasOf(const CkChain& chain) {
    QSet<void*> started;
    for (CkChainable* source : chain.imageSources()) {
        for (void* handle : qobject_cast<CkImageSource*>(source)->cameraHandles()) {
            if (!started.contains(handle)) {
                started.insert(handle);
                m_cameras->start(handle);
            }
        }
    }
}

bool CkChainFileController::save(const CkChain& chain, const QString& fileName, QString& error) {
    if (!ChainFile::save(&chain, fileName, error)) {
        return false;
    }
    emit used(fileName);
    return true;
}

bool CkChainFileController::saveActive(const QString& fileName, QString& error) {
    const CkChain* chain = activeChain();
    error = tr("The active view shows no chain.");
    return chain != nullptr && save(*chain, fileName, error);
}

CkChain* CkChainFileController::activeChain() const {
    const CkMdiView* view = m_area->activeView();
    const CkChainable* provider = view != nullptr ? view->dataProvider() : nullptr;
    return provider != nullptr ? provider->chain() : nullptr;
}

void CkChainFileController::addFileKind(CkFileOpener* opener) {
    SkFileKind chain;
    chain.id = QStringLiteral("chain");
    chain.title = tr("Chain files");
    chain.suffixes = QStringList{QStringLiteral("zuchain")};
    chain.recognises = [](const QByteArray& bytes) { return bytes.contains("<zuchainfile"); };
    chain.open = [this](const QString& name, QString& error) { return open(name, error); };
    opener->addKind(chain);
}
