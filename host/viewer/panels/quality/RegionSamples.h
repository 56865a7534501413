#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QRect>
#include <QString>

#include <vector>

/// The values of one channel in a region, row by row.
struct SkRegionSamples {
    std::vector<float> values; ///< not a number: not valid
    QString unit;              ///< "mm" for distances, "rad", or empty
    bool distances = false;    ///< millimetres along the ray
    double wrapMm = 0.0;       ///< unambiguous range, after which distances repeat; 0: unlimited
};

/// How samples are read. Plain data.
struct SkRegionRule {
    quint32 channel = 0;
    float confidenceLimit = 10.0F; ///< of a confidence channel; pixels with a higher value are not valid
};

/// Reads a region that lies within the picture. A depth becomes millimetres, a phase shift when the metadata
/// holds the modulation frequency. A value is not valid when it is not finite, an integer at the end of its
/// range, or a phase shift or depth whose confidence exceeds the limit; a depth also when its confidence is
/// 0. False for a picture or channel that cannot be read. Any thread.
bool readRegion(const SkPicBuf& picture, const CkImageMetadata& metadata, const QRect& region,
                const SkRegionRule& rule, SkRegionSamples& samples);

/// Moves distances that repeat by whole periods to the one nearest to a reference.
void unwrapSamples(SkRegionSamples& samples, double referenceMm);
