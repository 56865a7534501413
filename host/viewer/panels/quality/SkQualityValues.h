#pragma once

#include <QString>
#include <QtGlobal>

#include <limits>

/// The measured values of a region after a frame. Mean and spreads in `unit`; NaN for unknown values. Plain
/// data.
struct SkQualityValues {
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

    quint64 frameNumber = 0;
    qint64 frames = 0;           ///< over which the temporal spread is computed
    bool saturationKnown = true; ///< false: saturated pixels may be among the valid ones
    QString unit;                ///< "mm", "rad", or empty for plain counts
    double mean = kNothing;
    double spatialStd = kNothing;  ///< over the region, of this frame
    double temporalStd = kNothing; ///< over time: root mean square of the pixels' standard deviations
    double validShare = kNothing;  ///< 0 to 1
    double tiltDegrees = kNothing; ///< of the plane against the picture plane; from here on, distances only
    double flatness = kNothing;    ///< mm, between the farthest pixels on either side of the plane
    double planeRms = kNothing;    ///< mm, root mean square of the pixels' distances from the plane
};
