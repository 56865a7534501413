#pragma once

#include <QList>

class QAction;
class QMenu;

/// Helpers for the actions of menus. User-interface thread.
namespace MenuActions {

/// The actions of a menu and its submenus in their order, without separators and without the submenus
/// themselves.
QList<QAction*> leavesOf(const QMenu* menu);

/// Gives Ctrl+Alt+1 to Ctrl+Alt+9 to the first entries without a shortcut.
void assignShortcuts(const QMenu* menu);

} // namespace MenuActions
