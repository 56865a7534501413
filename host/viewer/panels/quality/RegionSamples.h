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
    double wrapMm = 0.0;       ///< at which distances start again; 0: they do not
};

/// How samples are read. Plain data.
struct SkRegionRule {
    quint32 channel = 0;
    float confidenceLimit = 10.0F; ///< of a confidence channel; pixels with a higher value are not valid
};

/// Reads a region that lies within the picture. A phase shift becomes millimetres when the metadata tell the
/// modulation frequency, a depth always. Not valid is what is not finite, has no confidence, is a depth of no
/// confidence, or an integer at the end of its range. False for a picture or channel that cannot be read. Any
/// thread.
bool readRegion(const SkPicBuf& picture, const CkImageMetadata& metadata, const QRect& region,
                const SkRegionRule& rule, SkRegionSamples& samples);

/// Brings distances that start again to the turn that is nearest to a reference.
void unwrapSamples(SkRegionSamples& samples, double referenceMm);
