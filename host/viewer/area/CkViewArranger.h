#pragma once

#include <QList>
#include <QObject>

class CkViewWindow;
class QMdiArea;

/// Lays out the windows of the views (CkViewWindow) in an area: tiled, on request or automatically, or
/// cascaded. User-interface thread.
class CkViewArranger : public QObject {
    Q_OBJECT

public:
    /// The area becomes the parent.
    explicit CkViewArranger(QMdiArea* pArea);

    /// Whether arrangeLater() tiles the windows.
    bool isAutomatic() const { return m_automatic; }
    /// Switching it on also tiles the windows.
    void setAutomatic(bool bOn);

    /// To be called when a window was added or closed, or the area was resized: if automatic, tiles the
    /// windows from the event loop, once for several calls. No-op while the user has maximized a window.
    void arrangeLater();

    /// Tiles all windows that are not minimized.
    void tile();
    /// Switches automatic off, too.
    void cascade();

private:
    QList<CkViewWindow*> windows() const;
    bool hasMaximizedWindow() const;

    QMdiArea* m_area;
    bool m_automatic = true;
    bool m_pending = false;
};
