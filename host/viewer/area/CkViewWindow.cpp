#include "area/CkViewWindow.h"

#include <QCloseEvent>

CkViewWindow::CkViewWindow(int iViewId, QWidget* pParent) : QMdiSubWindow(pParent), m_iViewId(iViewId) {
    setAttribute(Qt::WA_DeleteOnClose);
}

void CkViewWindow::closeNow() {
    m_bAgreed = true;
    close();
}

void CkViewWindow::closeEvent(QCloseEvent* pEvent) {
    if (!m_bAgreed) {
        pEvent->ignore();
        emit closeRequested(m_iViewId);
        return;
    }
    QMdiSubWindow::closeEvent(pEvent);
}
