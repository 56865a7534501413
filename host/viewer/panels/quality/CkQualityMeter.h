#pragma once

#include "host/viewer/panels/quality/CkTemporalStatistics.h"
#include "host/viewer/panels/quality/PlaneFit.h"
#include "host/viewer/panels/quality/RegionSamples.h"
#include "host/viewer/panels/quality/SkQualityValues.h"

#include <QSize>

class CkImageData;

/// The lens that turns distances into points. Plain data.
struct SkQualityLens {
    double focalLengthMm = 3.5; ///< above 0; what the frame says wins
    double cellSizeMm = 0.01;   ///< above 0
    bool operator==(const SkQualityLens&) const = default;
};

/// Measures a region frame by frame. No widget; one thread at a time.
///
/// The spread over time starts anew whenever region, channel, limit, unit or the picture's size change.
class CkQualityMeter {
public:
    /// Picture coordinates; cut to the picture. An empty region measures nothing.
    void setRegion(const QRect& region);
    const QRect& region() const { return m_region; }
    void setConfidenceLimit(float fLimit);
    void setLens(const SkQualityLens& lens) { m_lens = lens; }
    void restart();

    /// saturated: pixels of the region that are not valid whatever they hold, row by row; empty for none.
    /// False when the frame has no such channel or nothing of it lies in the region.
    bool add(const CkImageData& frame, quint32 uiChannel, const std::vector<bool>& saturated,
             SkQualityValues& values);

private:
    void fillSpread(SkQualityValues& values) const;
    void fillPlane(const SkPicBuf& picture, const QRect& region, double focalLengthMm,
                   SkQualityValues& values);

    QRect m_region;
    SkRegionRule m_rule;
    SkQualityLens m_lens;
    // What the values so far belong to.
    QSize m_size;
    QString m_sUnit;
    double m_fReferenceMm = SkQualityValues::kNothing;

    CkTemporalStatistics m_temporal;
    SkRegionSamples m_samples;
    std::vector<SkSpacePoint> m_points;
};
