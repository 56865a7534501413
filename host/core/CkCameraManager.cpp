#include "zuCore/CkCameraManager.h"

#include "host/core/CkCameraDrivers.h"
#include "host/core/CkOpenCameraList.h"

#include <QCoreApplication>

namespace {

void closeAllCameras() {
    CkCameraManager* const manager = CkCameraManager::instance();
    for (void* handle : manager->openedCameras()) {
        manager->closeCamera(handle);
    }
}

void setError(QString* psError, const QString& text) {
    if (psError != nullptr) {
        *psError = text;
    }
}

} // namespace

class CkCameraManager::CkPrivate {
public:
    CkOpenCameraList m_open;
    CkCameraDrivers m_drivers;
};

CkCameraManager::CkCameraManager() : m_d(std::make_unique<CkPrivate>()) {
    // Cameras are closed when the application object is destroyed: static objects, which their threads may
    // use, are destroyed later, in an order that is not known here.
    qAddPostRoutine(closeAllCameras);
}

CkCameraManager::~CkCameraManager() {
    for (const auto& open : m_d->m_open.all()) {
        open->close();
    }
}

CkCameraManager* CkCameraManager::instance() {
    static CkCameraManager manager;
    return &manager;
}

void CkCameraManager::addDriver(std::unique_ptr<IkCameraDriver> driver) {
    if (driver) {
        m_d->m_drivers.add(std::move(driver));
        emit availableCamerasChanged();
    }
}

QList<SkCameraInfo> CkCameraManager::availableCameras() const {
    bool complete = true;
    QList<SkCameraInfo> cameras = m_d->m_drivers.offered(complete);
    cameras.removeIf([this](const SkCameraInfo& info) { return m_d->m_drivers.isWithheld(info.id); });
    return cameras;
}

void* CkCameraManager::openCamera(const QString& sId, QString* psError) {
    if (const auto alreadyOpen = m_d->m_open.findById(sId)) {
        return alreadyOpen->handle;
    }
    if (m_d->m_drivers.isWithheld(sId)) {
        setError(psError, tr("Camera \"%1\" is unplugged.").arg(sId));
        return nullptr;
    }
    QString reason = tr("There is no camera \"%1\".").arg(sId);
    auto open = std::make_shared<CkOpenCamera>();
    open->camera = m_d->m_drivers.open(sId, open->info, reason);
    if (!open->camera) {
        setError(psError, reason.isEmpty() ? tr("Camera \"%1\" cannot be opened.").arg(sId) : reason);
        return nullptr;
    }
    m_d->m_open.add(open);
    emit newCameraConnected(open->handle);
    return open->handle;
}

void CkCameraManager::closeCamera(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->m_open.find(pHandle);
    if (!open || open->presence == EkPresence::Closing) {
        return;
    }
    open->presence = EkPresence::Closing; // a slot of cameraAboutToClose may call closeCamera again
    emit cameraAboutToClose(pHandle);
    stopAcquisition(pHandle);
    m_d->m_open.remove(open);
    open->close();
    emit cameraClosed(pHandle);
}

void CkCameraManager::unplugCamera(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->m_open.find(pHandle);
    if (!open || open->presence != EkPresence::PluggedIn) {
        return;
    }
    m_d->m_drivers.withhold(open->info);
    handleUnplugged(pHandle);
    emit availableCamerasChanged();
}

bool CkCameraManager::plugCameraIn(const QString& sId, QString* psError) {
    if (!m_d->m_drivers.endWithhold(sId)) {
        setError(psError, tr("Camera \"%1\" is not unplugged.").arg(sId));
        return false;
    }
    const auto open = m_d->m_open.findById(sId); // null when it was closed while unplugged
    const bool usable = !open || reconnect(open->handle, psError);
    emit availableCamerasChanged();
    return usable;
}

void CkCameraManager::checkCameras() {
    bool complete = true;
    const QList<SkCameraInfo> offered = m_d->m_drivers.offered(complete);
    for (const auto& open : m_d->m_open.all()) {
        const QString id = open->info.id;
        const bool present = !m_d->m_drivers.isWithheld(id) && CkCameraDrivers::contains(offered, id);
        if (present && open->isUnplugged()) {
            reconnect(open->handle, nullptr);
        } else if (!present && complete) { // a driver that failed says nothing about its cameras
            handleUnplugged(open->handle);
        }
    }
    emit availableCamerasChanged();
}

void CkCameraManager::handleUnplugged(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->m_open.find(pHandle);
    if (!open || open->presence != EkPresence::PluggedIn) {
        return;
    }
    open->unplug();
    if (open->presence == EkPresence::UnpluggedWhileRunning) {
        emit acquisitionChanged(pHandle, false);
    }
    emit cameraUnplugged(pHandle);
    emit cameraLost(open->info.name);
}

bool CkCameraManager::reconnect(void* pHandle, QString* psError) {
    const std::shared_ptr<CkOpenCamera> open = m_d->m_open.find(pHandle);
    if (!open || !open->isUnplugged()) {
        return false;
    }
    QString reason;
    SkCameraInfo info;
    std::unique_ptr<IkCamera> fresh = m_d->m_drivers.open(open->info.id, info, reason);
    if (!fresh) {
        setError(psError,
                 reason.isEmpty() ? tr("Camera \"%1\" cannot be opened.").arg(open->info.id) : reason);
        return false;
    }
    const bool wasRunning = open->presence == EkPresence::UnpluggedWhileRunning;
    // The old object is deleted only after the slots of cameraPluggedIn have replaced its parameter objects
    // by the new ones.
    std::unique_ptr<IkCamera> old = open->replug(std::move(fresh));
    open->presence = EkPresence::PluggedIn;
    emit cameraPluggedIn(pHandle);
    old.reset();
    return !wasRunning || startAcquisition(pHandle, psError);
}

bool CkCameraManager::isUnplugged(void* pHandle) const {
    const auto open = m_d->m_open.find(pHandle);
    return open && open->isUnplugged();
}

QList<SkCameraInfo> CkCameraManager::withheldCameras() const {
    return m_d->m_drivers.withheld();
}

QList<void*> CkCameraManager::openedCameras() const {
    QList<void*> handles;
    for (const auto& open : m_d->m_open.all()) {
        handles.append(open->handle);
    }
    return handles;
}

int CkCameraManager::openedCameraCount() const {
    return int(m_d->m_open.all().size());
}

bool CkCameraManager::isOpen(void* pHandle) const {
    return m_d->m_open.find(pHandle) != nullptr;
}

CkCameraParameters* CkCameraManager::cameraParameters(void* pHandle) const {
    const auto open = m_d->m_open.find(pHandle);
    return open ? open->camera->parameters() : nullptr;
}

bool CkCameraManager::cameraInfo(void* pHandle, SkCameraInfo& info) const {
    const auto open = m_d->m_open.find(pHandle);
    if (!open) {
        return false;
    }
    info = open->info;
    return true;
}

bool CkCameraManager::frameInfo(void* pHandle, SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const auto open = m_d->m_open.find(pHandle);
    return open && open->frameInfo(info, pMetadata);
}

bool CkCameraManager::startAcquisition(void* pHandle, QString* psError) {
    const auto open = m_d->m_open.find(pHandle);
    if (!open) {
        setError(psError, tr("The camera is not open."));
        return false;
    }
    if (open->isUnplugged()) {
        setError(psError, tr("Camera \"%1\" is unplugged.").arg(open->info.name));
        return false;
    }
    if (open->camera->isRunning()) {
        return true;
    }
    QString reason;
    if (!open->start(reason)) {
        setError(psError, reason.isEmpty() ? tr("The camera cannot be started.") : reason);
        return false;
    }
    emit acquisitionChanged(pHandle, true);
    return true;
}

void CkCameraManager::stopAcquisition(void* pHandle) {
    const auto open = m_d->m_open.find(pHandle);
    if (open && open->presence == EkPresence::UnpluggedWhileRunning) {
        open->presence = EkPresence::Unplugged;
    }
    if (open && open->camera->isRunning()) {
        open->camera->stop();
        emit acquisitionChanged(pHandle, false);
    }
}

bool CkCameraManager::isAcquiring(void* pHandle) const {
    const auto open = m_d->m_open.find(pHandle);
    return open && open->camera->isRunning();
}

void CkCameraManager::setPaused(void* pHandle, bool bPaused) {
    if (const auto open = m_d->m_open.find(pHandle)) {
        open->paused = bPaused;
        open->camera->setPaused(bPaused);
    }
}

bool CkCameraManager::isPaused(void* pHandle) const {
    const auto open = m_d->m_open.find(pHandle);
    return open && open->paused;
}

void CkCameraManager::step(void* pHandle) {
    if (const auto open = m_d->m_open.find(pHandle)) {
        open->camera->step();
    }
}

void CkCameraManager::addFrameReceiver(void* pHandle, const void* pReceiver,
                                       IkCamera::FrameFunction receive) {
    if (const auto open = m_d->m_open.find(pHandle); open && pReceiver != nullptr && receive) {
        open->receivers.add(pReceiver, std::move(receive));
    }
}

void CkCameraManager::removeFrameReceiver(const void* pReceiver) {
    for (const auto& open : m_d->m_open.all()) {
        open->receivers.remove(pReceiver);
    }
}
