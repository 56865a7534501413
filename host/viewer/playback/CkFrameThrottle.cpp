#include "host/viewer/playback/CkFrameThrottle.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMutex>
#include <QSemaphore>

#include <memory>

namespace {

constexpr int kSliceMs = 5;
constexpr int kLongestWaitMs = 1000; // a modal loop may block the user interface; the playback then continues

class CkReachedEvent : public QEvent {
public:
    explicit CkReachedEvent(std::shared_ptr<QSemaphore> pReached)
        : QEvent(kind()), m_reached(std::move(pReached)) {}
    static Type kind() {
        static const int number = QEvent::registerEventType();
        return Type(number);
    }
    void reach() const { m_reached->release(); }

private:
    std::shared_ptr<QSemaphore> m_reached;
};

/// Receiver of the events; null once the throttle has been destroyed.
struct SkTarget {
    QMutex mutex;
    CkFrameThrottle* throttle = nullptr;
};

} // namespace

CkFrameThrottle::CkFrameThrottle(QObject* pParent) : QObject(pParent) {}

std::function<void(const std::function<bool()>&)> CkFrameThrottle::function() {
    auto target = std::make_shared<SkTarget>();
    target->throttle = this;
    connect(this, &QObject::destroyed, [target] {
        const QMutexLocker lock(&target->mutex);
        target->throttle = nullptr;
    });
    return [target](const std::function<bool()>& interrupted) {
        auto reached = std::make_shared<QSemaphore>();
        {
            const QMutexLocker lock(&target->mutex);
            if (target->throttle == nullptr) {
                return;
            }
            // After the frames and after the paint events that they cause.
            QCoreApplication::postEvent(target->throttle, new CkReachedEvent(reached),
                                        Qt::LowEventPriority - 1);
        }
        for (int waited = 0; waited < kLongestWaitMs && !interrupted(); waited += kSliceMs) {
            if (reached->tryAcquire(1, kSliceMs)) {
                return;
            }
        }
    };
}

void CkFrameThrottle::customEvent(QEvent* pEvent) {
    if (pEvent->type() == CkReachedEvent::kind()) {
        static_cast<const CkReachedEvent*>(pEvent)->reach();
    }
}
