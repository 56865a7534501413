#include "quality/CkQualityPanel.h"

#include "area/CkViewArea.h"
#include "image/CkImageCanvas.h"
#include "image/CkImageView.h"
#include "quality/CkQualityPlot.h"
#include "quality/CkRegionOverlay.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QToolButton>
#include <algorithm>

namespace {

constexpr int kShowMs = 200;

double quantity(const SkQualityValues& values, int index) {
    switch (index) {
    case 0:
        return values.mean;
    case 1:
        return values.spatialStd;
    case 2:
        return values.temporalStd;
    case 3:
        return 100.0 * values.validShare;
    case 4:
        return values.tiltDegrees;
    case 5:
        return values.flatness;
    default:
        return values.planeRms;
    }
}

QString unitOf(const SkQualityValues& values, int index) {
    return index <= 2   ? values.unit
           : index == 3 ? QStringLiteral("%")
           : index == 4 ? QStringLiteral("\u00b0")
                        : QStringLiteral("mm");
}

const CkChain* chainOf(const CkMdiView* view) {
    const CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    return block != nullptr ? block->chain() : nullptr;
}

} // namespace

CkQualityPanel::CkQualityPanel(CkViewArea* pArea, QWidget* pParent) : QWidget(pParent), m_pArea(pArea) {
    setObjectName(QStringLiteral("qualityPanel"));
    createControls();
    m_delay.setSingleShot(true);
    m_delay.setInterval(kShowMs);
    connect(&m_delay, &QTimer::timeout, this, &CkQualityPanel::showNumbers);
    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkQualityPanel::follow);
    connect(m_pArea, &CkViewArea::viewAdded, this, &CkQualityPanel::follow);
    connect(m_pArea, &CkViewArea::viewAboutToClose, this, [this](int iViewId) {
        if (m_source && m_source->viewId() == iViewId) {
            release();
        }
    });
    connect(m_pArea, &CkViewArea::viewClosed, this, [this] { follow(); });
    connect(m_pDraw, &QToolButton::toggled, this, [this](bool bOn) {
        if (m_overlay) {
            m_overlay->setDrawing(bOn);
        }
    });
    connect(m_pRestart, &QPushButton::clicked, this, &CkQualityPanel::restart);
    connect(m_pCopy, &QPushButton::clicked, this, &CkQualityPanel::copy);
    connect(m_pSave, &QPushButton::clicked, this, &CkQualityPanel::saveWithDialog);
    connect(m_pQuantity, &QComboBox::currentIndexChanged, this, &CkQualityPanel::showNumbers);
    const auto lens = [this] { m_meter.setLens({m_pFocalLength->value(), m_pCellSize->value()}); };
    connect(m_pFocalLength, &QDoubleSpinBox::valueChanged, this, lens);
    connect(m_pCellSize, &QDoubleSpinBox::valueChanged, this, lens);
    connect(m_pConfidence, &QDoubleSpinBox::valueChanged, this,
            [this](double fLimit) { m_meter.setConfidenceLimit(float(fLimit)); });
    showNumbers();
}

CkQualityPanel::~CkQualityPanel() {
    release();
}

void CkQualityPanel::showEvent(QShowEvent* pEvent) {
    QWidget::showEvent(pEvent);
    follow();
}

void CkQualityPanel::setInSight(bool bInSight) {
    m_bInSight = bInSight;
    follow();
}

void CkQualityPanel::hideEvent(QHideEvent* pEvent) {
    QWidget::hideEvent(pEvent);
    release();
    // Not with the area's help: this may be the end of the window.
    allowMeasuring(false, tr("The panel Quality is not in sight"));
}

CkImageView* CkQualityPanel::sourceFor(CkMdiView* pView) const {
    if (auto* image = qobject_cast<CkImageView*>(pView)) {
        return image;
    }
    if (auto* connected = pView != nullptr
                              ? qobject_cast<CkImageView*>(m_pArea->view(pView->connectedViewId()))
                              : nullptr) {
        return connected;
    }
    const CkChain* const chain = chainOf(pView);
    CkImageView* found = nullptr;
    for (CkMdiView* view : m_pArea->views()) {
        auto* const image = qobject_cast<CkImageView*>(view);
        if (image == nullptr || chain == nullptr || chainOf(image) != chain) {
            continue;
        }
        // Any picture of the chain will do, one with distances is what a cloud is made of.
        const CkImageData* const frame = image->currentImage();
        const QString first = frame != nullptr ? frame->metadata().channelNames.value(0) : QString();
        if (first == QLatin1String("Depth") || first == QLatin1String("Phase shift")) {
            return image;
        }
        found = found == nullptr ? image : found;
    }
    return found;
}

QString CkQualityPanel::regionKey() const {
    const QSize size = m_source ? m_source->canvas()->pictureSize() : QSize();
    const CkChain* const chain = chainOf(m_source);
    const QString owner = chain != nullptr
                              ? QStringLiteral("chain %1").arg(quintptr(chain))
                              : QStringLiteral("view %1").arg(m_source ? m_source->viewId() : -1);
    return QStringLiteral("%1, %2 x %3").arg(owner).arg(size.width()).arg(size.height());
}

void CkQualityPanel::follow() {
    CkImageView* const source = isVisible() && m_bInSight ? sourceFor(m_pArea->activeView()) : nullptr;
    if (source == m_source) {
        updateControls();
        return;
    }
    release();
    m_source = source;
    if (m_source) {
        m_overlay = new CkRegionOverlay(m_source->canvas());
        m_overlay->setDrawing(m_pDraw->isChecked());
        connect(m_overlay, &CkRegionOverlay::regionDrawn, this, &CkQualityPanel::setRegion);
        connect(m_source, &CkMdiView::imageShown, this,
                [this](int, const CkImageData* pData) { measure(pData); });
        measure(m_source->currentImage());
    }
    showNumbers();
}

void CkQualityPanel::release() {
    if (m_source) {
        disconnect(m_source, nullptr, this, nullptr);
    }
    delete m_overlay;
    m_source = nullptr;
    m_history.clear();
    m_meter.setRegion({});
    m_meter.restart();
    m_values = SkQualityValues();
    m_delay.stop();
}

void CkQualityPanel::setRegion(const QRect& region) {
    if (!m_source) {
        return;
    }
    m_regions.insert(regionKey(), region);
    m_history.clear();
    measure(m_source->currentImage());
    showNumbers();
}

void CkQualityPanel::measure(const CkImageData* pFrame) {
    if (!m_source || pFrame == nullptr || pFrame->picBuf().data == nullptr) {
        return;
    }
    const QSize size(int(pFrame->picBuf().width), int(pFrame->picBuf().height));
    const QString key = regionKey();
    if (!m_regions.contains(key)) {
        // Something to look at before a region is drawn: the middle.
        const QSize part(std::max(1, size.width() / 4), std::max(1, size.height() / 4));
        m_regions.insert(
            key, QRect(QPoint((size.width() - part.width()) / 2, (size.height() - part.height()) / 2), part));
    }
    const QRect region = m_regions.value(key);
    if (region != m_meter.region()) {
        m_meter.setRegion(region);
        m_history.clear();
    }
    if (m_overlay) {
        m_overlay->setRegion(region);
    }
    const QString unit = m_values.unit;
    if (m_meter.add(*pFrame, quint32(std::max(0, m_source->channel())), m_values)) {
        // A curve has one unit and one spread over time.
        if (m_values.unit != unit || m_values.frames == 1) {
            m_history.clear();
        }
        m_history.add(m_values);
    }
    if (!m_delay.isActive()) {
        m_delay.start();
    }
}

void CkQualityPanel::restart() {
    m_meter.restart();
    m_history.clear();
    m_values = SkQualityValues();
    showNumbers();
}

void CkQualityPanel::showNumbers() {
    const int count = int(m_numbers.size());
    for (int i = 0; i < count; ++i) {
        m_numbers[i]->setText(CkQualityHistory::number(quantity(m_values, i), unitOf(m_values, i)));
    }
    const int chosen = std::max(0, m_pQuantity->currentIndex());
    const auto& history = m_history.values();
    const size_t width = size_t(std::max(2, m_pPlot->width()));
    const size_t first = history.size() > width ? history.size() - width : 0;
    std::vector<double> curve;
    for (size_t i = first; i < history.size(); ++i) {
        curve.push_back(quantity(history[i], chosen));
    }
    m_pPlot->showValues(curve, unitOf(m_values, chosen));
    updateControls();
}

bool CkQualityPanel::saveHistory(const QString& sFileName, QString& sError) const {
    const QByteArray text =
        m_history.csv(m_source ? m_source->viewTitle().simplified() : QString(), m_meter.region());
    QSaveFile file(sFileName);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
        return true;
    }
    sError = tr("%1 cannot be written: %2.").arg(sFileName, file.errorString());
    return false;
}
