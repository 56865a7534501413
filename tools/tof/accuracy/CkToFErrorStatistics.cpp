#include "tools/tof/accuracy/CkToFErrorStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

void CkToFErrorStatistics::add(double fError) {
    m_magnitudes.push_back(std::abs(fError));
    const double step = fError - m_mean;
    m_mean += step / double(m_magnitudes.size());
    m_squares += step * (fError - m_mean);
}

double CkToFErrorStatistics::mean() const {
    return isEmpty() ? kNaN : m_mean;
}

double CkToFErrorStatistics::standardDeviation() const {
    if (isEmpty()) {
        return kNaN;
    }
    return m_magnitudes.size() == 1 ? 0.0 : std::sqrt(m_squares / double(m_magnitudes.size() - 1));
}

double CkToFErrorStatistics::largest() const {
    return isEmpty() ? kNaN : *std::max_element(m_magnitudes.begin(), m_magnitudes.end());
}

double CkToFErrorStatistics::percentile(double fShare) {
    if (isEmpty()) {
        return kNaN;
    }
    const double rank = std::ceil(fShare * double(m_magnitudes.size()));
    const auto index =
        std::clamp<std::ptrdiff_t>(std::ptrdiff_t(rank) - 1, 0, std::ptrdiff_t(m_magnitudes.size()) - 1);
    std::nth_element(m_magnitudes.begin(), m_magnitudes.begin() + index, m_magnitudes.end());
    return m_magnitudes[size_t(index)];
}
