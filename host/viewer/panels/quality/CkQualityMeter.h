#pragma once

#include "host/viewer/panels/quality/CkTemporalStatistics.h"
#include "host/viewer/panels/quality/PlaneFit.h"
#include "host/viewer/panels/quality/RegionSamples.h"
#include "host/viewer/panels/quality/SkQualityValues.h"

#include <QSize>

class CkImageData;

/// The lens that turns distances into points. Plain data.
struct SkQualityLens {
    double focalLengthMm = 3.5; ///< above 0; that of the frame takes precedence
    double cellSizeMm = 0.01;   ///< above 0
    bool operator==(const SkQualityLens&) const = default;
};

/// Measures a region frame by frame. No widget; one thread at a time.
///
/// The spread over time restarts whenever region, channel, limit, unit or the picture's size change.
class CkQualityMeter {
public:
    /// In pixels of the picture, clipped to it. An empty region measures nothing.
    void setRegion(const QRect& region);
    const QRect& region() const { return m_region; }
    void setConfidenceLimit(float fLimit);
    void setLens(const SkQualityLens& lens) { m_lens = lens; }
    void restart();

    /// saturated: marks the pixels of the region that are invalid because of saturation, row by row; empty:
    /// none. False when the frame has no such channel or does not overlap the region.
    bool add(const CkImageData& frame, quint32 uiChannel, const std::vector<bool>& saturated,
             SkQualityValues& values);

private:
    void fillSpread(SkQualityValues& values) const;
    void fillPlane(const SkPicBuf& picture, const QRect& region, double focalLengthMm,
                   SkQualityValues& values);

    QRect m_region;
    SkRegionRule m_rule;
    SkQualityLens m_lens;
    // Common to all frames since the last restart.
    QSize m_size;
    QString m_unit;
    double m_referenceMm = SkQualityValues::kNothing;

    CkTemporalStatistics m_temporal;
    SkRegionSamples m_samples;
    std::vector<SkSpacePoint> m_points;
};
