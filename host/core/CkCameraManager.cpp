#include "zuCore/CkCameraManager.h"

#include "host/core/SkOpenCamera.h"

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
    std::shared_ptr<SkOpenCamera> find(void* pHandle) const {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_open.begin(), m_open.end(),
                                        [pHandle](const auto& open) { return open->handle == pHandle; });
        return found == m_open.end() ? nullptr : *found;
    }

    std::vector<std::shared_ptr<SkOpenCamera>> all() const {
        const std::lock_guard lock(m_mutex);
        return m_open;
    }

    mutable std::mutex m_mutex; ///< guards the list only, never held while foreign code runs
    std::vector<std::shared_ptr<SkOpenCamera>> m_open;
    /// A new camera object of the driver that offers it; fills info. Null, with sReason set where the driver
    /// tells one, on failure.
    std::unique_ptr<IkCamera> openAtDriver(const QString& sId, SkCameraInfo& info, QString& sReason) const;
    /// What the drivers offer, held apart or not. bComplete: all of them answered.
    QList<SkCameraInfo> offered(bool& bComplete) const;
    bool isHeldApart(const QString& sId) const {
        return std::any_of(m_heldApart.cbegin(), m_heldApart.cend(),
                           [&sId](const SkCameraInfo& info) { return info.id == sId; });
    }

    std::vector<std::unique_ptr<IkCameraDriver>> m_drivers;
    QList<SkCameraInfo> m_heldApart; ///< by unplugCamera, whatever their drivers say
    /// Handles are numbers that count up: one that has gone never comes back as another camera's.
    quintptr m_uiNextHandle = 1;
};

std::unique_ptr<IkCamera> CkCameraManager::CkPrivate::openAtDriver(const QString& sId, SkCameraInfo& info,
                                                                   QString& sReason) const {
    for (const auto& driver : m_drivers) {
        try {
            const QList<SkCameraInfo> cameras = driver->availableCameras();
            const auto found = std::find_if(cameras.cbegin(), cameras.cend(),
                                            [&sId](const SkCameraInfo& entry) { return entry.id == sId; });
            if (found == cameras.cend()) {
                continue;
            }
            info = *found;
            sReason.clear();
            std::unique_ptr<IkCamera> camera = driver->open(sId, &sReason);
            return camera != nullptr && camera->parameters() != nullptr ? std::move(camera) : nullptr;
        } catch (...) {
            return nullptr;
        }
    }
    return nullptr;
}

QList<SkCameraInfo> CkCameraManager::CkPrivate::offered(bool& bComplete) const {
    QList<SkCameraInfo> cameras;
    bComplete = true;
    for (const auto& driver : m_drivers) {
        try {
            cameras.append(driver->availableCameras());
        } catch (...) {
            bComplete = false; // one broken driver does not hide the cameras of the others
        }
    }
    return cameras;
}

CkCameraManager::CkCameraManager() : m_d(std::make_unique<CkPrivate>()) {
    // Cameras stop with the application object, while everything their threads use is still there.
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
        m_d->m_drivers.push_back(std::move(driver));
        emit availableCamerasChanged();
    }
}

QList<SkCameraInfo> CkCameraManager::availableCameras() const {
    bool complete = true;
    QList<SkCameraInfo> cameras = m_d->offered(complete);
    cameras.removeIf([this](const SkCameraInfo& info) { return m_d->isHeldApart(info.id); });
    return cameras;
}

void* CkCameraManager::openCamera(const QString& sId, QString* psError) {
    for (const auto& open : m_d->all()) {
        if (open->info.id == sId) {
            return open->handle;
        }
    }
    if (m_d->isHeldApart(sId)) {
        setError(psError, tr("Camera \"%1\" is unplugged.").arg(sId));
        return nullptr;
    }
    QString reason = tr("There is no camera \"%1\".").arg(sId);
    auto open = std::make_shared<SkOpenCamera>();
    open->camera = m_d->openAtDriver(sId, open->info, reason);
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
    const std::shared_ptr<SkOpenCamera> open = m_d->find(pHandle);
    if (!open || open->presence == EkPresence::Closing) {
        return;
    }
    open->presence = EkPresence::Closing; // who hears of it may call again
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
    const std::shared_ptr<SkOpenCamera> open = m_d->find(pHandle);
    if (!open || open->presence != EkPresence::PluggedIn) {
        return;
    }
    m_d->m_heldApart.append(open->info);
    takeAsLost(pHandle);
    emit availableCamerasChanged();
}

bool CkCameraManager::plugCameraIn(const QString& sId, QString* psError) {
    if (m_d->m_heldApart.removeIf([&sId](const SkCameraInfo& info) { return info.id == sId; }) == 0) {
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
    const QList<SkCameraInfo> offered = m_d->offered(complete);
    for (const auto& open : m_d->all()) {
        const QString id = open->info.id;
        const bool there =
            !m_d->isHeldApart(id) && std::any_of(offered.cbegin(), offered.cend(),
                                                 [&id](const SkCameraInfo& info) { return info.id == id; });
        if (there && isUnplugged(open->handle)) {
            takeBack(open->handle, nullptr);
        } else if (!there && complete) {
            takeAsLost(open->handle);
        }
    }
    emit availableCamerasChanged();
}

void CkCameraManager::takeAsLost(void* pHandle) {
    const std::shared_ptr<SkOpenCamera> open = m_d->find(pHandle);
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
    const std::shared_ptr<SkOpenCamera> open = m_d->find(pHandle);
    if (!isUnplugged(pHandle)) {
        return false;
    }
    QString reason;
    SkCameraInfo info;
    std::unique_ptr<IkCamera> fresh = m_d->openAtDriver(open->info.id, info, reason);
    if (!fresh) {
        setError(psError,
                 reason.isEmpty() ? tr("Camera \"%1\" cannot be opened.").arg(open->info.id) : reason);
        return false;
    }
    const bool runs = open->presence == EkPresence::UnpluggedWhileRunning;
    // Kept until everybody has let go of its parameters.
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
    return m_d->m_heldApart;
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
        // The camera is stopped before what it delivers to goes.
        running = open->camera->start([target = open.get()](CkImageData* frame) { target->dispatch(frame); },
                                      &reason);
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
        open->addReceiver(pReceiver, std::move(receive));
    }
}

void CkCameraManager::removeFrameReceiver(const void* pReceiver) {
    for (const auto& open : m_d->all()) {
        open->removeReceiver(pReceiver);
    }
}
