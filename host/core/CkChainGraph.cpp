#include "host/core/CkChainPrivate.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"

#include <QPointer>
#include <algorithm>
#include <queue>

SkChainNode::SkChainNode(CkChainable* pBlock, quint64 uiSerial)
    : block(pBlock), provider(qobject_cast<CkImageProvider*>(pBlock)),
      source(qobject_cast<CkImageSource*>(pBlock)), serial(uiSerial) {}

CkChain::CkPrivate::CkPrivate(CkChain* pChain) : m_q(pChain) {}

CkChain::CkPrivate::~CkPrivate() = default;

SkChainNode* CkChain::CkPrivate::find(const CkChainable* pBlock) const {
    const auto found = m_nodeOf.find(pBlock);
    return found == m_nodeOf.end() ? nullptr : found->second;
}

void CkChain::CkPrivate::attach(CkChainable* pBlock, CkChain* pChain) {
    // Under the block's own lock: no frame is on its way into the old chain afterwards.
    const std::lock_guard lock(pBlock->m_mutex);
    pBlock->m_pChain = pChain;
}

SkChainNode* CkChain::CkPrivate::addNode(CkChainable* pBlock, SkChainNode* pPredecessor) {
    pBlock->setParent(nullptr); // the chain is the only owner
    SkChainNode* node = nullptr;
    {
        const std::lock_guard lock(m_graph);
        m_nodes.push_back(std::make_unique<SkChainNode>(pBlock, m_uiNextSerial++));
        node = m_nodes.back().get();
        m_nodeOf.emplace(pBlock, node);
        if (pPredecessor != nullptr) {
            connectNodes(*pPredecessor, *node);
        }
    }
    attach(pBlock, m_q);
    return node;
}

void CkChain::CkPrivate::connectNodes(SkChainNode& from, SkChainNode& to) {
    const bool fewer = from.successors.size() < to.predecessors.size();
    const auto& ends = fewer ? from.successors : to.predecessors;
    if (std::find(ends.begin(), ends.end(), fewer ? &to : &from) == ends.end()) {
        from.successors.push_back(&to);
        to.predecessors.push_back(&from);
    }
}

void CkChain::CkPrivate::moveOutputs(SkChainNode& from, SkChainNode& to) {
    const std::lock_guard lock(m_graph);
    std::vector<SkChainNode*> moved;
    for (SkChainNode* successor : from.successors) {
        if (successor != &to) {
            moved.push_back(successor);
        }
    }
    std::erase_if(from.successors, [&](const SkChainNode* successor) { return successor != &to; });
    for (SkChainNode* successor : moved) {
        // The new feeder takes the old one's place in the order, unless it feeds that block already.
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
    // The walk over sinks counts on rising serials.
    std::sort(to.sinks.begin(), to.sinks.end(),
              [](const SkSinkEntry& a, const SkSinkEntry& b) { return a.serial < b.serial; });
}

void CkChain::CkPrivate::removeNode(SkChainNode* pNode) {
    attach(pNode->block, nullptr);
    m_pool.release(pNode->block);
    const std::lock_guard lock(m_graph);
    for (SkChainNode* predecessor : pNode->predecessors) {
        std::erase(predecessor->successors, pNode);
    }
    for (SkChainNode* successor : pNode->successors) {
        std::erase(successor->predecessors, pNode);
    }
    m_nodeOf.erase(pNode->block);
    std::erase_if(m_nodes, [pNode](const auto& node) { return node.get() == pNode; });
}

void CkChain::CkPrivate::clear() {
    // Sources first: they may still have somebody delivering to them.
    std::vector<QPointer<CkChainable>> blocks;
    {
        const std::lock_guard lock(m_graph);
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
        const std::lock_guard lock(m_graph);
        nodes.swap(m_nodes);
        m_nodeOf.clear();
        m_order.clear();
    }
    for (const QPointer<CkChainable>& block : blocks) {
        delete block.data();
    }
}

void CkChain::CkPrivate::forget(CkChainable* pBlock) {
    stop();
    SkChainNode* node = nullptr;
    {
        const std::lock_guard lock(m_graph);
        node = find(pBlock);
    }
    if (node != nullptr) {
        removeNode(node);
    }
}

std::vector<SkChainNode*> CkChain::CkPrivate::ordered() const {
    // Of those whose predecessors have their place, the one that was inserted first comes next.
    const auto later = [](const SkChainNode* a, const SkChainNode* b) { return a->serial > b->serial; };
    std::priority_queue<SkChainNode*, std::vector<SkChainNode*>, decltype(later)> ready(later);
    std::unordered_map<const SkChainNode*, size_t> missing;
    for (const auto& node : m_nodes) {
        missing[node.get()] = node->predecessors.size();
        if (node->predecessors.empty()) {
            ready.push(node.get());
        }
    }
    std::vector<SkChainNode*> order;
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
