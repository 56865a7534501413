#include "host/core/CkChainSetUp.h"

#include "host/core/ChainNegotiation.h"
#include "host/core/ChainPools.h"
#include "host/core/CkChainMessages.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"

#include <exception>

namespace {

void setUpBlock(SkChainNode& node) {
    node.ready = false;
    try {
        node.block->setupStart();
        node.ready = node.pictures >= 0;
        if (!node.ready) {
            CkChainMessages::showSetUpError(node, CkChain::tr("The block cannot be set up."));
        }
    } catch (const std::exception& error) {
        CkChainMessages::showSetUpError(
            node, CkChain::tr("The block cannot be set up: %1").arg(QString::fromLocal8Bit(error.what())));
    } catch (...) {
        CkChainMessages::showSetUpError(node, CkChain::tr("The block cannot be set up."));
    }
    const bool refuses = node.provider != nullptr && !node.negotiated && !node.predecessors.empty() &&
                         node.predecessors.front()->output.known;
    if (node.ready && refuses) {
        CkChainMessages::showSetUpError(node,
                                        CkChain::tr("The block cannot work on the format of its input."));
    }
}

} // namespace

bool CkChainSetUp::prepare() {
    const auto lock = m_graph.lock();
    m_order = m_graph.ordered();
    bool hasSource = false;
    for (SkChainNode* node : m_order) {
        hasSource = hasSource || node->source != nullptr;
    }
    if (!hasSource || m_order.size() != m_graph.nodes().size()) {
        return false;
    }
    for (size_t i = 0; i < m_order.size(); ++i) {
        SkChainNode& node = *m_order[i];
        node.framesIn = node.framesOut = node.framesDone = node.dropped = node.processNs = 0;
        node.index = i;
        node.outputs.clear();
        node.inbox.assign(node.predecessors.size(), nullptr);
        node.lastFrame = SkFormat();
        node.refitFrame = node.problemFrame = 0;
        for (size_t place = 0; place < node.predecessors.size(); ++place) {
            node.predecessors[place]->outputs.push_back({&node, place});
        }
    }
    return true;
}

EkFormatChange CkChainSetUp::negotiate(const SkChainNode* pCurrent) {
    return ChainNegotiation::negotiate(m_graph, m_order, pCurrent);
}

void CkChainSetUp::reservePools(bool bOnlyGrow) {
    ChainPools::reserve(m_graph, m_pool, m_order, bOnlyGrow);
}

void CkChainSetUp::setUp() {
    for (SkChainNode* node : m_order) {
        setUpBlock(*node);
    }
}

void CkChainSetUp::tearDown() {
    for (SkChainNode* node : m_order) {
        try {
            node->block->setupStop();
        } catch (...) {
            CkChainMessages::showSetUpError(*node, CkChain::tr("The block failed while it was stopped."));
        }
    }
}

EkFormatChange CkChainSetUp::renegotiate(const SkChainNode* pCurrent) {
    const CkChainMessages::CkHold hold(m_order);
    tearDown();
    const EkFormatChange change = negotiate(pCurrent);
    reservePools(false);
    setUp();
    return change;
}
