#include "host/core/CkChainRunner.h"

#include "host/core/ChainNegotiation.h"
#include "host/core/SkFrameProperties.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"

#include <QPointer>
#include <algorithm>
#include <chrono>
#include <utility>

using EkRequest = CkRenegotiationThrottle::EkRequest;

void CkChainRunner::runFrame(SkChainNode& source, CkImageData* pFrame) {
    m_throttle.beginFrame();
    m_messages.clearExpiredProblem(source);
    if (!fitsSetUp(source, *pFrame)) {
        delete pFrame;
        notifySource(source, CkImageSource::EkFrameEvent::Dropped);
        return;
    }
    ++source.framesOut;
    notifySource(source, CkImageSource::EkFrameEvent::Entered);
    if (!m_parts.graph.passToSinks(source, pFrame)) {
        passToSuccessors(source, pFrame);
    }
    const CkChainGraph::Nodes& order = m_parts.setUp.order();
    for (size_t i = source.index + 1; i < order.size(); ++i) {
        runBlock(*order[i]);
    }
    for (SkChainNode* node : order) {
        node->framesDone = node->framesOut.load();
    }
    notifySource(source, CkImageSource::EkFrameEvent::Done);
}

void CkChainRunner::renegotiate() {
    m_throttle.served(EkRequest::Block, m_parts.setUp.renegotiate(nullptr));
}

bool CkChainRunner::requestRenegotiation() {
    const bool granted = m_throttle.isGranted(EkRequest::Block);
    if (granted) {
        m_parts.queue.requestRenegotiation();
    }
    return granted;
}

void CkChainRunner::notifySource(const SkChainNode& source, CkImageSource::EkFrameEvent event) {
    guardedCall([&source, event] { source.source->frameEvent(event); });
}

void CkChainRunner::runBlock(SkChainNode& node) {
    // Successors get only the last of several results, made when the block has received all its inputs.
    // Forwarding all of them would make the work per frame grow with the number of paths instead of
    // connections.
    IkChainData* result = nullptr;
    for (IkChainData*& place : node.inbox) {
        IkChainData* const input = std::exchange(place, nullptr);
        if (input == nullptr) {
            continue;
        }
        IkChainData* const next = process(node, input);
        if (next == nullptr) {
            continue;
        }
        delete std::exchange(result, nullptr);
        ++node.framesOut;
        if (!m_parts.graph.passToSinks(node, next)) {
            result = next;
        }
    }
    if (result != nullptr) {
        passToSuccessors(node, result);
    }
}

IkChainData* CkChainRunner::process(SkChainNode& node, IkChainData* pData) {
    ++node.framesIn;
    if (m_parts.state == EkChainState::Stopping) {
        ++node.dropped;
        delete pData;
        return nullptr;
    }
    if (node.block->state() == CkChainable::Blocked) {
        delete pData;
        return nullptr;
    }
    m_messages.clearExpiredProblem(node);
    recoverBlock(node, *pData);
    if (!node.ready) {
        ++node.dropped;
        delete pData;
        return nullptr;
    }
    const CkMemoryPool::SkRefusals before = m_parts.pool.refusals(node.block);
    bool ownsInput = true;
    IkChainData* const result = callBlock(node, pData, ownsInput);
    if (result == nullptr) {
        if (ownsInput) {
            countMissingOutput(node, before);
            delete pData;
        }
        return nullptr;
    }
    if (!fitsSetUp(node, *result)) {
        delete result;
        return nullptr;
    }
    return result;
}

IkChainData* CkChainRunner::callBlock(SkChainNode& node, IkChainData* pData, bool& bOwnsInput) {
    CkChainable* const block = node.block;
    // Needed only after an exception, to find out whether the block had already deleted its input.
    const auto* const inputFrame = dynamic_cast<CkImageData*>(pData);
    const QPointer<const QObject> input(inputFrame);
    IkChainData* result = nullptr;
    block->m_bFrameDropped = false;
    const auto begin = std::chrono::steady_clock::now();
    try {
        const SkFrameProperties properties = SkFrameProperties::of(inputFrame);
        result = block->processData(pData);
        auto* const frame = properties.names.isEmpty() ? nullptr : dynamic_cast<CkImageData*>(result);
        if (frame != nullptr) {
            properties.addTo(*frame);
        }
    } catch (...) {
        bOwnsInput = result == nullptr && !input.isNull();
        delete std::exchange(result, nullptr);
        block->m_bFrameDropped = bOwnsInput;
        // Message before counter: a reader that sees the counter increase finds the reason.
        m_messages.showProblem(node, CkChain::tr("The block failed on a frame."));
        node.dropped += bOwnsInput ? 0 : 1;
    }
    const std::chrono::nanoseconds spent = std::chrono::steady_clock::now() - begin;
    node.processNs += quint64(spent.count());
    return result;
}

void CkChainRunner::countMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before) {
    const CkMemoryPool::SkRefusals after = m_parts.pool.refusals(node.block);
    const bool misfit = after.misfits != before.misfits;
    if (misfit && !requestRenegotiation()) {
        m_messages.showProblem(node,
                               CkChain::tr("The output of the block does not fit the pictures made for it."));
    }
    // The pool counts no refusal for a block without a sub-pool, for example one whose output has no pixels.
    const bool refused = (node.provider != nullptr && !node.negotiated) ||
                         (node.pictures > 0 && m_parts.pool.capacity(node.block) == 0);
    if (misfit || refused || after.exhausted != before.exhausted || node.block->m_bFrameDropped) {
        ++node.dropped;
    }
}

void CkChainRunner::recoverBlock(SkChainNode& node, const IkChainData& data) {
    const auto* const frame = dynamic_cast<const CkImageData*>(&data);
    if (node.provider == nullptr || node.negotiated || frame == nullptr ||
        !m_throttle.isGranted(EkRequest::Block)) {
        return;
    }
    SkFormat output;
    if (ChainNegotiation::queryOutput(*node.provider, SkFormat::of(*frame), output)) {
        renegotiate();
    }
}

bool CkChainRunner::fitsSetUp(SkChainNode& node, const IkChainData& data) {
    const auto* const frame = dynamic_cast<const CkImageData*>(&data);
    if (frame == nullptr || (node.provider == nullptr && node.outputs.empty())) {
        return true;
    }
    SkFormat seen = SkFormat::of(*frame);
    const EkFormatChange change = formatChange(seen, node.output);
    if (change == EkFormatChange::None) {
        return true;
    }
    node.lastFrame = std::move(seen);
    if (change == EkFormatChange::Values) {
        if (m_throttle.isGranted(EkRequest::Values)) {
            m_throttle.served(EkRequest::Values, m_parts.setUp.renegotiate(&node));
        }
        return true;
    }
    if (m_throttle.isRefitGranted(node.refitFrame)) {
        node.refitFrame = m_throttle.frame();
        m_parts.setUp.renegotiate(&node);
        return true;
    }
    if (change != EkFormatChange::Pictures) {
        return true;
    }
    m_messages.showProblem(
        node, CkChain::tr("Frames come in another format time and again; while the chain is set up "
                          "anew for one, others are dropped."));
    ++node.dropped; // after the message, as above
    return false;
}

void CkChainRunner::passToSuccessors(SkChainNode& node, IkChainData* pData) {
    const size_t count = node.outputs.size();
    for (size_t i = 0; i < count; ++i) {
        const SkChainOutput& output = node.outputs[i];
        IkChainData* const own =
            i + 1 == count ? pData : guardedCall<>(nullptr, [pData] { return pData->share(); });
        if (own == nullptr) {
            ++output.to->framesIn;
            ++output.to->dropped;
        }
        output.to->inbox[output.inboxIndex] = own;
    }
    if (count == 0) {
        delete pData;
    }
}
