#include "host/viewer/shell/CkPanelScrollArea.h"

#include <QEvent>
#include <QScreen>
#include <algorithm>

namespace {
// Width left to the views by the panels on both sides.
constexpr int kViewsWidth = 320;
} // namespace

CkPanelScrollArea::CkPanelScrollArea(QWidget* pPanel) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setWidget(pPanel);
}

QSize CkPanelScrollArea::minimumSizeHint() const {
    const QSize least = QScrollArea::minimumSizeHint();
    const int share = (screen()->availableSize().width() - kViewsWidth) / 2;
    const int wanted = widget() != nullptr ? widget()->minimumSizeHint().width() : 0;
    return {std::max(least.width(), std::min(wanted, share)), least.height()};
}

bool CkPanelScrollArea::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == widget() && pEvent->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(pWatched, pEvent);
}
