#include "CkChainPrivate.h"
#include "poolErrorText.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkPicBufAPI.h"

#include <algorithm>
#include <exception>
#include <unordered_set>

bool isSameLayout(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.width == b.width && a.height == b.height && a.lineSize == b.lineSize &&
           a.channels == b.channels && a.bitsPerChannel == b.bitsPerChannel && a.dataType == b.dataType &&
           a.colorFilterArray == b.colorFilterArray && a.layoutFlag == b.layoutFlag;
}

bool isSameFormat(const SkFormat& a, const SkFormat& b) {
    if (a.known != b.known || !isSameLayout(a.info, b.info)) {
        return false;
    }
    CkImageMetadata left = a.metadata;
    CkImageMetadata right = b.metadata;
    for (CkImageMetadata* metadata : {&left, &right}) {
        metadata->phaseSequenceIndex = 0;
        metadata->phaseAngle = 0;
        metadata->sectionIndex = 0;
        metadata->timestampNs = 0;
        metadata->frameNumber = 0;
    }
    return left == right;
}

namespace {

/// Foreign code is asked; what it throws counts as a refusal.
bool sourceFormat(const CkImageSource& source, SkFormat& format) {
    format = SkFormat();
    try {
        format.known = source.sourceImageInfo(format.info, &format.metadata);
    } catch (...) {
        format.known = false;
    }
    return format.known;
}

bool queriedFormat(CkImageProvider& provider, const SkFormat& input, SkFormat& output) {
    output = SkFormat();
    try {
        output.known =
            provider.queryOutputImageInfo(input.info, output.info, &input.metadata, &output.metadata);
    } catch (...) {
        output.known = false;
    }
    return output.known;
}

} // namespace

bool CkChain::CkPrivate::negotiateNow(const SkChainNode& node, SkFormat& format) const {
    format = SkFormat();
    if (node.source != nullptr) {
        return sourceFormat(*node.source, format);
    }
    SkFormat input;
    if (node.provider == nullptr || node.predecessors.empty() ||
        !negotiateNow(*node.predecessors.front(), input)) {
        return false;
    }
    return queriedFormat(*node.provider, input, format);
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

bool CkChain::CkPrivate::negotiate() {
    bool changed = false;
    for (SkChainNode* node : m_order) {
        SkFormat output;
        if (node->source == nullptr) {
            node->block->setErrorMessage(QString());
        }
        if (node->source != nullptr) {
            SkFormat announced;
            sourceFormat(*node->source, announced);
            // A source that has nothing new to say is not believed against its own frames.
            const bool trusted = !node->lastFrame.known || !isSameFormat(announced, node->announced);
            output = trusted ? announced : node->lastFrame;
            node->announced = announced;
        } else if (node->provider != nullptr && !node->predecessors.empty() &&
                   node->predecessors.front()->output.known) {
            // A block that refuses says why with the first frame at the latest; a text of the host would keep
            // it from that.
            if (!queriedFormat(*node->provider, node->predecessors.front()->output, output)) {
                output = SkFormat();
            }
        }
        const bool other = !isSameFormat(output, node->output);
        changed = changed || other;
        if (other) {
            node->toleratesOtherSizes = false;
        }
        node->negotiated = output.known;
        const std::lock_guard lock(m_graph);
        node->output = output;
    }
    return changed;
}

int CkChain::CkPrivate::picturesNeeded(const SkChainNode& node) const {
    const int own = node.block->buffersCountInMemoryPool();
    if (own <= 0) {
        return 0;
    }
    // Blocks that pass their input through hand this block's pictures to the sinks behind them.
    int held = 0;
    const std::lock_guard lock(m_graph);
    std::unordered_set<const SkChainNode*> seen;
    std::vector<const SkChainNode*> open{&node};
    while (!open.empty()) {
        const SkChainNode* const current = open.back();
        open.pop_back();
        if (!seen.insert(current).second) {
            continue;
        }
        for (const SkSinkEntry& entry : current->sinks) {
            held += entry.heldFrames;
        }
        open.insert(open.end(), current->successors.begin(), current->successors.end());
    }
    // A successor may keep the frame it worked on last.
    return own + held + int(node.successors.size());
}

void CkChain::CkPrivate::reservePools(bool bOnlyGrow) {
    for (const SkChainNode* node : m_order) {
        CkChainable* const block = node->block;
        if (!node->negotiated) {
            m_pool.release(block);
            continue;
        }
        const int needed = picturesNeeded(*node);
        if (needed == 0) {
            m_pool.release(block);
            continue;
        }
        const int capacity = m_pool.capacity(block);
        if (bOnlyGrow && (capacity == 0 || capacity >= needed)) {
            continue;
        }
        // A shelf that fits and whose pictures are all at home serves another run.
        if (capacity == needed && m_pool.freeCount(block) == capacity &&
            m_pool.bytesPerPicture(block) == CkPicBufAPI::byteSize(node->output.info)) {
            continue;
        }
        if (m_pool.reserve(block, node->output.info, needed)) {
            continue;
        }
        if (bOnlyGrow && m_pool.reserve(block, node->output.info, capacity)) {
            continue; // memory is short: as many as before
        }
        showError(block, poolErrorText(node->output.info));
    }
}

void CkChain::CkPrivate::showError(CkChainable* pBlock, const QString& sText) const {
    pBlock->setErrorMessage(sText);
}

void CkChain::CkPrivate::setUp() {
    for (const SkChainNode* node : m_order) {
        try {
            node->block->setupStart();
        } catch (const std::exception& error) {
            showError(
                node->block,
                CkChain::tr("The block cannot be set up: %1").arg(QString::fromLocal8Bit(error.what())));
        } catch (...) {
            showError(node->block, CkChain::tr("The block cannot be set up."));
        }
    }
}

void CkChain::CkPrivate::tearDown() {
    for (const SkChainNode* node : m_order) {
        try {
            node->block->setupStop();
        } catch (...) {
            showError(node->block, CkChain::tr("The block failed while it was stopped."));
        }
    }
}
