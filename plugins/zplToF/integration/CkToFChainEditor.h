#pragma once

class CkChain;
class CkChainable;
class CkToFChainHost;

/// Finds and inserts ToF processing blocks, and rebuilds the chain of a source. User-interface thread.
class CkToFChainEditor {
public:
    /// The host outlives the editor, which does not own it.
    explicit CkToFChainEditor(CkToFChainHost& host) : m_host(host) {}

    /// Searches upstream from a block for the first ToF block, or up to the top of the chain. Returns the
    /// block just downstream of where the search stopped, or pBlock itself when it stopped at once: a ToF
    /// block is returned only when pBlock is one. Null for null.
    static CkChainable* searchUpstream(CkChainable* pBlock);

    /// The first ToF block at or above a block, or null.
    static CkChainable* firstToFBlock(CkChainable* pBlock);

    /// Inserts a new block with transform "Depth" after pAfter. A running chain is stopped and restarted,
    /// also on failure; a stopped one is started on success. False: nothing was inserted.
    bool insertDepthBlock(CkChainable* pAfter);

    /// Moves a source from its chain into a new one; closes the view and the old chain. Null on failure:
    /// while the source cannot be removed nothing changes, after that it is deleted.
    CkChain* moveToNewChain(CkChainable* pSource, int iViewId);

    /// Adds a branch with a new ToF block after the source and opens a view on it. The view's identifier; -1
    /// on failure, without a branch. iTransform: a ToFTransform::EkTransformType.
    int openBranch(CkChain* pChain, CkChainable* pSource, int iTransform);

private:
    CkToFChainHost& m_host;
};
