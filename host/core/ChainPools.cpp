#include "host/core/ChainPools.h"

#include "host/core/CkChainMessages.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/CkPicBufAPI.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

QString errorText(const SkPicBufInfo& output) {
    return CkPicBufAPI::byteSize(output) == 0
               ? CkChain::tr("The output of the block has no pixels.")
               : CkChain::tr("There is not enough memory for the pictures of the block.");
}

/// Pictures that sinks may hold of each block of the run.
///
/// Blocks that pass their input through forward a block's pictures to every sink downstream. A sink that is
/// reached on several paths holds them only once, hence a bit per block with sinks instead of a sum over the
/// paths.
std::vector<int> picturesHeldDownstream(const CkChainGraph& graph, const CkChainGraph::Nodes& order) {
    const auto lock = graph.lock();
    std::vector<int> held; // by the sinks of each block with sinks
    std::vector<size_t> bitOf(order.size());
    for (const SkChainNode* node : order) {
        bitOf[node->index] = held.size();
        if (!node->sinks.empty()) {
            held.push_back(
                std::accumulate(node->sinks.begin(), node->sinks.end(), 0,
                                [](int sum, const SkSinkEntry& entry) { return sum + entry.heldFrames; }));
        }
    }
    std::vector<std::vector<bool>> reached(order.size(), std::vector<bool>(held.size()));
    std::vector<int> sums(order.size());
    for (size_t i = order.size(); i-- > 0;) {
        const SkChainNode& node = *order[i];
        if (!node.sinks.empty()) {
            reached[i][bitOf[i]] = true;
        }
        for (const SkChainOutput& output : node.outputs) {
            const std::vector<bool>& downstream = reached[output.to->index];
            std::transform(downstream.begin(), downstream.end(), reached[i].begin(), reached[i].begin(),
                           std::logical_or<>());
        }
        for (size_t bit = 0; bit < held.size(); ++bit) {
            sums[i] += reached[i][bit] ? held[bit] : 0;
        }
    }
    return sums;
}

void reservePictures(CkMemoryPool& pool, SkChainNode& node, int iHeldDownstream, bool bOnlyGrow) {
    CkChainable* const block = node.block;
    if (!bOnlyGrow) {
        node.pictures = guardedCall(-1, [block] { return std::max(0, block->buffersCountInMemoryPool()); });
    }
    if (node.pictures <= 0 || !node.negotiated) {
        pool.release(block);
        return;
    }
    // A successor may keep the frame it processed last; with several predecessors, one input waits for the
    // others.
    const int waiting = node.predecessors.size() > 1 ? 1 : 0;
    const int needed = node.pictures + waiting + iHeldDownstream + int(node.outputs.size());
    const SkPicBufInfo& info = node.source != nullptr ? node.output.info : node.announced.info;
    const int capacity = pool.capacity(block);
    if (bOnlyGrow && (capacity == 0 || capacity >= needed)) {
        return;
    }
    // A sub-pool of the right size to which all pictures have been returned is reused.
    if (capacity == needed && pool.freeCount(block) == capacity &&
        pool.bytesPerPicture(block) == CkPicBufAPI::byteSize(info)) {
        return;
    }
    if (pool.reserve(block, info, needed)) {
        return;
    }
    if (bOnlyGrow && pool.reserve(block, info, capacity)) {
        return; // out of memory: the old capacity stays
    }
    CkChainMessages::showSetUpError(node, errorText(info));
}

} // namespace

void ChainPools::reserve(const CkChainGraph& graph, CkMemoryPool& pool, const CkChainGraph::Nodes& order,
                         bool bOnlyGrow) {
    const std::vector<int> held = picturesHeldDownstream(graph, order);
    for (SkChainNode* node : order) {
        reservePictures(pool, *node, held[node->index], bOnlyGrow);
    }
}
