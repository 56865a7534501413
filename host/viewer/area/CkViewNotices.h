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

/// Tells in each view why it shows nothing new: a camera that is unplugged, a block that fails or is switched
/// off. The text stands above the view's contents, and a picture that is out of date is darkened. A view that
/// follows another one is told the same. User-interface thread.
class CkViewNotices : public QObject {
    Q_OBJECT

public:
    explicit CkViewNotices(CkViewArea* pArea);

    /// The text above a view's contents; empty for none.
    QString notice(int iViewId) const;

    /// Looks at all views now, rather than a few times a second.
    void refresh();

private:
    struct SkNotice {
        QString text;          ///< empty: all is well
        bool isHalted = false; ///< nothing comes, for certain
    };
    /// Frames counted at a view's block since its chain was started.
    struct SkFlow {
        quint64 in = 0; ///< by it and all that feed it
        quint64 out = 0;
    };
    struct SkEntry {
        QPointer<CkMdiView> view;
        QPointer<QLabel> banner;
        QString text;
        SkFlow flow;
        int idleLooks = 0; ///< in a row, that saw frames go in and none come out
    };

    void watch(int iViewId);
    void refreshView(SkEntry& entry);
    static SkFlow flowTo(const CkChainable* pProvider);
    void show(SkEntry& entry, const QString& sText);
    /// The block whose frames a view shows, its own or that of the view it follows.
    CkChainable* providerOf(const CkMdiView* pView) const;
    static SkNotice noticeFor(CkMdiView* pView, const CkChainable* pProvider);
    static QString emptyText(const CkMdiView* pView, const CkChainable* pProvider);

    CkViewArea* m_pArea;
    QHash<int, SkEntry> m_entries;
    QTimer m_timer;
};
