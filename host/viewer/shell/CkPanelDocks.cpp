#include "host/viewer/shell/CkPanelDocks.h"

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>

#include <algorithm>

namespace {

// Pixels.
constexpr int kLeftWidth = 350;
constexpr int kRightWidth = 360;
constexpr int kMinimumWidth = 200;
constexpr int kBottomHeight = 150;
// Share of the window's width for each side, if the window is too narrow for the widths above.
constexpr double kLargestShare = 0.3;

constexpr int kShortcuts = 9;

} // namespace

CkPanelDocks::CkPanelDocks(QMainWindow* window) : QObject(window), m_window(window) {
    window->setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    window->setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
}

QDockWidget* CkPanelDocks::add(const QString& name, const QString& title, QWidget* panel,
                               Qt::DockWidgetArea area) {
    auto* dock = new QDockWidget(title, m_window);
    dock->setObjectName(name);
    dock->setWidget(panel);
    m_window->addDockWidget(area, dock);
    m_docks.append(dock);
    return dock;
}

void CkPanelDocks::setInitialLayout(QDockWidget* left, QDockWidget* right, QDockWidget* bottom) {
    left->setMinimumWidth(kMinimumWidth);
    right->setMinimumWidth(kMinimumWidth);
    const int share = int(kLargestShare * m_window->width());
    m_window->resizeDocks({left, right}, {std::min(kLeftWidth, share), std::min(kRightWidth, share)},
                          Qt::Horizontal);
    m_window->resizeDocks({bottom}, {kBottomHeight}, Qt::Vertical);
    m_initialState = m_window->saveState();
}

void CkPanelDocks::reset() {
    m_window->restoreState(m_initialState);
}

QList<QAction*> CkPanelDocks::createActions() {
    QList<QAction*> actions;
    for (qsizetype i = 0; i < m_docks.size(); ++i) {
        QAction* action = createAction(m_docks[i]);
        if (i < kShortcuts) {
            action->setShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + i)));
        }
        actions.append(action);
    }
    return actions;
}

QAction* CkPanelDocks::createAction(QDockWidget* dock) {
    // Not QDockWidget::toggleViewAction(), which hides a dock in a background tab instead of raising it.
    auto* action = new QAction(dock->windowTitle(), this);
    action->setObjectName(QStringLiteral("act_") + dock->objectName());
    action->setCheckable(true);
    connect(dock, &QDockWidget::visibilityChanged, action, &QAction::setChecked);
    connect(action, &QAction::triggered, dock, [dock](bool on) {
        dock->setVisible(on);
        if (on) {
            dock->raise();
        }
    });
    return action;
}
