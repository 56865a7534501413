#include "host/core/CkOpenCameraList.h"

#include <algorithm>

template <typename Condition>
CkOpenCameraList::Camera CkOpenCameraList::findIf(Condition condition) const {
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_cameras.begin(), m_cameras.end(), condition);
    return found == m_cameras.end() ? nullptr : *found;
}

CkOpenCameraList::Camera CkOpenCameraList::find(void* pHandle) const {
    return findIf([pHandle](const Camera& open) { return open->handle == pHandle; });
}

CkOpenCameraList::Camera CkOpenCameraList::findById(const QString& sId) const {
    return findIf([&sId](const Camera& open) { return open->info.id == sId; });
}

std::vector<CkOpenCameraList::Camera> CkOpenCameraList::all() const {
    const std::lock_guard lock(m_mutex);
    return m_cameras;
}

void CkOpenCameraList::add(const Camera& open) {
    const std::lock_guard lock(m_mutex);
    open->handle = reinterpret_cast<void*>(m_nextHandle++);
    m_cameras.push_back(open);
}

void CkOpenCameraList::remove(const Camera& open) {
    const std::lock_guard lock(m_mutex);
    std::erase(m_cameras, open);
}
