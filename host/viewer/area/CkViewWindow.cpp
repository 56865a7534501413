#include "host/viewer/area/CkViewWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>

CkViewWindow::CkViewWindow(int iViewId, QWidget* pParent) : QMdiSubWindow(pParent), m_viewId(iViewId) {
    setAttribute(Qt::WA_DeleteOnClose);
    // The main window's menus have the same shortcuts, and an ambiguous shortcut triggers neither action.
    for (QAction* action : systemMenu()->actions()) {
        action->setShortcuts(QList<QKeySequence>());
    }
}

void CkViewWindow::closeNow() {
    m_agreed = true;
    close();
}

void CkViewWindow::closeEvent(QCloseEvent* pEvent) {
    if (!m_agreed) {
        pEvent->ignore();
        emit closeRequested(m_viewId);
        return;
    }
    QMdiSubWindow::closeEvent(pEvent);
}
