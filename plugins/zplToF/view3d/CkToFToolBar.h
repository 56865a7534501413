#pragma once

#include <QToolBar>

/// A tool bar of which everything stays within reach however narrow it is: what does not fit is in the menu
/// behind its "»" button, texts included. User-interface thread.
class CkToFToolBar : public QToolBar {
    Q_OBJECT

public:
    explicit CkToFToolBar(QWidget* pParent = nullptr);

    /// A button that opens the menu, which the tool bar takes over.
    void addMenu(const QString& sText, QMenu* pMenu);
    /// Empty space that pushes what follows to the right.
    void addSpace();
    /// A text, empty at first. Its label here; where it does not fit, another one in the menu shows the same.
    void addLabel();
    /// The text of the label.
    void setLabelText(const QString& sText);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    QAction* m_pLabel = nullptr;
};
