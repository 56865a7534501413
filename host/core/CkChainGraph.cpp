#include "host/core/CkChainGraph.h"

#include "host/core/guardedCall.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkMemoryPool.h"

#include <QPointer>
#include <algorithm>
#include <iterator>
#include <queue>

SkChainNode* CkChainGraph::find(const CkChainable* pBlock) const {
    const auto found = m_nodeOf.find(pBlock);
    return found == m_nodeOf.end() ? nullptr : found->second;
}

void CkChainGraph::attach(CkChainable* pBlock, CkChain* pChain) {
    // A source delivers frames with this lock held: once it is released, no frame is in flight into the old
    // chain.
    const std::lock_guard lock(pBlock->m_mutex);
    pBlock->m_pChain = pChain;
}

SkChainNode* CkChainGraph::addNode(CkChainable* pBlock, SkChainNode* pPredecessor) {
    pBlock->setParent(nullptr);
    SkChainNode* node = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        m_nodes.push_back(std::make_unique<SkChainNode>(pBlock, m_nextSerial++));
        node = m_nodes.back().get();
        m_nodeOf.emplace(pBlock, node);
        if (pPredecessor != nullptr) {
            connectNodes(*pPredecessor, *node);
        }
    }
    attach(pBlock, m_chain);
    return node;
}

void CkChainGraph::connect(SkChainNode& from, SkChainNode& to) {
    const std::lock_guard lock(m_mutex);
    connectNodes(from, to);
}

void CkChainGraph::connectNodes(SkChainNode& from, SkChainNode& to) {
    // The shorter list is searched: connecting a thousand blocks to one takes linear time.
    const bool fewer = from.successors.size() < to.predecessors.size();
    const auto& ends = fewer ? from.successors : to.predecessors;
    if (std::find(ends.begin(), ends.end(), fewer ? &to : &from) == ends.end()) {
        from.successors.push_back(&to);
        to.predecessors.push_back(&from);
    }
}

void CkChainGraph::moveOutputs(SkChainNode& from, SkChainNode& to) {
    const std::lock_guard lock(m_mutex);
    Nodes moved;
    for (SkChainNode* successor : from.successors) {
        if (successor != &to) {
            moved.push_back(successor);
        }
    }
    std::erase_if(from.successors, [&](const SkChainNode* successor) { return successor != &to; });
    for (SkChainNode* successor : moved) {
        // The new predecessor takes the position of the old one, unless it is connected to that block
        // already.
        auto& feeders = successor->predecessors;
        const auto place = std::find(feeders.begin(), feeders.end(), &from);
        if (std::find(feeders.begin(), feeders.end(), &to) == feeders.end()) {
            *place = &to;
            to.successors.push_back(successor);
        } else {
            feeders.erase(place);
        }
    }
    to.sinks.insert(to.sinks.end(), from.sinks.begin(), from.sinks.end());
    from.sinks.clear();
    // passToSinks relies on rising serials.
    std::sort(to.sinks.begin(), to.sinks.end(),
              [](const SkSinkEntry& a, const SkSinkEntry& b) { return a.serial < b.serial; });
}

void CkChainGraph::removeNode(SkChainNode* pNode) {
    attach(pNode->block, nullptr);
    m_pool.release(pNode->block);
    const std::lock_guard lock(m_mutex);
    for (SkChainNode* predecessor : pNode->predecessors) {
        std::erase(predecessor->successors, pNode);
    }
    for (SkChainNode* successor : pNode->successors) {
        std::erase(successor->predecessors, pNode);
    }
    m_nodeOf.erase(pNode->block);
    std::erase_if(m_nodes, [pNode](const auto& node) { return node.get() == pNode; });
}

void CkChainGraph::clear() {
    // Sources first: a camera may still deliver to them. Deleting one block may delete others, hence
    // QPointer.
    std::vector<QPointer<CkChainable>> blocks;
    {
        const std::lock_guard lock(m_mutex);
        for (const SkChainNode* node : ordered()) {
            blocks.emplace_back(node->block);
        }
    }
    for (CkChainable* block : blocks) {
        attach(block, nullptr);
        m_pool.release(block);
    }
    std::vector<std::unique_ptr<SkChainNode>> nodes;
    {
        const std::lock_guard lock(m_mutex);
        nodes.swap(m_nodes);
        m_nodeOf.clear();
    }
    // Without the lock: destructors are foreign code.
    for (const QPointer<CkChainable>& block : blocks) {
        delete block.data();
    }
}

CkChainGraph::Nodes CkChainGraph::ordered() const {
    // Among the nodes whose predecessors have all been emitted, the one inserted first comes next.
    const auto later = [](const SkChainNode* a, const SkChainNode* b) { return a->serial > b->serial; };
    std::priority_queue<SkChainNode*, Nodes, decltype(later)> ready(later);
    std::unordered_map<const SkChainNode*, size_t> missing;
    for (const auto& node : m_nodes) {
        missing[node.get()] = node->predecessors.size();
        if (node->predecessors.empty()) {
            ready.push(node.get());
        }
    }
    Nodes order;
    order.reserve(m_nodes.size());
    while (!ready.empty()) {
        SkChainNode* const node = ready.top();
        ready.pop();
        order.push_back(node);
        for (SkChainNode* successor : node->successors) {
            if (--missing[successor] == 0) {
                ready.push(successor);
            }
        }
    }
    return order;
}

void CkChainGraph::disconnectSink(const IkFrameSink* pSink) {
    for (const auto& node : m_nodes) {
        std::erase_if(node->sinks, [pSink](const SkSinkEntry& entry) { return entry.sink == pSink; });
    }
}

bool CkChainGraph::addSink(CkChainable* pBlock, IkFrameSink* pSink, int iHeldFrames) {
    const std::lock_guard lock(m_mutex);
    SkChainNode* const node = find(pBlock);
    if (node == nullptr) {
        return false;
    }
    disconnectSink(pSink);
    node->sinks.push_back({pSink, iHeldFrames, m_nextSerial++});
    return true;
}

void CkChainGraph::removeSink(IkFrameSink* pSink, bool bWait) {
    std::unique_lock lock(m_mutex);
    disconnectSink(pSink);
    if (bWait) {
        m_sinkDone.wait(lock, [&] { return m_busySink != pSink; });
    }
}

CkChainable* CkChainGraph::sinkBlock(const IkFrameSink* pSink) const {
    const std::lock_guard lock(m_mutex);
    for (const auto& node : m_nodes) {
        for (const SkSinkEntry& entry : node->sinks) {
            if (entry.sink == pSink) {
                return node->block;
            }
        }
    }
    return nullptr;
}

bool CkChainGraph::passToSinks(SkChainNode& node, IkChainData* pData) {
    auto* const frame = dynamic_cast<CkImageData*>(pData);
    if (frame == nullptr) {
        return false;
    }
    // The lock is released during every call, and sinks may be added or removed meanwhile. Iterators would
    // become invalid, so the walk resumes by serial.
    quint64 serial = 0;
    bool given = false;
    std::unique_lock lock(m_mutex);
    while (!given) {
        const auto next = std::find_if(node.sinks.begin(), node.sinks.end(),
                                       [serial](const SkSinkEntry& entry) { return entry.serial > serial; });
        if (next == node.sinks.end()) {
            break;
        }
        serial = next->serial;
        IkFrameSink* const sink = next->sink;
        given = node.outputs.empty() && std::next(next) == node.sinks.end();
        m_busySink = sink;
        lock.unlock();
        node.dropped += guardedCall(quint64(1), [given, frame, sink] {
            CkImageData* const own = given ? frame : frame->share();
            return own == nullptr ? quint64(1) : quint64(std::max(0, sink->takeFrame(own)));
        });
        lock.lock();
        m_busySink = nullptr;
        m_sinkDone.notify_all();
    }
    return given;
}
