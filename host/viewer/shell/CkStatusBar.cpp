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

CkStatusBar::CkStatusBar(CkViewArea* pArea, QWidget* pParent) : QStatusBar(pParent), m_pArea(pArea) {
    m_pPixel = new QLabel(this);
    m_pPixel->setObjectName(QStringLiteral("statusPixel"));
    // A long text must not widen the window.
    m_pPixel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_pRate = new QLabel(this);
    m_pRate->setObjectName(QStringLiteral("statusRate"));
    m_pRate->setToolTip(tr("Frames that the active view showed in the last second"));
    m_pDrops = new QLabel(this);
    m_pDrops->setObjectName(QStringLiteral("statusDrops"));
    m_pDrops->setToolTip(tr("Frames that the active view or its chain lost since the chain was started"));
    for (QLabel* label : {m_pRate, m_pDrops}) {
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    m_pRate->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000.0 frames/s ")));
    m_pDrops->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00000 dropped ")));
    addWidget(m_pPixel, 1);
    m_pGraph = new CkRateGraph(this);
    addPermanentWidget(m_pGraph);
    addPermanentWidget(m_pRate);
    addPermanentWidget(m_pDrops);
    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkStatusBar::follow);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &CkStatusBar::refresh);
    m_timer.start();
    m_clock.start();
    follow();
}

QString CkStatusBar::pixelText() const {
    return m_pPixel->text();
}
QString CkStatusBar::rateText() const {
    return m_pRate->text();
}
QString CkStatusBar::dropText() const {
    return m_pDrops->text();
}

void CkStatusBar::follow() {
    CkMdiView* view = m_pArea->activeView();
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
        counted = m_pArea->view(view->connectedViewId());
    }
    m_counted = counted;
    if (counted != nullptr) {
        connect(counted, &CkMdiView::receivedFrame, this, [this] { ++m_iFrames; });
    }
    if (auto* image = qobject_cast<CkImageView*>(view)) {
        connect(image, &CkImageView::pixelTextChanged, m_pPixel, &QLabel::setText);
    }
    m_pPixel->clear();
    m_iFrames = 0;
    m_uiDropped = droppedBy(counted);
    m_pGraph->clear();
    m_clock.restart();
    m_pRate->setText(view != nullptr ? tr("- frames/s") : QString());
    m_pDrops->setText(view != nullptr ? tr("%1 dropped").arg(m_uiDropped) : QString());
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
    const double rate = seconds > 0.0 ? m_iFrames / seconds : 0.0;
    const quint64 dropped = droppedBy(m_counted);
    // The counters restart with the chain.
    const quint64 lost = dropped >= m_uiDropped ? dropped - m_uiDropped : dropped;
    m_pGraph->add(rate, seconds > 0.0 ? double(lost) / seconds : 0.0);
    m_pRate->setText(tr("%1 frames/s").arg(PictureText::locale().toString(rate, 'f', 1)));
    m_pDrops->setText(tr("%1 dropped").arg(dropped));
    m_iFrames = 0;
    m_uiDropped = dropped;
}
