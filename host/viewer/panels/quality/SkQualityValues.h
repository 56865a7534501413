#pragma once

#include <QString>
#include <QtGlobal>

#include <limits>

/// What is known about a region after a frame. Mean and spreads in `unit`; not a number for what is not
/// known. Plain data.
struct SkQualityValues {
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

    quint64 frameNumber = 0;
    qint64 frames = 0;           ///< that the spread over time is taken over
    bool saturationKnown = true; ///< false: saturated pixels may be among the valid ones
    QString unit;                ///< "mm", "rad", or empty for plain counts
    double mean = kNothing;
    double spatialStd = kNothing;  ///< over the region, of this frame
    double temporalStd = kNothing; ///< over time: quadratic mean of the pixels' own
    double validShare = kNothing;  ///< 0 to 1
    double tiltDegrees =
        kNothing;               ///< of the plane against the picture's plane; distances only, as what follows
    double flatness = kNothing; ///< mm, from the pixel furthest in front of the plane to that furthest behind
    double planeRms = kNothing; ///< mm, quadratic mean of the pixels' distances from the plane
};
