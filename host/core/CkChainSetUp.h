#pragma once

#include "host/core/CkChainGraph.h"

/// Sets up the blocks of a run in topological order for the negotiated formats, and tears them down
/// afterwards. Used by start and stop with the control lock while the chain's thread does not run, otherwise
/// by that thread.
class CkChainSetUp {
public:
    CkChainSetUp(CkChainGraph& graph, CkMemoryPool& pool) : m_graph(graph), m_pool(pool) {}

    /// Determines the order and resets the per-run state of the nodes. False when there is no source, or when
    /// the connections form a cycle.
    bool prepare();
    void clearOrder() { m_order.clear(); } ///< Before the nodes are deleted.
    const CkChainGraph::Nodes& order() const { return m_order; }

    /// See ChainNegotiation::negotiate.
    EkFormatChange negotiate(const SkChainNode* pCurrent);
    void reservePools(bool bOnlyGrow); ///< See ChainPools::reserve.
    void setUp();                      ///< Calls setupStart, sources first; shows failures on the blocks.
    void tearDown();                   ///< Calls setupStop in the same order.

    /// Tears everything down and sets it up for the current formats; each block signals its message at most
    /// once.
    EkFormatChange renegotiate(const SkChainNode* pCurrent);

private:
    CkChainGraph& m_graph;
    CkMemoryPool& m_pool;
    CkChainGraph::Nodes m_order;
};
