#pragma once

#include "host/core/CkControlMutex.h"
#include "host/core/CkFrameQueue.h"
#include "host/core/CkRenegotiationThrottle.h"
#include "host/core/SkFormat.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkMemoryPool.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

class CkImageProvider;
class IkChainData;

/// A sink where it is connected.
struct SkSinkEntry {
    IkFrameSink* sink = nullptr;
    int heldFrames = 0;
    quint64 serial = 0; ///< rises with every connection, so that a walk goes on after a change
};

struct SkChainNode;

/// A connection, seen from the block that feeds.
struct SkChainOutput {
    SkChainNode* to = nullptr;
    size_t place = 0; ///< of the feeder among the predecessors
};

/// A block in its place.
struct SkChainNode {
    SkChainNode(CkChainable* pBlock, quint64 uiSerial);

    CkChainable* const block;
    CkImageProvider* const provider; ///< the block, or null
    CkImageSource* const source;     ///< the block, or null
    const quint64 serial;            ///< rises with every block of the chain
    std::vector<SkChainNode*> predecessors;
    std::vector<SkChainNode*> successors;
    std::vector<SkSinkEntry> sinks;

    // Of the run that goes on.
    size_t index = 0;                   ///< in the order of the run
    std::vector<SkChainOutput> outputs; ///< in that order
    std::vector<IkChainData*> inbox;    ///< one place for each predecessor; chain thread
    int pictures = 0;                   ///< that the block asks for, below 0 when it failed to
    bool negotiated = false;            ///< false for a block that refused its input
    bool ready = false;                 ///< false for a block that could not be set up
    quint64 refitFrame = 0;             ///< for which the chain was set up anew on its behalf; chain thread
    QString setUpText;                  ///< what the chain has to say of it since it was set up
    QString troubleText;                ///< and of its frames
    quint64 troubleFrame = 0;           ///< the last one that gave reason, 0 for none

    SkFormat output;    ///< what its successors are set up for
    SkFormat announced; ///< what the block said itself at that time
    SkFormat lastFrame; ///< that was of another format; chain thread
    int queued = 0;     ///< frames of a source that wait; the queue's

    std::atomic<quint64> framesIn = 0;
    std::atomic<quint64> framesOut = 0;
    std::atomic<quint64> framesDone = 0;
    std::atomic<quint64> dropped = 0;
    std::atomic<quint64> processNs = 0;
};

/// The works of a chain. Locks, in the order in which they may be taken: control, a block's own, graph; the
/// queue's is always the last. Neither graph nor queue is held while foreign code runs.
/// Foreign code is whatever a block, a sink or a picture does; no call of it is unguarded.
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
    /// Each behind its predecessors, fewer than there are when they go round in circles; with the graph lock.
    std::vector<SkChainNode*> ordered() const;

    // ---- formats ------------------------------------------------------------------------------------
    bool outputFormat(const CkChainable* pBlock, SkFormat& format);
    bool negotiateNow(const SkChainNode& node, SkFormat& format) const;
    /// Sets everything up for the formats that blocks announce. What a block said before and its frames have
    /// proved wrong is not believed, and neither is anything against the frame that is about to leave
    /// pInHand. Answers the largest change of an output.
    EkFormatChange negotiate(const SkChainNode* pInHand);
    void reservePools(bool bOnlyGrow);
    void reservePool(SkChainNode& node, int iHeldBehind, bool bOnlyGrow);
    std::vector<int> picturesHeldBehind() const; ///< by sinks behind each block of the run
    static bool queryOutput(CkImageProvider& provider, const SkFormat& input, SkFormat& output);
    /// False when there is no source, or blocks have no order.
    bool prepareRun();
    void setUpForRun();
    void setUp();
    void tearDown();

    // ---- messages; the block's own ones come first ----------------------------------------------------
    /// While set-up asks and tells blocks, their messages come and go; what came of it is told once.
    class CkHeldMessages;
    static void showSetUpError(SkChainNode& node, const QString& sText);
    /// Shown until so many frames have given no reason for it that it does not flicker.
    void showTrouble(SkChainNode& node, const QString& sText) const;
    void endTrouble(SkChainNode& node) const;
    static void showChainText(SkChainNode& node);

    // ---- the chain's thread -------------------------------------------------------------------------
    void run();
    EkFormatChange renegotiate(const SkChainNode* pInHand); ///< see negotiate
    /// A wish of the thread itself; served ever more rarely while it changes nothing. False when not now.
    bool askFromThread();
    bool isStopping() const { return m_life == EkLife::Stopping; }
    void runFrame(SkChainNode& source, CkImageData* pFrame);
    static void tellSource(const SkChainNode& source, CkImageSource::EkFrameEvent event);
    void closeQueue(); ///< Control lock. Tells the sources of the frames that it drops.
    void runBlock(SkChainNode& node);
    IkChainData* process(SkChainNode& node, IkChainData* pData);
    IkChainData* callBlock(SkChainNode& node, IkChainData* pData, bool& bInputIsOurs);
    void noteMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before);
    /// The one rule for whatever leaves a source or a block: a frame in another format than the negotiated
    /// one has the chain set up anew for it. False when it has to be dropped.
    bool fitsSetUp(SkChainNode& node, const IkChainData& data);
    void recoverBlock(SkChainNode& node, const IkChainData& data);
    bool giveToSinks(SkChainNode& node, IkChainData* pData);
    static void giveToSuccessors(SkChainNode& node, IkChainData* pData);

    CkChain* const m_q;
    CkControlMutex m_control;
    CkMemoryPool m_pool;

    mutable std::mutex m_graph;
    std::vector<std::unique_ptr<SkChainNode>> m_nodes; ///< in order of insertion
    std::unordered_map<const CkChainable*, SkChainNode*> m_nodeOf;
    bool m_bNegotiated = false; ///< outputs hold for the run that goes on
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

    CkRenegotiationThrottle m_throttle; ///< chain thread
};
