#pragma once

#include <QString>

class CkChain;
class CkChainable;

/// Edits a chain on behalf of the user: a running chain is stopped for the change and restarted afterwards.
/// User-interface thread. Every function returns whether the change was made; if not, sError holds the reason
/// and the chain is unchanged.
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
