#include "CkChainPrivate.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"

#include <algorithm>
#include <unordered_set>

SkChainNode::SkChainNode(CkChainable* pBlock)
    : block(pBlock), provider(qobject_cast<CkImageProvider*>(pBlock)),
      source(qobject_cast<CkImageSource*>(pBlock)) {}

CkChain::CkPrivate::CkPrivate(CkChain* pChain) : m_q(pChain) {}

CkChain::CkPrivate::~CkPrivate() = default;

SkChainNode* CkChain::CkPrivate::find(const CkChainable* pBlock) const {
    const auto found = std::find_if(m_nodes.begin(), m_nodes.end(),
                                    [pBlock](const auto& node) { return node->block == pBlock; });
    return found == m_nodes.end() ? nullptr : found->get();
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
        m_nodes.push_back(std::make_unique<SkChainNode>(pBlock));
        node = m_nodes.back().get();
        if (pPredecessor != nullptr) {
            connectNodes(*pPredecessor, *node);
        }
    }
    attach(pBlock, m_q);
    return node;
}

void CkChain::CkPrivate::connectNodes(SkChainNode& from, SkChainNode& to) {
    if (std::find(from.successors.begin(), from.successors.end(), &to) == from.successors.end()) {
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
    for (const auto& other : m_nodes) {
        std::erase(other->predecessors, pNode);
        std::erase(other->successors, pNode);
    }
    std::erase_if(m_nodes, [pNode](const auto& node) { return node.get() == pNode; });
}

void CkChain::CkPrivate::clear() {
    std::vector<CkChainable*> blocks;
    {
        const std::lock_guard lock(m_graph);
        // Sources first: they may still have somebody delivering to them.
        for (const SkChainNode* node : ordered()) {
            blocks.push_back(node->block);
        }
    }
    for (CkChainable* block : blocks) {
        SkChainNode* node = nullptr;
        {
            const std::lock_guard lock(m_graph);
            node = find(block);
        }
        if (node != nullptr) {
            removeNode(node);
            delete block;
        }
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
    std::vector<SkChainNode*> order;
    std::unordered_set<const SkChainNode*> placed;
    order.reserve(m_nodes.size());
    while (order.size() < m_nodes.size()) {
        const size_t before = order.size();
        for (const auto& node : m_nodes) {
            const bool ready =
                std::all_of(node->predecessors.begin(), node->predecessors.end(),
                            [&](const SkChainNode* feeder) { return placed.contains(feeder); });
            if (ready && placed.insert(node.get()).second) {
                order.push_back(node.get());
            }
        }
        if (order.size() == before) {
            break; // cannot happen: connections never close a circle
        }
    }
    return order;
}
