#pragma once

#include "zuCore/CkChain.h"

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

/// Passes frames from a chain's thread to the user-interface thread through a buffer of one frame. A frame
/// replaces one that has not been fetched yet, so that no backlog builds up while the event loop is busy.
class CkFrameSlot : public QObject, public IkFrameSink {
public:
    using Receiver = std::function<void(std::unique_ptr<CkImageData>)>;

    /// The receiver is called on the thread that constructed this object.
    explicit CkFrameSlot(Receiver receiver);
    ~CkFrameSlot() override;

    /// Chain thread.
    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override;

    /// Drops the waiting frame. To be called after the slot was removed from its chain.
    void clear();
    /// Frames that were replaced before they were fetched. Any thread.
    quint64 droppedFrames() const { return m_dropped.load(std::memory_order_relaxed); }

protected:
    bool event(QEvent* pEvent) override;

private:
    const Receiver m_receiver;
    std::mutex m_mutex;
    std::unique_ptr<CkImageData> m_waiting;
    std::atomic<quint64> m_dropped{0};
};
