#include "plugins/zplToF/integration/CkToFChainEditor.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

CkToFChainHost::~CkToFChainHost() = default;

bool CkToFChainHost::insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    return CkChainManager::instance()->insertAfter(pChain, pNew, pAfter);
}

bool CkToFChainHost::branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    return CkChainManager::instance()->branchAfter(pChain, pNew, pAfter);
}

bool CkToFChainHost::remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock) {
    return CkChainManager::instance()->remove(pChain, pBlock, bKeepBlock);
}

CkChain* CkToFChainHost::createChain() {
    return CkChainManager::instance()->createChain();
}

void CkToFChainHost::closeChain(CkChain* pChain) {
    CkChainManager::instance()->closeChain(pChain);
}

void CkToFChainHost::deleteChainable(CkChainable* pBlock) {
    CkChainManager::instance()->deleteChainable(pBlock);
}

CkToFChainStart::CkToFChainStart() = default;

CkToFChainStart::~CkToFChainStart() {
    now();
}

void CkToFChainStart::later(CkChain* pChain) {
    m_pending = pChain;
}

void CkToFChainStart::now() {
    CkChain* const chain = m_pending;
    m_pending.clear();
    if (chain != nullptr && chain->stopped()) {
        chain->start();
    }
}

CkChainable* CkToFChainEditor::searchUpstream(CkChainable* pBlock) {
    CkChainable* previous = pBlock;
    CkChainable* current = pBlock;
    while (current != nullptr && qobject_cast<CkToFProcessCnbl*>(current) == nullptr) {
        const QList<CkChainable*> upstream = current->precedessors();
        if (upstream.isEmpty()) {
            break;
        }
        previous = current;
        current = upstream.first();
    }
    return previous;
}

CkChainable* CkToFChainEditor::firstToFBlock(CkChainable* pBlock) {
    CkChainable* current = pBlock;
    while (current != nullptr && qobject_cast<CkToFProcessCnbl*>(current) == nullptr) {
        const QList<CkChainable*> upstream = current->precedessors();
        current = upstream.isEmpty() ? nullptr : upstream.first();
    }
    return current;
}

bool CkToFChainEditor::insertDepthBlock(CkChainable* pAfter) {
    CkChain* chain = pAfter != nullptr ? pAfter->chain() : nullptr;
    if (chain == nullptr) {
        return false;
    }
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::Depth, false);

    const bool running = chain->started();
    if (running) {
        chain->stop();
    }
    const bool inserted = m_host.insertAfter(chain, block, pAfter);
    if (!inserted) {
        delete block;
    }
    if (running || inserted) {
        chain->start();
    }
    return inserted;
}
