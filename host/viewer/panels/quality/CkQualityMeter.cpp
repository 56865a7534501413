#include "host/viewer/panels/quality/CkQualityMeter.h"

#include "zuCore/CkImageData.h"

#include <algorithm>
#include <cmath>
#include <limits>

void CkQualityMeter::setRegion(const QRect& region) {
    if (region != m_region) {
        m_region = region;
        restart();
    }
}

void CkQualityMeter::setConfidenceLimit(float fLimit) {
    if (fLimit != m_rule.confidenceLimit) {
        m_rule.confidenceLimit = fLimit;
        restart();
    }
}

void CkQualityMeter::restart() {
    m_temporal.clear();
    m_referenceMm = SkQualityValues::kNothing;
}

bool CkQualityMeter::add(const CkImageData& frame, quint32 uiChannel, const std::vector<bool>& saturated,
                         SkQualityValues& values) {
    values = SkQualityValues();
    const SkPicBuf& picture = frame.picBuf();
    const QSize size(int(picture.width), int(picture.height));
    const QRect region = m_region & QRect(QPoint(0, 0), size);
    if (uiChannel != m_rule.channel || size != m_size) {
        m_rule.channel = uiChannel;
        m_size = size;
        restart();
    }
    if (!readRegion(picture, frame.metadata(), region, m_rule, m_samples)) {
        return false;
    }
    for (size_t i = 0; i < std::min(saturated.size(), m_samples.values.size()); ++i) {
        if (saturated[i]) {
            m_samples.values[i] = std::numeric_limits<float>::quiet_NaN();
        }
    }
    if (m_samples.unit != m_unit) {
        m_unit = m_samples.unit;
        restart();
    }
    if (!std::isfinite(m_referenceMm)) {
        // Without a common reference, distances near the end of the range would jump between its two ends.
        const auto first = std::find_if(m_samples.values.begin(), m_samples.values.end(),
                                        [](float value) { return std::isfinite(value); });
        m_referenceMm = first != m_samples.values.end() ? double(*first) : SkQualityValues::kNothing;
    }
    unwrapSamples(m_samples, m_referenceMm);
    m_temporal.add(m_samples.values);
    values.frameNumber = frame.metadata().frameNumber;
    values.frames = m_temporal.frames();
    values.unit = m_samples.unit;
    values.temporalStd = m_temporal.standardDeviation();
    fillSpread(values);
    if (m_samples.distances) {
        const double reported = double(frame.metadata().lensFocalLength);
        fillPlane(picture, region,
                  std::isfinite(reported) && reported > 0.0 ? reported : m_lens.focalLengthMm, values);
    }
    return true;
}

void CkQualityMeter::fillSpread(SkQualityValues& values) const {
    double sum = 0.0;
    size_t valid = 0;
    for (const float value : m_samples.values) {
        if (std::isfinite(value)) {
            sum += double(value);
            ++valid;
        }
    }
    values.validShare = double(valid) / double(m_samples.values.size());
    if (valid == 0) {
        return;
    }
    values.mean = sum / double(valid);
    double squares = 0.0;
    for (const float value : m_samples.values) {
        if (std::isfinite(value)) {
            squares += (double(value) - values.mean) * (double(value) - values.mean);
        }
    }
    values.spatialStd = valid > 1 ? std::sqrt(squares / double(valid - 1)) : 0.0;
}

void CkQualityMeter::fillPlane(const SkPicBuf& picture, const QRect& region, double focalLengthMm,
                               SkQualityValues& values) {
    if (!(focalLengthMm > 0.0) || !(m_lens.cellSizeMm > 0.0)) {
        return;
    }
    // A wall is flat in space, not in its distances along the rays.
    const double perPixel = m_lens.cellSizeMm / focalLengthMm;
    const double centreX = picture.width * 0.5;
    const double centreY = picture.height * 0.5;
    m_points.clear();
    size_t index = 0;
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const double v = (centreY - y) * perPixel;
        for (int x = region.left(); x <= region.right(); ++x, ++index) {
            const double distance = double(m_samples.values[index]);
            if (!std::isfinite(distance)) {
                continue;
            }
            const double u = (x - centreX) * perPixel;
            const double z = distance / std::sqrt(1.0 + u * u + v * v);
            m_points.push_back({u * z, v * z, z});
        }
    }
    if (const auto plane = fitPlane(m_points)) {
        values.tiltDegrees = plane->tiltDegrees;
        values.flatness = plane->flatness;
        values.planeRms = plane->rms;
    }
}
