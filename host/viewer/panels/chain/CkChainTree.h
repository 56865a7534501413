#pragma once

#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"

#include <QHash>
#include <QPointer>
#include <QTreeWidget>

/// A chain as a tree from its sources down, with state icons, counters, and error texts below the blocks they
/// belong to. User-interface thread; the blocks may change on any thread.
class CkChainTree : public QTreeWidget {
    Q_OBJECT

public:
    enum EkColumn : int { BlockColumn, FramesColumn, DroppedColumn, TimeColumn, ColumnCount };

    explicit CkChainTree(QWidget* pParent = nullptr);

    /// Null: nothing to show. pShown is marked as the block that the active view shows.
    void setChain(CkChain* pChain, CkChainable* pShown);
    CkChain* chain() const { return m_chain; }

    /// Null when none is selected.
    CkChainable* selectedBlock() const;
    void selectBlock(const CkChainable* pBlock);

    /// The row of a block, null when it is not shown.
    QTreeWidgetItem* itemOf(const CkChainable* pBlock) const;
    /// "runs", "stopped", "off" or "error", as in the block's icon and tool tip.
    QString shownState(const CkChainable* pBlock) const;
    /// The error text shown below a block; empty for none.
    QString shownError(const CkChainable* pBlock) const;

    /// Updates states, errors, counters and times, but not the structure.
    void refreshCounters();

private:
    void rebuild();
    void addBranch(CkChainable* pBlock, QTreeWidgetItem* pParent);
    void scheduleRefresh();
    void showState(QTreeWidgetItem* pItem, const CkChainable* pBlock);
    void showCounters(QTreeWidgetItem* pItem, const CkChainable* pBlock);
    void setCell(QTreeWidgetItem* pItem, int iColumn, const QString& sText);
    void showError(QTreeWidgetItem* pItem, const QString& sError);

    QPointer<CkChain> m_chain;
    QPointer<CkChainable> m_shown;
    QHash<const CkChainable*, QTreeWidgetItem*> m_items;
    bool m_refreshPending = false;
    bool m_textsChanged = false; ///< since the rows were laid out
};
