#include "host/viewer/panels/chain/CkChainTree.h"

#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/SkPicBuf.h"

#include <QHeaderView>
#include <QPainter>
#include <QSignalBlocker>

namespace {
constexpr int kBlockRole = Qt::UserRole;
constexpr int kErrorRole = Qt::UserRole + 1;
constexpr int kStateRole = Qt::UserRole + 2;
// Deeper blocks share the last level: there is no room for more indentation, and each level costs time at
// every change.
constexpr int kMaximumLevels = 16;
// Rows from which the column widths are computed.
constexpr int kMeasuredRows = 100;

int levelOf(const QTreeWidgetItem* item) {
    int level = 0;
    for (; item != nullptr; item = item->parent()) {
        ++level;
    }
    return level;
}

QIcon stateIcon(const QColor& color, bool filled) {
    QPixmap pixmap(24, 24);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 3));
    painter.setBrush(filled ? QBrush(color) : Qt::NoBrush);
    painter.drawEllipse(5, 5, 14, 14);
    return QIcon(pixmap);
}

} // namespace

CkChainTree::CkChainTree(QWidget* pParent) : QTreeWidget(pParent) {
    setColumnCount(ColumnCount);
    setHeaderLabels({tr("Block"), tr("Frames"), tr("Dropped"), tr("ms")});
    headerItem()->setToolTip(FramesColumn, tr("Frames that left the block since the chain was started"));
    headerItem()->setToolTip(DroppedColumn,
                             tr("Frames that were lost at the block since the chain was started"));
    headerItem()->setToolTip(TimeColumn, tr("Mean time the block took for a frame, in milliseconds"));
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(BlockColumn, QHeaderView::Stretch);
    for (int column = FramesColumn; column < ColumnCount; ++column) {
        header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
        headerItem()->setTextAlignment(column, Qt::AlignRight);
    }
    header()->setMinimumSectionSize(30);
    header()->setResizeContentsPrecision(kMeasuredRows);
    setWordWrap(true);
    setIndentation(14);
    setAllColumnsShowFocus(true);
    setItemsExpandable(false);
    setRootIsDecorated(false);
    setMinimumHeight(90);
}

void CkChainTree::setChain(CkChain* pChain, CkChainable* pShown) {
    if (m_chain != pChain) {
        if (m_chain) {
            m_chain->disconnect(this);
        }
        m_chain = pChain;
        if (pChain != nullptr) {
            // Queued: the signal may come from another thread, and in the middle of a change.
            connect(pChain, &CkChain::structureChanged, this, &CkChainTree::rebuild, Qt::QueuedConnection);
            connect(pChain, &CkChain::runningChanged, this, &CkChainTree::refreshCounters,
                    Qt::QueuedConnection);
            connect(pChain, &QObject::destroyed, this, &CkChainTree::rebuild, Qt::QueuedConnection);
        }
    }
    const bool other = m_shown != pShown;
    m_shown = pShown;
    rebuild();
    if (other) {
        selectBlock(pShown);
    }
}

CkChainable* CkChainTree::selectedBlock() const {
    const QTreeWidgetItem* item = currentItem();
    while (item != nullptr && !item->data(0, kBlockRole).isValid()) {
        item = item->parent();
    }
    if (item == nullptr) {
        return nullptr;
    }
    return item->data(0, kBlockRole).value<QPointer<CkChainable>>();
}

void CkChainTree::selectBlock(const CkChainable* pBlock) {
    setCurrentItem(itemOf(pBlock));
}

QTreeWidgetItem* CkChainTree::itemOf(const CkChainable* pBlock) const {
    return m_items.value(pBlock);
}

QString CkChainTree::shownState(const CkChainable* pBlock) const {
    const QTreeWidgetItem* item = itemOf(pBlock);
    return item != nullptr ? item->data(0, kStateRole).toString() : QString();
}

QString CkChainTree::shownError(const CkChainable* pBlock) const {
    const QTreeWidgetItem* item = itemOf(pBlock);
    for (int i = 0; item != nullptr && i < item->childCount(); ++i) {
        if (item->child(i)->data(0, kErrorRole).toBool()) {
            return item->child(i)->text(0);
        }
    }
    return {};
}

void CkChainTree::rebuild() {
    const QPointer<CkChainable> selected(selectedBlock());
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        const auto block = it.value()->data(0, kBlockRole).value<QPointer<CkChainable>>();
        if (block) {
            block->disconnect(this);
        }
    }
    m_items.clear();
    clear();
    if (m_chain) {
        // Built outside the tree, which would otherwise lay out all rows again for each new one.
        QTreeWidgetItem root;
        for (CkChainable* source : m_chain->imageSources()) {
            addBranch(source, &root);
        }
        for (CkChainable* block : m_chain->blocks()) {
            addBranch(block, &root);
        }
        insertTopLevelItems(0, root.takeChildren());
        expandAll();
    }
    selectBlock(selected ? selected.data() : m_shown.data());
    refreshCounters();
    executeDelayedItemsLayout(); // see showError
}

void CkChainTree::addBranch(CkChainable* pBlock, QTreeWidgetItem* pParent) {
    if (m_items.contains(pBlock)) {
        return;
    }
    auto* item = new QTreeWidgetItem(pParent);
    m_items.insert(pBlock, item);
    item->setData(0, kBlockRole, QVariant::fromValue(QPointer<CkChainable>(pBlock)));
    for (int column = FramesColumn; column < ColumnCount; ++column) {
        item->setTextAlignment(column, Qt::AlignRight | Qt::AlignTop);
    }
    connect(pBlock, &CkChainable::errorMessageChanged, this, &CkChainTree::scheduleRefresh,
            Qt::QueuedConnection);
    connect(pBlock, &CkChainable::stateChanged, this, &CkChainTree::scheduleRefresh, Qt::QueuedConnection);
    connect(pBlock, &CkChainable::configurationChanged, this, &CkChainTree::scheduleRefresh,
            Qt::QueuedConnection);
    QTreeWidgetItem* const parent = levelOf(item) < kMaximumLevels ? item : pParent;
    for (CkChainable* successor : m_chain->successors(pBlock)) {
        addBranch(successor, parent);
    }
}

void CkChainTree::scheduleRefresh() {
    // One refresh is enough for a thousand blocks that fail at the same time.
    if (!m_refreshPending) {
        m_refreshPending = true;
        QMetaObject::invokeMethod(this, &CkChainTree::refreshCounters, Qt::QueuedConnection);
    }
}

void CkChainTree::setCell(QTreeWidgetItem* pItem, int iColumn, const QString& sText) {
    if (pItem->text(iColumn) != sText) {
        pItem->setText(iColumn, sText);
        m_textsChanged = true;
    }
}

void CkChainTree::showState(QTreeWidgetItem* pItem, const CkChainable* pBlock) {
    const bool blocked = pBlock->state() == CkChainable::Blocked;
    const QString error = pBlock->errorMessage();
    const bool running = m_chain && m_chain->started();
    const QString state = blocked            ? tr("off")
                          : !error.isEmpty() ? tr("error")
                          : running          ? tr("runs")
                                             : tr("stopped");
    const QColor sign = blocked            ? QColor(0xa8, 0xa8, 0xa8)
                        : !error.isEmpty() ? QColor(0xc8, 0x30, 0x30)
                        : running          ? QColor(0x2e, 0x9b, 0x3d)
                                           : QColor(0xd0, 0xa0, 0x20);
    if (pItem->data(0, kStateRole).toString() != state) {
        pItem->setData(0, kStateRole, state);
        pItem->setIcon(BlockColumn, stateIcon(sign, !blocked));
    }
    setCell(pItem, BlockColumn, blocked ? tr("%1 (off)").arg(pBlock->title()) : pBlock->title());
    QFont bold = font();
    bold.setBold(pBlock == m_shown);
    pItem->setFont(BlockColumn, bold);
}

void CkChainTree::showError(QTreeWidgetItem* pItem, const QString& sError) {
    QTreeWidgetItem* line = nullptr;
    for (int i = 0; i < pItem->childCount() && line == nullptr; ++i) {
        line = pItem->child(i)->data(0, kErrorRole).toBool() ? pItem->child(i) : nullptr;
    }
    if (sError.isEmpty()) {
        if (line != nullptr) {
            delete line;
            // Not left to the tree: when a part of the window is painted first, the tree lays out its rows
            // while painting, and the request to repaint all of them is lost.
            executeDelayedItemsLayout();
        }
        return;
    }
    if (line == nullptr) {
        line = new QTreeWidgetItem;
        pItem->insertChild(0, line);
        line->setData(0, kErrorRole, true);
        line->setFirstColumnSpanned(true);
        line->setForeground(0, QColor(0xb0, 0x20, 0x20));
        line->setFlags(Qt::ItemIsEnabled);
        pItem->setExpanded(true);
    }
    line->setText(0, sError);
    line->setToolTip(0, sError);
}

void CkChainTree::refreshCounters() {
    m_refreshPending = false;
    m_textsChanged = false;
    QList<QPair<QTreeWidgetItem*, CkChainable*>> rows;
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        const auto block = it.value()->data(0, kBlockRole).value<QPointer<CkChainable>>();
        if (block && m_chain && block->chain() == m_chain) {
            rows.append({it.value(), block});
        }
    }
    {
        // If notified of each cell, the tree would measure all its rows every time.
        const QSignalBlocker quiet(model());
        for (const auto& [item, block] : std::as_const(rows)) {
            showState(item, block);
            showCounters(item, block);
        }
    }
    for (const auto& [item, block] : std::as_const(rows)) {
        showError(item, block->errorMessage());
    }
    if (m_textsChanged) {
        scheduleDelayedItemsLayout();
        executeDelayedItemsLayout(); // see showError
    }
    viewport()->update();
}

void CkChainTree::showCounters(QTreeWidgetItem* pItem, const CkChainable* pBlock) {
    const SkBlockStatistics statistics = m_chain->blockStatistics(pBlock);
    setCell(pItem, FramesColumn, QString::number(statistics.framesOut));
    setCell(pItem, DroppedColumn, QString::number(statistics.dropped));
    pItem->setForeground(DroppedColumn, statistics.dropped > 0 ? QBrush(QColor(0xb0, 0x60, 0x00))
                                                               : QBrush(palette().color(QPalette::Text)));
    const double ms =
        statistics.framesIn > 0 ? double(statistics.processNs) / 1e6 / double(statistics.framesIn) : 0.0;
    setCell(pItem, TimeColumn, PictureText::locale().toString(ms, 'f', ms < 10.0 ? 2 : 1));
    SkPicBufInfo info;
    QString hint = tr("%1: %2").arg(pBlock->title(), shownState(pBlock));
    if (m_chain->negotiatedInfo(pBlock, info, nullptr)) {
        hint += QLatin1Char('\n') + PictureText::format(info);
    }
    if (pBlock == m_shown) {
        hint += QLatin1Char('\n') + tr("The active view shows this block.");
    }
    pItem->setToolTip(BlockColumn, hint);
}
