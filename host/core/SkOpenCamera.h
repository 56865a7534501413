#pragma once

#include "zuCore/IkCameraDriver.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// Whether an open camera can deliver.
enum class EkPresence {
    PluggedIn,
    Unplugged,
    UnpluggedWhileRunning, ///< delivers as soon as it is back
    Closing,
};

/// An open camera and who gets its frames.
struct SkOpenCamera {
    SkOpenCamera() = default;
    ~SkOpenCamera();
    SkOpenCamera(const SkOpenCamera&) = delete;
    SkOpenCamera& operator=(const SkOpenCamera&) = delete;

    void* handle = nullptr;
    SkCameraInfo info;
    std::unique_ptr<IkCamera> camera; ///< user-interface thread, but for frameInfo
    EkPresence presence = EkPresence::PluggedIn;
    bool paused = false;

    /// Stops and deletes the camera. User-interface thread.
    void close();
    /// The camera, stopped, is kept for its parameters. User-interface thread.
    void unplug();
    /// Goes on with the same camera opened anew: its parameters get the values of the old one, which is
    /// handed back stopped. User-interface thread.
    std::unique_ptr<IkCamera> replug(std::unique_ptr<IkCamera> fresh);
    /// Any thread, also while the camera is closed.
    bool frameInfo(SkPicBufInfo& formatInfo, CkImageMetadata* pMetadata) const;

    /// An object of its own for each receiver. The camera's thread.
    void dispatch(CkImageData* pFrame);
    void addReceiver(const void* pReceiver, IkCamera::FrameFunction receive);
    /// Returns when the receiver is no longer being called.
    void removeReceiver(const void* pReceiver);

private:
    struct SkReceiver {
        const void* key = nullptr;
        std::shared_ptr<const IkCamera::FrameFunction> receive;
        quint64 serial = 0; ///< rises with every addition, so that a walk goes on after a change
    };

    mutable std::mutex m_cameraMutex; ///< keeps the camera alive during frameInfo
    std::mutex m_receiverMutex;
    std::condition_variable m_done;
    std::vector<SkReceiver> m_receivers;
    quint64 m_uiNextSerial = 1;
    const void* m_pBusy = nullptr;
    std::thread::id m_busyThread;
};
