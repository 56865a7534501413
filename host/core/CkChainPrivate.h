#pragma once

#include "host/core/CkChainRunner.h"
#include "host/core/CkControlMutex.h"
#include "zuCore/CkChain.h"

#include <thread>

/// The life of a chain: its parts, its thread, start and stop.
///
/// Locks, in the order in which they may be taken: control, a block's own, graph; the queue's is always the
/// last. Neither graph nor queue is held while foreign code runs. Foreign code is whatever a block, a source,
/// a sink or a picture does; no call of it is unguarded.
class CkChain::CkPrivate {
public:
    explicit CkPrivate(CkChain* pChain);

    bool isChainThread() const { return m_threadId.load() == std::this_thread::get_id(); }
    bool start();
    void stop();
    void clear(); ///< Deletes all blocks. Control lock, stopped.
    /// For a block that is deleted while it is in the chain. Stops the chain.
    void forget(CkChainable* pBlock);

    /// See CkImageSource::deliver and noteLost.
    static bool deliver(CkImageSource* pSource, CkImageData* pFrame);
    static void noteLost(CkImageSource* pSource, quint64 uiFrames);

    /// As negotiated; of a chain that is not set up, asked for now. Any thread.
    bool outputFormat(const CkChainable* pBlock, SkFormat& format);

    CkChain* const m_q;
    CkControlMutex m_control;
    CkMemoryPool m_pool;
    CkChainGraph m_graph;
    CkFrameQueue m_queue;
    std::atomic<EkChainState> m_state = EkChainState::Stopped;
    CkChainSetUp m_setUp;
    CkChainRunner m_runner;
    bool m_bClosing = false; ///< the manager's

private:
    enum class EkCache { NotNegotiated, Known, Unknown };

    void setUpForRun();
    void run();
    void closeQueue(); ///< Control lock. Tells the sources of the frames that it drops.
    void setNegotiated(bool bNegotiated);
    EkCache cachedOutput(const CkChainable* pBlock, SkFormat& format) const;

    bool m_bNegotiated = false; ///< outputs hold for the current run; graph lock
    bool m_bAbortStart = false; ///< stop was called by what start called; control lock
    std::thread m_thread;
    std::atomic<std::thread::id> m_threadId;
};
