#pragma once

#include "CkControlMutex.h"
#include "CkFrameQueue.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/SkPicBuf.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class CkImageProvider;
class CkImageSource;
class IkChainData;

/// A negotiated picture format.
struct SkFormat {
    bool known = false;
    SkPicBufInfo info;
    CkImageMetadata metadata;
};

/// A sink where it is connected.
struct SkSinkEntry {
    IkFrameSink* sink = nullptr;
    int heldFrames = 0;
    quint64 serial = 0; ///< rises with every connection, so that a walk goes on after a change
};

/// A block in its place.
struct SkChainNode {
    explicit SkChainNode(CkChainable* pBlock);

    CkChainable* const block;
    CkImageProvider* const provider; ///< the block, or null
    CkImageSource* const source;     ///< the block, or null
    std::vector<SkChainNode*> predecessors;
    std::vector<SkChainNode*> successors;
    std::vector<SkSinkEntry> sinks;

    SkFormat output;                  ///< negotiated last
    SkFormat announced;               ///< what a source said itself at that time
    SkFormat lastFrame;               ///< of a source; chain thread
    bool negotiated = false;          ///< in this run; false for a block that failed
    bool toleratesOtherSizes = false; ///< its frames never have the size it announces; chain thread
    int queued = 0;                   ///< frames of a source that wait; the queue's

    std::atomic<quint64> framesIn = 0;
    std::atomic<quint64> framesOut = 0;
    std::atomic<quint64> framesDone = 0;
    std::atomic<quint64> dropped = 0;
    std::atomic<quint64> processNs = 0;
};

/// Formats are the same when a block would make the same of both: fields that change from frame to frame, or
/// say only how a picture was allocated, do not count.
bool isSameLayout(const SkPicBufInfo& a, const SkPicBufInfo& b);
bool isSameFormat(const SkFormat& a, const SkFormat& b);

/// The works of a chain. Locks, in the order in which they may be taken: control, a block's own, graph; the
/// queue's is always the last. Neither graph nor queue is held while foreign code runs.
class CkChain::CkPrivate {
public:
    enum class EkLife { Stopped, Starting, Running, Stopping };

    explicit CkPrivate(CkChain* pChain);
    ~CkPrivate();

    // ---- life ---------------------------------------------------------------------------------------
    bool isChainThread() const { return m_threadId.load() == std::this_thread::get_id(); }
    bool start();
    void stop();
    static bool deliver(CkImageSource* pSource, CkImageData* pFrame);
    static void noteLost(CkImageSource* pSource, quint64 uiFrames);

    // ---- structure; changes need the control lock and a stopped chain ---------------------------------
    SkChainNode* find(const CkChainable* pBlock) const; ///< with the graph lock
    SkChainNode* addNode(CkChainable* pBlock, SkChainNode* pPredecessor);
    static void connectNodes(SkChainNode& from, SkChainNode& to);
    void moveOutputs(SkChainNode& from, SkChainNode& to);
    void removeNode(SkChainNode* pNode);
    void clear();
    void forget(CkChainable* pBlock);
    static void attach(CkChainable* pBlock, CkChain* pChain);
    std::vector<SkChainNode*> ordered() const; ///< each behind its predecessors; with the graph lock

    // ---- formats ------------------------------------------------------------------------------------
    bool outputFormat(const CkChainable* pBlock, SkFormat& format);
    bool negotiateNow(const SkChainNode& node, SkFormat& format) const;
    /// True when any output is another than before.
    bool negotiate();
    void reservePools(bool bOnlyGrow);
    int picturesNeeded(const SkChainNode& node) const;
    void setUp();
    void tearDown();
    void showError(CkChainable* pBlock, const QString& sText) const;

    // ---- the chain's thread -------------------------------------------------------------------------
    void run();
    void renegotiate();
    /// A wish of the thread itself; served ever more rarely while it changes nothing.
    void askFromThread();
    void runFrame(SkChainNode& source, CkImageData* pFrame);
    void process(SkChainNode& node, IkChainData* pData);
    void noteMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before,
                           const IkChainData& input);
    bool hasNegotiatedSize(SkChainNode& node, const IkChainData& data);
    void passOn(SkChainNode& node, IkChainData* pData);
    bool giveToSinks(SkChainNode& node, IkChainData* pData);
    void giveToSuccessors(SkChainNode& node, IkChainData* pData);

    CkChain* const m_q;
    CkControlMutex m_control;
    CkMemoryPool m_pool;

    mutable std::mutex m_graph;
    std::vector<std::unique_ptr<SkChainNode>> m_nodes; ///< in order of insertion
    bool m_bNegotiated = false;                        ///< outputs hold for the run that goes on
    quint64 m_uiNextSerial = 1;
    IkFrameSink* m_pBusySink = nullptr;
    std::condition_variable m_sinkDone;

    CkFrameQueue m_queue;
    std::atomic<EkLife> m_life = EkLife::Stopped;
    bool m_bAbortStart = false; ///< control lock
    bool m_bClosing = false;    ///< the manager's
    std::thread m_thread;
    std::atomic<std::thread::id> m_threadId;
    std::vector<SkChainNode*> m_order; ///< of the run that goes on

    quint32 m_uiUselessRenegotiations = 0; ///< chain thread, like the next
    quint32 m_uiFramesToIgnore = 0;
};
