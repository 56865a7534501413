#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProgressDialog>
#include <QString>

#include <memory>

class CkChain;

/// Loads a chain file; if that takes long, a dialog shows the progress and allows the user to cancel.
/// User-interface thread.
class CkChainLoader {
    Q_DECLARE_TR_FUNCTIONS(CkChainLoader)

public:
    /// pWindow, which may be null, is the dialog's parent.
    CkChainLoader(const QString& sFileName, QWidget* pWindow);

    /// Null, with sError naming the file, the position and the reason, or empty when the user cancelled.
    CkChain* load(QString& sError);

private:
    bool report(const QString& sText);
    bool blocksRead(qsizetype iRead, qsizetype iAll);
    bool framesFound(qint64 iFrames);

    QString m_fileName;
    QWidget* m_window;
    std::unique_ptr<QProgressDialog> m_dialog;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceShown;
    qsizetype m_read = 0;
    qsizetype m_all = 0;
};
