#pragma once

#include "host/core/SkChainNode.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

class CkChain;
class CkMemoryPool;

/// The blocks of a chain, their connections, and the sinks connected to them.
///
/// Blocks and connections change only under the chain's control lock and while the chain is stopped, so the
/// chain's thread reads them without a lock; sinks are added and removed at any time. The graph's lock guards
/// the lists against readers on other threads. It is never held while foreign code runs.
class CkChainGraph {
public:
    using Nodes = std::vector<SkChainNode*>;

    /// The sub-pool of a block is released when the block leaves the graph.
    CkChainGraph(CkChain* pChain, CkMemoryPool& pool) : m_chain(pChain), m_pool(pool) {}

    [[nodiscard]] std::unique_lock<std::mutex> lock() const { return std::unique_lock(m_mutex); }

    // ---- with the lock held by the caller -----------------------------------------------------------
    SkChainNode* find(const CkChainable* pBlock) const; ///< Null for a foreign block.
    /// In order of insertion.
    const std::vector<std::unique_ptr<SkChainNode>>& nodes() const { return m_nodes; }
    /// Topological order: every node after its predecessors. Incomplete when connections form a cycle.
    Nodes ordered() const;

    // ---- structure; these take the lock -------------------------------------------------------------
    /// Transfers ownership of the block to the chain; its QObject parent is cleared. pPredecessor may be
    /// null.
    SkChainNode* addNode(CkChainable* pBlock, SkChainNode* pPredecessor);
    void connect(SkChainNode& from, SkChainNode& to); ///< No-op where a connection exists.
    /// Moves all outputs of from to the node to: its successors (except to itself) and its sinks.
    void moveOutputs(SkChainNode& from, SkChainNode& to);
    void removeNode(SkChainNode* pNode); ///< The block is kept.
    void clear();                        ///< Deletes the blocks.

    // ---- sinks; these take the lock -----------------------------------------------------------------
    /// Moves a sink that is connected already. False for a foreign block.
    bool addSink(CkChainable* pBlock, IkFrameSink* pSink, int iHeldFrames);
    /// With bWait it returns only when the sink is no longer inside takeFrame.
    void removeSink(IkFrameSink* pSink, bool bWait);
    CkChainable* sinkBlock(const IkFrameSink* pSink) const; ///< Null when unknown.
    /// Passes a separate object to every sink of the node. True when the last sink received pData itself,
    /// because nothing else needs it; otherwise the caller keeps pData. Chain thread.
    bool passToSinks(SkChainNode& node, IkChainData* pData);

private:
    static void attach(CkChainable* pBlock, CkChain* pChain);
    static void connectNodes(SkChainNode& from, SkChainNode& to); ///< with the lock
    void disconnectSink(const IkFrameSink* pSink);                ///< with the lock

    CkChain* const m_chain;
    CkMemoryPool& m_pool;

    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<SkChainNode>> m_nodes;
    std::unordered_map<const CkChainable*, SkChainNode*> m_nodeOf;
    quint64 m_nextSerial = 1;
    IkFrameSink* m_busySink = nullptr; ///< inside takeFrame; removeSink waits for it
    std::condition_variable m_sinkDone;
};
