#include "host/viewer/panels/quality/CkViewMeasurement.h"

#include "host/viewer/panels/quality/CkSaturationMonitor.h"
#include "host/viewer/picture/Saturation.h"
#include "zuCore/CkImageData.h"

void CkViewMeasurement::setRegion(const QRect& region) {
    if (region != m_meter.region()) {
        m_meter.setRegion(region);
        m_history.clear();
    }
}

void CkViewMeasurement::setSettings(const SkQualityLens& lens, float fConfidenceLimit) {
    m_meter.setLens(lens);
    m_meter.setConfidenceLimit(fConfidenceLimit);
}

bool CkViewMeasurement::isNewest(const CkImageData& frame) const {
    return m_pixels == frame.picBuf().data && m_values.frameNumber == frame.metadata().frameNumber;
}

void CkViewMeasurement::restart() {
    m_meter.restart();
    m_history.clear();
    m_values = SkQualityValues();
}

bool CkViewMeasurement::findSaturated(const CkImageData& frame, const CkChainable* pProvider,
                                      CkSaturationMonitor& monitor, std::vector<bool>& saturated) {
    using EkAnswer = CkSaturationMonitor::EkAnswer;
    const SkPicBuf& picture = frame.picBuf();
    const Saturation::EkEvidence evidence = Saturation::evidence(picture, frame.metadata(), pProvider);
    m_saturationReason = Saturation::reason(evidence);
    if (evidence != Saturation::EkEvidence::Computed) {
        monitor.watch(nullptr);
        return true;
    }
    monitor.watch(Saturation::soleSource(pProvider));
    const QSize size(int(picture.width), int(picture.height));
    const EkAnswer answer = monitor.saturated(picture.additionalData.frameNumber, size,
                                              m_meter.region() & QRect(QPoint(0, 0), size), saturated);
    m_saturationReason = answer == EkAnswer::Known    ? QString()
                         : answer == EkAnswer::Missed ? tr("the camera's picture was missed")
                         : answer == EkAnswer::Difference
                             ? Saturation::reason(Saturation::EkEvidence::Difference)
                             : tr("the camera's picture does not show it");
    if (answer == EkAnswer::Missed && !isEmpty() && m_values.saturationKnown) {
        m_saturationReason.clear();
        return false;
    }
    if (answer == EkAnswer::Known && !isEmpty() && !m_values.saturationKnown) {
        m_meter.restart();
        m_history.clear();
    }
    return true;
}

bool CkViewMeasurement::add(const CkImageData& frame, quint32 uiChannel, const CkChainable* pProvider,
                            CkSaturationMonitor& monitor) {
    std::vector<bool> saturated;
    if (!findSaturated(frame, pProvider, monitor, saturated)) {
        return false;
    }
    const QString unit = m_values.unit;
    if (m_meter.add(frame, uiChannel, saturated, m_values)) {
        m_values.saturationKnown = m_saturationReason.isEmpty();
        // A curve has one unit and one spread over time.
        if (m_values.unit != unit || m_values.frames == 1) {
            m_history.clear();
        }
        m_history.add(m_values);
    }
    m_pixels = frame.picBuf().data;
    return true;
}
