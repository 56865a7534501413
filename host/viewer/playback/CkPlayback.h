#pragma once

#include <QObject>
#include <QPointer>

#include <optional>

class CkChain;
class CkFrameThrottle;
class CkMdiView;
class CkVideoSource;
class CkViewArea;

/// Plays the recording at the start of the active view's chain. User-interface thread.
///
/// Also delivers the current frame of a paused recording again whenever its chain is started, for blocks and
/// views that were added.
class CkPlayback : public QObject {
    Q_OBJECT

public:
    explicit CkPlayback(CkViewArea* pArea, QObject* pParent = nullptr);

    /// The recording at the start of the view's chain; null for other sources. For a view that follows
    /// another one, the recording of that view.
    static CkVideoSource* sourceOf(const CkViewArea& area, const CkMdiView* pView);

    /// Of the active view; null when it shows no recording.
    CkVideoSource* source() const;

    /// Time of a frame since the first one, in nanoseconds; std::nullopt for recordings without time stamps.
    std::optional<qint64> timeOf(qint64 iFrame) const;

public slots:
    void togglePlaying();
    void stepForward();
    void stepBack();
    void goToFirst();
    void goToLast();
    void goTo(qint64 iFrame);
    void setLoop(bool bLoop);
    void setPace(int iPace);
    void setSpeed(double fSpeed);

signals:
    /// The active view shows another recording, or none.
    void sourceChanged();
    /// Loop, pace or speed were changed here.
    void settingsChanged();

private:
    void follow();
    void watch(CkChain* pChain);

    CkViewArea* m_area;
    CkFrameThrottle* m_throttle;
    QPointer<CkVideoSource> m_source;
};
