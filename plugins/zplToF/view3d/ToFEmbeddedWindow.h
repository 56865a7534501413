#pragma once

class CkMdiView;
class QEvent;
class QWindow;

/// A native window embedded in a view receives events that Qt would otherwise send to the view and the
/// widgets around it. User-interface thread.
namespace ToFEmbeddedWindow {

/// Handles an event of the window as the application handles one of a widget:
///
/// - a mouse press makes the view the active one,
/// - Escape leaves full-screen mode,
/// - any other key triggers the enabled action with this shortcut in the view or a widget around it (queued,
///   as the action may close the view),
/// - drag and drop is passed to the view, or to the first widget around it that accepts drops, and accepted
/// if
///   that accepts it.
///
/// Other events are ignored. The view may be closed by a drop.
void forward(QWindow& window, CkMdiView& view, QEvent& event);

} // namespace ToFEmbeddedWindow
