#pragma once

#include <QHash>
#include <QTimer>
#include <QWidget>

class CkRecordingManager;
class CkRecordingJob;
class QLabel;
class QToolButton;
class QVBoxLayout;

/// One line for each recording: what goes into which file, live counters, a button to stop it. User-interface
/// thread.
class CkRecordingPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkRecordingPanel(CkRecordingManager* pManager, QWidget* pParent = nullptr);

    /// "12 frames, 58.6 MB, 0:00.4, 3 of 16 in the queue"
    static QString countersText(const CkRecordingJob& job);
    /// "2.4 GB".
    static QString sizeText(quint64 uiBytes);

    /// Happens by itself while the panel is visible, and at once when a frame is lost.
    void refresh();

signals:
    /// Play a finished recording.
    void openRequested(const QString& sFileName);

private:
    struct SkRow {
        QWidget* widget = nullptr;
        QLabel* lamp = nullptr;
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

    CkRecordingManager* m_pManager;
    QVBoxLayout* m_pRows = nullptr;
    QLabel* m_pEmpty = nullptr;
    QHash<CkRecordingJob*, SkRow> m_rows;
    QTimer m_timer;
};
