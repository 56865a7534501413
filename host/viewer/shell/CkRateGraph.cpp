#include "host/viewer/shell/CkRateGraph.h"

#include <QPainter>
#include <algorithm>

CkRateGraph::CkRateGraph(QWidget* pParent) : QWidget(pParent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setToolTip(
        tr("Frames of the active view in each second of the last minute: shown (blue) and lost (red)"));
}

void CkRateGraph::add(double fFrames, double fDropped) {
    if (m_samples.size() >= kSeconds) {
        m_samples.removeFirst();
    }
    m_samples.append({std::max(0.0, fFrames), std::max(0.0, fDropped)});
    update();
}

void CkRateGraph::clear() {
    m_samples.clear();
    update();
}

void CkRateGraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    // At least ten frames per second, so that a slow camera does not look like a fast one.
    double most = 10.0;
    for (const SkSample& sample : m_samples) {
        most = std::max(most, sample.frames + sample.dropped);
    }
    const double scale = (height() - 2) / most;
    for (qsizetype i = 0; i < m_samples.size(); ++i) {
        const int left = 1 + 2 * int(kSeconds - m_samples.size() + i);
        const int shown = qRound(m_samples[i].frames * scale);
        const int lost = qRound(m_samples[i].dropped * scale);
        painter.fillRect(left, height() - 1 - shown, 2, shown, QColor(0x3a, 0x78, 0xc8));
        painter.fillRect(left, height() - 1 - shown - lost, 2, lost, QColor(0xd0, 0x50, 0x40));
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}
