#pragma once

#include <QList>
#include <QObject>

class CkPanelDocks;
class CkViewArea;
class QAction;
class QMenu;

/// Fills the View menu: arranging, activating and closing views, showing panels, full screen. User-interface
/// thread.
class CkViewMenu : public QObject {
    Q_OBJECT

public:
    /// docks: all docks have been added.
    CkViewMenu(QMenu* menu, CkViewArea* area, CkPanelDocks* docks, QObject* parent);

    /// Docks as in a new installation, views tiled automatically.
    void resetLayout();

    void setFullScreenChecked(bool checked);

public slots:
    /// Enables the actions that apply to the active view.
    void refresh();

signals:
    void fullScreenRequested(bool on);
    void logSearchRequested();

private:
    void addViewActions(QMenu* menu);
    void addPanelActions(QMenu* menu);

    CkViewArea* m_area;
    CkPanelDocks* m_docks;
    QAction* m_arrange = nullptr;
    QAction* m_fullScreen = nullptr;
    QList<QAction*> m_viewActions; ///< need an active view
};
