#include "host/viewer/panels/quality/CkRegionOverlay.h"

#include "host/viewer/picture/CkImageCanvas.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

CkRegionOverlay::CkRegionOverlay(CkImageCanvas* pCanvas) : QWidget(pCanvas), m_canvas(pCanvas) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    resize(pCanvas->size());
    pCanvas->installEventFilter(this);
    connect(pCanvas, &CkImageCanvas::zoomChanged, this, [this] { update(); });
    show();
}

void CkRegionOverlay::setRegion(const QRect& region) {
    m_region = region;
    update();
}

void CkRegionOverlay::setDrawing(bool bDrawing) {
    m_state = bDrawing ? EkState::Drawing : EkState::Idle;
    update();
}

QPoint CkRegionOverlay::pixelAt(const QPointF& position) const {
    const QPointF pixel = m_canvas->toPicture(position);
    const QSize size = m_canvas->pictureSize();
    return {std::clamp(int(std::floor(pixel.x())), 0, std::max(0, size.width() - 1)),
            std::clamp(int(std::floor(pixel.y())), 0, std::max(0, size.height() - 1))};
}

bool CkRegionOverlay::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::Resize) {
        resize(m_canvas->size());
        return QWidget::eventFilter(pWatched, pEvent);
    }
    const bool press = pEvent->type() == QEvent::MouseButtonPress;
    const bool move = pEvent->type() == QEvent::MouseMove;
    const bool release = pEvent->type() == QEvent::MouseButtonRelease;
    if (m_state == EkState::Idle || !(press || move || release) || m_canvas->pictureSize().isEmpty()) {
        return QWidget::eventFilter(pWatched, pEvent);
    }
    const auto* mouse = static_cast<QMouseEvent*>(pEvent);
    if (press && mouse->button() == Qt::LeftButton) {
        m_state = EkState::Dragging;
        m_start = pixelAt(mouse->position());
        m_drawn = QRect();
        return true;
    }
    if (m_state != EkState::Dragging) {
        return QWidget::eventFilter(pWatched, pEvent);
    }
    const QPoint end = pixelAt(mouse->position());
    m_drawn = QRect(QPoint(std::min(m_start.x(), end.x()), std::min(m_start.y(), end.y())),
                    QPoint(std::max(m_start.x(), end.x()), std::max(m_start.y(), end.y())));
    update();
    if (release && mouse->button() == Qt::LeftButton) {
        m_state = EkState::Drawing;
        // A click does not make a region.
        if (m_drawn.width() >= 2 && m_drawn.height() >= 2) {
            emit regionDrawn(m_drawn);
        }
    }
    return true;
}

void CkRegionOverlay::paintEvent(QPaintEvent*) {
    const QRect region = m_state == EkState::Dragging ? m_drawn : m_region;
    if (region.isEmpty()) {
        return;
    }
    const QRectF frame(m_canvas->fromPicture(region.topLeft()),
                       m_canvas->fromPicture(QPointF(region.right() + 1, region.bottom() + 1)));
    QPainter painter(this);
    // Two colours: visible on any picture.
    painter.setPen(QPen(Qt::black, 3));
    painter.drawRect(frame);
    painter.setPen(QPen(m_state != EkState::Idle ? QColor(0xff, 0xd0, 0x40) : QColor(Qt::white), 1));
    painter.drawRect(frame);
}
