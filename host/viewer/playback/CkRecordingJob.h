#pragma once

#include "host/recording/CkRecorder.h"
#include "zuCore/CkChainable.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <future>

class CkChain;

/// One recording of a block's output, from its start until the file is closed. User-interface thread.
///
/// The recording of a source continues when blocks are added after it or when it moves to another chain; the
/// recording of a view's output follows the view to blocks inserted there. The recording ends when its block
/// is destroyed.
class CkRecordingJob : public QObject {
    Q_OBJECT

public:
    enum class EkState { Running, Finishing, Finished };

    explicit CkRecordingJob(QObject* pParent = nullptr);
    /// Writes the frames in flight and closes the file.
    ~CkRecordingJob() override;

    /// False, with sError set, when the file cannot be created or the block is in no chain.
    bool start(CkChainable* pBlock, const QString& sFileName, const SkRecordingInfo& info,
               const CkRecorder::SkOptions& options, QString& sError);
    /// Accepts no more frames; the file is closed once those in flight have been written.
    void stop();

    EkState state() const { return m_state; }
    CkRecorder::SkState counters() const { return m_recorder.state(); }
    QString fileName() const { return m_fileName; }
    /// The recorded block; null when it has been destroyed.
    CkChainable* block() const { return m_block; }
    /// What is recorded, as shown to the user.
    QString title() const { return m_title; }
    void setTitle(const QString& sTitle) { m_title = sTitle; }
    /// Milliseconds from the start to now, or to the stop.
    qint64 elapsedMs() const;

signals:
    /// A frame was dropped, or an error occurred.
    void problemOccurred();
    void stateChanged();

private:
    void attach();
    void detach();
    void handleClosingChain(CkChain* pChain);
    void handleProblem();

    CkRecorder m_recorder;
    EkState m_state = EkState::Finished;
    QString m_fileName;
    QString m_title;
    QPointer<CkChainable> m_block;
    QPointer<CkChain> m_chain;
    bool m_source = false;
    std::atomic<bool> m_problemPending = false;
    std::future<bool> m_finishing;
    QElapsedTimer m_clock;
    qint64 m_elapsedMs = 0;
};
