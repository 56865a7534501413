#include "host/viewer/picture/CkImageCanvas.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {
constexpr double kStep = 1.25;
constexpr double kPanPixels = 40.0;
constexpr QColor kBackground(0x2b, 0x2d, 0x31);
constexpr QColor kDimming(0x2b, 0x2d, 0x31, 0xa0);
} // namespace

CkImageCanvas::CkImageCanvas(QWidget* pParent) : QWidget(pParent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(64, 48);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
}

void CkImageCanvas::setPictureSize(const QSize& size) {
    if (size == m_size) {
        return;
    }
    m_size = size;
    m_centre = QPointF(size.width() / 2.0, size.height() / 2.0);
    emit zoomChanged(zoom(), m_fit);
    update();
}

void CkImageCanvas::setEmptyText(const QString& sText) {
    if (sText != m_emptyText) {
        m_emptyText = sText;
        update();
    }
}

void CkImageCanvas::setDimmed(bool bDimmed) {
    if (bDimmed != m_dimmed) {
        m_dimmed = bDimmed;
        update();
    }
}

double CkImageCanvas::fitZoom() const {
    if (m_size.isEmpty() || width() <= 0 || height() <= 0) {
        return 1.0;
    }
    const double fit = std::min(double(width()) / m_size.width(), double(height()) / m_size.height());
    return std::clamp(fit, kMinimumZoom, kMaximumZoom);
}

double CkImageCanvas::zoom() const {
    return m_fit ? fitZoom() : m_zoom;
}

QPointF CkImageCanvas::toPicture(const QPointF& position) const {
    return (position - QPointF(width() / 2.0, height() / 2.0)) / zoom() + m_centre;
}

QPointF CkImageCanvas::fromPicture(const QPointF& pixel) const {
    return (pixel - m_centre) * zoom() + QPointF(width() / 2.0, height() / 2.0);
}

void CkImageCanvas::zoomToFit() {
    m_fit = true;
    m_centre = QPointF(m_size.width() / 2.0, m_size.height() / 2.0);
    emit zoomChanged(zoom(), true);
    update();
}

void CkImageCanvas::zoomToOriginal() {
    setZoom(1.0);
}
void CkImageCanvas::zoomIn() {
    setZoom(zoom() * kStep);
}
void CkImageCanvas::zoomOut() {
    setZoom(zoom() / kStep);
}

void CkImageCanvas::setZoom(double fZoom) {
    setZoomAt(fZoom, QPointF(width() / 2.0, height() / 2.0));
}

void CkImageCanvas::setZoomAt(double fZoom, const QPointF& anchor) {
    const QPointF pixel = toPicture(anchor);
    m_fit = false;
    m_zoom = std::clamp(fZoom, kMinimumZoom, kMaximumZoom);
    m_centre = pixel - (anchor - QPointF(width() / 2.0, height() / 2.0)) / m_zoom;
    limitCentre();
    emit zoomChanged(m_zoom, false);
    update();
}

void CkImageCanvas::limitCentre() {
    // A picture larger than the widget covers it; a smaller one is centred.
    const double halfWidth = width() / 2.0 / m_zoom;
    const double halfHeight = height() / 2.0 / m_zoom;
    const auto limit = [](double centre, double half, double length) {
        return 2.0 * half >= length ? length / 2.0 : std::clamp(centre, half, length - half);
    };
    m_centre = QPointF(limit(m_centre.x(), halfWidth, m_size.width()),
                       limit(m_centre.y(), halfHeight, m_size.height()));
}

void CkImageCanvas::paintEvent(QPaintEvent*) {
    const QImage* image = m_image ? m_image() : nullptr;
    QPainter painter(this);
    painter.fillRect(rect(), kBackground);
    if (image == nullptr || image->isNull()) {
        painter.setPen(QColor(0xa8, 0xac, 0xb4));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }
    const double scale = zoom();
    // Not smoothed when enlarged, so that single pixels can be distinguished.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 1.0);
    // Only the visible part is scaled.
    const QRectF visible = QRectF(toPicture(QPointF(0, 0)), toPicture(QPointF(width(), height())));
    const QRect part = visible.toAlignedRect().adjusted(-1, -1, 1, 1) & image->rect();
    const QRectF target(fromPicture(part.topLeft()), QSizeF(part.width() * scale, part.height() * scale));
    painter.drawImage(target, *image, part);
    if (m_dimmed) {
        painter.fillRect(target, kDimming);
    }
}

void CkImageCanvas::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    if (!m_fit) {
        limitCentre();
    }
    emit zoomChanged(zoom(), m_fit);
}

void CkImageCanvas::wheelEvent(QWheelEvent* pEvent) {
    if (m_size.isEmpty() || pEvent->angleDelta().y() == 0) {
        pEvent->ignore();
        return;
    }
    setZoomAt(zoom() * std::pow(kStep, pEvent->angleDelta().y() / 120.0), pEvent->position());
    hover(pEvent->position());
    pEvent->accept();
}

void CkImageCanvas::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton && pEvent->button() != Qt::MiddleButton) {
        QWidget::mousePressEvent(pEvent);
        return;
    }
    m_dragging = true;
    m_dragStart = pEvent->position();
    m_dragCentre = m_centre;
}

void CkImageCanvas::mouseMoveEvent(QMouseEvent* pEvent) {
    if (m_dragging && !m_fit) {
        m_centre = m_dragCentre - (pEvent->position() - m_dragStart) / m_zoom;
        limitCentre();
        setCursor(Qt::ClosedHandCursor);
        update();
    }
    hover(pEvent->position());
}

void CkImageCanvas::mouseReleaseEvent(QMouseEvent*) {
    m_dragging = false;
    setCursor(Qt::CrossCursor);
}

void CkImageCanvas::mouseDoubleClickEvent(QMouseEvent* pEvent) {
    if (m_fit) {
        setZoomAt(1.0, pEvent->position());
    } else {
        zoomToFit();
    }
}

void CkImageCanvas::leaveEvent(QEvent*) {
    emit pixelLeft();
}

void CkImageCanvas::keyPressEvent(QKeyEvent* pEvent) {
    const double step = kPanPixels / zoom();
    QPointF move;
    switch (pEvent->key()) {
    case Qt::Key_Left:
        move = QPointF(-step, 0);
        break;
    case Qt::Key_Right:
        move = QPointF(step, 0);
        break;
    case Qt::Key_Up:
        move = QPointF(0, -step);
        break;
    case Qt::Key_Down:
        move = QPointF(0, step);
        break;
    default:
        QWidget::keyPressEvent(pEvent);
        return;
    }
    if (!m_fit) {
        m_centre += move;
        limitCentre();
        update();
    }
}

void CkImageCanvas::hover(const QPointF& position) {
    const QPointF pixel = toPicture(position);
    const QPoint whole(int(std::floor(pixel.x())), int(std::floor(pixel.y())));
    if (QRect(QPoint(0, 0), m_size).contains(whole)) {
        emit pixelHovered(whole);
    } else {
        emit pixelLeft();
    }
}
