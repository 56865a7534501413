#include "host/viewer/area/CkViewArea.h"

#include "host/viewer/area/CkViewArranger.h"
#include "host/viewer/area/CkViewNoticeController.h"
#include "host/viewer/area/CkViewWindow.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/CkMdiView.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QPainter>

namespace {

constexpr int kTextMargin = 12;

} // namespace

CkViewArea::CkViewArea(QWidget* pParent) : QMdiArea(pParent), m_arranger(new CkViewArranger(this)) {
    setBackground(QColor(0x3a, 0x3d, 0x42));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_notices = new CkViewNoticeController(this);
    connect(this, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* pWindow) {
        // Also null when another window of the program has the focus: the view stays active.
        if (const auto* window = qobject_cast<CkViewWindow*>(pWindow)) {
            makeActive(window->viewId());
        }
    });
}

CkViewArea::~CkViewArea() {
    // Ignore activations during destruction.
    disconnect(this, nullptr, this, nullptr);
    closeAllViews(false);
}

qsizetype CkViewArea::indexOf(int iViewId) const {
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].view && m_entries[i].view->viewId() == iViewId) {
            return i;
        }
    }
    return -1;
}

void CkViewArea::addView(CkMdiView* pView) {
    if (pView == nullptr) {
        return;
    }
    const int id = pView->viewId();
    if (indexOf(id) >= 0) {
        setActiveView(id);
        return;
    }
    SkEntry entry;
    entry.view = pView;
    QWidget* frame = pView;
    if ((pView->viewCaps() & CkMdiView::NativeWindowCap) != 0) {
        pView->setParent(window(), Qt::Window);
        // Shortcuts of the area also work in its windows.
        pView->addActions(actions());
        pView->installEventFilter(this);
    } else {
        const QSize wanted = pView->testAttribute(Qt::WA_Resized) ? pView->size() : QSize(480, 400);
        entry.window = new CkViewWindow(id);
        entry.window->setWidget(pView);
        entry.window->setWindowIcon(window()->windowIcon());
        connect(entry.window, &CkViewWindow::closeRequested, this,
                [this](int iViewId) { closeView(iViewId); });
        addSubWindow(entry.window);
        entry.window->resize(wanted + (entry.window->size() - pView->size()).expandedTo(QSize(0, 0)));
        frame = entry.window;
    }
    m_entries.append(entry);
    frame->setWindowTitle(pView->viewTitle());
    connect(pView, &CkMdiView::viewTitleChanged, frame, [pView, frame] {
        if (frame != pView && frame->windowTitle() != pView->viewTitle()) {
            frame->setWindowTitle(pView->viewTitle());
        }
    });
    emit viewAdded(id);
    frame->show();
    makeActive(id);
    if (entry.window) {
        setActiveSubWindow(entry.window);
    }
    m_arranger->arrangeLater();
}

CkMdiView* CkViewArea::view(int iViewId) const {
    const qsizetype index = indexOf(iViewId);
    return index >= 0 ? m_entries[index].view.data() : nullptr;
}

QList<CkMdiView*> CkViewArea::views() const {
    QList<CkMdiView*> result;
    for (const SkEntry& entry : m_entries) {
        if (entry.view) {
            result.append(entry.view);
        }
    }
    return result;
}

void CkViewArea::setActiveView(int iViewId) {
    const qsizetype index = indexOf(iViewId);
    if (index < 0) {
        return;
    }
    const SkEntry entry = m_entries[index];
    if (entry.window) {
        setActiveSubWindow(entry.window);
    } else {
        entry.view->raise();
        entry.view->activateWindow();
    }
    makeActive(iViewId);
}

void CkViewArea::makeActive(int iViewId) {
    if (iViewId == m_activeViewId || m_closing.contains(iViewId) || (iViewId >= 0 && indexOf(iViewId) < 0)) {
        return;
    }
    m_activeViewId = iViewId;
    emit activeViewChanged(iViewId);
}

void CkViewArea::activateRemainingView() {
    if (const auto* window = qobject_cast<CkViewWindow*>(currentSubWindow());
        window != nullptr && indexOf(window->viewId()) >= 0) {
        makeActive(window->viewId());
        return;
    }
    for (qsizetype i = m_entries.size(); i-- > 0;) {
        if (m_entries[i].view && !m_closing.contains(m_entries[i].view->viewId())) {
            setActiveView(m_entries[i].view->viewId());
            return;
        }
    }
    makeActive(-1);
}

bool CkViewArea::closeView(int iViewId, bool bAsk) {
    CkMdiView* closing = view(iViewId);
    if (closing == nullptr) {
        return false;
    }
    if (m_closing.contains(iViewId)) {
        return true;
    }
    if (bAsk && closing->containsData() &&
        QMessageBox::question(
            window(), tr("Close View"),
            tr("\"%1\" holds data that is lost when it closes. Close it?").arg(closing->viewTitle())) !=
            QMessageBox::Yes) {
        return false;
    }
    m_closing.insert(iViewId);
    for (CkMdiView* follower : views()) {
        if (follower != closing && follower->connectedViewId() == iViewId &&
            !closeView(follower->viewId(), bAsk)) {
            m_closing.remove(iViewId);
            return false;
        }
    }
    emit viewAboutToClose(iViewId);

    CkChainable* provider = closing->dataProvider();
    const QPointer<CkChain> chain(provider != nullptr ? provider->chain() : nullptr);
    const SkEntry entry = m_entries.takeAt(indexOf(iViewId));
    if (entry.window) {
        entry.window->closeNow();
    } else {
        closing->removeEventFilter(this);
        closing->hide();
        closing->deleteLater();
    }
    if (m_activeViewId == iViewId) {
        m_activeViewId = -1;
        activateRemainingView();
        if (m_activeViewId == -1) {
            emit activeViewChanged(-1);
        }
    }
    m_closing.remove(iViewId);
    emit viewClosed(iViewId, chain);
    m_arranger->arrangeLater();
    return true;
}

bool CkViewArea::closeAllViews(bool bAsk) {
    while (!m_entries.isEmpty()) {
        if (!m_entries.last().view) {
            m_entries.removeLast();
        } else if (!closeView(m_entries.last().view->viewId(), bAsk)) {
            return false;
        }
    }
    return true;
}

bool CkViewArea::arrangesItself() const {
    return m_arranger->isAutomatic();
}

void CkViewArea::setArrangesItself(bool bArrange) {
    m_arranger->setAutomatic(bArrange);
}

void CkViewArea::tile() {
    m_arranger->tile();
}

void CkViewArea::cascade() {
    m_arranger->cascade();
}

void CkViewArea::activateNextView() {
    if (!m_entries.isEmpty()) {
        const qsizetype next = (indexOf(m_activeViewId) + 1) % m_entries.size();
        setActiveView(m_entries[next].view->viewId());
    }
}

void CkViewArea::activatePreviousView() {
    if (!m_entries.isEmpty()) {
        const qsizetype previous = (indexOf(m_activeViewId) + m_entries.size() - 1) % m_entries.size();
        setActiveView(m_entries[previous].view->viewId());
    }
}

bool CkViewArea::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (auto* own = qobject_cast<CkMdiView*>(pWatched); own != nullptr && indexOf(own->viewId()) >= 0) {
        if (pEvent->type() == QEvent::WindowActivate) {
            makeActive(own->viewId());
        } else if (pEvent->type() == QEvent::Close) {
            static_cast<QCloseEvent*>(pEvent)->ignore();
            closeView(own->viewId());
            return true;
        }
    }
    return QMdiArea::eventFilter(pWatched, pEvent);
}

void CkViewArea::resizeEvent(QResizeEvent* pEvent) {
    QMdiArea::resizeEvent(pEvent);
    m_arranger->arrangeLater();
}

void CkViewArea::paintEvent(QPaintEvent* pEvent) {
    QMdiArea::paintEvent(pEvent);
    if (subWindowList().isEmpty()) {
        QPainter painter(viewport());
        painter.setPen(QColor(0xb8, 0xbc, 0xc4));
        QFont large = font();
        large.setPointSizeF(large.pointSizeF() * 1.2);
        painter.setFont(large);
        painter.drawText(
            viewport()->rect().adjusted(kTextMargin, 0, -kTextMargin, 0), Qt::AlignCenter | Qt::TextWordWrap,
            tr("No view is open.\n\nOpen a camera from the Camera menu, a recording with Ctrl+Shift+O,\n"
               "a chain file with Ctrl+O, or drop files here."));
    }
}
