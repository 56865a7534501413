#include "host/viewer/panels/quality/CkQualityPanel.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/quality/CkQualityPlot.h"
#include "host/viewer/panels/quality/CkRegionOverlay.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/Saturation.h"
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
    connect(m_pArea, &CkViewArea::viewClosed, this, [this](int iViewId) {
        m_kept.erase(iViewId);
        follow();
    });
    connect(m_pDraw, &QToolButton::toggled, this, [this](bool bOn) {
        if (m_overlay) {
            m_overlay->setDrawing(bOn);
        }
    });
    connect(m_pRestart, &QPushButton::clicked, this, &CkQualityPanel::restart);
    connect(m_pCopy, &QPushButton::clicked, this, &CkQualityPanel::copy);
    connect(m_pSave, &QPushButton::clicked, this, &CkQualityPanel::saveWithDialog);
    connect(m_pQuantity, &QComboBox::currentIndexChanged, this, &CkQualityPanel::showNumbers);
    for (QDoubleSpinBox* number : {m_pFocalLength, m_pCellSize, m_pConfidence}) {
        connect(number, &QDoubleSpinBox::valueChanged, this, &CkQualityPanel::applySettings);
    }
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
        if (const auto kept = m_kept.find(m_source->viewId()); kept != m_kept.end()) {
            m_now = std::move(kept->second);
            m_kept.erase(kept);
        }
        applySettings();
        m_overlay = new CkRegionOverlay(m_source->canvas());
        m_overlay->setDrawing(m_pDraw->isChecked());
        connect(m_overlay, &CkRegionOverlay::regionDrawn, this, &CkQualityPanel::setRegion);
        connect(m_source, &CkMdiView::frameShown, this,
                [this](int, const CkImageData* pData) { measure(pData); });
        const CkImageData* const frame = m_source->currentImage();
        if (frame != nullptr && (m_now.pixels != frame->picBuf().data ||
                                 m_now.values.frameNumber != frame->metadata().frameNumber)) {
            measure(frame);
        } else {
            showRegion();
        }
    }
    showNumbers();
}

void CkQualityPanel::applySettings() {
    m_now.meter.setLens({m_pFocalLength->value(), m_pCellSize->value()});
    m_now.meter.setConfidenceLimit(float(m_pConfidence->value()));
}

void CkQualityPanel::release() {
    if (m_source) {
        disconnect(m_source, nullptr, this, nullptr);
        m_kept[m_source->viewId()] = std::move(m_now);
    }
    delete m_overlay;
    m_watch.watch(nullptr);
    m_source = nullptr;
    m_now = SkMeasurement();
    m_delay.stop();
}

void CkQualityPanel::setRegion(const QRect& region) {
    if (!m_source) {
        return;
    }
    m_regions.insert(regionKey(), region);
    m_now.history.clear();
    measure(m_source->currentImage());
    showNumbers();
}

void CkQualityPanel::chooseRegion(const QSize& size) {
    const QString key = regionKey();
    if (!m_regions.contains(key)) {
        // Something to look at before a region is drawn: the middle.
        const QSize part(std::max(1, size.width() / 4), std::max(1, size.height() / 4));
        m_regions.insert(
            key, QRect(QPoint((size.width() - part.width()) / 2, (size.height() - part.height()) / 2), part));
    }
    const QRect region = m_regions.value(key);
    if (region != m_now.meter.region()) {
        m_now.meter.setRegion(region);
        m_now.history.clear();
    }
    showRegion();
}

void CkQualityPanel::showRegion() {
    if (m_overlay) {
        m_overlay->setRegion(m_now.meter.region());
    }
}

bool CkQualityPanel::findSaturated(const CkImageData& frame, std::vector<bool>& saturated) {
    using EkAnswer = CkSaturationMonitor::EkAnswer;
    const SkPicBuf& picture = frame.picBuf();
    const Saturation::EkEvidence evidence =
        Saturation::evidence(picture, frame.metadata(), m_source->dataProvider());
    m_now.saturationReason = Saturation::reason(evidence);
    if (evidence != Saturation::EkEvidence::Computed) {
        m_watch.watch(nullptr);
        return true;
    }
    m_watch.watch(Saturation::soleSource(m_source->dataProvider()));
    const QSize size(int(picture.width), int(picture.height));
    const EkAnswer answer = m_watch.saturated(picture.additionalData.frameNumber, size,
                                              m_now.meter.region() & QRect(QPoint(0, 0), size), saturated);
    m_now.saturationReason = answer == EkAnswer::Known    ? QString()
                             : answer == EkAnswer::Missed ? tr("the camera's picture was not seen")
                             : answer == EkAnswer::Difference
                                 ? Saturation::reason(Saturation::EkEvidence::Difference)
                                 : tr("the camera's picture does not tell");
    const bool had = !m_now.history.values().empty();
    if (answer == EkAnswer::Missed && had && m_now.values.saturationKnown) {
        m_now.saturationReason.clear(); // the next frame will be seen
        return false;
    }
    if (answer == EkAnswer::Known && had && !m_now.values.saturationKnown) {
        m_now.meter.restart();
        m_now.history.clear();
    }
    return true;
}

void CkQualityPanel::measure(const CkImageData* pFrame) {
    if (!m_source || pFrame == nullptr || pFrame->picBuf().data == nullptr) {
        return;
    }
    chooseRegion(QSize(int(pFrame->picBuf().width), int(pFrame->picBuf().height)));
    std::vector<bool> saturated;
    if (!findSaturated(*pFrame, saturated)) {
        return;
    }
    const QString unit = m_now.values.unit;
    if (m_now.meter.add(*pFrame, quint32(std::max(0, m_source->channel())), saturated, m_now.values)) {
        m_now.values.saturationKnown = m_now.saturationReason.isEmpty();
        // A curve has one unit and one spread over time.
        if (m_now.values.unit != unit || m_now.values.frames == 1) {
            m_now.history.clear();
        }
        m_now.history.add(m_now.values);
    }
    m_now.pixels = pFrame->picBuf().data;
    if (!m_delay.isActive()) {
        m_delay.start();
    }
}

void CkQualityPanel::restart() {
    m_now.meter.restart();
    m_now.history.clear();
    m_now.values = SkQualityValues();
    showNumbers();
}

void CkQualityPanel::showNumbers() {
    const int count = int(m_numbers.size());
    for (int i = 0; i < count; ++i) {
        m_numbers[i]->setText(CkQualityHistory::number(quantity(m_now.values, i), unitOf(m_now.values, i)));
    }
    const int chosen = std::max(0, m_pQuantity->currentIndex());
    const auto& history = m_now.history.values();
    const size_t width = size_t(std::max(2, m_pPlot->width()));
    const size_t first = history.size() > width ? history.size() - width : 0;
    std::vector<double> curve;
    for (size_t i = first; i < history.size(); ++i) {
        curve.push_back(quantity(history[i], chosen));
    }
    m_pPlot->showValues(curve, unitOf(m_now.values, chosen));
    updateControls();
}

bool CkQualityPanel::saveHistory(const QString& sFileName, QString& sError) const {
    const QByteArray text =
        m_now.history.csv(m_source ? m_source->viewTitle().simplified() : QString(), m_now.meter.region());
    QSaveFile file(sFileName);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
        return true;
    }
    sError = tr("%1 cannot be written: %2.").arg(sFileName, file.errorString());
    return false;
}
