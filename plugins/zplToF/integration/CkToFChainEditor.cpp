#include "plugins/zplToF/integration/CkToFChainEditor.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/integration/CkToFChainHost.h"
#include "zuCore/CkChain.h"

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
