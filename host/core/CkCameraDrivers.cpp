#include "host/core/CkCameraDrivers.h"

#include <algorithm>

std::unique_ptr<IkCamera> CkCameraDrivers::open(const QString& sId, SkCameraInfo& info,
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

QList<SkCameraInfo> CkCameraDrivers::offered(bool& bComplete) const {
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

bool CkCameraDrivers::contains(const QList<SkCameraInfo>& cameras, const QString& sId) {
    return std::any_of(cameras.cbegin(), cameras.cend(),
                       [&sId](const SkCameraInfo& info) { return info.id == sId; });
}

bool CkCameraDrivers::endWithhold(const QString& sId) {
    return m_withheld.removeIf([&sId](const SkCameraInfo& info) { return info.id == sId; }) > 0;
}
