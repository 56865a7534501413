#pragma once

#include "host/core/CkOpenCamera.h"

#include <memory>
#include <mutex>
#include <vector>

/// The open cameras of the program and their handles. Any thread. Ownership is shared with callers: a slot
/// may close the camera for which a signal is being emitted.
class CkOpenCameraList {
public:
    using Camera = std::shared_ptr<CkOpenCamera>;

    Camera find(void* pHandle) const;          ///< Null for a handle that is not valid.
    Camera findById(const QString& sId) const; ///< Null when no camera with this identifier is open.
    /// In order of opening. A copy: callers run foreign code, which may open and close cameras.
    std::vector<Camera> all() const;

    void add(const Camera& open); ///< Assigns the handle.
    void remove(const Camera& open);

private:
    template <typename Condition>
    Camera findIf(Condition condition) const;

    mutable std::mutex m_mutex;
    std::vector<Camera> m_cameras;
    quintptr m_nextHandle = 1; ///< counts up: the handle of a closed camera is never reused
};
