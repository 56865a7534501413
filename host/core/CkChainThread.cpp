#include "CkChainPrivate.h"
#include "SkFrameNotes.h"
#include "poolErrorText.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkPicBufAPI.h"

#include <QPointer>
#include <algorithm>
#include <chrono>
#include <system_error>

bool CkChain::CkPrivate::start() {
    if (isChainThread()) {
        return false;
    }
    const std::lock_guard control(m_control);
    if (m_life != EkLife::Stopped) {
        return false;
    }
    bool hasSource = false;
    {
        const std::lock_guard lock(m_graph);
        m_order = ordered();
        for (SkChainNode* node : m_order) {
            hasSource = hasSource || node->source != nullptr;
            node->framesIn = node->framesOut = node->framesDone = node->dropped = node->processNs = 0;
            node->lastFrame = SkFormat();
            node->toleratesOtherSizes = false;
        }
    }
    if (!hasSource) {
        return false;
    }
    m_life = EkLife::Starting;
    m_bAbortStart = false;
    m_uiUselessRenegotiations = 0;
    m_uiFramesToIgnore = 0;
    negotiate();
    {
        const std::lock_guard lock(m_graph);
        m_bNegotiated = true;
    }
    reservePools(false);
    m_queue.open();
    setUp();
    bool running = !m_bAbortStart;
    try {
        if (running) {
            m_thread = std::thread([this] { run(); });
        }
    } catch (const std::system_error&) {
        running = false;
    }
    if (running) {
        m_life = EkLife::Running;
        emit m_q->runningChanged(true);
        return true;
    }
    m_queue.close();
    tearDown();
    const std::lock_guard lock(m_graph);
    m_bNegotiated = false;
    m_life = EkLife::Stopped;
    return false;
}

void CkChain::CkPrivate::stop() {
    if (isChainThread()) {
        return;
    }
    const std::lock_guard control(m_control);
    if (m_life == EkLife::Starting) {
        m_bAbortStart = true; // asked for by what start itself has called
    }
    if (m_life != EkLife::Running) {
        return;
    }
    m_life = EkLife::Stopping;
    m_queue.close();
    m_thread.join();
    tearDown();
    {
        const std::lock_guard lock(m_graph);
        m_bNegotiated = false;
    }
    m_life = EkLife::Stopped;
    emit m_q->runningChanged(false);
}

bool CkChain::CkPrivate::deliver(CkImageSource* pSource, CkImageData* pFrame) {
    if (pFrame == nullptr) {
        return false;
    }
    bool taken = false;
    {
        // Held to the end: the block cannot leave its chain, nor the chain go, while the frame is handed
        // over.
        CkChainable* const block = pSource;
        const std::lock_guard lock(block->m_mutex);
        if (block->m_pChain != nullptr) {
            CkPrivate& chain = *block->m_pChain->m_d;
            const std::lock_guard graph(chain.m_graph);
            SkChainNode* const node = chain.find(pSource);
            taken = node != nullptr && chain.m_queue.put(*node, pFrame);
            // A stopped chain asks for no frames; one that is about to start or stop loses them.
            if (node != nullptr && (taken || chain.m_life != EkLife::Stopped)) {
                ++node->framesIn;
                node->dropped += taken ? 0 : 1;
            }
        }
    }
    if (!taken) {
        delete pFrame;
    }
    return taken;
}

void CkChain::CkPrivate::noteLost(CkImageSource* pSource, quint64 uiFrames) {
    CkChainable* const block = pSource;
    const std::lock_guard lock(block->m_mutex);
    if (block->m_pChain == nullptr) {
        return;
    }
    CkPrivate& chain = *block->m_pChain->m_d;
    const std::lock_guard graph(chain.m_graph);
    SkChainNode* const node = chain.find(pSource);
    if (node != nullptr && chain.m_life != EkLife::Stopped) {
        node->framesIn += uiFrames;
        node->dropped += uiFrames;
    }
}

void CkChain::CkPrivate::run() {
    m_threadId = std::this_thread::get_id();
    for (;;) {
        const CkFrameQueue::SkItem item = m_queue.take();
        if (item.stop) {
            m_threadId = std::thread::id(); // before the number can be another thread's
            return;
        }
        if (item.renegotiate) {
            renegotiate();
        } else if (item.growPools) {
            reservePools(true);
        }
        if (item.frame != nullptr) {
            if (m_uiFramesToIgnore > 0) {
                --m_uiFramesToIgnore;
            }
            runFrame(*item.source, item.frame);
        }
    }
}

void CkChain::CkPrivate::renegotiate() {
    tearDown();
    const bool changed = negotiate();
    reservePools(false);
    setUp();
    if (changed) {
        m_uiUselessRenegotiations = 0;
        m_uiFramesToIgnore = 0;
    } else {
        // Doubled each time, up to 64 frames: a block that keeps asking must not eat up the frame rate.
        m_uiUselessRenegotiations = std::min(m_uiUselessRenegotiations + 1, 6U);
        m_uiFramesToIgnore = 1U << m_uiUselessRenegotiations;
    }
}

void CkChain::CkPrivate::askFromThread() {
    if (m_uiFramesToIgnore == 0) {
        m_queue.askForRenegotiation();
    }
}

void CkChain::CkPrivate::runFrame(SkChainNode& source, CkImageData* pFrame) {
    source.lastFrame.known = true;
    source.lastFrame.info = pFrame->picBuf();
    source.lastFrame.metadata = pFrame->metadata();
    if (!source.output.known || !isSameLayout(source.output.info, source.lastFrame.info)) {
        ++source.dropped;
        delete pFrame;
        m_queue.askForRenegotiation();
        return;
    }
    passOn(source, pFrame);
}

void CkChain::CkPrivate::process(SkChainNode& node, IkChainData* pData) {
    ++node.framesIn;
    CkChainable* const block = node.block;
    if (block->state() == CkChainable::Blocked) {
        delete pData;
        return;
    }
    const CkMemoryPool::SkRefusals before = m_pool.refusals(block);
    // Only there to know after an exception whether the input still lives.
    const auto* const inputFrame = dynamic_cast<CkImageData*>(pData);
    const QPointer<const QObject> input(inputFrame);
    const SkFrameNotes notes = SkFrameNotes::of(inputFrame);
    IkChainData* result = nullptr;
    bool inputIsOurs = true;
    const auto begin = std::chrono::steady_clock::now();
    try {
        result = block->processData(pData);
    } catch (...) {
        inputIsOurs = !input.isNull();
        ++node.dropped;
        showError(block, CkChain::tr("The block failed on a frame."));
    }
    const std::chrono::nanoseconds spent = std::chrono::steady_clock::now() - begin;
    node.processNs += quint64(spent.count());
    if (result == nullptr) {
        if (inputIsOurs) {
            noteMissingOutput(node, before, *pData);
            delete pData;
        }
        return;
    }
    if (!hasNegotiatedSize(node, *result)) {
        ++node.dropped;
        delete result;
        return;
    }
    if (auto* const frame = dynamic_cast<CkImageData*>(result); frame != nullptr && !notes.names.isEmpty()) {
        notes.give(*frame);
    }
    passOn(node, result);
}

void CkChain::CkPrivate::noteMissingOutput(SkChainNode& node, const CkMemoryPool::SkRefusals& before,
                                           const IkChainData& input) {
    const CkMemoryPool::SkRefusals after = m_pool.refusals(node.block);
    if (after.misfits != before.misfits) {
        ++node.dropped;
        askFromThread();
    } else if (after.exhausted != before.exhausted) {
        ++node.dropped;
    }
    CkChainable* const block = node.block;
    if (node.negotiated && block->buffersCountInMemoryPool() > 0 && m_pool.capacity(block) == 0 &&
        block->errorMessage().isEmpty()) {
        // The block has cleared it with its own messages.
        showError(block, poolErrorText(node.output.info));
    }
    if (node.negotiated || node.provider == nullptr) {
        return;
    }
    // A block that could not negotiate: either this frame shows that it can now, or it has to say why not.
    const auto* const frame = dynamic_cast<const CkImageData*>(&input);
    if (frame == nullptr || m_uiFramesToIgnore > 0) {
        return;
    }
    const QString shown = node.block->errorMessage();
    SkPicBufInfo output;
    CkImageMetadata metadata;
    bool able = false;
    try {
        able = node.provider->queryOutputImageInfo(frame->picBuf(), output, &frame->metadata(), &metadata);
    } catch (...) {
        able = false;
    }
    if (able) {
        askFromThread();
    } else if (shown.isEmpty() && node.block->errorMessage().isEmpty()) {
        showError(node.block, CkChain::tr("The block cannot work on the format of its input."));
    }
}

bool CkChain::CkPrivate::hasNegotiatedSize(SkChainNode& node, const IkChainData& data) {
    if (!node.output.known || node.toleratesOtherSizes) {
        return true;
    }
    const auto* const frame = dynamic_cast<const CkImageData*>(&data);
    if (frame == nullptr ||
        CkPicBufAPI::byteSize(frame->picBuf()) == CkPicBufAPI::byteSize(node.output.info)) {
        return true;
    }
    if (m_uiFramesToIgnore > 0) {
        // Negotiating anew has just shown that this block announces one size and delivers another.
        node.toleratesOtherSizes = true;
        return true;
    }
    askFromThread();
    return false;
}

void CkChain::CkPrivate::passOn(SkChainNode& node, IkChainData* pData) {
    ++node.framesOut;
    if (!giveToSinks(node, pData)) {
        giveToSuccessors(node, pData);
    }
    ++node.framesDone;
}

void CkChain::CkPrivate::giveToSuccessors(SkChainNode& node, IkChainData* pData) {
    // The structure stands still while the chain runs.
    const size_t count = node.successors.size();
    for (size_t i = 0; i < count; ++i) {
        SkChainNode& successor = *node.successors[i];
        IkChainData* const own = i + 1 == count ? pData : pData->share();
        if (own == nullptr) {
            ++successor.framesIn;
            ++successor.dropped;
            continue;
        }
        process(successor, own);
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
        given = node.successors.empty() && std::next(next) == node.sinks.end();
        m_pBusySink = sink;
        lock.unlock();
        CkImageData* const own = given ? frame : frame->share();
        try {
            node.dropped += own == nullptr ? 1 : quint64(std::max(0, sink->takeFrame(own)));
        } catch (...) {
            ++node.dropped;
        }
        lock.lock();
        m_pBusySink = nullptr;
        m_sinkDone.notify_all();
    }
    return given;
}
