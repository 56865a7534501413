#pragma once

#include "host/viewer/playback/CkPlaybackBar.h"

#include <QObject>

class CkCameraController;
class CkFileOpener;
class CkMainWindow;
class CkPlayback;
class CkRecordingManager;
class CkRecordingPanel;
class CkViewArea;
class QLabel;
class QMenu;

/// Recording and playback in the main window: the menu, the panel of recordings, the bar of the player, the
/// lamp in the status bar, and the kinds of files that can be opened. User-interface thread.
class CkRecordingController : public QObject {
    Q_OBJECT

public:
    explicit CkRecordingController(CkMainWindow* pWindow);

    /// The bar belongs under the views.
    CkPlaybackBar* bar() const { return m_pBar; }
    CkRecordingPanel* panel() const { return m_pPanel; }
    CkRecordingManager* manager() const { return m_pManager; }
    CkPlayback* playback() const { return m_pPlayback; }

    /// Fills a menu; pViews gets the keys of the player, which work while it or the bar has the focus.
    void fillMenu(QMenu* pMenu, QWidget* pViews);
    /// Recordings and pictures become files that can be opened.
    void addFileKinds(CkFileOpener* pOpener);

    /// Without, files are opened with defaults and no question is asked.
    void setAsks(bool bAsks) { m_bAsks = bAsks; }

signals:
    /// A recording began: the panel should be seen.
    void panelWanted();

private:
    void createActions();
    void equipCamera(void* pHandle);
    void refresh();

    CkMainWindow* m_pWindow;
    CkViewArea* m_pArea;
    CkCameraController* m_pCameras;
    CkRecordingManager* m_pManager;
    CkPlayback* m_pPlayback;
    CkPlaybackBar::SkActions m_play;
    QAction* m_pEveryFrame = nullptr;
    QAction* m_pRealTime = nullptr;
    QAction* m_pRecordSource = nullptr;
    QAction* m_pRecordView = nullptr;
    QAction* m_pStopAll = nullptr;
    CkPlaybackBar* m_pBar = nullptr;
    CkRecordingPanel* m_pPanel = nullptr;
    QLabel* m_pLamp = nullptr;
    QTimer m_timer;
    bool m_bAsks = true;
};
