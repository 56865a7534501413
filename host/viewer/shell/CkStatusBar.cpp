#include "host/viewer/shell/CkStatusBar.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/PictureText.h"
#include "host/viewer/shell/CkRateGraph.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"

#include <QLabel>

namespace {
constexpr int kRefreshMs = 1000;
}

CkStatusBar::CkStatusBar(CkViewArea* pArea, QWidget* pParent) : QStatusBar(pParent), m_area(pArea) {
    m_pixel = new QLabel(this);
    m_pixel->setObjectName(QStringLiteral("statusPixel"));
    // A long text must not widen the window.
    m_pixel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_rate = new QLabel(this);
    m_rate->setObjectName(QStringLiteral("statusRate"));
    m_rate->setToolTip(tr("Frames that the active view showed in the last second"));
    m_drops = new QLabel(this);
    m_drops->setObjectName(QStringLiteral("statusDrops"));
    m_drops->setToolTip(tr("Frames that the active view or its chain lost since the chain was started"));
    for (QLabel* label : {m_rate, m_drops}) {
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    m_rate->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000.0 frames/s ")));
    m_drops->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00000 dropped ")));
    addWidget(m_pixel, 1);
    m_graph = new CkRateGraph(this);
    addPermanentWidget(m_graph);
    addPermanentWidget(m_rate);
    addPermanentWidget(m_drops);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkStatusBar::follow);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &CkStatusBar::refresh);
    m_timer.start();
    m_clock.start();
    follow();
}

QString CkStatusBar::pixelText() const {
    return m_pixel->text();
}
QString CkStatusBar::rateText() const {
    return m_rate->text();
}
QString CkStatusBar::dropText() const {
    return m_drops->text();
}

void CkStatusBar::follow() {
    CkMdiView* view = m_area->activeView();
    if (view == m_view && view != nullptr) {
        return;
    }
    if (m_view) {
        disconnect(m_view, nullptr, this, nullptr);
    }
    if (m_counted) {
        disconnect(m_counted, nullptr, this, nullptr);
    }
    m_view = view;
    // A view that follows another one shows that view's frames.
    CkMdiView* counted = view;
    if (view != nullptr && view->connectedViewId() >= 0) {
        counted = m_area->view(view->connectedViewId());
    }
    m_counted = counted;
    if (counted != nullptr) {
        connect(counted, &CkMdiView::receivedFrame, this, [this] { ++m_frames; });
    }
    if (auto* image = qobject_cast<CkImageView*>(view)) {
        connect(image, &CkImageView::pixelTextChanged, m_pixel, &QLabel::setText);
    }
    m_pixel->clear();
    m_frames = 0;
    m_dropped = droppedBy(counted);
    m_graph->clear();
    m_clock.restart();
    m_rate->setText(view != nullptr ? tr("- frames/s") : QString());
    m_drops->setText(view != nullptr ? tr("%1 dropped").arg(m_dropped) : QString());
}

quint64 CkStatusBar::droppedBy(const CkMdiView* pView) {
    const CkChainable* provider = pView != nullptr ? pView->dataProvider() : nullptr;
    const CkChain* chain = provider != nullptr ? provider->chain() : nullptr;
    quint64 dropped = 0;
    // Along the first predecessors only: drops in other branches do not concern this view.
    while (provider != nullptr && chain != nullptr) {
        dropped += chain->blockStatistics(provider).dropped;
        const QList<CkChainable*> before = provider->precedessors();
        provider = before.isEmpty() ? nullptr : before.first();
    }
    return dropped;
}

void CkStatusBar::refresh() {
    if (!m_view) {
        return;
    }
    const double seconds = double(m_clock.restart()) / 1000.0;
    const double rate = seconds > 0.0 ? m_frames / seconds : 0.0;
    const quint64 dropped = droppedBy(m_counted);
    // The counters restart with the chain.
    const quint64 lost = dropped >= m_dropped ? dropped - m_dropped : dropped;
    m_graph->add(rate, seconds > 0.0 ? double(lost) / seconds : 0.0);
    m_rate->setText(tr("%1 frames/s").arg(PictureText::locale().toString(rate, 'f', 1)));
    m_drops->setText(tr("%1 dropped").arg(dropped));
    m_frames = 0;
    m_dropped = dropped;
}
