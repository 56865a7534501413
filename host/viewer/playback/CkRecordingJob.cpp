#include "host/viewer/playback/CkRecordingJob.h"

#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageSource.h"

#include <QTimer>

namespace {
constexpr int kPollMs = 20;
}

CkRecordingJob::CkRecordingJob(QObject* pParent) : QObject(pParent) {
    // Called on the chain's or the recorder's thread, possibly for each frame: one queued call at a time is
    // enough.
    m_recorder.setProblemCallback([this](const CkRecorder::SkState&) {
        if (!m_problemPending.exchange(true)) {
            QMetaObject::invokeMethod(this, &CkRecordingJob::handleProblem, Qt::QueuedConnection);
        }
    });
    connect(CkChainManager::instance(), &CkChainManager::chainAboutToClose, this,
            &CkRecordingJob::handleClosingChain);
}

CkRecordingJob::~CkRecordingJob() {
    detach();
    if (m_finishing.valid()) {
        m_finishing.wait();
    }
    m_recorder.stop();
}

bool CkRecordingJob::start(CkChainable* pBlock, const QString& sFileName, const SkRecordingInfo& info,
                           const CkRecorder::SkOptions& options, QString& sError) {
    if (pBlock == nullptr || pBlock->chain() == nullptr) {
        sError = tr("\"%1\": there is nothing to record: the view shows no chain.").arg(sFileName);
        return false;
    }
    if (!m_recorder.start(sFileName, info, options, &sError)) {
        return false;
    }
    m_block = pBlock;
    m_source = qobject_cast<CkImageSource*>(pBlock) != nullptr;
    m_fileName = sFileName;
    m_state = EkState::Running;
    m_clock.start();
    attach();
    return true;
}

void CkRecordingJob::attach() {
    CkChain* chain = m_block ? m_block->chain() : nullptr;
    if (m_state != EkState::Running) {
        return;
    }
    if (chain == nullptr || !chain->addSink(m_block, &m_recorder)) {
        stop();
        return;
    }
    if (m_chain == chain) {
        return;
    }
    m_chain = chain;
    connect(chain, &CkChain::sinksMoved, this, [this] {
        CkChainable* fed = m_chain ? m_chain->sinkBlock(&m_recorder) : nullptr;
        if (m_state != EkState::Running || fed == m_block) {
            return;
        }
        // The output of a source is recorded, regardless of blocks added after it.
        if (m_source && m_block && m_block->chain() == m_chain) {
            m_chain->addSink(m_block, &m_recorder);
        } else if (fed != nullptr) {
            m_block = fed;
        }
    });
}

void CkRecordingJob::detach() {
    if (m_chain) {
        disconnect(m_chain, nullptr, this, nullptr);
        m_chain->removeSink(&m_recorder);
        m_chain = nullptr;
    }
}

void CkRecordingJob::handleClosingChain(CkChain* pChain) {
    if (pChain != m_chain || m_state != EkState::Running) {
        return;
    }
    detach();
    // A source that was removed from this chain is added to another one next.
    QTimer::singleShot(0, this, &CkRecordingJob::attach);
}

void CkRecordingJob::handleProblem() {
    m_problemPending = false;
    if (m_state == EkState::Running && !counters().error.isEmpty()) {
        stop();
    }
    emit problemOccurred();
}

void CkRecordingJob::stop() {
    if (m_state != EkState::Running) {
        return;
    }
    m_elapsedMs = m_clock.elapsed();
    m_state = EkState::Finishing;
    detach();
    // Writing the frames in flight may take long on a slow disk.
    m_finishing = std::async(std::launch::async, [this] { return m_recorder.stop(); });
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, [this, poll] {
        if (m_finishing.wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
            poll->deleteLater();
            poll->stop();
            m_state = EkState::Finished;
            emit stateChanged();
        }
    });
    poll->start(kPollMs);
    emit stateChanged();
}

qint64 CkRecordingJob::elapsedMs() const {
    return m_state == EkState::Running ? m_clock.elapsed() : m_elapsedMs;
}
