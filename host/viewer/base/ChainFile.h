#pragma once

#include "zuCore/CkChain.h"

#include <QList>
#include <QString>
#include <QStringList>

class CkChainable;

/// Processing chains as XML files. Stateless; user-interface thread.
namespace ChainFile {

/// Replaces the file as a whole. On failure returns false, with the file name and the reason in sError, and
/// an existing file keeps its old content.
bool save(const CkChain* pChain, const QString& sFileName, QString& sError);

/// Creates the chain described by a file; it belongs to CkChainManager. On failure returns null, with the
/// file name, the position and the reason in sError.
CkChain* load(const QString& sFileName, QString& sError, const CkChain::LoadProgress& progress = {});

/// Those of the given cameras that the file refers to; they have to be open before the chain is loaded. Empty
/// for an unreadable file.
QStringList camerasIn(const QString& sFileName, const QStringList& cameraIds);

/// Blocks without successors, in the order of the chain.
QList<CkChainable*> ends(const CkChain* pChain);

/// The ends that get a view when the file is opened: the first 16. Logs a warning if there are more.
QList<CkChainable*> shownEnds(const CkChain* pChain, const QString& sFileName);

} // namespace ChainFile
