#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QList>
#include <QObject>

class CkChain;
class CkChainable;

/// Makes chains and changes their structure. User-interface thread. Structural changes are refused (false)
/// while the chain runs.
class ZUCORE_EXPORT CkChainManager : public QObject {
    Q_OBJECT

public:
    static CkChainManager* instance(); ///< Never null.

    /// A new empty chain, owned by the manager; null when none can be made.
    CkChain* createChain();
    QList<CkChain*> chains() const; ///< In the order in which they were made.

    /// Stops the chain, deletes its blocks and the chain itself. Unknown chains are ignored.
    void closeChain(CkChain* pChain);

    /// Puts a block into a chain directly after another one: everything that pAfter fed, blocks and
    /// sinks, is fed by pNew from then on. pAfter null: as a first block (a source). The chain then owns
    /// pNew. False, with nothing changed, when the chain runs, pAfter is not in it, pNew is in a chain
    /// already, or blocks do not accept each other's data.
    bool insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);

    /// Adds a block as a new branch fed by pAfter; what pAfter feeds already stays. False as above.
    bool branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter);

    /// Takes a block out of its chain; what it fed is fed by its first predecessor from then on, and so are
    /// its sinks (those of a source stay without frames). With bKeepBlock the caller owns the block
    /// afterwards, otherwise it is deleted. A chain left without blocks is closed and pChain set to null.
    /// False, with nothing changed, when the chain runs, does not hold the block, or a block it fed does not
    /// accept that predecessor's data or, when a source is to be deleted, would be left without anything
    /// that feeds it. What a source that is kept has fed alone stays, fed by nothing, and is not saved.
    bool remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock);

    /// Deletes a block that is in no chain; one that is in a chain is taken out first, and stays when that
    /// fails.
    void deleteChainable(CkChainable* pBlock);

signals:
    void chainCreated(CkChain* pChain); ///< It has no block yet.
    /// The chain is stopped and still whole.
    void chainAboutToClose(CkChain* pChain);

private:
    CkChainManager();
    ~CkChainManager() override;

    bool insert(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter, bool bBranch);

    QList<CkChain*> m_chains;
};
