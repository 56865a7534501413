#include "zuCore/CkChain.h"

#include "host/core/CkChainPrivate.h"
#include "host/core/CkChainReader.h"
#include "host/core/chainWriter.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"

#include <algorithm>

namespace {

/// Upper limit for the pictures that a sink may declare to hold, because memory is reserved for them.
constexpr int kMaximumHeldFrames = 1000;

QList<CkChainable*> blocksOf(const CkChainGraph::Nodes& nodes) {
    QList<CkChainable*> found;
    found.reserve(qsizetype(nodes.size()));
    std::transform(nodes.begin(), nodes.end(), std::back_inserter(found),
                   [](const SkChainNode* node) { return node->block; });
    return found;
}

} // namespace

IkFrameSink::~IkFrameSink() = default;

CkChain::CkControlLock::CkControlLock(CkChain* pChain) : m_pChain(pChain) {
    // The chain's own thread must not wait: the holder may be in stop, waiting for that thread.
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
    // A chain that is stopping still works on a frame; a caller that sees "stopped" may change its blocks.
    return m_d->m_state == EkChainState::Stopped;
}

QList<CkChainable*> CkChain::imageSources() const {
    const auto lock = m_d->m_graph.lock();
    QList<CkChainable*> sources;
    for (const auto& node : m_d->m_graph.nodes()) {
        if (node->source != nullptr) {
            sources.append(node->block);
        }
    }
    return sources;
}

QList<CkChainable*> CkChain::blocks() const {
    const auto lock = m_d->m_graph.lock();
    return blocksOf(m_d->m_graph.ordered());
}

QList<CkChainable*> CkChain::precedessors(const CkChainable* pBlock) const {
    const auto lock = m_d->m_graph.lock();
    const SkChainNode* const node = m_d->m_graph.find(pBlock);
    return node == nullptr ? QList<CkChainable*>() : blocksOf(node->predecessors);
}

QList<CkChainable*> CkChain::successors(const CkChainable* pBlock) const {
    const auto lock = m_d->m_graph.lock();
    const SkChainNode* const node = m_d->m_graph.find(pBlock);
    return node == nullptr ? QList<CkChainable*>() : blocksOf(node->successors);
}

QString CkChain::chainTitle(const CkChainable* pProvider) const {
    QList<CkChainable*> path;
    {
        const auto lock = m_d->m_graph.lock();
        const SkChainNode* node = m_d->m_graph.find(pProvider);
        while (node != nullptr) {
            path.prepend(node->block);
            node = node->predecessors.empty() ? nullptr : node->predecessors.front();
        }
    }
    QStringList titles;
    for (const CkChainable* block : std::as_const(path)) {
        titles.append(guardedCall(QString::fromLatin1(block->metaObject()->className()),
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
    const int held =
        std::clamp(guardedCall(0, [pSink] { return pSink->heldFrames(); }), 0, kMaximumHeldFrames);
    if (!m_d->m_graph.addSink(pBlock, pSink, held)) {
        return false;
    }
    m_d->m_queue.requestGrowth();
    return true;
}

void CkChain::removeSink(IkFrameSink* pSink) {
    // A sink that removes itself from within takeFrame must not wait for itself.
    m_d->m_graph.removeSink(pSink, !m_d->isChainThread());
}

CkChainable* CkChain::sinkBlock(const IkFrameSink* pSink) const {
    return m_d->m_graph.sinkBlock(pSink);
}

SkBlockStatistics CkChain::blockStatistics(const CkChainable* pBlock) const {
    const auto lock = m_d->m_graph.lock();
    SkBlockStatistics statistics;
    if (const SkChainNode* const node = m_d->m_graph.find(pBlock)) {
        // Read in the reverse order of a frame's updates, so that no snapshot shows more frames done, or
        // dropped by sinks, than output.
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
    const auto lock = m_d->m_graph.lock();
    const SkChainNode* const node = m_d->m_graph.find(pBlock);
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
        m_d->m_runner.requestRenegotiation();
    } else {
        m_d->m_queue.requestRenegotiation();
    }
}

bool CkChain::save(QDomDocument& doc, QDomElement& element) const {
    const std::lock_guard control(m_d->m_control);
    return writeChain(*this, doc, element);
}

bool CkChain::load(const QDomElement& element, QString* psError) {
    return load(element, psError, LoadProgress());
}

bool CkChain::load(const QDomElement& element, QString* psError, const LoadProgress& progress) {
    const auto refuse = [psError](const QString& text) {
        if (psError != nullptr) {
            *psError = text;
        }
        return false;
    };
    // Blocks are created and loaded before the chain is touched: an error leaves it unchanged, and the
    // blocks' code runs without the control lock.
    CkChainReader reader(progress);
    if (!reader.read(element)) {
        return refuse(reader.error());
    }
    std::vector<SkReadBlock> read = reader.takeBlocks();
    {
        const std::lock_guard control(m_d->m_control);
        if (!stopped()) {
            return refuse(tr("The chain runs; stop it first."));
        }
        m_d->clear();
        CkChainGraph::Nodes nodes;
        for (SkReadBlock& entry : read) {
            SkChainNode* const node = m_d->m_graph.addNode(entry.block.release(), nullptr);
            for (const size_t feeder : entry.feeders) {
                m_d->m_graph.connect(*nodes[feeder], *node);
            }
            nodes.push_back(node);
        }
    }
    emit structureChanged();
    emit sinksMoved();
    return true;
}
