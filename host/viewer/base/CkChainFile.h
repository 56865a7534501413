#pragma once

#include "zuCore/CkChain.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

class CkChainable;

/// Chains as files (XML). Stateless; user-interface thread.
class CkChainFile {
    Q_DECLARE_TR_FUNCTIONS(CkChainFile)

public:
    /// False, with sError naming the file and the reason; an existing file is then left as it was.
    static bool save(const CkChain* pChain, const QString& sFileName, QString& sError);

    /// Creates the chain that a file describes. Null, with sError naming the file, the place and the reason.
    static CkChain* load(const QString& sFileName, QString& sError,
                         const CkChain::LoadProgress& progress = {});

    /// Which of the given cameras a file names, to be opened before its chain is loaded; empty for an
    /// unreadable file.
    static QStringList camerasIn(const QString& sFileName, const QStringList& cameraIds);

    /// Blocks that feed no other one, in the order of the chain.
    static QList<CkChainable*> ends(const CkChain* pChain);

    /// The ends that get a view when a file is opened: of very many only the first ones, which is then
    /// logged.
    static QList<CkChainable*> shownEnds(const CkChain* pChain, const QString& sFileName);
};
