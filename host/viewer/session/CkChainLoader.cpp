#include "host/viewer/session/CkChainLoader.h"

#include "host/recording/CkOpenProgressScope.h"
#include "host/viewer/base/ChainFile.h"
#include "host/viewer/base/ProgressDialogDelay.h"

namespace {

constexpr qint64 kRefreshMs = 50;

} // namespace

CkChainLoader::CkChainLoader(const QString& sFileName, QWidget* pWindow)
    : m_fileName(sFileName), m_window(pWindow) {
    m_sinceStart.start();
    m_sinceShown.start();
}

CkChain* CkChainLoader::load(QString& sError) {
    const CkOpenProgressScope progress([this](qint64 found, double) { return framesFound(found); });
    CkChain* const chain = ChainFile::load(
        m_fileName, sError, [this](qsizetype read, qsizetype all) { return blocksRead(read, all); });
    if (chain == nullptr && m_dialog != nullptr && m_dialog->wasCanceled()) {
        sError.clear();
    }
    m_dialog.reset();
    return chain;
}

bool CkChainLoader::blocksRead(qsizetype iRead, qsizetype iAll) {
    m_read = iRead;
    m_all = iAll;
    return report(tr("Opening \"%1\": block %2 of %3").arg(m_fileName).arg(iRead).arg(iAll));
}

bool CkChainLoader::framesFound(qint64 iFrames) {
    return report(tr("Opening \"%1\": frame %2 of a recording").arg(m_fileName).arg(iFrames));
}

bool CkChainLoader::report(const QString& sText) {
    if (m_dialog == nullptr) {
        if (m_sinceStart.elapsed() < kProgressDialogDelay.count()) {
            return true;
        }
        m_dialog = std::make_unique<QProgressDialog>(m_window);
        m_dialog->setObjectName(QStringLiteral("openingChain"));
        m_dialog->setWindowTitle(tr("Open Chain"));
        m_dialog->setWindowModality(Qt::ApplicationModal);
        m_dialog->setMinimumDuration(0);
        m_dialog->setAutoReset(false);
        m_dialog->setAutoClose(false);
    } else if (m_sinceShown.elapsed() < kRefreshMs) {
        return true;
    }
    m_sinceShown.start();
    m_dialog->setMaximum(int(m_all));
    m_dialog->setLabelText(sText);
    m_dialog->setValue(int(m_read));
    // The dialog processes events itself only when the value has changed.
    QCoreApplication::processEvents();
    return !m_dialog->wasCanceled();
}
