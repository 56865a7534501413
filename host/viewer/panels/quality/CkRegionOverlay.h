#pragma once

#include <QRect>
#include <QWidget>

class CkImageCanvas;

/// Draws the frame of a region over a picture, and lets the user drag a new one. Covers the canvas, lets
/// mouse events through unless a region is being drawn, and is deleted with the canvas. User-interface
/// thread.
class CkRegionOverlay : public QWidget {
    Q_OBJECT

public:
    explicit CkRegionOverlay(CkImageCanvas* pCanvas);

    /// In pixels of the picture; an empty one is not shown.
    void setRegion(const QRect& region);

    /// While on, dragging with the left button draws a region instead of moving the picture.
    void setDrawing(bool bDrawing);

signals:
    /// A region of at least 2 x 2 pixels within the picture was drawn.
    void regionDrawn(const QRect& region);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    enum class EkState : int {
        Idle,     ///< the mouse moves the picture
        Drawing,  ///< the next drag draws a region
        Dragging, ///< a region is being dragged
    };

    QPoint pixelAt(const QPointF& position) const;

    CkImageCanvas* m_canvas;
    QRect m_region;
    QRect m_drawn;
    QPoint m_start;
    EkState m_state = EkState::Idle;
};
