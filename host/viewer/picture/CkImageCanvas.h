#pragma once

#include <QImage>
#include <QPointF>
#include <QWidget>
#include <functional>

/// Paints an image with zoom and pan. Wheel: zoom about the mouse; drag: pan; double click: fit or 1:1.
/// User-interface thread.
class CkImageCanvas : public QWidget {
    Q_OBJECT

public:
    static constexpr double kMinimumZoom = 1.0 / 64.0;
    static constexpr double kMaximumZoom = 64.0;

    explicit CkImageCanvas(QWidget* pParent = nullptr);

    /// Size of the picture in pixels; a change keeps the zoom and centres the picture.
    void setPictureSize(const QSize& size);
    QSize pictureSize() const { return m_size; }

    /// Called on each paint; returns the image, in the size of the picture, or null. Frames that are replaced
    /// before the next paint are thus never coloured.
    void setImageFunction(std::function<const QImage*()> image) { m_image = std::move(image); }

    /// The text shown while there is no picture.
    void setEmptyText(const QString& sText);
    QString emptyText() const { return m_emptyText; }

    /// Whether the picture is shown darkened.
    void setDimmed(bool bDimmed);
    bool isDimmed() const { return m_dimmed; }

    bool isFitting() const { return m_fit; }
    /// Screen pixels per picture pixel.
    double zoom() const;

    /// Picture coordinates of a widget position; may lie outside the picture.
    QPointF toPicture(const QPointF& position) const;
    QPointF fromPicture(const QPointF& pixel) const;

public slots:
    void zoomToFit();
    void zoomToOriginal();
    void zoomIn();
    void zoomOut();
    void setZoom(double fZoom);

signals:
    void zoomChanged(double fZoom, bool bFit);
    /// The mouse is over this pixel.
    void pixelHovered(const QPoint& pixel);
    void pixelLeft();

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    double fitZoom() const;
    void setZoomAt(double fZoom, const QPointF& anchor);
    void limitCentre();
    void hover(const QPointF& position);

    std::function<const QImage*()> m_image;
    QString m_emptyText;
    QSize m_size;
    QPointF m_centre; ///< picture coordinates in the middle of the widget
    QPointF m_dragStart;
    QPointF m_dragCentre;
    double m_zoom = 1.0;
    bool m_fit = true;
    bool m_dragging = false;
    bool m_dimmed = false;
};
