#include "plugins/zplToF/view3d/ToFEmbeddedWindow.h"

#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QWindow>

namespace {

// The application searches upwards from this widget for one that accepts drops, and remembers it from the
// enter event on.
template <typename Event>
void sendDrop(const QWindow& window, QWidget& widget, Event& event) {
    const QPointF position = widget.mapFromGlobal(window.mapToGlobal(event.position()));
    Event translated(position.toPoint(), event.possibleActions(), event.mimeData(), event.buttons(),
                     event.modifiers());
    translated.setDropAction(event.dropAction());
    // A widget that accepted the enter event need not accept each move.
    translated.setAccepted(event.type() == QEvent::DragMove && event.isAccepted());
    QCoreApplication::sendEvent(&widget, &translated);
    event.setDropAction(translated.dropAction());
    event.setAccepted(translated.isAccepted());
}

void triggerShortcut(const QWidget& widget, const QKeyEvent& event) {
    const QKeySequence pressed(event.keyCombination());
    for (const QWidget* around = &widget; around != nullptr; around = around->parentWidget()) {
        const QList<QAction*> actions = around->actions();
        for (QAction* action : actions) {
            if (action->isEnabled() && action->shortcuts().contains(pressed) &&
                (action->autoRepeat() || !event.isAutoRepeat())) {
                QMetaObject::invokeMethod(action, &QAction::trigger, Qt::QueuedConnection);
                return;
            }
        }
    }
}

void activate(const CkMdiView& view) {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host != nullptr && host->activeViewId() != view.viewId()) {
        host->setActiveView(view.viewId());
    }
}

void leaveFullScreen() {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host != nullptr && host->mainWindow() != nullptr && host->mainWindow()->isFullScreen()) {
        host->leaveFullScreen();
    }
}

} // namespace

void ToFEmbeddedWindow::forward(QWindow& window, CkMdiView& view, QEvent& event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        activate(view);
        break;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent&>(event).key() == Qt::Key_Escape) {
            leaveFullScreen();
        } else {
            triggerShortcut(view, static_cast<QKeyEvent&>(event));
        }
        break;
    case QEvent::DragEnter:
        sendDrop(window, view, static_cast<QDragEnterEvent&>(event));
        break;
    case QEvent::DragMove:
        sendDrop(window, view, static_cast<QDragMoveEvent&>(event));
        break;
    case QEvent::Drop:
        sendDrop(window, view, static_cast<QDropEvent&>(event));
        break;
    case QEvent::DragLeave:
        QCoreApplication::sendEvent(&view, &event);
        break;
    default:
        break;
    }
}
