#include "host/viewer/playback/CkFrameGate.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMutex>
#include <QSemaphore>

#include <memory>

namespace {

constexpr int kSliceMs = 5;
constexpr int kLongestWaitMs = 1000; // a box may hold the user interface, which is no reason to stop

class CkGateEvent : public QEvent {
public:
    explicit CkGateEvent(std::shared_ptr<QSemaphore> pReached)
        : QEvent(kind()), m_reached(std::move(pReached)) {}
    static Type kind() {
        static const int number = QEvent::registerEventType();
        return Type(number);
    }
    void reach() const { m_reached->release(); }

private:
    std::shared_ptr<QSemaphore> m_reached;
};

/// Who may be posted to; null once the gate has gone.
struct SkTarget {
    QMutex mutex;
    CkFrameGate* gate = nullptr;
};

} // namespace

CkFrameGate::CkFrameGate(QObject* pParent) : QObject(pParent) {}

std::function<void(const std::function<bool()>&)> CkFrameGate::function() {
    auto target = std::make_shared<SkTarget>();
    target->gate = this;
    connect(this, &QObject::destroyed, [target] {
        const QMutexLocker lock(&target->mutex);
        target->gate = nullptr;
    });
    return [target](const std::function<bool()>& interrupted) {
        auto reached = std::make_shared<QSemaphore>();
        {
            const QMutexLocker lock(&target->mutex);
            if (target->gate == nullptr) {
                return;
            }
            // Behind the frames, and behind the painting that follows from them.
            QCoreApplication::postEvent(target->gate, new CkGateEvent(reached), Qt::LowEventPriority - 1);
        }
        for (int waited = 0; waited < kLongestWaitMs && !interrupted(); waited += kSliceMs) {
            if (reached->tryAcquire(1, kSliceMs)) {
                return;
            }
        }
    };
}

void CkFrameGate::customEvent(QEvent* pEvent) {
    if (pEvent->type() == CkGateEvent::kind()) {
        static_cast<const CkGateEvent*>(pEvent)->reach();
    }
}
