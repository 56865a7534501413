#pragma once

#include <QToolBar>

/// A tool bar that hides no item when it is narrow: those that do not fit, labels included, are in the menu
/// of its "»" button. User-interface thread.
class CkToFToolBar : public QToolBar {
    Q_OBJECT

public:
    using QToolBar::QToolBar;

    /// Adds a button that opens the menu. The caller keeps ownership of the menu.
    void addMenu(const QString& sText, QMenu* pMenu);
    /// Adds empty space that pushes the following items to the right.
    void addSpace();
    /// Adds a label, empty at first. Where it does not fit, the menu shows the same text.
    void addLabel();
    /// Sets the text of the label.
    void setLabelText(const QString& sText);

private:
    QAction* m_label = nullptr;
};
