#pragma once

#include "zuCore/IkCameraDriver.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// The receivers of a camera's frames. Any thread; the lock is never held while a receiver is called.
class CkFrameReceivers {
public:
    /// Replaces a receiver with the same key.
    void add(const void* pReceiver, IkCamera::FrameFunction receive);
    /// Returns only when the receiver is no longer being called, unless it removes itself from within its
    /// call.
    void remove(const void* pReceiver);
    /// Passes a separate object to each receiver. Takes ownership of the frame. Camera thread.
    void dispatch(CkImageData* pFrame);

private:
    struct SkReceiver {
        const void* key = nullptr;
        std::shared_ptr<const IkCamera::FrameFunction> receive; ///< outlives its removal during a call
        quint64 serial = 0; ///< rises with every addition, so that a walk can resume after the list changed
    };

    std::mutex m_mutex;
    std::condition_variable m_done;
    std::vector<SkReceiver> m_receivers;
    quint64 m_nextSerial = 1;
    const void* m_busy = nullptr; ///< key of the receiver being called; remove waits for it
    std::thread::id m_busyThread;
};
