#include "host/viewer/panels/quality/CkTemporalStatistics.h"

#include <cmath>
#include <limits>

void CkTemporalStatistics::clear() {
    m_pixels.clear();
    m_frames = 0;
}

void CkTemporalStatistics::add(const std::vector<float>& values) {
    if (values.size() != m_pixels.size()) {
        m_pixels.assign(values.size(), {});
        m_frames = 0;
    }
    ++m_frames;
    for (size_t i = 0; i < values.size(); ++i) {
        const double value = double(values[i]);
        if (!std::isfinite(value)) {
            continue;
        }
        SkPixel& pixel = m_pixels[i];
        ++pixel.count;
        const double step = value - pixel.mean;
        pixel.mean += step / pixel.count;
        pixel.squares += step * (value - pixel.mean);
    }
}

double CkTemporalStatistics::standardDeviation() const {
    double variances = 0.0;
    quint64 pixels = 0;
    for (const SkPixel& pixel : m_pixels) {
        if (pixel.count >= 2) {
            variances += pixel.squares / (pixel.count - 1);
            ++pixels;
        }
    }
    return pixels > 0 ? std::sqrt(variances / double(pixels)) : std::numeric_limits<double>::quiet_NaN();
}
