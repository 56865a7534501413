#include "zuCore/CkCameraManager.h"

#include "SkOpenCamera.h"

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
    std::vector<std::unique_ptr<IkCameraDriver>> m_drivers;
    /// Handles are numbers that count up: one that has gone never comes back as another camera's.
    quintptr m_uiNextHandle = 1;
};

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
    QList<SkCameraInfo> cameras;
    for (const auto& driver : m_d->m_drivers) {
        try {
            cameras.append(driver->availableCameras());
        } catch (...) {
            continue; // one broken driver does not hide the cameras of the others
        }
    }
    return cameras;
}

void* CkCameraManager::openCamera(const QString& sId, QString* psError) {
    for (const auto& open : m_d->all()) {
        if (open->info.id == sId) {
            return open->handle;
        }
    }
    QString reason = tr("There is no camera \"%1\".").arg(sId);
    auto open = std::make_shared<SkOpenCamera>();
    for (const auto& driver : m_d->m_drivers) {
        try {
            const QList<SkCameraInfo> offered = driver->availableCameras();
            const auto info = std::find_if(offered.cbegin(), offered.cend(),
                                           [&sId](const SkCameraInfo& entry) { return entry.id == sId; });
            if (info == offered.cend()) {
                continue;
            }
            reason.clear();
            open->info = *info;
            open->camera = driver->open(sId, &reason);
        } catch (...) {
            open->camera.reset();
        }
        break;
    }
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
    if (!open || open->closing) {
        return;
    }
    open->closing = true; // who hears of it may call again
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
    if (!open || open->closing) {
        return;
    }
    const QString name = open->info.name;
    closeCamera(pHandle);
    emit cameraLost(name);
    emit availableCamerasChanged();
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
        open->camera->setPaused(bPaused);
    }
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
