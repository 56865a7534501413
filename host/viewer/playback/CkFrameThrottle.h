#pragma once

#include <QObject>

#include <functional>

/// Lets a player go on when the user interface has shown what it was given: a view keeps only the newest
/// frame, and would lose those that come faster.
class CkFrameThrottle : public QObject {
    Q_OBJECT

public:
    explicit CkFrameThrottle(QObject* pParent = nullptr);

    /// For CkVideoSource::setAfterFrame. Works on after the throttle has gone, without waiting.
    std::function<void(const std::function<bool()>&)> function();

protected:
    void customEvent(QEvent* pEvent) override;
};
