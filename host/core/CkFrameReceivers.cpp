#include "host/core/CkFrameReceivers.h"

#include "zuCore/CkImageData.h"

#include <algorithm>
#include <iterator>
#include <utility>

void CkFrameReceivers::dispatch(CkImageData* pFrame) {
    std::unique_ptr<CkImageData> frame(pFrame);
    quint64 serial = 0;
    std::unique_lock lock(m_mutex);
    while (frame) {
        const auto next = std::find_if(m_receivers.begin(), m_receivers.end(),
                                       [serial](const SkReceiver& entry) { return entry.serial > serial; });
        if (next == m_receivers.end()) {
            return;
        }
        serial = next->serial;
        const auto receive = next->receive;
        const bool last = std::next(next) == m_receivers.end();
        m_busy = next->key;
        m_busyThread = std::this_thread::get_id();
        lock.unlock();
        CkImageData* const own = last ? frame.release() : frame->share();
        if (own != nullptr) {
            try {
                (*receive)(own);
            } catch (...) {
                // The failure of one receiver must not stop the camera or cost the others the frame.
            }
        }
        lock.lock();
        m_busy = nullptr;
        m_done.notify_all();
    }
}

void CkFrameReceivers::add(const void* pReceiver, IkCamera::FrameFunction receive) {
    remove(pReceiver);
    const std::lock_guard lock(m_mutex);
    m_receivers.push_back(
        {pReceiver, std::make_shared<const IkCamera::FrameFunction>(std::move(receive)), m_nextSerial++});
}

void CkFrameReceivers::remove(const void* pReceiver) {
    std::unique_lock lock(m_mutex);
    std::erase_if(m_receivers, [pReceiver](const SkReceiver& entry) { return entry.key == pReceiver; });
    // A receiver that removes itself from within its call must not wait for itself.
    m_done.wait(lock, [&] { return m_busy != pReceiver || m_busyThread == std::this_thread::get_id(); });
}
