#pragma once

#include "host/recording/CkRecordingWriter.h"

#include <QList>
#include <QObject>
#include <QString>

class CkChainable;
class CkRecordingJob;
class CkViewArea;
class QWidget;

/// Starts recordings and lists them. User-interface thread.
class CkRecordingManager : public QObject {
    Q_OBJECT

public:
    /// Message boxes and file dialogs open above pWindow, which becomes the parent.
    CkRecordingManager(CkViewArea* pArea, QWidget* pWindow);
    ~CkRecordingManager() override;

    /// Starts to record a block's output. Null, with sError naming the file and the reason, when the file
    /// cannot be created, or is being played or recorded to.
    CkRecordingJob* record(CkChainable* pBlock, const QString& sFileName, EkRecordingCompression compression,
                           QString& sError);

    /// The blocks that "record the source" and "record the view" refer to; null when the active view shows no
    /// chain.
    CkChainable* sourceToRecord() const;
    CkChainable* outputToRecord() const;
    /// The source of one of the camera's chains, preferably that of the active view; null without a chain.
    CkChainable* sourceOfCamera(void* pHandle) const;

    /// Asks for the file and starts recording; no-op for null.
    void recordWithDialog(CkChainable* pBlock);
    void stopAll();

    /// Running and finished ones, oldest first.
    const QList<CkRecordingJob*>& jobs() const { return m_jobs; }
    int runningCount() const;
    /// The running recording of this block, or null.
    CkRecordingJob* runningOf(const CkChainable* pBlock) const;
    /// Removes and deletes a finished one.
    void remove(CkRecordingJob* pJob);

signals:
    void jobsChanged();
    /// A frame was dropped or a file cannot be written.
    void problemOccurred(CkRecordingJob* pJob);

private:
    bool isInUse(const QString& sFileName, QString& sReason) const;
    QString titleOf(const CkChainable* pBlock) const;
    void report(CkRecordingJob* pJob);

    CkViewArea* m_area;
    QWidget* m_window;
    QList<CkRecordingJob*> m_jobs;
};
