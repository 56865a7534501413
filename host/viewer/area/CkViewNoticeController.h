#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class CkChainable;
class CkMdiView;
class CkViewArea;
class QLabel;

/// Shows in each view why it receives no new frames: an unplugged camera, a block that fails or is switched
/// off. The text appears above the view's contents, and an outdated picture is darkened. A view that follows
/// another one shows the same text. User-interface thread.
class CkViewNoticeController : public QObject {
    Q_OBJECT

public:
    explicit CkViewNoticeController(CkViewArea* pArea);

    /// The text above a view's contents; empty for none.
    QString notice(int iViewId) const;

    /// Checks all views now; it otherwise happens a few times a second.
    void refresh();

private:
    struct SkNotice {
        QString text;          ///< empty: nothing to report
        bool isHalted = false; ///< it is certain that no frames arrive
    };
    /// Frames counted at a view's block since its chain was started.
    struct SkFlow {
        quint64 in = 0; ///< at the block and everything upstream of it
        quint64 out = 0;
    };
    struct SkEntry {
        QPointer<CkMdiView> view;
        QPointer<QLabel> banner;
        QString text;
        SkFlow flow;
        int idleChecks = 0; ///< consecutive checks that found frames in and none out
    };

    void watch(int iViewId);
    void refreshView(SkEntry& entry);
    static SkFlow flowTo(const CkChainable* pProvider);
    void show(SkEntry& entry, const QString& sText);
    /// The block whose frames a view shows, its own or that of the view it follows.
    CkChainable* providerOf(const CkMdiView* pView) const;
    static SkNotice noticeFor(CkMdiView* pView, const CkChainable* pProvider);
    static QString emptyText(const CkMdiView* pView, const CkChainable* pProvider);

    CkViewArea* m_area;
    QHash<int, SkEntry> m_entries;
    QTimer m_timer;
};
