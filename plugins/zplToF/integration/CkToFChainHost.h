#pragma once

class CkChain;
class CkChainable;

/// The operations of the host's chain manager that the plug-in's actions need; virtual, so that a test can
/// make each of them fail. User-interface thread; ownership as in CkChainManager.
class CkToFChainHost {
public:
    virtual ~CkToFChainHost();

    virtual bool insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);
    virtual bool branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);
    virtual bool remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock);
    virtual CkChain* createChain();
    virtual void closeChain(CkChain* pChain);
    virtual void deleteChainable(CkChainable* pBlock);
};
