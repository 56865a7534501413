#include "host/core/CkChainPrivate.h"
#include "host/core/guarded.h"
#include "host/core/poolErrorText.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkPicBufAPI.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <numeric>

namespace {

/// What it throws counts as a refusal.
bool sourceFormat(const CkImageSource& source, SkFormat& format) {
    format = SkFormat();
    format.known = guarded(false, [&] { return source.sourceImageInfo(format.info, &format.metadata); });
    return format.known;
}

} // namespace

bool CkChain::CkPrivate::queryOutput(CkImageProvider& provider, const SkFormat& input, SkFormat& output) {
    output = SkFormat();
    output.known = guarded(false, [&] {
        return provider.queryOutputImageInfo(input.info, output.info, &input.metadata, &output.metadata);
    });
    return output.known;
}

bool CkChain::CkPrivate::negotiateNow(const SkChainNode& node, SkFormat& format) const {
    std::vector<CkImageProvider*> way; // from the block up to its source
    const SkChainNode* current = &node;
    while (current->source == nullptr) {
        if (current->provider == nullptr || current->predecessors.empty()) {
            format = SkFormat();
            return false;
        }
        way.push_back(current->provider);
        current = current->predecessors.front();
    }
    if (!sourceFormat(*current->source, format)) {
        return false;
    }
    return std::all_of(way.rbegin(), way.rend(), [&format](CkImageProvider* provider) {
        const SkFormat input = format;
        return queryOutput(*provider, input, format);
    });
}

bool CkChain::CkPrivate::outputFormat(const CkChainable* pBlock, SkFormat& format) {
    const auto cached = [&](bool& bKnown) {
        const std::lock_guard lock(m_graph);
        if (!m_bNegotiated) {
            return false;
        }
        const SkChainNode* const node = find(pBlock);
        bKnown = node != nullptr && node->output.known;
        if (bKnown) {
            format = node->output;
        }
        return true;
    };
    bool known = false;
    if (cached(known) || isChainThread()) {
        return known;
    }
    // A stopped chain: asked now, and nobody starts it meanwhile.
    const std::lock_guard control(m_control);
    if (cached(known)) {
        return known;
    }
    const SkChainNode* node = nullptr;
    {
        const std::lock_guard lock(m_graph);
        node = find(pBlock);
    }
    return node != nullptr && negotiateNow(*node, format);
}

EkFormatChange CkChain::CkPrivate::negotiate(const SkChainNode* pInHand) {
    EkFormatChange largest = EkFormatChange::None;
    for (SkChainNode* node : m_order) {
        SkFormat announced;
        showSetUpError(*node, QString());
        if (node->source != nullptr) {
            sourceFormat(*node->source, announced);
        } else {
            node->block->setErrorMessage(QString());
            if (node->provider != nullptr && !node->predecessors.empty() &&
                node->predecessors.front()->output.known) {
                queryOutput(*node->provider, node->predecessors.front()->output, announced);
            }
        }
        const bool news = formatChange(announced, node->announced) != EkFormatChange::None;
        if (news && node != pInHand) {
            node->lastFrame = SkFormat(); // of what was before
            node->refitFrame = node->source != nullptr ? node->refitFrame : 0;
        }
        const bool proven = node->lastFrame.known;
        node->announced = announced;
        node->negotiated = announced.known || (node->source != nullptr && proven);
        const SkFormat& output = proven ? node->lastFrame : announced;
        largest = std::max(largest, formatChange(output, node->output));
        const std::lock_guard lock(m_graph);
        node->output = output;
    }
    return largest;
}

std::vector<int> CkChain::CkPrivate::picturesHeldBehind() const {
    const std::lock_guard lock(m_graph);
    std::vector<int> held; // by the sinks of each block that has some
    std::vector<size_t> bitOf(m_order.size());
    for (const SkChainNode* node : m_order) {
        bitOf[node->index] = held.size();
        if (!node->sinks.empty()) {
            held.push_back(
                std::accumulate(node->sinks.begin(), node->sinks.end(), 0,
                                [](int sum, const SkSinkEntry& entry) { return sum + entry.heldFrames; }));
        }
    }
    // Blocks that pass their input through hand a block's pictures to all sinks behind them: a bit for each.
    std::vector<std::vector<bool>> reached(m_order.size(), std::vector<bool>(held.size()));
    std::vector<int> sums(m_order.size());
    for (size_t i = m_order.size(); i-- > 0;) {
        const SkChainNode& node = *m_order[i];
        if (!node.sinks.empty()) {
            reached[i][bitOf[i]] = true;
        }
        for (const SkChainOutput& output : node.outputs) {
            const std::vector<bool>& behind = reached[output.to->index];
            std::transform(behind.begin(), behind.end(), reached[i].begin(), reached[i].begin(),
                           std::logical_or<>());
        }
        for (size_t bit = 0; bit < held.size(); ++bit) {
            sums[i] += reached[i][bit] ? held[bit] : 0;
        }
    }
    return sums;
}

void CkChain::CkPrivate::reservePools(bool bOnlyGrow) {
    const std::vector<int> held = picturesHeldBehind();
    for (SkChainNode* node : m_order) {
        reservePool(*node, held[node->index], bOnlyGrow);
    }
}

void CkChain::CkPrivate::reservePool(SkChainNode& node, int iHeldBehind, bool bOnlyGrow) {
    CkChainable* const block = node.block;
    if (!bOnlyGrow) {
        node.pictures = guarded(-1, [block] { return std::max(0, block->buffersCountInMemoryPool()); });
    }
    if (node.pictures <= 0 || !node.negotiated) {
        m_pool.release(block);
        return;
    }
    // A successor may keep the frame it worked on last; of several inputs one result waits for the others.
    const int waiting = node.predecessors.size() > 1 ? 1 : 0;
    const int needed = node.pictures + waiting + iHeldBehind + int(node.outputs.size());
    const SkPicBufInfo& info = node.source != nullptr ? node.output.info : node.announced.info;
    const int capacity = m_pool.capacity(block);
    if (bOnlyGrow && (capacity == 0 || capacity >= needed)) {
        return;
    }
    // A shelf that fits and whose pictures are all at home serves another run.
    if (capacity == needed && m_pool.freeCount(block) == capacity &&
        m_pool.bytesPerPicture(block) == CkPicBufAPI::byteSize(info)) {
        return;
    }
    if (m_pool.reserve(block, info, needed)) {
        return;
    }
    if (bOnlyGrow && m_pool.reserve(block, info, capacity)) {
        return; // memory is short: as many as before
    }
    showSetUpError(node, poolErrorText(info));
}

void CkChain::CkPrivate::setUp() {
    for (SkChainNode* node : m_order) {
        CkChainable* const block = node->block;
        node->ready = false;
        try {
            block->setupStart();
            node->ready = node->pictures >= 0;
            if (!node->ready) {
                showSetUpError(*node, CkChain::tr("The block cannot be set up."));
            }
        } catch (const std::exception& error) {
            showSetUpError(
                *node,
                CkChain::tr("The block cannot be set up: %1").arg(QString::fromLocal8Bit(error.what())));
        } catch (...) {
            showSetUpError(*node, CkChain::tr("The block cannot be set up."));
        }
        const bool refuses = node->provider != nullptr && !node->negotiated && !node->predecessors.empty() &&
                             node->predecessors.front()->output.known;
        if (node->ready && refuses) {
            showSetUpError(*node, CkChain::tr("The block cannot work on the format of its input."));
        }
    }
}

void CkChain::CkPrivate::tearDown() {
    for (SkChainNode* node : m_order) {
        try {
            node->block->setupStop();
        } catch (...) {
            showSetUpError(*node, CkChain::tr("The block failed while it was stopped."));
        }
    }
}
