#include "host/viewer/panels/lut/CkHistogramWidget.h"

#include "host/viewer/picture/PictureText.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

CkHistogramWidget::CkHistogramWidget(QWidget* pParent) : QWidget(pParent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(true);
}

void CkHistogramWidget::showStatistics(const SkPictureStatistics& statistics, const SkDisplayWindow& window,
                                       bool bEditable) {
    m_statistics = statistics;
    m_window = window;
    m_editable = bEditable;
    m_empty = statistics.finite == 0;
    // The scale stays fixed during a drag.
    if (m_dragged == EkEnd::None) {
        updateRange();
    }
    update();
}

void CkHistogramWidget::clear() {
    m_empty = true;
    m_editable = false;
    m_dragged = EkEnd::None;
    update();
}

void CkHistogramWidget::updateRange() {
    m_range.low = std::min(m_statistics.minimum, m_window.low);
    m_range.high = std::max(m_statistics.maximum, m_window.high);
    if (!(m_range.high > m_range.low)) {
        m_range.high = m_range.low + 1.0;
    }
    const double margin = (m_range.high - m_range.low) * 0.02;
    m_range.low -= margin;
    m_range.high += margin;
}

double CkHistogramWidget::toX(double fValue) const {
    return (fValue - m_range.low) / (m_range.high - m_range.low) * width();
}

double CkHistogramWidget::toValue(double fX) const {
    return m_range.low + fX / std::max(1, width()) * (m_range.high - m_range.low);
}

void CkHistogramWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (m_empty) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter, tr("no picture"));
        return;
    }
    // Square roots: rare values remain visible beside frequent ones.
    const quint32 most = *std::max_element(m_statistics.histogram.begin(), m_statistics.histogram.end());
    const double heightScale = (height() - 6) / std::sqrt(std::max(1.0, double(most)));
    const double binWidth = (m_statistics.maximum - m_statistics.minimum) / SkPictureStatistics::kBins;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x5a, 0x78, 0xa8));
    for (int bin = 0; bin < SkPictureStatistics::kBins; ++bin) {
        const double length = std::sqrt(double(m_statistics.histogram[size_t(bin)])) * heightScale;
        const double left = toX(m_statistics.minimum + bin * binWidth);
        const double right = toX(m_statistics.minimum + (bin + 1) * binWidth);
        painter.drawRect(QRectF(left, height() - 1 - length, std::max(1.0, right - left), length));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const double low = toX(m_window.low);
    const double high = toX(m_window.high);
    painter.fillRect(QRectF(0, 0, low, height()), QColor(0, 0, 0, 40));
    painter.fillRect(QRectF(high, 0, width() - high, height()), QColor(0, 0, 0, 40));
    painter.setPen(QPen(m_editable ? QColor(0xc0, 0x40, 0x20) : QColor(0x80, 0x80, 0x80), 1.5));
    painter.drawLine(QPointF(low, 0), QPointF(low, height()));
    painter.drawLine(QPointF(high, 0), QPointF(high, height()));
}

void CkHistogramWidget::mousePressEvent(QMouseEvent* pEvent) {
    if (!m_editable || m_empty || pEvent->button() != Qt::LeftButton) {
        return;
    }
    const double x = pEvent->position().x();
    m_dragged = std::abs(x - toX(m_window.low)) < std::abs(x - toX(m_window.high)) ? EkEnd::Low : EkEnd::High;
    mouseMoveEvent(pEvent);
}

void CkHistogramWidget::mouseMoveEvent(QMouseEvent* pEvent) {
    if (m_dragged == EkEnd::None) {
        setToolTip(m_empty
                       ? tr("Histogram of the active view")
                       : tr("Histogram of the active view; at the mouse: %1")
                             .arg(PictureText::locale().toString(toValue(pEvent->position().x()), 'g', 5)));
        return;
    }
    const double value = toValue(std::clamp(pEvent->position().x(), 0.0, double(width())));
    if (m_dragged == EkEnd::Low) {
        m_window.low = std::min(value, m_window.high);
    } else {
        m_window.high = std::max(value, m_window.low);
    }
    update();
    emit windowDragged(m_window);
}

void CkHistogramWidget::mouseReleaseEvent(QMouseEvent*) {
    m_dragged = EkEnd::None;
    updateRange();
    update();
}
