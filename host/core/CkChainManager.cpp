#include "zuCore/CkChainManager.h"

#include "host/core/CkChainPrivate.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

/// Chains are closed when the application object is destroyed, while the threads and libraries they use still
/// exist.
void closeAllChains() {
    CkChainManager* const manager = CkChainManager::instance();
    for (CkChain* chain : manager->chains()) {
        manager->closeChain(chain);
    }
}

bool accepts(CkChainable* block, CkChainable* feeder) {
    return guardedCall(false, [block, feeder] { return block->acceptsDataFrom(feeder); });
}

bool acceptedByAll(const std::vector<SkChainNode*>& nodes, CkChainable* feeder) {
    return std::all_of(nodes.begin(), nodes.end(),
                       [feeder](const auto* node) { return accepts(node->block, feeder); });
}

/// Whether every successor of a first block has another predecessor or accepts being a first block itself.
bool successorsRemainValid(const SkChainNode& first) {
    return std::all_of(first.successors.begin(), first.successors.end(), [](const auto* node) {
        return node->predecessors.size() > 1 || accepts(node->block, nullptr);
    });
}

} // namespace

CkChainManager::CkChainManager() {
    // Static objects are destroyed in reverse order of construction: camera sources use both of these until
    // the chains are deleted.
    CkRTTI::instance();
    CkCameraManager::instance();
    qAddPostRoutine(closeAllChains);
}

CkChainManager::~CkChainManager() {
    for (CkChain* chain : std::as_const(m_chains)) {
        delete chain;
    }
}

CkChainManager* CkChainManager::instance() {
    static CkChainManager manager;
    return &manager;
}

CkChain* CkChainManager::createChain() {
    auto* const chain = new (std::nothrow) CkChain();
    if (chain != nullptr) {
        m_chains.append(chain);
        emit chainCreated(chain);
    }
    return chain;
}

QList<CkChain*> CkChainManager::chains() const {
    return m_chains;
}

void CkChainManager::closeChain(CkChain* pChain) {
    if (!m_chains.contains(pChain) || pChain->m_d->m_closing) {
        return;
    }
    pChain->m_d->m_closing = true; // a slot of chainAboutToClose may call closeChain again
    pChain->stop();
    emit chainAboutToClose(pChain);
    m_chains.removeAll(pChain);
    delete pChain;
}

bool CkChainManager::insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    return insert(pChain, pNew, pAfter, false);
}

bool CkChainManager::branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    return insert(pChain, pNew, pAfter, true);
}

bool CkChainManager::insert(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter, bool bBranch) {
    if (!m_chains.contains(pChain) || pNew == nullptr || pNew->chain() != nullptr) {
        return false;
    }
    CkChain::CkPrivate& chain = *pChain->m_d;
    bool sinksMoved = false;
    {
        const CkChain::CkControlLock control(pChain);
        if (!pChain->stopped()) {
            return false;
        }
        SkChainNode* const after = pAfter == nullptr ? nullptr : chain.m_graph.find(pAfter);
        if (pAfter == nullptr) {
            if (bBranch || qobject_cast<CkImageSource*>(pNew) == nullptr) {
                return false;
            }
        } else if (after == nullptr || !accepts(pNew, pAfter)) {
            return false;
        }
        const bool replacesOutputs = after != nullptr && !bBranch;
        if (replacesOutputs && !acceptedByAll(after->successors, pNew)) {
            return false;
        }
        sinksMoved = replacesOutputs && !after->sinks.empty();
        SkChainNode* const node = chain.m_graph.addNode(pNew, after);
        if (replacesOutputs) {
            chain.m_graph.moveOutputs(*after, *node);
        }
    }
    emit pChain->structureChanged();
    if (sinksMoved) {
        emit pChain->sinksMoved();
    }
    return true;
}

bool CkChainManager::remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock) {
    if (!m_chains.contains(pChain) || pBlock == nullptr) {
        return false;
    }
    CkChain::CkPrivate& chain = *pChain->m_d;
    bool sinksMoved = false;
    {
        const CkChain::CkControlLock control(pChain);
        SkChainNode* const node = chain.m_graph.find(pBlock);
        if (!pChain->stopped() || node == nullptr) {
            return false;
        }
        SkChainNode* const feeder = node->predecessors.empty() ? nullptr : node->predecessors.front();
        // When the block is kept, its new owner is responsible for the blocks that it fed.
        if (feeder == nullptr ? !bKeepBlock && !successorsRemainValid(*node)
                              : !acceptedByAll(node->successors, feeder->block)) {
            return false;
        }
        sinksMoved = !node->sinks.empty();
        if (feeder != nullptr) {
            chain.m_graph.moveOutputs(*node, *feeder);
        }
        chain.m_graph.removeNode(node);
    }
    if (!bKeepBlock) {
        delete pBlock;
    }
    emit pChain->structureChanged();
    if (sinksMoved) {
        emit pChain->sinksMoved();
    }
    if (pChain->blocks().isEmpty()) {
        closeChain(pChain);
        pChain = nullptr;
    }
    return true;
}

void CkChainManager::deleteChainable(CkChainable* pBlock) {
    if (pBlock == nullptr) {
        return;
    }
    CkChain* chain = pBlock->chain();
    if (chain == nullptr) {
        delete pBlock;
    } else {
        remove(chain, pBlock, false);
    }
}
