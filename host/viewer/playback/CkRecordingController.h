#pragma once

#include "host/viewer/playback/CkPlaybackBar.h"

#include <QObject>

#include <functional>

class CkFileOpener;
class CkPlayback;
class CkRecordingManager;
class CkRecordingPanel;
class CkViewArea;
class QLabel;
class QPushButton;

/// The main window's interface to recording and playback: actions, the panel of recordings, the playback bar,
/// the recording indicator, and the kinds of files that can be opened. The window places them. User-interface
/// thread.
class CkRecordingController : public QObject {
    Q_OBJECT

public:
    /// Dialogs open above pWindow, which becomes the parent. The playback keys work while the area or the bar
    /// has the focus.
    CkRecordingController(CkViewArea* pArea, QWidget* pWindow);

    /// To be placed below the views.
    CkPlaybackBar* bar() const { return m_bar; }
    CkRecordingPanel* panel() const { return m_panel; }
    /// To be placed in the status bar; hidden while nothing is recorded.
    QLabel* recordingIndicator() const { return m_indicator; }
    CkRecordingManager* manager() const { return m_manager; }
    CkPlayback* playback() const { return m_playback; }

    /// Menu entries in order, including separators; call refresh() before they are shown.
    const QList<QAction*>& menuActions() const { return m_menuActions; }
    /// A new button that records a camera. openView opens a view on the camera, whose chain is then recorded.
    QPushButton* createRecordButton(void* pCameraHandle, std::function<void()> openView, QWidget* pParent);
    /// Registers recordings and pictures as files that can be opened.
    void addFileKinds(CkFileOpener* pOpener);

    /// False: files are opened with defaults and no question is asked.
    void setInteractive(bool bInteractive) { m_interactive = bInteractive; }

public slots:
    /// Updates actions and indicator.
    void refresh();

signals:
    /// A recording has started; the receiver shows the panel.
    void showPanelRequested();
    /// The user asked to open a finished recording.
    void openRequested(const QString& sFileName);

private:
    void createRecordActions();
    void createPlaybackActions();
    void fillMenuActions();
    QAction* createAction(const QString& sText, const char* sName, const QKeySequence& key);
    void refreshRecordActions();
    void refreshPlaybackActions();
    void refreshIndicator();

    QWidget* m_window;
    CkViewArea* m_area;
    CkRecordingManager* m_manager;
    CkPlayback* m_playback;
    CkPlaybackBar::SkActions m_play;
    QAction* m_everyFrame = nullptr;
    QAction* m_realTime = nullptr;
    QAction* m_recordSource = nullptr;
    QAction* m_recordView = nullptr;
    QAction* m_stopAll = nullptr;
    QList<QAction*> m_menuActions;
    QList<QAction*> m_playbackActions; ///< those of m_menuActions that need a recording in the active view
    CkPlaybackBar* m_bar = nullptr;
    CkRecordingPanel* m_panel = nullptr;
    QLabel* m_indicator = nullptr;
    QTimer m_timer;
    bool m_interactive = true;
};
