#include "host/viewer/playback/CkWrapLayout.h"

#include <algorithm>

namespace {

bool expands(const QLayoutItem* item) {
    return item->expandingDirections().testFlag(Qt::Horizontal);
}

} // namespace

CkWrapLayout::CkWrapLayout(QWidget* pParent) : QLayout(pParent) {}

CkWrapLayout::~CkWrapLayout() = default;

void CkWrapLayout::addItem(QLayoutItem* pItem) {
    m_items.emplace_back(pItem);
}

int CkWrapLayout::count() const {
    return int(m_items.size());
}

QLayoutItem* CkWrapLayout::itemAt(int iIndex) const {
    return iIndex >= 0 && iIndex < count() ? m_items[size_t(iIndex)].get() : nullptr;
}

QLayoutItem* CkWrapLayout::takeAt(int iIndex) {
    if (iIndex < 0 || iIndex >= count()) {
        return nullptr;
    }
    QLayoutItem* item = m_items[size_t(iIndex)].release();
    m_items.erase(m_items.begin() + iIndex);
    return item;
}

int CkWrapLayout::widthOf(const Line& line) const {
    int width = spacing() * std::max(0, int(line.size()) - 1);
    for (const QLayoutItem* item : line) {
        width += item->sizeHint().width();
    }
    return width;
}

int CkWrapLayout::heightOf(const Line& line) {
    int height = 0;
    for (const QLayoutItem* item : line) {
        height = std::max(height, item->sizeHint().height());
    }
    return height;
}

QList<CkWrapLayout::Line> CkWrapLayout::linesFor(int iWidth) const {
    QList<Line> lines;
    for (const auto& item : m_items) {
        if (item->isEmpty()) {
            continue;
        }
        if (lines.isEmpty() || widthOf(lines.last()) + spacing() + item->sizeHint().width() > iWidth) {
            lines.append(Line());
        }
        lines.last().append(item.get());
    }
    return lines;
}

int CkWrapLayout::heightForWidth(int iWidth) const {
    const QMargins margins = contentsMargins();
    const QList<Line> lines = linesFor(iWidth - margins.left() - margins.right());
    int height = margins.top() + margins.bottom() + spacing() * std::max(0, int(lines.size()) - 1);
    for (const Line& line : lines) {
        height += heightOf(line);
    }
    return height;
}

QSize CkWrapLayout::sizeHint() const {
    Line all;
    for (const auto& item : m_items) {
        if (!item->isEmpty()) {
            all.append(item.get());
        }
    }
    return QSize(widthOf(all), heightOf(all)).grownBy(contentsMargins());
}

QSize CkWrapLayout::minimumSize() const {
    QSize size;
    for (const auto& item : m_items) {
        if (!item->isEmpty()) {
            size = size.expandedTo(item->sizeHint());
        }
    }
    return size.grownBy(contentsMargins());
}

void CkWrapLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect inner = rect.marginsRemoved(contentsMargins());
    int top = inner.top();
    for (const Line& line : linesFor(inner.width())) {
        place(line, QRect(inner.left(), top, inner.width(), heightOf(line)));
        top += heightOf(line) + spacing();
    }
}

void CkWrapLayout::place(const Line& line, const QRect& rect) const {
    int left = rect.left();
    int spare = std::max(0, rect.width() - widthOf(line));
    int expanding = int(std::count_if(line.begin(), line.end(), expands));
    for (QLayoutItem* item : line) {
        QSize size = item->sizeHint().boundedTo(rect.size());
        if (expands(item)) {
            const int share = spare / expanding;
            size.rwidth() += share;
            spare -= share;
            --expanding;
        }
        item->setGeometry(QRect(QPoint(left, rect.top() + (rect.height() - size.height()) / 2), size));
        left += size.width() + spacing();
    }
}
