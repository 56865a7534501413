#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <vector>

/// The cells with one frequency (or pulse), one number of phases and one number of bits, in the matrix's
/// order.
struct SkToFAccuracyGroup {
    std::vector<const SkToFAccuracyResult*> results; ///< never empty
    QString title() const;
};

/// The groups in the order of the matrix.
std::vector<SkToFAccuracyGroup> groupAccuracy(const std::vector<SkToFAccuracyResult>& results);

/// Plots as SVG: error and noise of a group against the distance, and the noise of all cells of one frequency
/// against their limit.
QString accuracyErrorPlot(const SkToFAccuracyGroup& group);
QString accuracyNoisePlot(const SkToFAccuracyGroup& group);
QString accuracyLimitPlot(const std::vector<SkToFAccuracyGroup>& groups);
