#include "host/coregui/CkFrameSlot.h"

#include "zuCore/CkImageData.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

namespace {
QEvent::Type frameEventType() {
    static const int kType = QEvent::registerEventType();
    return QEvent::Type(kType);
}
} // namespace

CkFrameSlot::CkFrameSlot(Receiver receiver) : m_receiver(std::move(receiver)) {}

CkFrameSlot::~CkFrameSlot() = default;

int CkFrameSlot::takeFrame(CkImageData* pData) {
    std::unique_ptr<CkImageData> frame(pData);
    if (!frame) {
        return 0;
    }
    bool bReplaced = false;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.swap(frame);
        bReplaced = frame != nullptr;
    }
    if (bReplaced) {
        m_dropped.fetch_add(1, std::memory_order_relaxed);
        return 1;
    }
    // Low priority: queued connections to receivedFrame are served before the next frame, even when the event
    // loop never catches up. Otherwise the view would replace the announced frame before their slots run.
    QCoreApplication::postEvent(this, new QEvent(frameEventType()), Qt::LowEventPriority);
    return 0;
}

int CkFrameSlot::heldFrames() const {
    // One waiting, one arriving, one shown, and one still held by a listener that runs a nested event loop.
    return 4;
}

void CkFrameSlot::clear() {
    QCoreApplication::removePostedEvents(this, frameEventType());
    const std::lock_guard lock(m_mutex);
    m_waiting.reset();
}

bool CkFrameSlot::event(QEvent* pEvent) {
    if (pEvent->type() != frameEventType()) {
        return QObject::event(pEvent);
    }
    std::unique_ptr<CkImageData> frame;
    {
        const std::lock_guard lock(m_mutex);
        frame.swap(m_waiting);
    }
    if (frame) {
        m_receiver(std::move(frame));
    }
    return true;
}
