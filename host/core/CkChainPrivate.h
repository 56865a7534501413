#pragma once

#include "host/core/CkChainRunner.h"
#include "host/core/CkControlMutex.h"
#include "zuCore/CkChain.h"

#include <thread>
#include <vector>

/// The implementation of a chain: its parts, its thread, start and stop.
///
/// Lock order, outermost first: control, a block's own, graph, queue. Control serialises start, stop and
/// structural changes; it is held while blocks are set up and torn down, and is recursive because they may
/// call the chain from there. Neither graph nor queue is held while foreign code runs. Foreign code is the
/// code of blocks, sources, sinks and pictures; every call of it is guarded.
class CkChain::CkPrivate {
public:
    explicit CkPrivate(CkChain* pChain);

    bool isChainThread() const { return m_threadId.load() == std::this_thread::get_id(); }
    bool start();
    void stop();
    void clear(); ///< Deletes all blocks. Control lock, stopped.
    /// Removes a block that is being deleted while it is in the chain. Stops the chain.
    void removeDeleted(CkChainable* pBlock);

    /// See CkImageSource::deliver and reportLost.
    static bool deliver(CkImageSource* pSource, CkImageData* pFrame);
    static void reportLost(CkImageSource* pSource, quint64 uiFrames);

    /// The negotiated output format; in a chain that is not set up, negotiated now. Any thread.
    bool outputFormat(const CkChainable* pBlock, SkFormat& format);

    CkChain* const m_q; ///< the public object
    CkControlMutex m_control;
    CkMemoryPool m_pool;
    CkChainGraph m_graph;
    CkFrameQueue m_queue;
    std::atomic<EkChainState> m_state = EkChainState::Stopped;
    CkChainSetUp m_setUp;
    CkChainRunner m_runner;
    bool m_closing = false; ///< used by the manager

private:
    enum class EkCache { NotNegotiated, Known, Unknown };

    void setUpForRun();
    void run();
    /// Notifies the sources of frames dropped from the queue. Control lock, and no chain thread: the events
    /// of a source come in the order of delivery.
    static void notifyDropped(const std::vector<SkChainNode*>& sources);
    void setNegotiated(bool bNegotiated);
    EkCache cachedOutput(const CkChainable* pBlock, SkFormat& format) const;

    bool m_negotiated = false; ///< outputs are valid for the current run; graph lock
    bool m_abortStart = false; ///< stop was called from within start; control lock
    std::thread m_thread;
    std::atomic<std::thread::id> m_threadId;
};
