#pragma once

#include "zuCore/CkChainable.h"

#include <QHash>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class CkChainTree;
class CkMdiView;
class CkViewArea;
class QAction;
class QDialog;
class QLabel;
class QMenu;
class QToolButton;

/// The chain behind the active view: its blocks with states, errors and counters; adding, configuring,
/// switching, removing and explaining them; saving the chain and opening another. User-interface thread.
class CkChainPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkChainPanel(CkViewArea* pArea, QWidget* pParent = nullptr);
    ~CkChainPanel() override;

    CkChainTree* tree() const { return m_pTree; }
    QMenu* addMenu() const { return m_pAddMenu; }
    /// What the panel's buttons do, for a menu: configure, switch, remove, explain the selected block.
    QList<QAction*> blockActions() const;

    /// Puts a new block of a class behind the selected block (or the view's one), or beside what follows
    /// there, with a picture view of its own. Null, after telling the user why, when that cannot be.
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
    /// A picture view on a block is wanted.
    void viewRequested(CkChainable* pBlock);

private:
    QToolButton* addButton(const QString& sText, const QString& sName);
    QToolButton* addButtonFor(QAction* pAction, const QString& sName);
    void fillAddMenu();
    void showTitle();
    void updateButtons();
    void showProblem(const QString& sText);

    CkViewArea* m_pArea;
    CkChainTree* m_pTree;
    QLabel* m_pTitle;
    QMenu* m_pAddMenu;
    QToolButton* m_pAddButton;
    QAction* m_pConfigureAction;
    QAction* m_pToggleAction;
    QAction* m_pRemoveAction;
    QAction* m_pHelpAction;
    QToolButton* m_pSaveButton;
    QTimer m_counters;
    QPointer<CkMdiView> m_view;
    QHash<const CkChainable*, QPointer<QDialog>> m_dialogs;
};
