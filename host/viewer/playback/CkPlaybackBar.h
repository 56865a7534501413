#pragma once

#include <QTimer>
#include <QWidget>

class CkPlayback;
class QAction;
class QComboBox;
class QLabel;
class QSlider;
class QSpinBox;
class QToolButton;

/// Playback controls for the recording in the active view; hidden for views without one, and for single
/// frames. User-interface thread.
class CkPlaybackBar : public QWidget {
    Q_OBJECT

public:
    /// The actions are those of the menu; the bar adds buttons for them.
    struct SkActions {
        QAction* first = nullptr;
        QAction* back = nullptr;
        QAction* play = nullptr;
        QAction* forward = nullptr;
        QAction* last = nullptr;
        QAction* loop = nullptr;
    };

    CkPlaybackBar(CkPlayback* pPlayback, const SkActions& actions, QWidget* pParent = nullptr);

    /// "0:01.234".
    static QString timeText(qint64 iNanoseconds);

    /// Updates the bar; called automatically while it is visible.
    void refresh();

private:
    QToolButton* addButton(QAction* pAction);
    void createPaceControls();
    void adaptToSource();
    void showPace();
    void showDamage();

    CkPlayback* m_playback;
    SkActions m_actions;
    QSlider* m_slider = nullptr;
    QSpinBox* m_number = nullptr;
    QLabel* m_time = nullptr;
    QLabel* m_notice = nullptr;
    QComboBox* m_pace = nullptr;
    QComboBox* m_speed = nullptr;
    QTimer m_timer;
    qint64 m_shown =
        -2;          ///< frame whose time is shown; -1 is a position of the source, before its first frame
    QString m_total; ///< length of the recording
};
