#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// Estimates the constant distance error of a ToF camera in front of a wall: averages the phase shift in the
/// middle of several frames, converts it to a distance and compares that with the true one. Plain value;
/// knows no window; not synchronised.
class CkToFOffsetEstimator {
public:
    struct SkResult {
        float fMeasuredDistance; ///< m
        float fOffset;           ///< m, to be added to measured distances
    };

    /// Side of the averaged square in the middle of a frame, pixels.
    static constexpr int kSquareSize = 6;
    /// MHz; a frame of a lower modulation frequency counts as one without.
    static constexpr float kMinModulationFreq = 0.1F;

    void reset();

    /// Adds a phase shift picture, or a raw one that is converted to phase shift first. False, and nothing is
    /// added, for a picture of another kind and for one of A minus B that does not have 1, 2, 4 or 8 phases.
    /// pMetadata may be null.
    bool addPicture(const SkPicBuf& picture, const CkImageMetadata* pMetadata);

    float phaseSum() const { return m_phaseSum; }
    int pixelCount() const { return m_pixelCount; }

    /// Whether the pixels added so far have a finite mean.
    bool hasMean() const;
    /// fDistanceCm in cm, fModulationFreq in MHz, at least kMinModulationFreq. Precondition: hasMean.
    SkResult result(float fDistanceCm, float fModulationFreq) const;

    /// Sum of one channel over the square in the middle of a float picture. Where the picture is narrower
    /// (lower) than the square, the side is half its width (height). iCount: pixels summed; 0 for a picture
    /// that cannot be summed.
    static float sumCentralPhaseShiftPixels(const SkPicBuf* pImage, int iChannel, int iSquareSize,
                                            int& iCount);

private:
    void addPhaseShift(const SkPicBuf& picture);

    float m_phaseSum = 0.0F;
    int m_pixelCount = 0;
};
