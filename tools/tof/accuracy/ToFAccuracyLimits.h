#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <QStringList>

#include <optional>
#include <vector>

/// What a result must not exceed; limits that are not set are not checked. Plain data.
struct SkToFAccuracyLimits {
    std::optional<double> maxBiasMm;
    std::optional<double> maxStdMm;
    std::optional<double> maxRatio;      ///< standard deviation over what the sensor allows
    std::optional<double> minValidShare; ///< 0 to 1

    bool isEmpty() const { return !maxBiasMm && !maxStdMm && !maxRatio && !minValidShare; }

    /// What a result exceeds, one text a limit; a result without any valid pixel exceeds every limit but the
    /// share's, if that is 0.
    QStringList exceededBy(const SkToFAccuracyResult& result) const;
};

/// "20 MHz, 4 phases, 12 bit, 1.5 m, 80 %, ambient 1": the cell in words.
QString describeAccuracyPoint(const SkToFAccuracyPoint& point);
