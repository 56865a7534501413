#pragma once

#include <QRect>
#include <QWidget>

class CkImageCanvas;

/// The frame of a region on a picture, and the dragging of a new one. Lies over the canvas, lets everything
/// pass while no region is drawn, and goes with the canvas. User-interface thread.
class CkRegionOverlay : public QWidget {
    Q_OBJECT

public:
    explicit CkRegionOverlay(CkImageCanvas* pCanvas);

    /// In pixels of the picture; an empty one is not shown.
    void setRegion(const QRect& region);

    /// While on, dragging with the left button draws a region in place of moving the picture.
    void setDrawing(bool bDrawing);

signals:
    /// A region of at least 2 x 2 pixels within the picture was drawn.
    void regionDrawn(const QRect& region);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QPoint pixelAt(const QPointF& position) const;

    CkImageCanvas* m_pCanvas;
    QRect m_region;
    QRect m_drawn;
    QPoint m_start;
    bool m_bDrawing = false;
    bool m_bDragging = false;
};
