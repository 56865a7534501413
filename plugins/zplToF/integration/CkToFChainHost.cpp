#include "plugins/zplToF/integration/CkToFChainHost.h"

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
