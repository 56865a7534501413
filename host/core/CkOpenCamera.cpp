#include "host/core/CkOpenCamera.h"

#include <utility>

namespace {

// In one batch where the camera accepts it, otherwise one by one: a value that it no longer accepts must not
// cost the others.
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

void CkOpenCamera::close() {
    if (camera && camera->isRunning()) {
        camera->stop();
    }
    std::unique_ptr<IkCamera> gone;
    {
        const std::lock_guard lock(m_cameraMutex);
        gone = std::move(camera);
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
