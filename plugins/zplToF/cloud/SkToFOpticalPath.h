#pragma once

#include <QPointF>

#include <cmath>

struct CkImageMetadata;

/// True for finite values above 0, which is what a length, a frequency or a rate has to be.
inline bool float_is_positive(float fValue) {
    return std::isfinite(fValue) && fValue > 0.0F;
}

/// True for finite values.
inline bool float_is_valid(float fValue) {
    return std::isfinite(fValue);
}

/// The lens model of the 3D view. Plain values, not validated: the cloud builder ignores a lens model that it
/// cannot use.
struct SkToFOpticalPath {
    bool compensateDistortion = false; ///< master switch of the lens model; off: normalised view
    float lensFocalLengthMM = 3.5F;    ///< mm, above 0
    float chipCellSizeMM = 0.01F;      ///< mm, pitch of a sensor cell, above 0
    QPointF centerOffsetMM;            ///< mm on the chip, optical axis from the picture's centre, y up
    float modulationFreqMHz = 30.0F;   ///< MHz, above 0; sets the unambiguous range of phase data
    float confidenceThreshold = 10.0F; ///< pixels of a higher confidence value are dropped
    float realDistanceOffsetM = -1.5F; ///< m, added to every distance; not finite: no offset
    bool orthoRadialCorrection = true; ///< distances along the ray become distances along the axis

    /// Adopts the modulation frequency and the focal length that the camera reports, where above 0.
    void adoptCameraValues(const CkImageMetadata& metadata);

    bool operator==(const SkToFOpticalPath&) const = default;
};
