#pragma once

#include "host/core/CkChainGraph.h"

/// The blocks of a run in their order, set up for its formats and torn down after it. Used by start and stop
/// with the control lock while the chain's thread does not run, otherwise by that thread.
class CkChainSetUp {
public:
    CkChainSetUp(CkChainGraph& graph, CkMemoryPool& pool) : m_graph(graph), m_pool(pool) {}

    /// Determines the order and clears what nodes keep of the run before. False when there is no source, or
    /// the connections form a cycle.
    bool prepare();
    void forgetOrder() { m_order.clear(); } ///< Before the nodes are deleted.
    const CkChainGraph::Nodes& order() const { return m_order; }

    /// See ChainNegotiation::negotiate.
    EkFormatChange negotiate(const SkChainNode* pInHand);
    void reservePools(bool bOnlyGrow); ///< See ChainPools::reserve.
    void setUp();                      ///< Calls setupStart from the sources down; shows what failed.
    void tearDown();                   ///< Calls setupStop in the same order.

    /// Tears everything down and sets it up for the formats as they are now; blocks tell their messages once.
    EkFormatChange renegotiate(const SkChainNode* pInHand);

private:
    CkChainGraph& m_graph;
    CkMemoryPool& m_pool;
    CkChainGraph::Nodes m_order;
};
