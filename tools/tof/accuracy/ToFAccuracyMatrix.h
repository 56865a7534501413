#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <vector>

/// The values whose combinations are measured. Plain data; the defaults are those of the command.
struct SkToFAccuracyMatrix {
    bool wave = true;
    bool hybrid = true;
    std::vector<double> frequencies{20.0, 60.0};                      ///< MHz
    std::vector<double> pulses{40.0};                                 ///< ns
    std::vector<double> distances{1.0, 1.5, 2.0, 3.0, 4.0, 5.5, 7.0}; ///< m
    std::vector<double> reflectivities{0.1, 0.8};                     ///< 0 to 1
    std::vector<double> ambients{0.0, 1.0};
    std::vector<double> phases{2.0, 4.0, 8.0};
    std::vector<double> bits{8.0, 12.0};

    /// Every combination; the distance varies fastest. A hybrid camera has no phases.
    std::vector<SkToFAccuracyPoint> points() const;
};
