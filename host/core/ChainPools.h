#pragma once

#include "host/core/CkChainGraph.h"

/// Reservation of the pictures that the blocks of a run need in the chain's pool.
namespace ChainPools {

/// Reserves a sub-pool for each negotiated block that needs pictures, and releases the sub-pools of all
/// others. bOnlyGrow, for use while blocks hold pictures: existing sub-pools are only enlarged. A block whose
/// sub-pool cannot be allocated shows an error.
void reserve(const CkChainGraph& graph, CkMemoryPool& pool, const CkChainGraph::Nodes& order, bool bOnlyGrow);

} // namespace ChainPools
