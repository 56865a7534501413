#include "host/core/CkOpenCamera.h"

#include <utility>

namespace {

/// Copies the values as one batch if the camera accepts it, otherwise one by one: a value that it no longer
/// accepts must not prevent the others.
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

CkOpenCamera::~CkOpenCamera() = default;

bool CkOpenCamera::start(QString& sReason) {
    try {
        // The pointer stays valid: the camera is stopped before this object is destroyed.
        return camera->start([this](CkImageData* frame) { receivers.dispatch(frame); }, &sReason);
    } catch (...) {
        return false;
    }
}

void CkOpenCamera::close() {
    if (camera && camera->isRunning()) {
        camera->stop();
    }
    std::unique_ptr<IkCamera> closed; // destroyed without the lock: its destructor is foreign code
    {
        const std::lock_guard lock(m_cameraMutex);
        closed = std::move(camera);
    }
}

void CkOpenCamera::unplug() {
    presence = camera->isRunning() ? EkPresence::UnpluggedWhileRunning : EkPresence::Unplugged;
    if (camera->isRunning()) {
        camera->stop();
    }
}

std::unique_ptr<IkCamera> CkOpenCamera::replug(std::unique_ptr<IkCamera> fresh) {
    copyValues(*camera->parameters(), *fresh->parameters());
    fresh->setPaused(paused);
    const std::lock_guard lock(m_cameraMutex);
    std::swap(camera, fresh);
    return fresh;
}

bool CkOpenCamera::frameInfo(SkPicBufInfo& formatInfo, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_cameraMutex);
    try {
        return camera && camera->frameInfo(formatInfo, pMetadata);
    } catch (...) {
        return false;
    }
}
