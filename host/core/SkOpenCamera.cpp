#include "host/core/SkOpenCamera.h"

#include "zuCore/CkImageData.h"

#include <algorithm>
#include <utility>

namespace {

// One step where the camera takes it, else one by one, so that a value that it no longer accepts takes no
// other with it.
void copyValues(const CkCameraParameters& from, CkCameraParameters& to) {
    QList<CkCameraParam*> changed;
    for (const CkCameraParam* old : from.params()) {
        CkCameraParam* const param = to.findParam(old->name());
        if (param != nullptr && !param->description().readOnly &&
            param->setParamValue(old->committedValue())) {
            changed.append(param);
            to.addParamCommitToBatch(param);
        }
    }
    if (to.endCommitBatch(true)) {
        return;
    }
    for (CkCameraParam* param : changed) {
        const CkCameraParam* const old = from.findParam(param->name());
        if (param->setParamValue(old->committedValue())) {
            param->commit();
        }
    }
}

} // namespace

SkOpenCamera::~SkOpenCamera() = default;

void SkOpenCamera::close() {
    if (camera && camera->isRunning()) {
        camera->stop();
    }
    std::unique_ptr<IkCamera> gone;
    {
        const std::lock_guard lock(m_cameraMutex);
        gone = std::move(camera);
    }
}

void SkOpenCamera::unplug() {
    presence = camera->isRunning() ? EkPresence::UnpluggedWhileRunning : EkPresence::Unplugged;
    if (camera->isRunning()) {
        camera->stop();
    }
}

std::unique_ptr<IkCamera> SkOpenCamera::replug(std::unique_ptr<IkCamera> fresh) {
    copyValues(*camera->parameters(), *fresh->parameters());
    fresh->setPaused(paused);
    const std::lock_guard lock(m_cameraMutex);
    std::swap(camera, fresh);
    return fresh;
}

bool SkOpenCamera::frameInfo(SkPicBufInfo& formatInfo, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_cameraMutex);
    try {
        return camera && camera->frameInfo(formatInfo, pMetadata);
    } catch (...) {
        return false;
    }
}

void SkOpenCamera::dispatch(CkImageData* pFrame) {
    std::unique_ptr<CkImageData> frame(pFrame);
    quint64 serial = 0;
    std::unique_lock lock(m_receiverMutex);
    while (frame) {
        const auto next = std::find_if(m_receivers.begin(), m_receivers.end(),
                                       [serial](const SkReceiver& entry) { return entry.serial > serial; });
        if (next == m_receivers.end()) {
            return;
        }
        serial = next->serial;
        const auto receive = next->receive;
        const bool last = std::next(next) == m_receivers.end();
        m_pBusy = next->key;
        m_busyThread = std::this_thread::get_id();
        lock.unlock();
        CkImageData* const own = last ? frame.release() : frame->share();
        if (own != nullptr) {
            try {
                (*receive)(own);
            } catch (...) { // a receiver's failure is not the camera's
            }
        }
        lock.lock();
        m_pBusy = nullptr;
        m_done.notify_all();
    }
}

void SkOpenCamera::addReceiver(const void* pReceiver, IkCamera::FrameFunction receive) {
    removeReceiver(pReceiver);
    const std::lock_guard lock(m_receiverMutex);
    m_receivers.push_back(
        {pReceiver, std::make_shared<const IkCamera::FrameFunction>(std::move(receive)), m_uiNextSerial++});
}

void SkOpenCamera::removeReceiver(const void* pReceiver) {
    std::unique_lock lock(m_receiverMutex);
    std::erase_if(m_receivers, [pReceiver](const SkReceiver& entry) { return entry.key == pReceiver; });
    // A receiver that takes itself away while it is called cannot wait for itself.
    m_done.wait(lock, [&] { return m_pBusy != pReceiver || m_busyThread == std::this_thread::get_id(); });
}
