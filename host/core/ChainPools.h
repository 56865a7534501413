#pragma once

#include "host/core/CkChainGraph.h"

/// Pictures that the blocks of a run need in the chain's pool.
namespace ChainPools {

/// Reserves a shelf for each block that asks for pictures and was negotiated, and releases that of any other.
/// With bOnlyGrow, while blocks hold pictures, existing shelves only become larger. A block without memory
/// shows that.
void reserve(const CkChainGraph& graph, CkMemoryPool& pool, const CkChainGraph::Nodes& order, bool bOnlyGrow);

} // namespace ChainPools
