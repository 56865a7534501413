#pragma once

#include <QToolBar>

/// A tool bar of which everything stays within reach however narrow it is: what does not fit is in the menu
/// behind its "»" button, texts included. User-interface thread.
class CkToFToolBar : public QToolBar {
    Q_OBJECT

public:
    using QToolBar::QToolBar;

    /// A button that opens the menu, which stays the caller's.
    void addMenu(const QString& sText, QMenu* pMenu);
    /// Empty space that pushes what follows to the right.
    void addSpace();
    /// A text, empty at first. Its label here; where it does not fit, another one in the menu shows the same.
    void addLabel();
    /// The text of the label.
    void setLabelText(const QString& sText);

private:
    QAction* m_pLabel = nullptr;
};
