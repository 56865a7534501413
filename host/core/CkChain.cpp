#include "zuCore/CkChain.h"

#include "host/core/CkChainPrivate.h"
#include "host/core/guarded.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"

#include <algorithm>

IkFrameSink::~IkFrameSink() = default;

CkChain::CkControlLock::CkControlLock(CkChain* pChain) : m_pChain(pChain) {
    // The chain's own thread must not wait for those who wait for it to end.
    if (m_pChain != nullptr && m_pChain->m_d->isChainThread()) {
        m_pChain = nullptr;
    }
    if (m_pChain != nullptr) {
        m_pChain->m_d->m_control.lock();
    }
}

CkChain::CkControlLock::~CkControlLock() {
    if (m_pChain != nullptr) {
        m_pChain->m_d->m_control.unlock();
    }
}

CkChain::CkChain(QObject* pParent) : QObject(pParent), m_d(std::make_unique<CkPrivate>(this)) {}

CkChain::~CkChain() {
    m_d->stop();
    m_d->clear();
}

bool CkChain::start() {
    return m_d->start();
}

void CkChain::stop() {
    m_d->stop();
}

bool CkChain::started() const {
    return !stopped();
}

bool CkChain::stopped() const {
    // A chain that is about to stop still works: who sees "stopped" may change a block.
    return m_d->m_life == CkPrivate::EkLife::Stopped;
}

QList<CkChainable*> CkChain::imageSources() const {
    const std::lock_guard lock(m_d->m_graph);
    QList<CkChainable*> sources;
    for (const auto& node : m_d->m_nodes) {
        if (node->source != nullptr) {
            sources.append(node->block);
        }
    }
    return sources;
}

namespace {

QList<CkChainable*> blocksOf(const std::vector<SkChainNode*>& nodes) {
    QList<CkChainable*> found;
    found.reserve(qsizetype(nodes.size()));
    std::transform(nodes.begin(), nodes.end(), std::back_inserter(found),
                   [](const SkChainNode* node) { return node->block; });
    return found;
}

} // namespace

QList<CkChainable*> CkChain::blocks() const {
    const std::lock_guard lock(m_d->m_graph);
    return blocksOf(m_d->ordered());
}

QList<CkChainable*> CkChain::precedessors(const CkChainable* pBlock) const {
    const std::lock_guard lock(m_d->m_graph);
    const SkChainNode* const node = m_d->find(pBlock);
    return node == nullptr ? QList<CkChainable*>() : blocksOf(node->predecessors);
}

QList<CkChainable*> CkChain::successors(const CkChainable* pBlock) const {
    const std::lock_guard lock(m_d->m_graph);
    const SkChainNode* const node = m_d->find(pBlock);
    return node == nullptr ? QList<CkChainable*>() : blocksOf(node->successors);
}

QString CkChain::chainTitle(const CkChainable* pProvider) const {
    QList<CkChainable*> way;
    {
        const std::lock_guard lock(m_d->m_graph);
        const SkChainNode* node = m_d->find(pProvider);
        while (node != nullptr) {
            way.prepend(node->block);
            node = node->predecessors.empty() ? nullptr : node->predecessors.front();
        }
    }
    QStringList titles;
    for (const CkChainable* block : std::as_const(way)) {
        titles.append(guarded(QString::fromLatin1(block->metaObject()->className()),
                              [block] { return block->title(); }));
    }
    return titles.join(QStringLiteral(" - "));
}

CkMemoryPool* CkChain::memoryPool() const {
    return &m_d->m_pool;
}

bool CkChain::addSink(CkChainable* pBlock, IkFrameSink* pSink) {
    if (pSink == nullptr) {
        return false;
    }
    const int held = std::clamp(guarded(0, [pSink] { return pSink->heldFrames(); }), 0, 1000);
    {
        const std::lock_guard lock(m_d->m_graph);
        SkChainNode* const node = m_d->find(pBlock);
        if (node == nullptr) {
            return false;
        }
        for (const auto& other : m_d->m_nodes) {
            std::erase_if(other->sinks, [pSink](const SkSinkEntry& entry) { return entry.sink == pSink; });
        }
        node->sinks.push_back({pSink, held, m_d->m_uiNextSerial++});
    }
    m_d->m_queue.askForGrowth();
    return true;
}

void CkChain::removeSink(IkFrameSink* pSink) {
    std::unique_lock lock(m_d->m_graph);
    for (const auto& node : m_d->m_nodes) {
        std::erase_if(node->sinks, [pSink](const SkSinkEntry& entry) { return entry.sink == pSink; });
    }
    // A sink that takes itself away while it takes a frame cannot wait for itself.
    if (!m_d->isChainThread()) {
        m_d->m_sinkDone.wait(lock, [&] { return m_d->m_pBusySink != pSink; });
    }
}

CkChainable* CkChain::sinkBlock(const IkFrameSink* pSink) const {
    const std::lock_guard lock(m_d->m_graph);
    for (const auto& node : m_d->m_nodes) {
        for (const SkSinkEntry& entry : node->sinks) {
            if (entry.sink == pSink) {
                return node->block;
            }
        }
    }
    return nullptr;
}

SkBlockStatistics CkChain::blockStatistics(const CkChainable* pBlock) const {
    const std::lock_guard lock(m_d->m_graph);
    SkBlockStatistics statistics;
    if (const SkChainNode* const node = m_d->find(pBlock)) {
        // Against the order in which a frame changes them: what is done has left, and what a sink had to drop
        // has left too.
        statistics.framesDone = node->framesDone;
        statistics.dropped = node->dropped;
        statistics.framesOut = node->framesOut;
        statistics.framesIn = node->framesIn;
        statistics.processNs = node->processNs;
    }
    return statistics;
}

bool CkChain::negotiatedInfo(const CkChainable* pBlock, SkPicBufInfo& info,
                             CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_d->m_graph);
    const SkChainNode* const node = m_d->find(pBlock);
    if (node == nullptr || !node->output.known) {
        return false;
    }
    info = node->output.info;
    if (pMetadata != nullptr) {
        *pMetadata = node->output.metadata;
    }
    return true;
}

void CkChain::requestRenegotiation() {
    if (m_d->isChainThread()) {
        m_d->askFromThread();
    } else {
        m_d->m_queue.askForRenegotiation();
    }
}
