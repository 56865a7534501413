#include "host/viewer/shell/MenuActions.h"

#include <QAction>
#include <QMenu>

QList<QAction*> MenuActions::leavesOf(const QMenu* menu) {
    QList<QAction*> leaves;
    for (QAction* action : menu->actions()) {
        if (action->menu() != nullptr) {
            leaves += leavesOf(action->menu());
        } else if (!action->isSeparator()) {
            leaves.append(action);
        }
    }
    return leaves;
}

void MenuActions::assignShortcuts(const QMenu* menu) {
    constexpr int kShortcuts = 9;
    int number = 0;
    for (QAction* action : leavesOf(menu)) {
        if (action->shortcut().isEmpty() && number < kShortcuts) {
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key(Qt::Key_1 + number)));
            ++number;
        }
    }
}
