#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

class CkChain;
class CkChainable;

/// Chains as files (XML). Stateless; user-interface thread.
class CkChainFile {
    Q_DECLARE_TR_FUNCTIONS(CkChainFile)

public:
    /// False, with sError naming the file and the reason; a file that was there before is then untouched.
    static bool save(const CkChain* pChain, const QString& sFileName, QString& sError);

    /// Makes a chain of a file. Null, with sError naming the file, the place and the reason.
    static CkChain* load(const QString& sFileName, QString& sError);

    /// Which of the given cameras a file mentions, so that they can be opened before it is; empty for an
    /// unreadable file.
    static QStringList camerasIn(const QString& sFileName, const QStringList& cameraIds);

    /// Blocks that feed no other one, in the order of the chain.
    static QList<CkChainable*> ends(const CkChain* pChain);
};
