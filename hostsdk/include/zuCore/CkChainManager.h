#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QList>
#include <QObject>

class CkChain;
class CkChainable;

/// Creates chains and changes their structure. User-interface thread. Structural changes are refused (false)
/// while the chain runs.
class ZUCORE_EXPORT CkChainManager : public QObject {
    Q_OBJECT

public:
    static CkChainManager* instance(); ///< Never null.

    /// A new empty chain, owned by the manager; null on failure.
    CkChain* createChain();
    QList<CkChain*> chains() const; ///< In order of creation.

    /// Stops the chain, deletes its blocks and the chain itself. Unknown chains are ignored.
    void closeChain(CkChain* pChain);

    /// Inserts a block directly after another one: the successors and sinks of pAfter are moved to pNew.
    /// pAfter null: as a first block (a source). The chain then owns pNew. False, with nothing changed, when
    /// the chain runs, pAfter is not in it, pNew is already in a chain, or blocks do not accept each other's
    /// data.
    bool insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);

    /// Adds a block as a new branch fed by pAfter, whose other successors and sinks stay connected. False as
    /// above.
    bool branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);

    /// Removes a block from its chain; its successors and sinks are connected to its first predecessor (the
    /// sinks of a source get no more frames). With bKeepBlock the caller owns the block afterwards, otherwise
    /// it is deleted. A chain left without blocks is closed and pChain set to null. False, with nothing
    /// changed, when the chain runs or does not contain the block, when a successor does not accept that
    /// predecessor's data, or when deleting a source would leave a successor without a predecessor. Blocks
    /// that were fed only by a source that is kept stay in the chain without input and are not saved.
    bool remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock);

    /// Deletes a block; one that is in a chain is removed from it first, and is not deleted when that fails.
    void deleteChainable(CkChainable* pBlock);

signals:
    void chainCreated(CkChain* pChain); ///< It has no blocks yet.
    /// The chain is stopped and still complete.
    void chainAboutToClose(CkChain* pChain);

private:
    CkChainManager();
    ~CkChainManager() override;

    bool insert(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter, bool bBranch);

    QList<CkChain*> m_chains;
};
