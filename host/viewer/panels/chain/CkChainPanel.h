#pragma once

#include "zuCore/CkChainable.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class CkBlockDialogs;
class CkChainTree;
class CkMdiView;
class CkViewArea;
class QAction;
class QLabel;
class QMenu;
class QToolButton;
class QVBoxLayout;

/// Shows the chain of the active view: its blocks with states, errors and counters. Adds, configures,
/// enables, disables and removes blocks, shows their help, saves and opens chains. User-interface thread.
class CkChainPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkChainPanel(CkViewArea* pArea, QWidget* pParent = nullptr);
    ~CkChainPanel() override;

    CkChainTree* tree() const { return m_tree; }
    QMenu* addMenu() const { return m_addMenu; }
    /// The actions of the panel's buttons, for a menu: configure, switch on or off, remove, help.
    QList<QAction*> menuActions() const;

    /// Inserts a new block of a registered class after the selected one (after the active view's block when
    /// none is selected); with bBranch as a branch of its own, with a picture view. Null, after a message box
    /// with the reason, when that is not possible.
    CkChainable* addBlock(const QString& sUniqueId, bool bBranch);

public slots:
    /// Another view became active, or its block changed.
    void refresh();
    void configureSelected();
    void removeSelected();
    void helpSelected();
    void toggleSelected();

signals:
    void saveRequested();
    void loadRequested();
    /// A branch was added; the receiver opens a picture view on its block.
    void viewRequested(CkChainable* pBlock);

private:
    void createActions();
    void createButtons(QVBoxLayout* pLayout);
    QToolButton* addButton(const QString& sText, const QString& sName);
    QToolButton* addButtonFor(QAction* pAction, const QString& sName);
    void fillAddMenu();
    void showTitle();
    void updateButtons();
    void showProblem(const QString& sText);

    CkViewArea* m_area;
    CkChainTree* m_tree = nullptr;
    CkBlockDialogs* m_dialogs = nullptr;
    QLabel* m_title = nullptr;
    QMenu* m_addMenu = nullptr;
    QToolButton* m_addButton = nullptr;
    QAction* m_configureAction = nullptr;
    QAction* m_toggleAction = nullptr;
    QAction* m_removeAction = nullptr;
    QAction* m_helpAction = nullptr;
    QToolButton* m_saveButton = nullptr;
    QTimer m_refreshTimer; ///< refreshes what the tree and the buttons show
    QPointer<CkMdiView> m_view;
};
