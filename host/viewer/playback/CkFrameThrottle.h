#pragma once

#include <QObject>

#include <functional>

/// Back-pressure for a playing source, which may continue once the user interface has shown the last frame. A
/// view keeps only the newest frame and would drop frames that arrive faster. User-interface thread.
class CkFrameThrottle : public QObject {
    Q_OBJECT

public:
    explicit CkFrameThrottle(QObject* pParent = nullptr);

    /// For CkVideoSource::setAfterFrame; called on the source's thread. Returns at once after the throttle
    /// has been destroyed.
    std::function<void(const std::function<bool()>&)> function();

protected:
    void customEvent(QEvent* pEvent) override;
};
