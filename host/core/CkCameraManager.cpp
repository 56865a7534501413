#include "zuCore/CkCameraManager.h"

#include "host/core/CkCameraDrivers.h"
#include "host/core/CkOpenCamera.h"

#include <QCoreApplication>
#include <algorithm>
#include <vector>

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
    std::shared_ptr<CkOpenCamera> find(void* pHandle) const {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_open.begin(), m_open.end(),
                                        [pHandle](const auto& open) { return open->handle == pHandle; });
        return found == m_open.end() ? nullptr : *found;
    }

    std::vector<std::shared_ptr<CkOpenCamera>> all() const {
        const std::lock_guard lock(m_mutex);
        return m_open;
    }

    mutable std::mutex m_mutex; ///< guards the list only, never held while foreign code runs
    std::vector<std::shared_ptr<CkOpenCamera>> m_open;
    CkCameraDrivers m_drivers;
    /// Handles count up, so that the handle of a closed camera is never reused.
    quintptr m_uiNextHandle = 1;
};

CkCameraManager::CkCameraManager() : m_d(std::make_unique<CkPrivate>()) {
    // Cameras are closed when the application object is destroyed, while everything that their threads use
    // still exists.
    qAddPostRoutine(closeAllCameras);
}

CkCameraManager::~CkCameraManager() {
    for (const auto& open : m_d->all()) {
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
    cameras.removeIf([this](const SkCameraInfo& info) { return m_d->m_drivers.isHeldApart(info.id); });
    return cameras;
}

void* CkCameraManager::openCamera(const QString& sId, QString* psError) {
    for (const auto& open : m_d->all()) {
        if (open->info.id == sId) {
            return open->handle;
        }
    }
    if (m_d->m_drivers.isHeldApart(sId)) {
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
    {
        const std::lock_guard lock(m_d->m_mutex);
        open->handle = reinterpret_cast<void*>(m_d->m_uiNextHandle++);
        m_d->m_open.push_back(open);
    }
    emit newCameraConnected(open->handle);
    return open->handle;
}

void CkCameraManager::closeCamera(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->find(pHandle);
    if (!open || open->presence == EkPresence::Closing) {
        return;
    }
    open->presence = EkPresence::Closing; // a slot of cameraAboutToClose may call closeCamera again
    emit cameraAboutToClose(pHandle);
    stopAcquisition(pHandle);
    {
        const std::lock_guard lock(m_d->m_mutex);
        std::erase(m_d->m_open, open);
    }
    open->close();
    emit cameraClosed(pHandle);
}

void CkCameraManager::unplugCamera(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->find(pHandle);
    if (!open || open->presence != EkPresence::PluggedIn) {
        return;
    }
    m_d->m_drivers.holdApart(open->info);
    takeAsLost(pHandle);
    emit availableCamerasChanged();
}

bool CkCameraManager::plugCameraIn(const QString& sId, QString* psError) {
    if (!m_d->m_drivers.endHoldApart(sId)) {
        setError(psError, tr("Camera \"%1\" is not unplugged.").arg(sId));
        return false;
    }
    bool back = true;
    for (const auto& open : m_d->all()) {
        if (open->info.id == sId) {
            back = takeBack(open->handle, psError);
            break;
        }
    }
    emit availableCamerasChanged();
    return back;
}

void CkCameraManager::checkCameras() {
    bool complete = true;
    const QList<SkCameraInfo> offered = m_d->m_drivers.offered(complete);
    for (const auto& open : m_d->all()) {
        const QString id = open->info.id;
        const bool there = !m_d->m_drivers.isHeldApart(id) && CkCameraDrivers::contains(offered, id);
        if (there && isUnplugged(open->handle)) {
            takeBack(open->handle, nullptr);
        } else if (!there && complete) {
            takeAsLost(open->handle);
        }
    }
    emit availableCamerasChanged();
}

void CkCameraManager::takeAsLost(void* pHandle) {
    const std::shared_ptr<CkOpenCamera> open = m_d->find(pHandle);
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

bool CkCameraManager::takeBack(void* pHandle, QString* psError) {
    const std::shared_ptr<CkOpenCamera> open = m_d->find(pHandle);
    if (!isUnplugged(pHandle)) {
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
    const bool runs = open->presence == EkPresence::UnpluggedWhileRunning;
    // Deleted after the slots of cameraPluggedIn, which replace its parameters by the new ones.
    std::unique_ptr<IkCamera> old = open->replug(std::move(fresh));
    open->presence = EkPresence::PluggedIn;
    emit cameraPluggedIn(pHandle);
    old.reset();
    return !runs || startAcquisition(pHandle, psError);
}

bool CkCameraManager::isUnplugged(void* pHandle) const {
    const auto open = m_d->find(pHandle);
    return open &&
           (open->presence == EkPresence::Unplugged || open->presence == EkPresence::UnpluggedWhileRunning);
}

QList<SkCameraInfo> CkCameraManager::camerasHeldApart() const {
    return m_d->m_drivers.heldApart();
}

QList<void*> CkCameraManager::openedCameras() const {
    QList<void*> handles;
    for (const auto& open : m_d->all()) {
        handles.append(open->handle);
    }
    return handles;
}

int CkCameraManager::openedCameraCount() const {
    return int(m_d->all().size());
}

bool CkCameraManager::isOpen(void* pHandle) const {
    return m_d->find(pHandle) != nullptr;
}

CkCameraParameters* CkCameraManager::cameraParameters(void* pHandle) const {
    const auto open = m_d->find(pHandle);
    return open ? open->camera->parameters() : nullptr;
}

bool CkCameraManager::cameraInfo(void* pHandle, SkCameraInfo& info) const {
    const auto open = m_d->find(pHandle);
    if (!open) {
        return false;
    }
    info = open->info;
    return true;
}

bool CkCameraManager::frameInfo(void* pHandle, SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const auto open = m_d->find(pHandle);
    return open && open->frameInfo(info, pMetadata);
}

bool CkCameraManager::startAcquisition(void* pHandle, QString* psError) {
    const auto open = m_d->find(pHandle);
    if (!open) {
        setError(psError, tr("The camera is not open."));
        return false;
    }
    if (isUnplugged(pHandle)) {
        setError(psError, tr("Camera \"%1\" is unplugged.").arg(open->info.name));
        return false;
    }
    if (open->camera->isRunning()) {
        return true;
    }
    QString reason;
    bool running = false;
    try {
        // A camera is stopped before the object it delivers to is deleted.
        running = open->camera->start(
            [target = open.get()](CkImageData* frame) { target->receivers.dispatch(frame); }, &reason);
    } catch (...) {
        running = false;
    }
    if (!running) {
        setError(psError, reason.isEmpty() ? tr("The camera cannot be started.") : reason);
        return false;
    }
    emit acquisitionChanged(pHandle, true);
    return true;
}

void CkCameraManager::stopAcquisition(void* pHandle) {
    const auto open = m_d->find(pHandle);
    if (open && open->presence == EkPresence::UnpluggedWhileRunning) {
        open->presence = EkPresence::Unplugged;
    }
    if (open && open->camera->isRunning()) {
        open->camera->stop();
        emit acquisitionChanged(pHandle, false);
    }
}

bool CkCameraManager::isAcquiring(void* pHandle) const {
    const auto open = m_d->find(pHandle);
    return open && open->camera->isRunning();
}

void CkCameraManager::setPaused(void* pHandle, bool bPaused) {
    if (const auto open = m_d->find(pHandle)) {
        open->paused = bPaused;
        open->camera->setPaused(bPaused);
    }
}

bool CkCameraManager::isPaused(void* pHandle) const {
    const auto open = m_d->find(pHandle);
    return open && open->paused;
}

void CkCameraManager::step(void* pHandle) {
    if (const auto open = m_d->find(pHandle)) {
        open->camera->step();
    }
}

void CkCameraManager::addFrameReceiver(void* pHandle, const void* pReceiver,
                                       IkCamera::FrameFunction receive) {
    if (const auto open = m_d->find(pHandle); open && pReceiver != nullptr && receive) {
        open->receivers.add(pReceiver, std::move(receive));
    }
}

void CkCameraManager::removeFrameReceiver(const void* pReceiver) {
    for (const auto& open : m_d->all()) {
        open->receivers.remove(pReceiver);
    }
}
