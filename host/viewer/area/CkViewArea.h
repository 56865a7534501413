#pragma once

#include "zuCore/CkChain.h"

#include <QList>
#include <QMdiArea>
#include <QPointer>
#include <QSet>

class CkMdiView;
class CkViewArranger;
class CkViewNoticeController;
class CkViewWindow;

/// The area that holds and owns all views and knows which one is active. User-interface thread.
///
/// A view with a native sub-surface that needs a top-level window (CkMdiView::NativeWindowCap) becomes a
/// window beside the main window; in every other respect it is treated like the rest.
class CkViewArea : public QMdiArea {
    Q_OBJECT

public:
    explicit CkViewArea(QWidget* pParent = nullptr);
    ~CkViewArea() override;

    /// Takes ownership of a view, shows it and makes it the active one. A view that has been added before is
    /// only activated.
    void addView(CkMdiView* pView);

    /// Null for an unknown identifier.
    CkMdiView* view(int iViewId) const;
    /// In order of opening.
    QList<CkMdiView*> views() const;

    /// -1: none. Does not change when the program loses the focus to another one.
    int activeViewId() const { return m_activeViewId; }
    /// Never null.
    CkViewNoticeController* notices() const { return m_notices; }
    CkMdiView* activeView() const { return view(m_activeViewId); }
    void setActiveView(int iViewId);

    /// Closes a view and those that follow it. With bAsk the user is asked about each one that holds data.
    /// False for an unknown view, or when the user refuses. The view is deleted when control returns to the
    /// event loop.
    bool closeView(int iViewId, bool bAsk = true);
    /// False when the user refuses to close one.
    bool closeAllViews(bool bAsk);

    /// Whether the views are tiled whenever one is added or closed, or the area is resized.
    bool arrangesItself() const;
    void setArrangesItself(bool bArrange);

public slots:
    void tile();
    void cascade();
    void activateNextView();
    void activatePreviousView();

signals:
    void viewAdded(int iViewId);
    /// -1: no view is left.
    void activeViewChanged(int iViewId);
    /// The view still exists.
    void viewAboutToClose(int iViewId);
    /// The view has been closed. chain: the one it showed, null when there was none or it was deleted too.
    void viewClosed(int iViewId, QPointer<CkChain> chain);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    struct SkEntry {
        QPointer<CkMdiView> view;
        QPointer<CkViewWindow> window; ///< null for a view with a window of its own
    };

    qsizetype indexOf(int iViewId) const;
    void makeActive(int iViewId);
    void activateRemainingView();

    CkViewArranger* m_arranger;
    CkViewNoticeController* m_notices = nullptr;
    QList<SkEntry> m_entries;
    QSet<int> m_closing;
    int m_activeViewId = -1;
};
