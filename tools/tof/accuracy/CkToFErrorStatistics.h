#pragma once

#include <vector>

/// Mean, standard deviation and percentiles of errors. Stores every error, for the percentiles. One thread at
/// a time.
class CkToFErrorStatistics {
public:
    void add(double fError);
    bool isEmpty() const { return m_magnitudes.empty(); }

    // NaN while nothing was added. The deviation of a single error is 0.
    double mean() const;
    double standardDeviation() const;
    double largest() const;
    /// The smallest magnitude that this share (above 0, up to 1) of the errors does not exceed.
    double percentile(double fShare);

private:
    std::vector<double> m_magnitudes;
    // Running mean and sum of squares about it: accurate also when the spread is small against the mean.
    double m_mean = 0.0;
    double m_squares = 0.0;
};
