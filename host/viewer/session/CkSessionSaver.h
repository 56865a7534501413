#pragma once

#include "host/viewer/session/SkWindowLayout.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class CkMainWindow;

/// Remembers the window and what is open in it a few seconds after a change, so that a crash does not cost
/// the day's arrangement. Waits while a dialog is open or a mouse button is down. User-interface thread.
class CkSessionSaver : public QObject {
    Q_OBJECT

public:
    /// Looks at the window from now on; what there is now counts as remembered. With bAtOnce every change
    /// counts; without, none does before the user's first key or click: a window that was started on the side
    /// does not replace what is remembered by itself.
    CkSessionSaver(const CkMainWindow* pWindow, bool bAtOnce);
    ~CkSessionSaver() override;

    /// Time from a change to the file, in ms.
    void setDelay(int iMs) { m_timer.setInterval(iMs); }

    /// The window is closing; nothing is remembered any more.
    void end();

signals:
    void saved();
    /// There is something to remember, but not now.
    void postponed();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void touch();
    void save();

    const CkMainWindow* m_pWindow;
    SkWindowLayout m_last;
    QTimer m_timer;
    QElapsedTimer m_waiting; ///< since the oldest change that is not remembered
    bool m_bOn;
};
