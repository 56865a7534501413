#pragma once

#include "host/core/CkFrameReceivers.h"

#include <memory>
#include <mutex>

/// Whether an open camera can deliver.
enum class EkPresence {
    PluggedIn,
    Unplugged,
    UnpluggedWhileRunning, ///< resumes delivery when it is plugged in again
    Closing,
};

/// An open camera and the receivers of its frames. The handle stays the same while it is unplugged and
/// plugged in again.
class CkOpenCamera {
public:
    CkOpenCamera() = default;
    ~CkOpenCamera();
    CkOpenCamera(const CkOpenCamera&) = delete;
    CkOpenCamera& operator=(const CkOpenCamera&) = delete;

    void* handle = nullptr;
    SkCameraInfo info;
    std::unique_ptr<IkCamera> camera; ///< user-interface thread, except for frameInfo
    EkPresence presence = EkPresence::PluggedIn;
    bool paused = false;

    bool isUnplugged() const {
        return presence == EkPresence::Unplugged || presence == EkPresence::UnpluggedWhileRunning;
    }
    /// Starts the camera; its frames go to the receivers. False, with sReason if the driver gave one.
    /// User-interface thread.
    bool start(QString& sReason);
    /// Stops and deletes the camera. User-interface thread.
    void close();
    /// Stops the camera but keeps it for its parameters. User-interface thread.
    void unplug();
    /// Replaces the camera object by a newly opened one, to which the parameter values are copied. Returns
    /// the old object, stopped. User-interface thread.
    std::unique_ptr<IkCamera> replug(std::unique_ptr<IkCamera> fresh);
    /// Any thread, also while the camera is closed.
    bool frameInfo(SkPicBufInfo& formatInfo, CkImageMetadata* pMetadata) const;

    CkFrameReceivers receivers;

private:
    mutable std::mutex m_cameraMutex; ///< keeps the camera alive during frameInfo
};
