#include "plugins/zplToF/integration/CkToFChainEditor.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/integration/CkToFChainHost.h"
#include "zuCore/CkChain.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>

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

CkChain* CkToFChainEditor::moveToNewChain(CkChainable* pSource, int iViewId) {
    QPointer<CkChain> oldChain = pSource->chain();
    const bool running = oldChain->started();
    if (running) {
        oldChain->stop();
    }
    CkChain* remaining = oldChain;
    if (!m_host.remove(remaining, pSource, true)) {
        if (running && oldChain != nullptr) {
            oldChain->start();
        }
        return nullptr;
    }
    // A host may close the view together with its chain, or the chain with its view.
    IkAppDelegate::instance()->closeView(iViewId);
    if (oldChain != nullptr) {
        m_host.closeChain(oldChain);
    }
    CkChain* newChain = m_host.createChain();
    if (newChain == nullptr) {
        m_host.deleteChainable(pSource);
        return nullptr;
    }
    if (!m_host.insertAfter(newChain, pSource, nullptr)) {
        m_host.deleteChainable(pSource);
        m_host.closeChain(newChain);
        return nullptr;
    }
    return newChain;
}

int CkToFChainEditor::openBranch(CkChain* pChain, CkChainable* pSource, int iTransform) {
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::EkTransformType(iTransform), true);
    if (!m_host.branchAfter(pChain, block, pSource)) {
        m_host.deleteChainable(block);
        return -1;
    }
    const int viewId = IkAppDelegate::instance()->openImageView(block);
    if (viewId == -1) {
        m_host.deleteChainable(block);
    }
    return viewId;
}
