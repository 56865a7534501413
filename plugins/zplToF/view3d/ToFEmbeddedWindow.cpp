#include "plugins/zplToF/view3d/ToFEmbeddedWindow.h"

#include <QAction>
#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QWidget>
#include <QWindow>

namespace {

// The application looks for the one that takes drops from this widget upwards, and remembers it from the
// enter event on.
template <typename Event>
void handOver(const QWindow& window, QWidget& widget, Event& event) {
    const QPointF place = widget.mapFromGlobal(window.mapToGlobal(event.position()));
    Event translated(place.toPoint(), event.possibleActions(), event.mimeData(), event.buttons(),
                     event.modifiers());
    translated.setDropAction(event.dropAction());
    // Who has accepted the enter event need not say so again.
    translated.setAccepted(event.type() == QEvent::DragMove && event.isAccepted());
    QCoreApplication::sendEvent(&widget, &translated);
    event.setDropAction(translated.dropAction());
    event.setAccepted(translated.isAccepted());
}

} // namespace

void ToFEmbeddedWindow::handOverDrop(const QWindow& window, QWidget& widget, QEvent& event) {
    switch (event.type()) {
    case QEvent::DragEnter:
        handOver(window, widget, static_cast<QDragEnterEvent&>(event));
        break;
    case QEvent::DragMove:
        handOver(window, widget, static_cast<QDragMoveEvent&>(event));
        break;
    case QEvent::Drop:
        handOver(window, widget, static_cast<QDropEvent&>(event));
        break;
    case QEvent::DragLeave:
        QCoreApplication::sendEvent(&widget, &event);
        break;
    default:
        break;
    }
}

void ToFEmbeddedWindow::triggerShortcut(const QWidget& widget, const QKeyEvent& event) {
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
