#pragma once

#include <QScrollArea>

/// Holds a panel of the main window. On an ordinary screen it is as wide as the panel needs; on a small one
/// the panel scrolls, so that the window fits. User-interface thread.
class CkPanelScrollArea : public QScrollArea {
    Q_OBJECT

public:
    /// Takes ownership of the panel.
    explicit CkPanelScrollArea(QWidget* pPanel);

    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
};
