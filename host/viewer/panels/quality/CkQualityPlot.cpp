#include "host/viewer/panels/quality/CkQualityPlot.h"

#include "host/viewer/panels/quality/QualityQuantities.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

CkQualityPlot::CkQualityPlot(QWidget* pParent) : QWidget(pParent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CkQualityPlot::showValues(const std::vector<double>& values, const QString& sUnit) {
    m_values = values;
    m_unit = sUnit;
    update();
}

void CkQualityPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const double value : m_values) {
        if (std::isfinite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    painter.setPen(palette().color(QPalette::Text));
    const QRect inside = rect().adjusted(6, 4, -6, -4);
    if (!(low <= high)) {
        painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, tr("Nothing to plot yet"));
        return;
    }
    const int line = fontMetrics().height();
    painter.drawText(inside, Qt::AlignTop | Qt::AlignLeft, QualityQuantities::number(high, m_unit));
    painter.drawText(inside, Qt::AlignBottom | Qt::AlignLeft, QualityQuantities::number(low, m_unit));
    painter.drawText(inside, Qt::AlignBottom | Qt::AlignRight,
                     tr("last %n frame(s)", nullptr, int(m_values.size())));
    const QRectF area = QRectF(inside).adjusted(0, line + 2, 0, -line - 2);
    // A constant value is drawn as a line in the middle.
    const double span = high > low ? high - low : 1.0;
    const double middle = high > low ? low : low - 0.5;
    const double step = area.width() / double(std::max<size_t>(m_values.size() - 1, 1));
    QPainterPath path;
    bool drawing = false;
    for (size_t i = 0; i < m_values.size(); ++i) {
        if (!std::isfinite(m_values[i])) {
            drawing = false;
            continue;
        }
        const QPointF point(area.left() + step * double(i),
                            area.bottom() - area.height() * (m_values[i] - middle) / span);
        drawing ? path.lineTo(point) : path.moveTo(point);
        drawing = true;
    }
    painter.setPen(QPen(palette().color(QPalette::Midlight), 0));
    painter.drawLine(area.topLeft(), area.topRight());
    painter.drawLine(area.bottomLeft(), area.bottomRight());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x3a, 0x78, 0xc8), 1.5));
    painter.drawPath(path);
    if (m_values.size() == 1) {
        painter.drawEllipse(QPointF(area.left(), area.center().y()), 2, 2);
    }
}
