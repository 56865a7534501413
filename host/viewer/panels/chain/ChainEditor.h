#pragma once

#include <QString>

class CkChain;
class CkChainable;

/// Changes to a chain that the user makes: a running chain is stopped for the change and restarted
/// afterwards. User-interface thread. Every function returns whether the change was made; if not, sError says
/// why and the chain is unchanged.
namespace ChainEditor {

/// A new block of a registered class, owned by the caller; null with sError set.
CkChainable* createBlock(const QString& sUniqueId, QString& sError);

/// Takes ownership of pBlock, also on failure.
bool insertAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
/// Takes ownership of pBlock, also on failure.
bool branchAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
bool remove(CkChainable* pBlock, QString& sError);

bool isSource(const CkChainable* pBlock);

} // namespace ChainEditor
