#include "host/core/CkChainPrivate.h"

#include "host/core/ChainNegotiation.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"

#include <exception>

CkChain::CkPrivate::CkPrivate(CkChain* pChain)
    : m_q(pChain), m_graph(pChain, m_pool), m_setUp(m_graph, m_pool),
      m_runner({m_graph, m_pool, m_setUp, m_queue, m_state}) {}

bool CkChain::CkPrivate::start() {
    if (isChainThread()) {
        return false;
    }
    const std::lock_guard control(m_control);
    if (m_state != EkChainState::Stopped) {
        return false;
    }
    // The set-up below covers all requests made so far; later ones stay pending.
    m_queue.clearRequests();
    if (!m_setUp.prepare()) {
        return false;
    }
    m_runner.beginRun();
    m_state = EkChainState::Starting;
    m_abortStart = false;
    bool running = false;
    try {
        setUpForRun();
        running = !m_abortStart;
        if (running) {
            m_thread = std::thread([this] { run(); });
        }
    } catch (const std::exception&) { // no thread or no memory
        running = false;
    }
    if (running) {
        m_state = EkChainState::Running;
        emit m_q->runningChanged(true);
        return true;
    }
    notifyDropped(m_queue.close());
    m_setUp.tearDown();
    const auto lock = m_graph.lock();
    m_negotiated = false;
    m_state = EkChainState::Stopped;
    return false;
}

void CkChain::CkPrivate::setUpForRun() {
    const CkChainMessages::CkHold hold(m_setUp.order());
    m_setUp.negotiate(nullptr);
    setNegotiated(true);
    m_setUp.reservePools(false);
    m_queue.open(); // a source may deliver its first frame from setupStart
    m_setUp.setUp();
}

void CkChain::CkPrivate::stop() {
    if (isChainThread()) {
        return; // the thread would join itself
    }
    const std::lock_guard control(m_control);
    if (m_state == EkChainState::Starting) {
        m_abortStart = true;
    }
    if (m_state != EkChainState::Running) {
        return;
    }
    // In this order: in state Stopping the thread drops the frame in flight at the next block; closing the
    // queue wakes it; blocks are torn down only after it has ended, so that setupStop never meets
    // processData.
    m_state = EkChainState::Stopping;
    const std::vector<SkChainNode*> dropped = m_queue.close();
    m_thread.join();
    notifyDropped(dropped); // after the events of the frame that the thread was busy with
    m_setUp.tearDown();
    setNegotiated(false);
    m_state = EkChainState::Stopped;
    emit m_q->runningChanged(false);
}

void CkChain::CkPrivate::notifyDropped(const std::vector<SkChainNode*>& sources) {
    for (const SkChainNode* source : sources) {
        CkChainRunner::notifySource(*source, CkImageSource::EkFrameEvent::Dropped);
    }
}

void CkChain::CkPrivate::clear() {
    m_setUp.clearOrder();
    m_graph.clear();
}

void CkChain::CkPrivate::removeDeleted(CkChainable* pBlock) {
    stop();
    SkChainNode* node = nullptr;
    {
        const auto lock = m_graph.lock();
        node = m_graph.find(pBlock);
    }
    if (node != nullptr) {
        m_graph.removeNode(node);
    }
}

void CkChain::CkPrivate::setNegotiated(bool bNegotiated) {
    const auto lock = m_graph.lock();
    m_negotiated = bNegotiated;
}

CkChain::CkPrivate::EkCache CkChain::CkPrivate::cachedOutput(const CkChainable* pBlock,
                                                             SkFormat& format) const {
    const auto lock = m_graph.lock();
    if (!m_negotiated) {
        return EkCache::NotNegotiated;
    }
    const SkChainNode* const node = m_graph.find(pBlock);
    if (node == nullptr || !node->output.known) {
        return EkCache::Unknown;
    }
    format = node->output;
    return EkCache::Known;
}

bool CkChain::CkPrivate::outputFormat(const CkChainable* pBlock, SkFormat& format) {
    EkCache cached = cachedOutput(pBlock, format);
    if (cached != EkCache::NotNegotiated || isChainThread()) {
        return cached == EkCache::Known;
    }
    // Stopped: the blocks are queried now, under the lock that keeps other threads from starting the chain.
    const std::lock_guard control(m_control);
    cached = cachedOutput(pBlock, format);
    if (cached != EkCache::NotNegotiated) {
        return cached == EkCache::Known;
    }
    const SkChainNode* node = nullptr;
    {
        const auto lock = m_graph.lock();
        node = m_graph.find(pBlock);
    }
    return node != nullptr && ChainNegotiation::currentOutput(*node, format);
}

bool CkChain::CkPrivate::deliver(CkImageSource* pSource, CkImageData* pFrame) {
    if (pFrame == nullptr) {
        return false;
    }
    bool taken = false;
    {
        // Held until the frame is in the queue: the block must not leave its chain, and the chain must not be
        // deleted, before that.
        CkChainable* const block = pSource;
        const std::lock_guard lock(block->m_mutex);
        if (block->m_pChain != nullptr) {
            CkPrivate& chain = *block->m_pChain->m_d;
            const auto graph = chain.m_graph.lock();
            SkChainNode* const node = chain.m_graph.find(pSource);
            taken = node != nullptr && chain.m_queue.put(*node, pFrame);
            // A stopped chain expects no frames and counts none; one that is starting or stopping drops them.
            if (node != nullptr && (taken || chain.m_state != EkChainState::Stopped)) {
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

void CkChain::CkPrivate::reportLost(CkImageSource* pSource, quint64 uiFrames) {
    CkChainable* const block = pSource;
    const std::lock_guard lock(block->m_mutex);
    if (block->m_pChain == nullptr) {
        return;
    }
    CkPrivate& chain = *block->m_pChain->m_d;
    const auto graph = chain.m_graph.lock();
    SkChainNode* const node = chain.m_graph.find(pSource);
    if (node != nullptr && chain.m_state != EkChainState::Stopped) {
        node->framesIn += uiFrames;
        node->dropped += uiFrames;
    }
}

void CkChain::CkPrivate::run() {
    m_threadId = std::this_thread::get_id();
    for (;;) {
        const CkFrameQueue::SkItem item = m_queue.take();
        if (item.stop) {
            m_threadId = std::thread::id(); // the system may assign the id to another thread afterwards
            return;
        }
        if (item.renegotiate) {
            m_runner.renegotiate();
        } else if (item.growPools) {
            m_setUp.reservePools(true);
        }
        if (item.frame != nullptr) {
            m_runner.runFrame(*item.source, item.frame);
        }
    }
}
