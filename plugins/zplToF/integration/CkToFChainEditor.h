#pragma once

#include <QPointer>

class CkChain;
class CkChainable;

/// The host's chain operations that the plug-in's actions need. One thin layer, so that each of them can be
/// made to fail. User-interface thread; ownership as in CkChainManager.
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

/// Starts a stopped chain once, after all that is changed in it: at the end of the scope at the latest,
/// unless it has gone or was started by then. User-interface thread.
class CkToFChainStart {
public:
    CkToFChainStart();
    ~CkToFChainStart();
    CkToFChainStart(const CkToFChainStart&) = delete;
    CkToFChainStart& operator=(const CkToFChainStart&) = delete;

    /// Notes the chain (may be null) for the start; it takes the place of the one before.
    void later(CkChain* pChain);
    void now();

private:
    QPointer<CkChain> m_pending;
};

/// Finds and inserts ToF processing blocks. User-interface thread.
class CkToFChainEditor {
public:
    /// The host stays the caller's and outlives the editor.
    explicit CkToFChainEditor(CkToFChainHost& host) : m_host(host) {}

    /// Walks up from a block to the first ToF block or the top of the chain. Answers the block just
    /// downstream of where the walk stopped, or the block itself when it stopped at once; so only a ToF
    /// block at the start is ever answered itself. Null for null.
    static CkChainable* searchUpstream(CkChainable* pBlock);

    /// The first ToF block at or above a block, or null.
    static CkChainable* firstToFBlock(CkChainable* pBlock);

    /// Puts a new block with transform "Depth" behind pAfter. A chain that ran is stopped and started again,
    /// also when that fails; one that did not run is started on success. False: nothing was inserted.
    bool insertDepthBlock(CkChainable* pAfter);

private:
    CkToFChainHost& m_host;
};
