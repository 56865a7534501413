#pragma once

#include <QString>

class CkChain;
class CkChainable;

/// Changes of a chain on behalf of the user: a running chain is stopped for the change and started again
/// afterwards. User-interface thread. Every function answers whether the change was made; if not, sError says
/// why and the chain is as it was.
namespace ChainEditor {

/// A new block of a registered class, owned by the caller; null with sError set.
CkChainable* createBlock(const QString& sUniqueId, QString& sError);

/// Takes pBlock over in any case.
bool insertAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
/// Takes pBlock over in any case.
bool branchAfter(CkChainable* pBlock, CkChainable* pAfter, QString& sError);
bool remove(CkChainable* pBlock, QString& sError);

bool isSource(const CkChainable* pBlock);

} // namespace ChainEditor
