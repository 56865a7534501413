#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QDockWidget;
class QMainWindow;
class QWidget;

/// The dock widgets of the main window: their initial layout, and the actions that show and hide them.
/// User-interface thread.
class CkPanelDocks : public QObject {
    Q_OBJECT

public:
    /// The window becomes the parent.
    explicit CkPanelDocks(QMainWindow* window);

    /// Puts a panel, which the dock then owns, into a new dock. The name identifies it in saved layouts.
    QDockWidget* add(const QString& name, const QString& title, QWidget* panel, Qt::DockWidgetArea area);

    /// Sets the initial sizes for the present width of the window; reset() restores this layout. To be called
    /// once, after all docks have been added.
    void setInitialLayout(QDockWidget* left, QDockWidget* right, QDockWidget* bottom);
    void reset();

    /// A new checkable action for each dock, in the order of add(), with Alt+1 to Alt+9 as shortcuts.
    QList<QAction*> createActions();

private:
    QAction* createAction(QDockWidget* dock);

    QMainWindow* m_window;
    QList<QDockWidget*> m_docks;
    QByteArray m_initialState;
};
