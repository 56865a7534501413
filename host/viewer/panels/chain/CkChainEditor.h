#pragma once

#include <QCoreApplication>
#include <QString>

class CkChain;
class CkChainable;

/// Changes of a chain on behalf of the user: a running chain is stopped for the change and started again
/// afterwards. User-interface thread. Every function answers whether the change was made; if not, sError says
/// why and the chain is as it was.
class CkChainEditor {
    Q_DECLARE_TR_FUNCTIONS(CkChainEditor)

public:
    /// A new block of a registered class, owned by the caller; null with sError set.
    static CkChainable* createBlock(const QString& sUniqueId, QString& sError);

    /// Takes pBlock over in any case.
    static bool insertAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
    /// Takes pBlock over in any case.
    static bool branchAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
    static bool remove(CkChainable* pBlock, QString& sError);

    static bool isSource(const CkChainable* pBlock);
};
