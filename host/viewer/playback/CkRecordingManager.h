#pragma once

#include "host/recording/CkRecordingWriter.h"

#include <QList>
#include <QObject>
#include <QString>

class CkChainable;
class CkRecordingJob;
class CkViewArea;
class QWidget;

/// The recordings that run, and how they are started. User-interface thread.
class CkRecordingManager : public QObject {
    Q_OBJECT

public:
    /// Boxes and file dialogs stand above pWindow.
    CkRecordingManager(CkViewArea* pArea, QWidget* pWindow);
    ~CkRecordingManager() override;

    /// Starts to record a block's output. Null, with sError naming the file and the reason, when the file
    /// cannot be made, or is being played or recorded to.
    CkRecordingJob* record(CkChainable* pBlock, const QString& sFileName, EkRecordingCompression compression,
                           QString& sError);

    /// What "record the source" and "record the view" mean now; null for nothing.
    CkChainable* sourceToRecord() const;
    CkChainable* outputToRecord() const;
    /// The source of one of the camera's chains, that of the active view if it is one; null without a chain.
    CkChainable* sourceOfCamera(void* pHandle) const;

    /// Ask for the file.
    void recordWithDialog(CkChainable* pBlock);
    void stopAll();

    /// Running and finished ones, oldest first.
    const QList<CkRecordingJob*>& jobs() const { return m_jobs; }
    int runningCount() const;
    /// The recording of this block that runs, or null.
    CkRecordingJob* runningOf(const CkChainable* pBlock) const;
    /// Forgets a finished one.
    void forget(CkRecordingJob* pJob);

signals:
    void jobsChanged();
    /// A frame was lost or a file cannot be written.
    void troubled(CkRecordingJob* pJob);

private:
    bool isInUse(const QString& sFileName, QString& sReason) const;
    QString titleOf(const CkChainable* pBlock) const;
    void tell(CkRecordingJob* pJob);

    CkViewArea* m_pArea;
    QWidget* m_pWindow;
    QList<CkRecordingJob*> m_jobs;
};
