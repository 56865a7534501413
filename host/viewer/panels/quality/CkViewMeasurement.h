#pragma once

#include "host/viewer/panels/quality/CkQualityHistory.h"
#include "host/viewer/panels/quality/CkQualityMeter.h"

#include <QCoreApplication>

class CkChainable;
class CkImageData;
class CkSaturationMonitor;

/// The measurement of one view: the newest values, those of the last frames, and what is known about
/// saturated pixels. Independent of widgets. User-interface thread.
class CkViewMeasurement {
    Q_DECLARE_TR_FUNCTIONS(CkViewMeasurement)

public:
    /// In pixels of the picture. Another region than before clears the history.
    void setRegion(const QRect& region);
    const QRect& region() const { return m_meter.region(); }
    /// Another confidence limit than before restarts the spread over time.
    void setSettings(const SkQualityLens& lens, float fConfidenceLimit);

    /// Measures a channel of a frame that pProvider delivered. When the frame is a computed picture, monitor
    /// is set to watch the source whose samples show saturated pixels, otherwise none. False for a frame that
    /// is skipped because the source's picture was missed; the next one will be recorded.
    bool add(const CkImageData& frame, quint32 uiChannel, const CkChainable* pProvider,
             CkSaturationMonitor& monitor);
    /// Whether this frame was added last.
    bool isNewest(const CkImageData& frame) const;

    void clearHistory() { m_history.clear(); }
    /// Drops the frames so far.
    void restart();

    /// Of the frame added last.
    const SkQualityValues& values() const { return m_values; }
    const CkQualityHistory& history() const { return m_history; }
    bool isEmpty() const { return m_history.values().empty(); }
    /// Why saturated pixels may count as valid; empty: they do not.
    const QString& saturationReason() const { return m_saturationReason; }

private:
    bool findSaturated(const CkImageData& frame, const CkChainable* pProvider, CkSaturationMonitor& monitor,
                       std::vector<bool>& saturated);

    CkQualityMeter m_meter;
    CkQualityHistory m_history;
    SkQualityValues m_values;
    const void* m_pixels = nullptr; ///< of the frame added last, only compared
    QString m_saturationReason;
};
