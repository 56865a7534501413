#pragma once

#include <QHash>
#include <QTimer>
#include <QWidget>

class CkRecordingJob;
class CkRecordingManager;
class QLabel;
class QToolButton;
class QVBoxLayout;

/// One row per recording: its title and file, live counters, buttons to stop it, to open its file and to
/// remove the row. User-interface thread.
class CkRecordingPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkRecordingPanel(CkRecordingManager* pManager, QWidget* pParent = nullptr);

    /// "12 frames, 58.6 MB, 0:00.4, 3 of 16 in the queue"
    static QString countersText(const CkRecordingJob& job);
    /// "2.4 GB".
    static QString sizeText(quint64 uiBytes);

    /// Updates the counters; called periodically while the panel is visible, and when a frame is dropped.
    void refresh();

signals:
    /// The user asked to open a finished recording.
    void openRequested(const QString& sFileName);

private:
    struct SkRow {
        QWidget* widget = nullptr;
        QLabel* indicator = nullptr;
        QLabel* name = nullptr;
        QLabel* counters = nullptr;
        QLabel* drops = nullptr;
        QToolButton* stop = nullptr;
        QToolButton* open = nullptr;
        QToolButton* remove = nullptr;
    };

    void rebuild();
    SkRow createRow(CkRecordingJob* pJob);
    void refreshRow(const SkRow& row, const CkRecordingJob& job) const;

    CkRecordingManager* m_manager;
    QVBoxLayout* m_rowLayout = nullptr;
    QLabel* m_empty = nullptr;
    QHash<CkRecordingJob*, SkRow> m_rows;
    QTimer m_timer;
};
