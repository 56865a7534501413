#include "chain/CkChainTree.h"

#include "image/CkPictureText.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/SkPicBuf.h"

#include <QHeaderView>
#include <QPainter>

namespace {
constexpr int kBlockRole = Qt::UserRole;
constexpr int kErrorRole = Qt::UserRole + 1;
constexpr int kStateRole = Qt::UserRole + 2;

QIcon signIcon(const QColor& color, bool filled) {
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
            // Queued: the structure may be reported by another thread, and in the middle of a change.
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
        for (CkChainable* source : m_chain->imageSources()) {
            addBranch(source, nullptr);
        }
        for (CkChainable* block : m_chain->blocks()) {
            addBranch(block, nullptr);
        }
    }
    selectBlock(selected ? selected.data() : m_shown.data());
    refreshCounters();
    executeDelayedItemsLayout(); // see showError
}

void CkChainTree::addBranch(CkChainable* pBlock, QTreeWidgetItem* pParent) {
    if (m_items.contains(pBlock)) {
        return;
    }
    auto* item = pParent != nullptr ? new QTreeWidgetItem(pParent) : new QTreeWidgetItem(this);
    m_items.insert(pBlock, item);
    item->setData(0, kBlockRole, QVariant::fromValue(QPointer<CkChainable>(pBlock)));
    for (int column = FramesColumn; column < ColumnCount; ++column) {
        item->setTextAlignment(column, Qt::AlignRight | Qt::AlignTop);
    }
    const auto refresh = [this, pBlock] {
        if (m_items.contains(pBlock)) {
            refreshBlock(pBlock);
        }
    };
    connect(pBlock, &CkChainable::errorMessageChanged, this, refresh, Qt::QueuedConnection);
    connect(pBlock, &CkChainable::stateChanged, this, refresh, Qt::QueuedConnection);
    connect(pBlock, &CkChainable::configurationChanged, this, refresh, Qt::QueuedConnection);
    for (CkChainable* successor : m_chain->successors(pBlock)) {
        addBranch(successor, item);
    }
    item->setExpanded(true);
    refreshBlock(pBlock);
}

void CkChainTree::refreshBlock(CkChainable* pBlock) {
    QTreeWidgetItem* item = itemOf(pBlock);
    const auto alive = item->data(0, kBlockRole).value<QPointer<CkChainable>>();
    if (!alive) {
        return;
    }
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
    if (item->data(0, kStateRole).toString() != state) {
        item->setData(0, kStateRole, state);
        item->setIcon(BlockColumn, signIcon(sign, !blocked));
    }
    item->setText(BlockColumn, blocked ? tr("%1 (off)").arg(pBlock->title()) : pBlock->title());
    QFont bold = font();
    bold.setBold(pBlock == m_shown);
    item->setFont(BlockColumn, bold);
    showError(item, error);
}

void CkChainTree::showError(QTreeWidgetItem* pItem, const QString& sError) {
    QTreeWidgetItem* line = nullptr;
    for (int i = 0; i < pItem->childCount() && line == nullptr; ++i) {
        line = pItem->child(i)->data(0, kErrorRole).toBool() ? pItem->child(i) : nullptr;
    }
    if (sError.isEmpty()) {
        if (line != nullptr) {
            delete line;
            // Not left to the tree: when a part of the window is painted before it comes to it, it lays its
            // rows out while it paints, and the request to paint all of them is lost.
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
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        QTreeWidgetItem* item = it.value();
        const auto block = item->data(0, kBlockRole).value<QPointer<CkChainable>>();
        if (!block || !m_chain || block->chain() != m_chain) {
            continue;
        }
        refreshBlock(block);
        const SkBlockStatistics statistics = m_chain->blockStatistics(block);
        item->setText(FramesColumn, QString::number(statistics.framesOut));
        item->setText(DroppedColumn, QString::number(statistics.dropped));
        item->setForeground(DroppedColumn, statistics.dropped > 0 ? QBrush(QColor(0xb0, 0x60, 0x00))
                                                                  : QBrush(palette().color(QPalette::Text)));
        const double ms =
            statistics.framesIn > 0 ? double(statistics.processNs) / 1e6 / double(statistics.framesIn) : 0.0;
        item->setText(TimeColumn, CkPictureText::locale().toString(ms, 'f', ms < 10.0 ? 2 : 1));
        SkPicBufInfo info;
        QString hint = tr("%1: %2").arg(block->title(), shownState(block));
        if (m_chain->negotiatedInfo(block, info, nullptr)) {
            hint += QLatin1Char('\n') + CkPictureText::format(info);
        }
        if (block == m_shown) {
            hint += QLatin1Char('\n') + tr("The active view shows this block.");
        }
        item->setToolTip(BlockColumn, hint);
    }
}
