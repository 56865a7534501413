#pragma once

#include "host/viewer/session/SkWindowLayout.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Saves the window's layout and what is open in it a few seconds after a change, so that a crash does not
/// cost the session. Waits while a dialog is open or a mouse button is down. User-interface thread.
class CkSessionSaver : public QObject {
    Q_OBJECT

public:
    /// Watches the window from now on; its present layout counts as saved. With bAtOnce every change counts;
    /// otherwise only those after the user's first key press or click: a viewer that was only started does
    /// not replace the saved session.
    CkSessionSaver(const QMainWindow* pWindow, const CkViewArea* pArea, EkSessionScope scope, bool bAtOnce);
    ~CkSessionSaver() override;

    /// Time from a change to the file, in ms.
    void setDelay(int iMs) { m_timer.setInterval(iMs); }

    /// To be called when the window closes; nothing is saved any more.
    void end();

signals:
    void saved();
    /// A change could not be saved yet, because of an open dialog or popup or a pressed mouse button.
    void postponed();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void scheduleSave();
    void save();

    const QMainWindow* m_window;
    const CkViewArea* m_area;
    EkSessionScope m_scope;
    SkWindowLayout m_last;
    QTimer m_timer;
    QElapsedTimer m_waiting; ///< since the oldest unsaved change
    bool m_isOn;             ///< changes count
};
