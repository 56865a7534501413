#pragma once

#include "zuCore/CkChain.h"

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

/// Place for one frame between a chain's thread and the user-interface thread. A frame that comes before the
/// last one was fetched takes its place, so what waits never grows, whatever the event loop is busy with.
class CkFrameSlot : public QObject, public IkFrameSink {
public:
    using Receiver = std::function<void(std::unique_ptr<CkImageData>)>;

    /// The receiver is called on the thread this object was made on.
    explicit CkFrameSlot(Receiver receiver);
    ~CkFrameSlot() override;

    /// Chain thread.
    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override;

    /// Forgets the frame that waits. After the slot was taken off its chain.
    void clear();
    quint64 droppedFrames() const { return m_uiDropped.load(std::memory_order_relaxed); }

protected:
    bool event(QEvent* pEvent) override;

private:
    const Receiver m_receiver;
    std::mutex m_mutex;
    std::unique_ptr<CkImageData> m_waiting;
    std::atomic<quint64> m_uiDropped{0};
};
