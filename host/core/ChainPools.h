#pragma once

#include "host/core/CkChainGraph.h"

/// Pictures that the blocks of a run need in the chain's pool.
namespace ChainPools {

/// Reserves a shelf for each negotiated block that asks for pictures, and releases the shelves of all others.
/// bOnlyGrow, for use while blocks hold pictures: existing shelves are only enlarged. A block whose shelf
/// cannot be allocated shows an error.
void reserve(const CkChainGraph& graph, CkMemoryPool& pool, const CkChainGraph::Nodes& order, bool bOnlyGrow);

} // namespace ChainPools
