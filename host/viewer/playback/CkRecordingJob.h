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
/// A source is followed wherever it goes (blocks put behind it, another chain); the output of a view is
/// followed like the view follows it. The recording ends by itself when its block goes.
class CkRecordingJob : public QObject {
    Q_OBJECT

public:
    enum class EkState { Running, Finishing, Finished };

    explicit CkRecordingJob(QObject* pParent = nullptr);
    /// Writes what waits and closes the file.
    ~CkRecordingJob() override;

    /// False, with sError, when the file cannot be made or the block is in no chain.
    bool start(CkChainable* pBlock, const QString& sFileName, const SkRecordingInfo& info,
               const CkRecorder::SkOptions& options, QString& sError);
    /// Takes no more frames; the file is closed once those that wait have been written.
    void stop();

    EkState state() const { return m_state; }
    CkRecorder::SkState counters() const { return m_recorder.state(); }
    QString fileName() const { return m_sFileName; }
    /// The block recorded; null when it has gone.
    CkChainable* block() const { return m_block; }
    /// What is recorded, for people.
    QString title() const { return m_sTitle; }
    void setTitle(const QString& sTitle) { m_sTitle = sTitle; }
    /// Milliseconds from the start to now, or to the stop.
    qint64 elapsedMs() const;

signals:
    /// A frame was lost, or an error met.
    void troubled();
    void stateChanged();

private:
    void attach();
    void detach();
    void chainGoes(CkChain* pChain);
    void noticeTrouble();

    CkRecorder m_recorder;
    EkState m_state = EkState::Finished;
    QString m_sFileName;
    QString m_sTitle;
    QPointer<CkChainable> m_block;
    QPointer<CkChain> m_chain;
    bool m_bSource = false;
    std::atomic<bool> m_bTroublePending = false;
    std::future<bool> m_finishing;
    QElapsedTimer m_clock;
    qint64 m_iElapsedMs = 0;
};
