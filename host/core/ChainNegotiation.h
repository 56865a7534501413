#pragma once

#include "host/core/CkChainGraph.h"

/// Negotiates the formats along a chain: asks sources and blocks for their output for a given input. An
/// exception counts as a refusal.
namespace ChainNegotiation {

/// The output of the block for an input. False, with output unknown, when it refuses.
bool queryOutput(CkImageProvider& provider, const SkFormat& input, SkFormat& output);

/// The present output format of the block, queried from its source downstream; nothing is stored. False when
/// unknown.
bool currentOutput(const SkChainNode& node, SkFormat& format);

/// Stores the formats that the blocks of a run announce, and clears their set-up errors.
///
/// Frames take precedence over announcements: a block whose frames did not match the format that it still
/// announces keeps the format of its last frame, and so does pCurrent, the block whose frame is being
/// processed (null: none). Returns the largest change of an output.
EkFormatChange negotiate(CkChainGraph& graph, const CkChainGraph::Nodes& order, const SkChainNode* pCurrent);

} // namespace ChainNegotiation
