// The way of a frame through the blocks; chain thread.

#include "host/core/CkChainPrivate.h"
#include "host/core/SkFrameNotes.h"
#include "host/core/guarded.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"

#include <QPointer>
#include <algorithm>
#include <chrono>
#include <utility>

using EkWish = CkRenegotiationThrottle::EkWish;

void CkChain::CkPrivate::runFrame(SkChainNode& source, CkImageData* pFrame) {
    endTrouble(source);
    if (!fitsSetUp(source, *pFrame)) {
        delete pFrame;
        tellSource(source, CkImageSource::EkFrameEvent::Dropped);
        return;
    }
    ++source.framesOut;
    tellSource(source, CkImageSource::EkFrameEvent::Entered);
    if (!giveToSinks(source, pFrame)) {
        giveToSuccessors(source, pFrame);
    }
    for (size_t i = source.index + 1; i < m_order.size(); ++i) {
        runBlock(*m_order[i]);
    }
    for (SkChainNode* node : m_order) {
        node->framesDone = node->framesOut.load();
    }
    tellSource(source, CkImageSource::EkFrameEvent::Done);
}

void CkChain::CkPrivate::tellSource(const SkChainNode& source, CkImageSource::EkFrameEvent event) {
    guarded(false, [&source, event] {
        source.source->frameEvent(event);
        return true;
    });
}

void CkChain::CkPrivate::runBlock(SkChainNode& node) {
    // Of several results the successors get the last one, made when the block has seen all its input: the
    // work on a frame then grows with the connections, not with the ways through them.
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
        if (!giveToSinks(node, next)) {
            result = next;
        }
    }
    if (result != nullptr) {
        giveToSuccessors(node, result);
    }
}

IkChainData* CkChain::CkPrivate::process(SkChainNode& node, IkChainData* pData) {
    ++node.framesIn;
    if (isStopping()) {
        ++node.dropped;
        delete pData;
        return nullptr;
    }
    if (node.block->state() == CkChainable::Blocked) {
        delete pData;
        return nullptr;
    }
    endTrouble(node);
    recoverBlock(node, *pData);
    if (!node.ready) {
        ++node.dropped;
        delete pData;
        return nullptr;
    }
    const CkMemoryPool::SkRefusals before = m_pool.refusals(node.block);
    bool inputIsOurs = true;
    IkChainData* const result = callBlock(node, pData, inputIsOurs);
    if (result == nullptr) {
        if (inputIsOurs) {
            noteMissingOutput(node, before);
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

IkChainData* CkChain::CkPrivate::callBlock(SkChainNode& node, IkChainData* pData, bool& bInputIsOurs) {
    CkChainable* const block = node.block;
    // Only there to know after an exception whether the input still lives.
    const auto* const inputFrame = dynamic_cast<CkImageData*>(pData);
    const QPointer<const QObject> input(inputFrame);
    IkChainData* result = nullptr;
    block->m_bFrameDropped = false;
    const auto begin = std::chrono::steady_clock::now();
    try {
        const SkFrameNotes notes = SkFrameNotes::of(inputFrame);
        result = block->processData(pData);
        auto* const frame = notes.names.isEmpty() ? nullptr : dynamic_cast<CkImageData*>(result);
        if (frame != nullptr) {
            notes.give(*frame);
        }
    } catch (...) {
        bInputIsOurs = result == nullptr && !input.isNull();
        delete std::exchange(result, nullptr);
        block->m_bFrameDropped = bInputIsOurs;
        // Whoever sees the count finds the reason.
        showTrouble(node, CkChain::tr("The block failed on a frame."));
        node.dropped += bInputIsOurs ? 0 : 1;
    }
    const std::chrono::nanoseconds spent = std::chrono::steady_clock::now() - begin;
    node.processNs += quint64(spent.count());
    return result;
}

void CkChain::CkPrivate::noteMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before) {
    const CkMemoryPool::SkRefusals after = m_pool.refusals(node.block);
    const bool misfit = after.misfits != before.misfits;
    if (misfit && !askFromThread()) {
        showTrouble(node, CkChain::tr("The output of the block does not fit the pictures made for it."));
    }
    // Without a shelf, as for an output without pixels, the pool refuses nothing.
    const bool refused = (node.provider != nullptr && !node.negotiated) ||
                         (node.pictures > 0 && m_pool.capacity(node.block) == 0);
    if (misfit || refused || after.exhausted != before.exhausted || node.block->m_bFrameDropped) {
        ++node.dropped;
    }
}

void CkChain::CkPrivate::recoverBlock(SkChainNode& node, const IkChainData& data) {
    const auto* const frame = dynamic_cast<const CkImageData*>(&data);
    if (node.provider == nullptr || node.negotiated || frame == nullptr ||
        !m_throttle.isWishGranted(EkWish::Block)) {
        return;
    }
    SkFormat output;
    if (queryOutput(*node.provider, SkFormat::of(*frame), output)) {
        m_throttle.served(EkWish::Block, renegotiate(nullptr));
    }
}

bool CkChain::CkPrivate::fitsSetUp(SkChainNode& node, const IkChainData& data) {
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
        if (m_throttle.isWishGranted(EkWish::Values)) {
            m_throttle.served(EkWish::Values, renegotiate(&node));
        }
        return true;
    }
    if (m_throttle.isNeedGranted(node.refitFrame)) {
        node.refitFrame = m_throttle.frame();
        renegotiate(&node);
        return true;
    }
    if (change != EkFormatChange::Pictures) {
        return true;
    }
    showTrouble(node, CkChain::tr("Frames come in another format time and again; while the chain is set up "
                                  "anew for one, others are dropped."));
    ++node.dropped; // behind the reason, as above
    return false;
}

void CkChain::CkPrivate::giveToSuccessors(SkChainNode& node, IkChainData* pData) {
    const size_t count = node.outputs.size();
    for (size_t i = 0; i < count; ++i) {
        const SkChainOutput& output = node.outputs[i];
        IkChainData* const own =
            i + 1 == count ? pData : guarded<>(nullptr, [pData] { return pData->share(); });
        if (own == nullptr) {
            ++output.to->framesIn;
            ++output.to->dropped;
        }
        output.to->inbox[output.place] = own;
    }
    if (count == 0) {
        delete pData;
    }
}

/// True when the last sink was given pData itself.
bool CkChain::CkPrivate::giveToSinks(SkChainNode& node, IkChainData* pData) {
    auto* const frame = dynamic_cast<CkImageData*>(pData);
    if (frame == nullptr) {
        return false;
    }
    quint64 serial = 0;
    bool given = false;
    std::unique_lock lock(m_graph);
    while (!given) {
        const auto next = std::find_if(node.sinks.begin(), node.sinks.end(),
                                       [serial](const SkSinkEntry& entry) { return entry.serial > serial; });
        if (next == node.sinks.end()) {
            break;
        }
        serial = next->serial;
        IkFrameSink* const sink = next->sink;
        given = node.outputs.empty() && std::next(next) == node.sinks.end();
        m_pBusySink = sink;
        lock.unlock();
        node.dropped += guarded(quint64(1), [given, frame, sink] {
            CkImageData* const own = given ? frame : frame->share();
            return own == nullptr ? quint64(1) : quint64(std::max(0, sink->takeFrame(own)));
        });
        lock.lock();
        m_pBusySink = nullptr;
        m_sinkDone.notify_all();
    }
    return given;
}
