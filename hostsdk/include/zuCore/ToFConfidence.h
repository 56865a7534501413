#pragma once

#include <cmath>

/// Which pixels of a picture with a confidence channel count as measured. Lower confidence values are better.
struct SkToFConfidenceRule {
    float threshold = 10.0F;    ///< pixels with a higher value do not count
    bool zeroIsInvalid = false; ///< depth pictures of hybrid sensors mark pixels without a measurement by 0

    /// Whether a pixel with this confidence counts as measured; never for one that is not finite.
    bool accepts(float fConfidence) const {
        return std::isfinite(fConfidence) && !(fConfidence > threshold) &&
               !(zeroIsInvalid && fConfidence == 0.0F);
    }
};
