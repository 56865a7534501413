#pragma once

class QEvent;
class QKeyEvent;
class QWidget;
class QWindow;

/// What a native window inside a widget would keep from the widgets around it.
namespace ToFEmbeddedWindow {

/// Hands an event of drag and drop to the widget, or to the first one around it that takes drops, and gives
/// its answer to the window. Without any the drop is refused. Other events are left alone.
void handOverDrop(const QWindow& window, QWidget& widget, QEvent& event);

/// Triggers the enabled action of this shortcut in the widget or those around it. Shortcuts whose widgets
/// must have the focus do not see the keys of the window. Later, as the action may close the widget.
void triggerShortcut(const QWidget& widget, const QKeyEvent& event);

} // namespace ToFEmbeddedWindow
