#include "host/core/CkChainMessages.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"

#include <exception>

bool CkChain::CkPrivate::start() {
    if (isChainThread()) {
        return false;
    }
    const std::lock_guard control(m_control);
    if (m_life != EkLife::Stopped) {
        return false;
    }
    // What is asked for from here on is not seen for certain by what follows.
    m_queue.forgetWishes();
    if (!prepareRun()) {
        return false;
    }
    m_life = EkLife::Starting;
    m_bAbortStart = false;
    bool running = false;
    try {
        setUpForRun();
        running = !m_bAbortStart;
        if (running) {
            m_thread = std::thread([this] { run(); });
        }
    } catch (const std::exception&) { // no thread or no memory
        running = false;
    }
    if (running) {
        m_life = EkLife::Running;
        emit m_q->runningChanged(true);
        return true;
    }
    closeQueue();
    tearDown();
    const std::lock_guard lock(m_graph);
    m_bNegotiated = false;
    m_life = EkLife::Stopped;
    return false;
}

bool CkChain::CkPrivate::prepareRun() {
    const std::lock_guard lock(m_graph);
    m_order = ordered();
    bool hasSource = false;
    for (SkChainNode* node : m_order) {
        hasSource = hasSource || node->source != nullptr;
    }
    if (!hasSource || m_order.size() != m_nodes.size()) {
        return false;
    }
    for (size_t i = 0; i < m_order.size(); ++i) {
        SkChainNode& node = *m_order[i];
        node.framesIn = node.framesOut = node.framesDone = node.dropped = node.processNs = 0;
        node.index = i;
        node.outputs.clear();
        node.inbox.assign(node.predecessors.size(), nullptr);
        node.lastFrame = SkFormat();
        node.refitFrame = node.troubleFrame = 0;
        for (size_t place = 0; place < node.predecessors.size(); ++place) {
            node.predecessors[place]->outputs.push_back({&node, place});
        }
    }
    m_throttle.reset();
    return true;
}

void CkChain::CkPrivate::setUpForRun() {
    const CkHeldMessages held(m_order);
    negotiate(nullptr);
    {
        const std::lock_guard lock(m_graph);
        m_bNegotiated = true;
    }
    reservePools(false);
    m_queue.open();
    setUp();
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
    closeQueue();
    m_thread.join();
    tearDown();
    {
        const std::lock_guard lock(m_graph);
        m_bNegotiated = false;
    }
    m_life = EkLife::Stopped;
    emit m_q->runningChanged(false);
}

void CkChain::CkPrivate::closeQueue() {
    for (const SkChainNode* source : m_queue.close()) {
        tellSource(*source, CkImageSource::EkFrameEvent::Dropped);
    }
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
            m_throttle.served(CkRenegotiationThrottle::EkWish::Block, renegotiate(nullptr));
        } else if (item.growPools) {
            reservePools(true);
        }
        if (item.frame != nullptr) {
            m_throttle.beginFrame();
            runFrame(*item.source, item.frame);
        }
    }
}

EkFormatChange CkChain::CkPrivate::renegotiate(const SkChainNode* pInHand) {
    const CkHeldMessages held(m_order);
    tearDown();
    const EkFormatChange change = negotiate(pInHand);
    reservePools(false);
    setUp();
    return change;
}

bool CkChain::CkPrivate::askFromThread() {
    const bool granted = m_throttle.isWishGranted(CkRenegotiationThrottle::EkWish::Block);
    if (granted) {
        m_queue.askForRenegotiation();
    }
    return granted;
}
