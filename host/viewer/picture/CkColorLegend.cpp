#include "host/viewer/picture/CkColorLegend.h"

#include "host/viewer/picture/PictureText.h"

#include <QPainter>
#include <cmath>

namespace {
constexpr int kBarWidth = 16;
constexpr int kMargin = 8;
} // namespace

CkColorLegend::CkColorLegend(QWidget* pParent) : QWidget(pParent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void CkColorLegend::setColours(const QList<QRgb>& colours) {
    if (colours != m_colours) {
        m_colours = colours;
        update();
    }
}

void CkColorLegend::setRange(double fLow, double fHigh, const QString& sTitle, const QString& sUnit) {
    if (fLow != m_low || fHigh != m_high || sTitle != m_title || sUnit != m_unit) {
        m_low = fLow;
        m_high = fHigh;
        m_title = sTitle;
        m_unit = sUnit;
        update();
    }
}

QSize CkColorLegend::sizeHint() const {
    return {kBarWidth + 3 * kMargin + fontMetrics().horizontalAdvance(QStringLiteral("-65535")), 160};
}

QSize CkColorLegend::minimumSizeHint() const {
    return {sizeHint().width(), 60};
}

QList<double> CkColorLegend::tickValues(double fLow, double fHigh, int iMaximum) {
    QList<double> ticks;
    const double range = fHigh - fLow;
    if (!(range > 0.0) || !std::isfinite(range) || iMaximum < 2) {
        return ticks;
    }
    const double power = std::pow(10.0, std::floor(std::log10(range / iMaximum)));
    double step = power;
    for (const double factor : {1.0, 2.0, 5.0, 10.0, 20.0}) {
        step = factor * power;
        if (range / step <= iMaximum - 1) {
            break;
        }
    }
    for (double index = std::ceil(fLow / step); index * step <= fHigh && ticks.size() < iMaximum; ++index) {
        ticks.append(index * step);
    }
    return ticks;
}

void CkColorLegend::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    const int line = fontMetrics().height();
    const QRect bar(kMargin, kMargin + line, kBarWidth, height() - 2 * kMargin - line - line / 2);
    const QString head = m_unit.isEmpty() ? m_title : m_unit;
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRect(kMargin, 2, width() - kMargin, line), Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(head, Qt::ElideRight, width() - kMargin));
    if (m_colours.isEmpty() || bar.height() < 4) {
        return;
    }
    for (int y = 0; y < bar.height(); ++y) {
        const qsizetype index = (m_colours.size() - 1) * (bar.height() - 1 - y) / (bar.height() - 1);
        painter.fillRect(bar.left(), bar.top() + y, bar.width(), 1, QColor::fromRgb(m_colours[index]));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(bar.adjusted(-1, -1, 0, 0));
    painter.setPen(palette().color(QPalette::WindowText));
    for (const double value : tickValues(m_low, m_high, qMax(2, bar.height() / (3 * line)))) {
        const int y = bar.bottom() - int((value - m_low) / (m_high - m_low) * (bar.height() - 1));
        painter.drawLine(bar.right() + 1, y, bar.right() + 4, y);
        // Rounding noise of the ticks must not show as "-1.4e-17".
        const double shown = std::abs(value) < (m_high - m_low) * 1e-9 ? 0.0 : value;
        painter.drawText(QRect(bar.right() + 7, y - line / 2, width(), line),
                         Qt::AlignLeft | Qt::AlignVCenter, PictureText::locale().toString(shown, 'g', 5));
    }
}
