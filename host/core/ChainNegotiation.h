#pragma once

#include "host/core/CkChainGraph.h"

/// Formats along a chain: sources and blocks are asked what they put out for a given input. An exception
/// counts as a refusal.
namespace ChainNegotiation {

/// What the block puts out for an input. False, and output unknown, when it refuses.
bool queryOutput(CkImageProvider& provider, const SkFormat& input, SkFormat& output);

/// What the block would put out now, asked from its source down; nothing is stored. False when unknown.
bool currentOutput(const SkChainNode& node, SkFormat& format);

/// Stores the formats that the blocks of a run announce, and takes set-up errors away.
///
/// Frames are believed more than announcements: a block whose frames had another format than the one it still
/// announces keeps the format of its last frame, and so does pInHand, the block whose frame is on its way
/// just now (null: none). Returns the largest change of an output.
EkFormatChange negotiate(CkChainGraph& graph, const CkChainGraph::Nodes& order, const SkChainNode* pInHand);

} // namespace ChainNegotiation
