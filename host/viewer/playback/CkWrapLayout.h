#pragma once

#include <QLayout>
#include <QList>

#include <memory>
#include <vector>

/// Lays out its items in a line, and wraps to further lines if the width is not sufficient. The spare width
/// of a line goes to its expanding items. Its minimum width is that of its widest item. User-interface
/// thread.
class CkWrapLayout : public QLayout {
public:
    explicit CkWrapLayout(QWidget* pParent);
    ~CkWrapLayout() override;

    void addItem(QLayoutItem* pItem) override;
    int count() const override;
    QLayoutItem* itemAt(int iIndex) const override;
    QLayoutItem* takeAt(int iIndex) override;

    Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int iWidth) const override;
    /// Of all items in one line.
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    using Line = QList<QLayoutItem*>;
    QList<Line> linesFor(int iWidth) const;
    int widthOf(const Line& line) const;
    static int heightOf(const Line& line);
    void place(const Line& line, const QRect& rect) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};
