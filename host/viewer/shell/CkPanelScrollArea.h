#pragma once

#include <QScrollArea>

/// Holds a panel of the main window: as wide as the panel needs on an ordinary screen; on a small one the
/// panel scrolls, so that the window still fits. User-interface thread.
class CkPanelScrollArea : public QScrollArea {
    Q_OBJECT

public:
    /// Takes the panel over.
    explicit CkPanelScrollArea(QWidget* pPanel);

    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
};
