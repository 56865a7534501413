#pragma once

#include "tools/tof/accuracy/SkTofAccuracy.h"

#include <vector>

/// The cells with one frequency (or pulse), one number of phases and one number of bits, in the matrix's
/// order.
struct SkTofAccuracyGroup {
    std::vector<const SkTofAccuracyResult*> results; ///< never empty
    QString title() const;
};

/// The groups in the order of the matrix.
std::vector<SkTofAccuracyGroup> groupAccuracy(const std::vector<SkTofAccuracyResult>& results);

/// Plots as SVG: error and noise of a group over the distance, and the noise of all cells of one frequency
/// over their limit. Empty when no cell has anything to show.
QString accuracyErrorPlot(const SkTofAccuracyGroup& group);
QString accuracyNoisePlot(const SkTofAccuracyGroup& group);
QString accuracyLimitPlot(const std::vector<SkTofAccuracyGroup>& groups);
